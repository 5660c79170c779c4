// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/burn/PlanarFrame.h"
#include "host/piperun/PipeCamera.h"
#include "host/piperun/PipeMath.h"
#include "host/piperun/PipeRasteriser.h"
#include "host/piperun/PipeTexture.h"
#include "host/piperun/PipeWall.h"

#include <QtGlobal>

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
    static constexpr double PipeRadiusM = PipeMath::RadiusM;
    static constexpr double JointSpacingM = 1.0; ///< a joint lies at every whole metre

    using View = PipeView;
    using Lateral = PipeLateral;

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
    PipeTexture m_texture;
    PipeRasteriser m_rasteriser;
};

} // namespace Velmar::Host
