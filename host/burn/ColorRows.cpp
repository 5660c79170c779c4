// SPDX-License-Identifier: Apache-2.0
#include "host/burn/ColorRows.h"

#include <libyuv/cpu_id.h>

namespace Velmar::Host::ColorRows {

namespace {

constexpr std::uint16_t limitedOffset = 16 * 256 + 128;
constexpr std::uint16_t fullOffset = 128;

/// 128, with half a step less than would round exactly: so 255.5 does not wrap round to 0.
constexpr std::uint16_t chromaOffset = 128 * 256 + 127;

constexpr Weights bt601Limited {66, 129, 25, limitedOffset, -38, -74, 112, 112, -94, -18};
constexpr Weights bt601Full {77, 150, 29, fullOffset, -43, -85, 128, 128, -107, -21};
constexpr Weights bt709Limited {47, 157, 16, limitedOffset, -26, -86, 112, 112, -102, -10};
constexpr Weights bt709Full {54, 183, 19, fullOffset, -29, -99, 128, 128, -116, -12};

// All sums fit 16 bits without a sign (luma up to 256 * 255 + 128, chroma from 255 to 65535),
// which lets compilers turn each loop into vector code that handles eight pixels at a time or more.
// On x86 they are compiled twice, because the plain instruction set halves the width of a vector.

#if defined(__GNUC__)
#define XQ_INLINE inline __attribute__((always_inline))
#else
#define XQ_INLINE inline
#endif

/// Luma of @p count BGRA pixels.
XQ_INLINE void lumaLoop(const std::uint8_t *__restrict bgra, std::uint8_t *__restrict luma,
                        int count, const Weights &weights)
{
    const Weights w = weights;
    for (int i = 0; i < count; ++i) {
        const auto blue = std::uint16_t(bgra[4 * i] * w.yBlue);
        const auto green = std::uint16_t(bgra[4 * i + 1] * w.yGreen);
        const auto red = std::uint16_t(bgra[4 * i + 2] * w.yRed);
        luma[i] = std::uint8_t(std::uint16_t(blue + green + red + w.yOffset) >> 8);
    }
}

/// U and V of @p count BGRA pixels.
XQ_INLINE void chromaLoop(const std::uint8_t *__restrict bgra, std::uint8_t *__restrict u,
                          std::uint8_t *__restrict v, int count, const Weights &weights)
{
    const Weights w = weights;
    for (int i = 0; i < count; ++i) {
        const std::int16_t blue = bgra[4 * i];
        const std::int16_t green = bgra[4 * i + 1];
        const std::int16_t red = bgra[4 * i + 2];
        const auto uSum
            = std::uint16_t(blue * w.uBlue + green * w.uGreen + red * w.uRed + chromaOffset);
        const auto vSum
            = std::uint16_t(blue * w.vBlue + green * w.vGreen + red * w.vRed + chromaOffset);
        u[i] = std::uint8_t(uSum >> 8);
        v[i] = std::uint8_t(vSum >> 8);
    }
}

void lumaRow(const std::uint8_t *bgra, std::uint8_t *luma, int count, const Weights &weights)
{
    lumaLoop(bgra, luma, count, weights);
}

void chromaRow(const std::uint8_t *bgra, std::uint8_t *u, std::uint8_t *v, int count,
               const Weights &weights)
{
    chromaLoop(bgra, u, v, count, weights);
}

#if defined(__x86_64__) && defined(__GNUC__)
__attribute__((target("avx2"))) void lumaRowAvx2(const std::uint8_t *bgra, std::uint8_t *luma,
                                                 int count, const Weights &weights)
{
    lumaLoop(bgra, luma, count, weights);
}

__attribute__((target("avx2"))) void chromaRowAvx2(const std::uint8_t *bgra, std::uint8_t *u,
                                                   std::uint8_t *v, int count,
                                                   const Weights &weights)
{
    chromaLoop(bgra, u, v, count, weights);
}

bool hasAvx2()
{
    return libyuv::TestCpuFlag(libyuv::kCpuHasAVX2) != 0;
}
#endif

} // namespace

const Weights &weightsFor(PlanarFrame::Matrix matrix, PlanarFrame::Range range)
{
    const bool limited = range == PlanarFrame::Range::Limited;
    if (matrix == PlanarFrame::Matrix::Bt601)
        return limited ? bt601Limited : bt601Full;
    return limited ? bt709Limited : bt709Full;
}

#if defined(__x86_64__) && defined(__GNUC__)
const LumaRow convertLuma = hasAvx2() ? lumaRowAvx2 : lumaRow;
const ChromaRow convertChroma = hasAvx2() ? chromaRowAvx2 : chromaRow;
#else
const LumaRow convertLuma = lumaRow;
const ChromaRow convertChroma = chromaRow;
#endif

} // namespace Velmar::Host::ColorRows
