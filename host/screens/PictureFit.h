// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QRectF>
#include <QSizeF>

namespace Velmar::Host {

/// Where a picture of @p picture pixels stands in an item of @p item, whole and undistorted, in the
/// middle. Video and overlay use the same, so that they lie on each other. Empty when either is.
inline QRectF pictureFit(const QSizeF &picture, const QSizeF &item)
{
    if (picture.isEmpty() || item.isEmpty())
        return QRectF();
    const QSizeF size = picture.scaled(item, Qt::KeepAspectRatio);
    return QRectF(QPointF((item.width() - size.width()) / 2, (item.height() - size.height()) / 2),
                  size);
}

} // namespace Velmar::Host
