// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

#include <array>
#include <cstdint>
#include <vector>

namespace Velmar::Host {

/// The wall of the pipe as pictures, one metre at a time, kept while the metre is in sight.
/// Columns are the angle, clockwise from the top; rows run along the pipe. The metres stand in a
/// ring, so that look-ups along the pipe need no test for an end. Not thread-safe.
class PipeTexture
{
public:
    static constexpr int RingBits = 3;
    static constexpr int RingMetres = 1 << RingBits; ///< kept: what is in sight, both ways
    static constexpr int AngleBits = 10;
    static constexpr int AngleCount = 1 << AngleBits;
    static constexpr int RowBits = 9; ///< rows of a metre at the finest level
    static constexpr int RowCount = 1 << RowBits;
    static constexpr int ChromaShift = 1; ///< chroma has half as many columns and rows
    static constexpr int Levels = 7;      ///< each half as fine along the pipe as the one before

    explicit PipeTexture(quint32 seed);

    /// Draws what is missing of these metres, RingMetres at most.
    void prepare(int firstMetre, int lastMetre);

    /// Reflectance, angle runs fastest.
    const std::uint8_t *luma(int level) const { return m_luma[std::size_t(level)].data(); }
    /// Colour differences: red in the high byte, blue in the low.
    const std::uint16_t *chroma() const { return m_chroma.data(); }

private:
    void drawMetre(int metre);
    void shrinkMetre(int slot); ///< makes the coarser levels

    quint32 m_seed;
    std::array<int, RingMetres> m_metres; ///< which metre stands in which slot
    std::array<std::vector<std::uint8_t>, Levels> m_luma;
    std::vector<std::uint16_t> m_chroma;
};

} // namespace Velmar::Host
