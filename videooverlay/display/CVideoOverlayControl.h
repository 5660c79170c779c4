// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/display/CAbstractVideoOverlayControlBackend.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QObject>
#include <QPointer>
#include <QRectF>

namespace Velmar::VideoOverlay {

class CVideoOverlayElement;

/// The one door to the display. Refuses everything while there is no backend, or it is not ready or
/// not active; the environment variable NQ5_DISABLE_OSD_RENDER, set to anything but an empty text
/// when the control is made, keeps elements from being drawn (for diagnosis).
class XQVIDEOOVERLAY_EXPORT CVideoOverlayControl : public QObject
{
    Q_OBJECT
    // clang-format off
    /// Whether the overlay is switched on; writing does nothing while not active.
    Q_PROPERTY(bool videoOverlayEnabled READ videoOverlayEnabled WRITE setVideoOverlayEnabled NOTIFY videoOverlayEnabledChanged)
    /// Whether a backend is set, ready and active.
    Q_PROPERTY(bool controlActive READ controlActive NOTIFY controlActiveChanged)
    // clang-format on

public:
    /// Without a backend: everything is refused. Reads NQ5_DISABLE_OSD_RENDER.
    explicit CVideoOverlayControl(QObject *parent = nullptr);
    ~CVideoOverlayControl() override;

    /// @p backend is not owned, may be null and may die first. Emits nothing and calls nothing.
    void setBackend(CAbstractVideoOverlayControlBackend *backend);

    bool controlActive() const; ///< there is a backend, it is ready, and it is active

    /// False when inactive; true without reaching the backend when rendering is disabled.
    bool displayElement(CVideoOverlayElement &element);
    /// False when inactive. Holds the element's lock during the call; reaches the backend also when
    /// rendering is disabled.
    bool deleteElement(CVideoOverlayElement &element);
    bool videoOverlayEnabled() const; ///< false when inactive
    /// Ignored when inactive, and when the backend already reports the state.
    void setVideoOverlayEnabled(bool enabled);
    /// [px]; ignored when inactive.
    void setPaintMargins(const QRectF &margins) const;

Q_SIGNALS:
    void controlActiveChanged();       ///< the backend came up or went down; ask controlActive()
    void videoOverlayEnabledChanged(); ///< the backend announced it

public Q_SLOTS:
    void onBackendInitialized(); ///< prepares and switches on an active backend; always announces
    void onBackendFinalized();   ///< only announces; the backend is asked again at the next call

private:
    bool m_renderDisabled;
    QPointer<CAbstractVideoOverlayControlBackend> m_backend;
};

} // namespace Velmar::VideoOverlay
