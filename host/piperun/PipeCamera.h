// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace Velmar::Host {

/// Where the camera is and looks.
struct PipeView
{
    double distanceM = 0.0; ///< along the pipe
    double panDeg = 0.0;    ///< to the right
    double tiltDeg = 0.0;   ///< upwards
    double timeS = 0.0;     ///< moves the water, the sway and the noise
};

/// The camera on its crawler, at one moment: which place of the wall a pixel shows, and in what
/// light. It sways as the crawler drives over what lies on the sole.
class PipeCamera
{
public:
    /// What one ray meets. Whole numbers, because they are interpolated for every pixel.
    struct Hit
    {
        std::uint32_t angle; ///< the full range is one turn
        std::uint32_t depth; ///< the full range is one round of the texture's ring of metres
        std::int32_t light;  ///< 65536: the wall is seen as bright as it is
        float axisDistance;  ///< [px] about, from the vanishing point
    };

    /// For a picture of @p width x @p height pixels, of which rays are cast up to @p margin beyond
    /// the edges. Numbers in @p view that make no sense are brought into range.
    PipeCamera(const PipeView &view, int width, int height, int margin);

    /// What the point @p x, @p y of the picture [px] shows.
    Hit cast(double x, double y) const;

    int firstMetre() const { return m_firstMetre; } ///< in sight
    int lastMetre() const { return m_lastMetre; }   ///< in sight

    /// [px] The focal length in a picture of this size: a wall point that lies @e z metres ahead is
    /// seen about focalLength * radius / z from the vanishing point.
    static double focalLength(int width, int height);

private:
    float m_x; ///< [m] off the axis, to the right
    float m_y; ///< [m] off the axis, upwards
    float m_z; ///< [m] of the texture's ring
    float m_right[3];
    float m_up[3];
    float m_forward[3];
    float m_focal;   ///< [px]
    float m_centreX; ///< [px]
    float m_centreY; ///< [px]
    int m_firstMetre;
    int m_lastMetre;
};

} // namespace Velmar::Host
