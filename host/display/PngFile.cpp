// SPDX-License-Identifier: Apache-2.0
#include "host/display/PngFile.h"

#include "host/platform/WholeFile.h"

#include <QBuffer>
#include <QImage>

namespace Velmar::Host {

bool savePng(const QImage &picture, const QString &path, QString *error)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (picture.isNull() || !buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, "PNG")) {
        *error = QStringLiteral("%1: the picture cannot be made").arg(path);
        return false;
    }
    // Not the picture's own save(): that one tells nobody of a full disk.
    QString reason;
    if (WholeFile::write(path, bytes, WholeFile::Existing::Replace, &reason))
        return true;
    *error = QStringLiteral("%1: cannot be written: %2").arg(path, reason);
    return false;
}

} // namespace Velmar::Host
