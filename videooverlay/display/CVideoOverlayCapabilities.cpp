// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/display/CVideoOverlayCapabilities.h"

#include <QQmlEngine>

namespace Velmar::VideoOverlay {

using Backend = CAbstractVideoOverlayCapabilitiesBackend;

CVideoOverlayCapabilities::CVideoOverlayCapabilities(QObject *parent)
    : QObject(parent)
{
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
}

CVideoOverlayCapabilities::~CVideoOverlayCapabilities() = default;

void CVideoOverlayCapabilities::setBackend(CAbstractVideoOverlayCapabilitiesBackend *backend)
{
    if (m_backend) // towards this object only: other listeners of the backend keep theirs
        disconnect(m_backend, nullptr, this, nullptr);
    m_backend = backend;
    if (m_backend) {
        for (const auto changed :
             {&Backend::maximumColumnCountChanged, &Backend::maximumRowCountChanged,
              &Backend::imageWidthChanged, &Backend::imageHeightChanged}) {
            connect(m_backend, changed, this, &CVideoOverlayCapabilities::capabilitiesChanged);
        }
    }
    Q_EMIT capabilitiesChanged();
}

int CVideoOverlayCapabilities::maximumColumnCount() const
{
    return m_backend ? m_backend->maximumColumnCount() : 0;
}

int CVideoOverlayCapabilities::maximumRowCount() const
{
    return m_backend ? m_backend->maximumRowCount() : 0;
}

int CVideoOverlayCapabilities::imageWidth() const
{
    return m_backend ? m_backend->imageWidth() : 0;
}

int CVideoOverlayCapabilities::imageHeight() const
{
    return m_backend ? m_backend->imageHeight() : 0;
}

} // namespace Velmar::VideoOverlay
