// SPDX-License-Identifier: Apache-2.0
#include "host/screens/PreviewProvider.h"

#include <QImageReader>
#include <QUrl>

namespace Velmar::Host {

PreviewProvider::PreviewProvider()
    : QQuickImageProvider(QQuickImageProvider::Image, ForceAsynchronousImageLoading)
{
}

QImage PreviewProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    QImageReader reader(QUrl::fromPercentEncoding(id.toUtf8()));
    const QSize full = reader.size();
    if (requestedSize.isValid() && !full.isEmpty()
        && (full.width() > requestedSize.width() || full.height() > requestedSize.height()))
        reader.setScaledSize(full.scaled(requestedSize, Qt::KeepAspectRatio));
    QImage picture = reader.read();
    if (picture.isNull()) {
        picture = QImage(1, 1, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
    }
    *size = picture.size();
    return picture;
}

} // namespace Velmar::Host
