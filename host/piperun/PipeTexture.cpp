// SPDX-License-Identifier: Apache-2.0
#include "host/piperun/PipeTexture.h"

#include "host/piperun/PipeMath.h"
#include "host/piperun/PipeWall.h"

#include <climits>
#include <cmath>
#include <cstddef>

namespace Velmar::Host {

PipeTexture::PipeTexture(quint32 seed)
    : m_seed(seed)
    , m_chroma(std::size_t(AngleCount >> ChromaShift) * (RowCount >> ChromaShift) * RingMetres)
{
    m_metres.fill(INT_MIN);
    for (int level = 0; level < Levels; ++level) {
        m_luma[std::size_t(level)].resize(std::size_t(AngleCount) * (RowCount >> level)
                                          * RingMetres);
    }
}

void PipeTexture::prepare(int firstMetre, int lastMetre)
{
    Q_ASSERT(lastMetre - firstMetre < RingMetres);
    for (int metre = firstMetre; metre <= lastMetre; ++metre) {
        if (m_metres[std::size_t(metre & (RingMetres - 1))] != metre)
            drawMetre(metre);
    }
}

void PipeTexture::drawMetre(int metre)
{
    const int slot = metre & (RingMetres - 1);
    std::uint8_t *const luma = m_luma[0].data() + std::size_t(slot) * RowCount * AngleCount;
    std::uint16_t *const chroma = m_chroma.data()
        + std::size_t(slot) * (RowCount >> ChromaShift) * (AngleCount >> ChromaShift);

    PipeWall wall(m_seed, metre, AngleCount);
    for (int row = 0; row < RowCount; ++row) {
        wall.setRow((float(row) + 0.5F) / RowCount);
        for (int column = 0; column < AngleCount; ++column) {
            const Texel texel = wall.at(column);
            luma[std::size_t(row) * AngleCount + std::size_t(column)]
                = PipeMath::toByte(texel.luma);
            if ((row & 1) == 0 && (column & 1) == 0) {
                const auto blue = std::uint16_t(128 + std::lround(texel.blue));
                const auto red = std::uint16_t(128 + std::lround(texel.red));
                chroma[std::size_t(row >> ChromaShift) * (AngleCount >> ChromaShift)
                       + std::size_t(column >> ChromaShift)]
                    = std::uint16_t(red << 8 | blue);
            }
        }
    }
    shrinkMetre(slot);
    m_metres[std::size_t(slot)] = metre;
}

void PipeTexture::shrinkMetre(int slot)
{
    constexpr std::ptrdiff_t PairBytes = std::ptrdiff_t(2) * AngleCount;
    // Only along the pipe, since that is the direction in which distance squeezes.
    for (int level = 1; level < Levels; ++level) {
        const int rows = RowCount >> level;
        const std::uint8_t *from = m_luma[std::size_t(level) - 1].data()
            + std::size_t(slot) * std::size_t(rows) * 2 * AngleCount;
        std::uint8_t *to = m_luma[std::size_t(level)].data()
            + std::size_t(slot) * std::size_t(rows) * AngleCount;
        for (int row = 0; row < rows; ++row, from += PairBytes, to += AngleCount) {
            for (int column = 0; column < AngleCount; ++column)
                to[column] = std::uint8_t((from[column] + from[column + AngleCount] + 1) / 2);
        }
    }
}

} // namespace Velmar::Host
