// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/display/CVideoOverlayControl.h"

#include "videooverlay/elements/CVideoOverlayElement.h"

#include <QMutexLocker>
#include <QQmlEngine>

namespace Velmar::VideoOverlay {

CVideoOverlayControl::CVideoOverlayControl(QObject *parent)
    : QObject(parent)
    , m_renderDisabled(!qEnvironmentVariableIsEmpty("NQ5_DISABLE_OSD_RENDER"))
{
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
}

CVideoOverlayControl::~CVideoOverlayControl() = default;

void CVideoOverlayControl::setBackend(CAbstractVideoOverlayControlBackend *backend)
{
    if (m_backend)
        disconnect(m_backend, nullptr, this, nullptr);
    m_backend = backend;
    if (!m_backend)
        return;
    connect(m_backend, &CAbstractVideoOverlayControlBackend::initialized, this,
            &CVideoOverlayControl::onBackendInitialized);
    connect(m_backend, &CAbstractVideoOverlayControlBackend::finalized, this,
            &CVideoOverlayControl::onBackendFinalized);
    connect(m_backend, &CAbstractVideoOverlayControlBackend::videoOverlayEnabledChanged, this,
            &CVideoOverlayControl::videoOverlayEnabledChanged);
}

bool CVideoOverlayControl::controlActive() const
{
    return m_backend && m_backend->isReady() && m_backend->isActive();
}

bool CVideoOverlayControl::displayElement(CVideoOverlayElement &element)
{
    if (!controlActive())
        return false;
    if (m_renderDisabled)
        return true;
    const CVideoOverlayElement::Use use(element); // a backend may have elements deleted
    return m_backend->displayElement(element);
}

bool CVideoOverlayControl::deleteElement(CVideoOverlayElement &element)
{
    if (!controlActive())
        return false;
    const CVideoOverlayElement::Use use(element);
    QMutexLocker lock(&element.m_mutex);
    return m_backend->deleteElement(element);
}

bool CVideoOverlayControl::videoOverlayEnabled() const
{
    return controlActive() && m_backend->videoOverlayEnabled();
}

void CVideoOverlayControl::setVideoOverlayEnabled(bool enabled)
{
    if (!controlActive() || m_backend->videoOverlayEnabled() == enabled)
        return;
    m_backend->setVideoOverlayEnabled(enabled);
}

void CVideoOverlayControl::setPaintMargins(const QRectF &margins) const
{
    if (controlActive())
        m_backend->setPaintMargins(margins);
}

void CVideoOverlayControl::onBackendInitialized()
{
    if (m_backend && m_backend->isActive()) {
        m_backend->prepareOverlay();
        setVideoOverlayEnabled(true);
    }
    Q_EMIT controlActiveChanged();
}

void CVideoOverlayControl::onBackendFinalized()
{
    Q_EMIT controlActiveChanged();
}

} // namespace Velmar::VideoOverlay
