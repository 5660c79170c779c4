// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/video/PlanarFrame.h"

#include <QtGlobal>

#include <array>
#include <cstdint>
#include <vector>

namespace Velmar::Host {

/// Draws what a pan-and-tilt camera sees on its way through a sewer pipe of DN 300.
///
/// Everything on the wall belongs to its place in the pipe and follows from the seed: the same
/// place looks the same whenever and from whichever side the camera comes. The wall is drawn one
/// metre at a time into a texture, which is kept while the metre is in sight, so that a frame costs
/// only the look-ups. Two renderers with one seed draw the same bytes for the same sequence of
/// views, or for any other: nothing is carried from frame to frame. Not thread-safe.
class PipeRunRenderer
{
public:
    static constexpr double PipeRadiusM = 0.15;
    static constexpr double JointSpacingM = 1.0; ///< a joint lies at every whole metre

    /// Where the camera is and looks.
    struct View
    {
        double distanceM = 0.0; ///< along the pipe
        double panDeg = 0.0;    ///< to the right
        double tiltDeg = 0.0;   ///< upwards
        double timeS = 0.0;     ///< moves the water, the sway and the noise
    };

    /// The opening of a smaller pipe in the wall.
    struct Lateral
    {
        bool exists = false;
        double distanceM = 0.0;  ///< of its centre
        double clockHours = 0.0; ///< of its centre, 12 on top, seen in driving direction
        double radiusM = 0.0;
    };

    explicit PipeRunRenderer(quint32 seed);

    /// Draws into all planes of @p frame; bytes between the picture's right edge and the next line
    /// are left alone.
    void render(const PlanarFrame &frame, const View &view);

    /// The lateral in the pipe between @p metre and the next, if there is one.
    static Lateral lateralIn(quint32 seed, int metre);

    /// [px] The focal length in a picture of this size: a wall point that lies @e z metres ahead is
    /// seen about focalLength * PipeRadiusM / z from the vanishing point.
    static double focalLength(int width, int height);

private:
    struct Node;
    struct Camera;
    struct Target;

    static constexpr int RingMetres = 8; ///< metres kept: what is in sight, both ways
    static constexpr int Levels = 7;     ///< each half as fine along the pipe as the one before

    void prepareMetres(int first, int last);
    void drawMetre(int metre);
    void shrinkMetre(int slot); ///< makes the coarser levels
    Node castRay(const Camera &camera, double x, double y) const;
    void fillBlock(const Camera &camera, const Target &target, int x, int y, int size,
                   const Node &topLeft, const Node &topRight, const Node &bottomLeft,
                   const Node &bottomRight) const;
    void fillPixels(const Target &target, int x, int y, int size, const Node &topLeft,
                    const Node &topRight, const Node &bottomLeft, const Node &bottomRight) const;

    quint32 m_seed;
    std::uint32_t m_key;                                  ///< what everything random is drawn from
    std::array<int, RingMetres> m_metres;                 ///< which metre stands in which slot
    std::array<std::vector<std::uint8_t>, Levels> m_luma; ///< reflectance, angle runs fastest
    std::vector<std::uint16_t> m_chroma;                  ///< red in the high byte, blue in the low
    std::vector<std::uint8_t> m_ripples;                  ///< tileable, for the glints on the water
    std::vector<std::int8_t> m_noise;                     ///< of the sensor
};

} // namespace Velmar::Host
