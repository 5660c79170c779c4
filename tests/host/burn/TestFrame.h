// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/burn/PlanarFrame.h"

#include <QByteArray>
#include <QSize>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace Velmar::Host {

struct Yuv
{
    double y = 0;
    double u = 0;
    double v = 0;
};

/// A frame in memory of its own, with guard bytes after every row and around every plane.
class TestFrame
{
public:
    static constexpr int guard = 48;

    TestFrame(QSize size, PlanarFrame::Layout layout,
              PlanarFrame::Matrix matrix = PlanarFrame::Matrix::Bt709,
              PlanarFrame::Range range = PlanarFrame::Range::Limited)
    {
        m_frame.layout = layout;
        m_frame.matrix = matrix;
        m_frame.range = range;
        m_frame.width = size.width();
        m_frame.height = size.height();
        const int columns = (size.width() + 1) / 2;
        const int rows = (size.height() + 1) / 2;
        addPlane(0, size.width(), size.height());
        addPlane(1, layout == PlanarFrame::Layout::NV12 ? 2 * columns : columns, rows);
        if (layout == PlanarFrame::Layout::I420)
            addPlane(2, columns, rows);
    }

    const PlanarFrame &planes() const { return m_frame; }
    QSize chromaSize() const { return QSize((m_frame.width + 1) / 2, (m_frame.height + 1) / 2); }

    int y(int column, int row) const { return *at(0, column, row); }
    int u(int column, int row) const { return *at(1, column * step(), row); }
    int v(int column, int row) const
    {
        return step() == 2 ? *at(1, 2 * column + 1, row) : *at(2, column, row);
    }

    /// Something that differs from sample to sample.
    void fillWithNoise()
    {
        quint32 state = 1;
        for (QByteArray &plane : m_memory) {
            for (char &byte : plane) {
                state = state * 1664525 + 1013904223;
                byte = char(state >> 24);
            }
        }
    }

    void fill(const Yuv &color)
    {
        for (int row = 0; row < m_frame.height; ++row)
            for (int column = 0; column < m_frame.width; ++column)
                *at(0, column, row) = std::uint8_t(std::lround(color.y));
        for (int row = 0; row < chromaSize().height(); ++row) {
            for (int column = 0; column < chromaSize().width(); ++column) {
                *at(1, column * step(), row) = std::uint8_t(std::lround(color.u));
                *(step() == 2 ? at(1, 2 * column + 1, row) : at(2, column, row))
                    = std::uint8_t(std::lround(color.v));
            }
        }
    }

    /// A copy with all its samples and guard bytes.
    TestFrame clone() const
    {
        TestFrame other(QSize(m_frame.width, m_frame.height), m_frame.layout, m_frame.matrix,
                        m_frame.range);
        for (size_t i = 0; i < m_memory.size(); ++i)
            std::memcpy(other.m_memory[i].data(), m_memory[i].constData(),
                        size_t(m_memory[i].size()));
        return other;
    }

    /// Guard bytes included; 0 for a plane that there is not.
    int largestDifference(const TestFrame &other, size_t plane) const
    {
        const auto *mine = reinterpret_cast<const quint8 *>(m_memory[plane].constData());
        const auto *others = reinterpret_cast<const quint8 *>(other.m_memory[plane].constData());
        int largest = 0;
        for (int i = 0; i < m_memory[plane].size(); ++i)
            largest = std::max(largest, std::abs(mine[i] - others[i]));
        return largest;
    }

    bool operator==(const TestFrame &other) const { return m_memory == other.m_memory; }

    /// Nothing but the rows of the planes may ever be written.
    bool guardsEqual(const TestFrame &other) const
    {
        for (size_t plane = 0; plane < m_memory.size(); ++plane) {
            if (m_memory[plane].isEmpty())
                continue;
            const int stride = m_frame.strides[plane];
            for (int i = 0; i < m_memory[plane].size(); ++i) {
                const bool inside = i >= guard * stride
                    && i < m_memory[plane].size() - guard * stride && i % stride < stride - guard;
                if (!inside && m_memory[plane].at(i) != other.m_memory[plane].at(i))
                    return false;
            }
        }
        return true;
    }

private:
    int step() const { return m_frame.layout == PlanarFrame::Layout::NV12 ? 2 : 1; }
    std::uint8_t *at(int plane, int x, int y) const
    {
        return m_frame.planes[plane] + y * m_frame.strides[plane] + x;
    }
    void addPlane(int index, int bytes, int rows)
    {
        const int stride = bytes + guard;
        QByteArray &memory = m_memory[size_t(index)];
        memory = QByteArray(stride * (rows + 2 * guard), '\0');
        m_frame.planes[index] = reinterpret_cast<std::uint8_t *>(memory.data()) + guard * stride;
        m_frame.strides[index] = stride;
    }

    std::array<QByteArray, 3> m_memory;
    PlanarFrame m_frame;
};

} // namespace Velmar::Host
