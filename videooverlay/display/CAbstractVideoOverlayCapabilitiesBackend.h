// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/xqvideooverlay_export.h"

#include <QObject>

namespace Velmar::VideoOverlay {

/// What a display driver tells about itself; implemented by the host. The library asks on the GUI
/// thread, whenever the backend is set or announces a change.
///
/// A driver emits its signals only once all four values are set: a change that is announced while a
/// count is still 0 lowers the operator's grid for good.
class XQVIDEOOVERLAY_EXPORT CAbstractVideoOverlayCapabilitiesBackend : public QObject
{
    Q_OBJECT
public:
    /// For those who implement it.
    explicit CAbstractVideoOverlayCapabilitiesBackend(QObject *parent = nullptr);
    ~CAbstractVideoOverlayCapabilitiesBackend() override;

    virtual int maximumColumnCount() = 0; ///< most columns the grid may have; 0 while unknown
    virtual int maximumRowCount() = 0;    ///< most rows the grid may have; 0 while unknown
    virtual int imageWidth() = 0;         ///< width of the video picture [px]; 0 while unknown
    virtual int imageHeight() = 0;        ///< height of the video picture [px]; 0 while unknown

Q_SIGNALS:
    /// Another largest number of grid columns.
    void maximumColumnCountChanged();
    /// Another largest number of grid rows.
    void maximumRowCountChanged();
    /// Another width of the video picture.
    void imageWidthChanged();
    /// Another height of the video picture.
    void imageHeightChanged();
};

} // namespace Velmar::VideoOverlay
