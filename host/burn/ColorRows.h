// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/burn/PlanarFrame.h"

#include <cstdint>

namespace Velmar::Host {

/// The conversion of rows of BGRA pixels to luma and chroma. libyuv has it for the BT.601 matrix
/// only.
namespace ColorRows {

/// Weights of red, green and blue in 256ths, rounded so that gray stays exactly gray: the luma
/// weights sum up to the range of the luma (220 of 256 limited, 256 full), the others to 0.
struct Weights
{
    std::uint16_t yRed, yGreen, yBlue;
    std::uint16_t yOffset; ///< black level and the half that rounds
    std::int16_t uRed, uGreen, uBlue;
    std::int16_t vRed, vGreen, vBlue;
};

const Weights &weightsFor(PlanarFrame::Matrix matrix, PlanarFrame::Range range);

/// Luma of @p count BGRA pixels.
using LumaRow
    = void (*)(const std::uint8_t *bgra, std::uint8_t *luma, int count, const Weights &weights);
/// U and V of @p count BGRA pixels.
using ChromaRow = void (*)(const std::uint8_t *bgra, std::uint8_t *u, std::uint8_t *v, int count,
                           const Weights &weights);

extern const LumaRow convertLuma;     ///< the fastest that this processor runs
extern const ChromaRow convertChroma; ///< the fastest that this processor runs

} // namespace ColorRows

} // namespace Velmar::Host
