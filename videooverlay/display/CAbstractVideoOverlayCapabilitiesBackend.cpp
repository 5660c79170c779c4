// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/display/CAbstractVideoOverlayCapabilitiesBackend.h"

namespace Velmar::VideoOverlay {

CAbstractVideoOverlayCapabilitiesBackend::CAbstractVideoOverlayCapabilitiesBackend(QObject *parent)
    : QObject(parent)
{
}

CAbstractVideoOverlayCapabilitiesBackend::~CAbstractVideoOverlayCapabilitiesBackend() = default;

} // namespace Velmar::VideoOverlay
