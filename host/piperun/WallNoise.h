// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Velmar::Host {

/// Smooth noise, -1 to 1, over the whole wall: it closes around the pipe and runs on from metre to
/// metre. Evaluated row by row, because neighbouring places share nearly everything.
class WallNoise
{
public:
    /// @p around cells in a turn, @p along cells in a metre, for @p columns places in a turn.
    WallNoise(std::uint32_t seed, int around, int along, int columns);

    /// From now on the row at @p share of a metre.
    void setRow(int metre, float share);

    /// At an angle [turns], 0 to below 1.
    float at(float turns) const;

    /// In the middle of a column.
    float atColumn(int column) const
    {
        const Column &place = m_columns[std::size_t(column)];
        return between(place.cell, place.t);
    }

private:
    struct Column
    {
        std::uint32_t cell;
        float t;
    };

    float between(std::size_t cell, float t) const
    {
        return m_row[cell] + (m_row[cell + 1] - m_row[cell]) * t;
    }

    std::uint32_t m_seed;
    int m_around;
    int m_along;
    std::uint32_t m_pairRow = 0;
    std::vector<std::pair<float, float>> m_pair; ///< the two rows of cells around the current one
    std::vector<float> m_row;
    std::vector<Column> m_columns;
};

} // namespace Velmar::Host
