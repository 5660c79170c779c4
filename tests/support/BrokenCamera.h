// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// A camera that delivers some pictures and then breaks. It takes the place of the element that
/// reads V4L2 devices, so that everything behind it is what a real camera meets.
namespace BrokenCamera {

enum class End {
    Error,     ///< refuses to deliver another picture, as an element does that failed
    Unplugged, ///< reports that the device is gone, and is silent from then on
    Silence,   ///< delivers nothing any more, and says nothing
    Eos,       ///< ends as a file does
};

constexpr int FramesPerSecond = 25;

/// Every camera that is opened from now on delivers @p frames pictures of 320 x 240 in their own
/// time, then that. False when GStreamer does not take the element.
bool plugIn(int frames, End end);

/// A device file that can be opened as a camera.
QString device();

} // namespace BrokenCamera
