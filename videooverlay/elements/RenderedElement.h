// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/xqvideooverlay_export.h"

#include <QImage>
#include <QMetaType>

namespace Velmar::VideoOverlay {

/// What the display receives for one element: who it is, where it stands and its finished picture.
/// A plain value; the picture is implicitly shared.
class XQVIDEOOVERLAY_EXPORT RenderedElement
{
public:
    /// A record of no element: id -1, type 7, not visible, nothing to repaint.
    RenderedElement();

    /// As an element makes it: marked for repainting.
    RenderedElement(int id, int type, double x, double y, bool visible,
                    const QImage &image = QImage());

    int id() const;       ///< element id, -1 for no element
    int type() const;     ///< CVideoOverlayElement::Type as a number
    double x() const;     ///< left edge [px of the video picture]
    double y() const;     ///< top edge [px of the video picture]
    bool visible() const; ///< the element's effective visibility when it was rendered
    bool repaint() const; ///< the picture must be (re)drawn
    /// Sets the mark.
    void repaint(bool repaint);

    /// Straight-alpha ARGB32 for a text; null where there is nothing to draw.
    QImage getImage() const;

private:
    int m_id;
    int m_type;
    double m_x;
    double m_y;
    bool m_visible;
    bool m_repaint;
    QImage m_image;
};

} // namespace Velmar::VideoOverlay

Q_DECLARE_METATYPE(Velmar::VideoOverlay::RenderedElement)
