// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

namespace Velmar::VideoOverlay {
class CVideoOverlayElement;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

/// The properties of @p element that a profile keeps and that people may change. The class has
/// more, which are gone when the profile is loaded again.
QStringList keptProperties(const VideoOverlay::CVideoOverlayElement &element);

} // namespace Velmar::Host
