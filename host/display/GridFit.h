// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace Velmar::VideoOverlay {
class VideoOverlaySettings;
}

namespace Velmar::Host {

/// Gives the grid its own font at the largest pixel size at which all 54 x 27 cells lie on a
/// picture of the grid's size, whatever its shape; at one with rows of an even height, if there is
/// any. The library's 35 pixels are made for 1920 x 1080; this makes one layout look the same on
/// every picture. False for a picture on which not even the smallest letters leave room for the
/// grid; the font is then as before.
bool fitGrid(VideoOverlay::VideoOverlaySettings &settings);

} // namespace Velmar::Host
