// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/display/CAbstractVideoOverlayCapabilitiesBackend.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QObject>
#include <QPointer>

namespace Velmar::VideoOverlay {

/// What the display allows, whichever backend stands behind it. Everything is 0 without a backend.
class XQVIDEOOVERLAY_EXPORT CVideoOverlayCapabilities : public QObject
{
    Q_OBJECT
public:
    /// Without a backend: everything is 0.
    explicit CVideoOverlayCapabilities(QObject *parent = nullptr);
    ~CVideoOverlayCapabilities() override;

    /// @p backend is not owned, may be null and may die first. Emits capabilitiesChanged once,
    /// always.
    void setBackend(CAbstractVideoOverlayCapabilitiesBackend *backend);

    int maximumColumnCount() const; ///< most columns the grid may have
    int maximumRowCount() const;    ///< most rows the grid may have
    int imageWidth() const;         ///< width of the video picture [px]
    int imageHeight() const;        ///< height of the video picture [px]

Q_SIGNALS:
    void capabilitiesChanged(); ///< another backend, or a change that the backend announced

private:
    QPointer<CAbstractVideoOverlayCapabilitiesBackend> m_backend;
};

} // namespace Velmar::VideoOverlay
