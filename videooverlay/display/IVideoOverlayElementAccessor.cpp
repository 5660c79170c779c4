// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/display/IVideoOverlayElementAccessor.h"

namespace Velmar::VideoOverlay {

IVideoOverlayElementAccessor::~IVideoOverlayElementAccessor() = default;

} // namespace Velmar::VideoOverlay
