// SPDX-License-Identifier: Apache-2.0
#include "host/display/PictureFile.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <sys/stat.h>
#include <unistd.h>

namespace Velmar::Host {

namespace {

/// Not the picture's own save(): that one tells nobody of a full disk. Neither does commit() of a
/// QSaveFile whose content is still in its buffer; flush() does.
bool writeAll(QFileDevice &file, const QByteArray &bytes)
{
    return file.write(bytes) == bytes.size() && file.flush();
}

/// A picture that another user owns stays theirs, as far as this process may decide that.
void keepOwner(QFileDevice &file, const QString &replaced)
{
    struct stat status = {};
    if (stat(QFile::encodeName(replaced).constData(), &status) == 0
        && fchown(file.handle(), status.st_uid, status.st_gid) != 0)
        return; // the right to write it stays with its permissions
}

/// Beside @p path first, then in its place.
bool replace(const QString &path, const QByteArray &bytes, QString *reason)
{
    QSaveFile file(path);
    file.setDirectWriteFallback(true); // a folder may be closed while the file in it is open
    if (!file.open(QIODevice::WriteOnly)) {
        *reason = file.errorString();
        return false;
    }
    keepOwner(file, path);
    const bool written = writeAll(file, bytes);
    *reason = file.errorString();
    if (!written) {
        file.cancelWriting();
        return false;
    }
    const bool committed = file.commit();
    *reason = file.errorString();
    return committed;
}

/// A device or a pipe cannot be replaced by a file.
bool writeInto(const QString &path, const QByteArray &bytes, QString *reason)
{
    QFile file(path);
    const bool written = file.open(QIODevice::WriteOnly) && writeAll(file, bytes);
    *reason = file.errorString();
    return written;
}

} // namespace

bool savePng(const QImage &picture, const QString &path, QString *error)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (picture.isNull() || !buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, "PNG")) {
        *error = QStringLiteral("%1: the picture cannot be made").arg(path);
        return false;
    }
    const QFileInfo info(path);
    const bool inPlace = info.exists() && !info.isFile();
    // The file itself, not the link that leads to it.
    const QString file = info.exists() ? info.canonicalFilePath() : path;
    QString reason;
    if (inPlace ? writeInto(path, bytes, &reason) : replace(file, bytes, &reason))
        return true;
    *error = QStringLiteral("%1: cannot be written: %2").arg(path, reason);
    return false;
}

} // namespace Velmar::Host
