// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/display/CAbstractVideoOverlayControlBackend.h"

namespace Velmar::VideoOverlay {

CAbstractVideoOverlayControlBackend::CAbstractVideoOverlayControlBackend(QObject *parent)
    : QObject(parent)
{
}

CAbstractVideoOverlayControlBackend::~CAbstractVideoOverlayControlBackend() = default;

} // namespace Velmar::VideoOverlay
