// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/xqvideooverlay_export.h"

#include <QObject>
#include <QRectF>

namespace Velmar::VideoOverlay {

class CVideoOverlayElement;

/// The display that shows the elements over the video; implemented by the host.
/// Called on the thread of the elements (the GUI thread), through CVideoOverlayControl only.
class XQVIDEOOVERLAY_EXPORT CAbstractVideoOverlayControlBackend : public QObject
{
    Q_OBJECT
public:
    /// For those who implement it.
    explicit CAbstractVideoOverlayControlBackend(QObject *parent = nullptr);
    ~CAbstractVideoOverlayControlBackend() override;

    virtual bool isReady() = 0;  ///< the display has been initialised
    virtual bool isActive() = 0; ///< the display can show something now; asked after isReady(), and
                                 ///< alone on initialized()
    /// Shows or updates one element, which often holds its lock while it asks for that. Comes
    /// several times for one change of a text, so take the picture later, once. False: not shown.
    virtual bool displayElement(CVideoOverlayElement &element) = 0;
    /// Takes one element off the display; it is about to be destroyed and its lock is held.
    /// False: there was nothing to take off.
    virtual bool deleteElement(CVideoOverlayElement &element) = 0;
    /// The area of the picture in which the overlay is painted [px].
    virtual void setPaintMargins(const QRectF &margins) = 0;
    virtual bool videoOverlayEnabled() = 0;                ///< the overlay is switched on
    virtual void setVideoOverlayEnabled(bool enabled) = 0; ///< only called with another state
    /// Called when the display reports itself initialised and is active, before the overlay is
    /// switched on.
    virtual void prepareOverlay() = 0;

Q_SIGNALS:
    void initialized(); ///< isReady() is true from now on
    void finalized();   ///< the display is gone; isReady() or isActive() is false from now on
    /// The overlay was switched on or off.
    void videoOverlayEnabledChanged();
};

} // namespace Velmar::VideoOverlay
