// SPDX-License-Identifier: Apache-2.0
#include "host/session/PictureFile.h"

#include <platform/directories/CApplicationDirectories.h>

#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QStringList>

namespace Velmar::Host {

QString pictureProblem(const QString &path)
{
    return QImageReader(path).canRead()
        ? QString()
        : QStringLiteral("%1: cannot be read as a picture").arg(path);
}

QString pictureProblem(const QString &path, const QStringList &complaints)
{
    if (complaints.isEmpty()) // it begins like one
        return QStringLiteral("%1: cannot be read as a picture").arg(path);
    // The library shows copies, which it keeps there.
    const QDir copies(CApplicationDirectories::settingsDirectory());
    return QStringLiteral("%1: cannot be copied to %2")
        .arg(path, copies.filePath(QFileInfo(path).fileName()));
}

} // namespace Velmar::Host
