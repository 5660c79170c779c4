// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/burn/PlanarFrame.h"
#include "host/piperun/PipeCamera.h"
#include "host/piperun/PipeTexture.h"

#include <QtGlobal>

#include <cstdint>
#include <vector>

namespace Velmar::Host {

/// Fills the planes of a frame with what a camera sees of the texture, with the lamps mirrored in
/// the water and the noise of the sensor on top. Rays are cast at the corners of blocks only, and
/// what they meet is interpolated between them.
class PipeRasteriser
{
public:
    static constexpr int BlockSize = 16; ///< [px] between two rays that are cast

    explicit PipeRasteriser(quint32 seed);

    /// Bytes between the picture's right edge and the next line are left alone.
    void draw(const PlanarFrame &frame, const PipeCamera &camera, const PipeTexture &texture,
              double timeS) const;

private:
    void makeRipples();
    void makeNoise();

    std::uint32_t m_key;
    std::vector<std::uint8_t> m_ripples; ///< tileable, for the glints on the water
    std::vector<std::int8_t> m_noise;    ///< of the sensor
};

} // namespace Velmar::Host
