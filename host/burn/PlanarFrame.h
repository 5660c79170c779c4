// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace Velmar::Host {

/// The planes of one 8-bit 4:2:0 video frame in somebody else's memory.
struct PlanarFrame
{
    enum class Layout {
        I420, ///< Y, U, V
        NV12, ///< Y, UV interleaved
    };
    enum class Matrix { Bt601, Bt709 };
    enum class Range {
        Limited, ///< Y 16..235
        Full,    ///< Y 0..255
    };

    Layout layout = Layout::I420;
    Matrix matrix = Matrix::Bt709;
    Range range = Range::Limited;
    int width = 0;                                         ///< [px]
    int height = 0;                                        ///< [px]
    std::uint8_t *planes[3] = {nullptr, nullptr, nullptr}; ///< the third only for I420
    int strides[3] = {0, 0, 0};                            ///< [bytes]
};

} // namespace Velmar::Host
