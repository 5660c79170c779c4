// SPDX-License-Identifier: Apache-2.0
#include "host/piperun/WallNoise.h"

#include "host/piperun/PipeMath.h"

namespace Velmar::Host {

using namespace PipeMath;

WallNoise::WallNoise(std::uint32_t seed, int around, int along, int columns)
    : m_seed(seed)
    , m_around(around)
    , m_along(along)
    , m_row(std::size_t(around) + 1)
    , m_columns(std::size_t(columns))
{
    for (int i = 0; i < columns; ++i) {
        const float position = (float(i) + 0.5F) / float(columns) * float(around);
        Column &column = m_columns[std::size_t(i)];
        column.cell = std::uint32_t(position);
        column.t = smooth(position - float(column.cell));
    }
}

void WallNoise::setRow(int metre, float share)
{
    const float position = share * float(m_along);
    const int cell = int(position);
    const float t = smooth(position - float(cell));
    const auto row = std::uint32_t(metre * m_along + cell);
    if (m_pair.empty() || row != m_pairRow) {
        m_pairRow = row;
        m_pair.resize(std::size_t(m_around));
        for (int i = 0; i < m_around; ++i) {
            const auto key = std::uint32_t(i);
            m_pair[std::size_t(i)] = {random(m_seed, row, key), random(m_seed, row + 1, key)};
        }
    }
    for (int i = 0; i < m_around; ++i) {
        const auto &[a, b] = m_pair[std::size_t(i)];
        m_row[std::size_t(i)] = 2.0F * (a + (b - a) * t) - 1.0F;
    }
    m_row.back() = m_row.front();
}

float WallNoise::at(float turns) const
{
    const float position = turns * float(m_around);
    const auto cell = std::size_t(position);
    return between(cell, smooth(position - float(cell)));
}

} // namespace Velmar::Host
