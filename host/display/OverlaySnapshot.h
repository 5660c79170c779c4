// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QVector>

#include <memory>

namespace Velmar::Host {

/// One element as it is to be shown: nothing of it changes any more.
struct OverlayItem
{
    int id = -1;
    QPoint position; ///< [px of the video picture] of the top-left corner; may lie off the picture
    QImage image;    ///< ARGB32 with straight alpha; never null
    int opacity = 255;    ///< applied on top of the image's own alpha, 0 to 255
    quint64 revision = 0; ///< changes whenever the image does, unique within the process

    bool operator==(const OverlayItem &other) const
    {
        return id == other.id && position == other.position && opacity == other.opacity
            && revision == other.revision;
    }
};

/// Everything that is on the display at one moment. Immutable and shared, so that a streaming
/// thread can read it while the GUI thread makes the next one.
struct OverlaySnapshot
{
    /// What is visible, in the order in which it is painted. Empty while the overlay is off.
    QVector<OverlayItem> items;
    QRect clip;           ///< [px] the overlay is painted in here only; null: everywhere
    quint64 revision = 0; ///< changes whenever anything above does
};

using OverlaySnapshotPtr = std::shared_ptr<const OverlaySnapshot>;

/// Where a view gets its overlay from.
class OverlaySource
{
public:
    virtual ~OverlaySource() = default;

    /// The overlay for the frame at @p streamTimeNs [ns since the start of the video]. Called on a
    /// streaming thread, and may wait there until the overlay is as far; never null.
    virtual OverlaySnapshotPtr overlayAt(qint64 streamTimeNs) = 0;

protected:
    OverlaySource() = default;
    Q_DISABLE_COPY(OverlaySource)
};

} // namespace Velmar::Host
