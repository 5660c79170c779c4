// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdImageDatasource.h"

#include "platform/directories/CApplicationDirectories.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/elements/CVideoOverlayImage.h"

#include <QDir>
#include <QFile>
#include <QUuid>

#include <cstdio>

namespace Velmar::VideoOverlay {

namespace {

const QString pathKey = QStringLiteral("imagePath");

void logMissing(const QString &path)
{
    log(LogLevel::Warning,
        QStringLiteral("COsdElementDatasource ") + path + QStringLiteral(" does not exists"));
}

/// Whether both name one place, by whatever path. What does not exist is compared as it is written.
bool isSamePlace(const QString &one, const QString &other)
{
    const QString canonical = QFileInfo(one).canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(one) == QDir::cleanPath(other)
                               : canonical == QFileInfo(other).canonicalFilePath();
}

/// Copied beside the target first: whatever fails, an older target stays whole.
bool replaceWithCopy(const QFileInfo &source, const QString &target)
{
    if (!source.isFile()) // reading from a pipe would wait for its writer
        return false;
    const QString unfinished = QFileInfo(target).dir().filePath(
        QStringLiteral(".unfinished-") + QUuid::createUuid().toString(QUuid::WithoutBraces));
    if (!QFile::copy(source.filePath(), unfinished))
        return false;
    // QFile::rename() never replaces.
    if (std::rename(QFile::encodeName(unfinished).constData(),
                    QFile::encodeName(target).constData())
        == 0)
        return true;
    QFile::remove(unfinished);
    return false;
}

} // namespace

COsdImageDatasource::COsdImageDatasource(CVideoOverlayImage *image, ElementParam &param)
    : COsdElementDatasource(image, param)
{
    image->setScaleFactor(param.value(QStringLiteral("scale")).toDouble());
    image->setVisible(param.value(QStringLiteral("enabled")).toBool());
    const QString path = param.value(pathKey).toString();
    const QFileInfo source(path);
    // The picture's source sets the caption, too: the file's name comes last.
    if (!source.exists()) {
        image->setImageSrc(path);
        image->setCaption(source.fileName());
        logMissing(path);
        return;
    }
    const QFileInfo stored = storeFile(source);
    if (stored.exists()) {
        image->storeParam(pathKey, stored.absoluteFilePath());
        image->setImageSrc(stored.absoluteFilePath());
        image->setCaption(stored.fileName());
    } else {
        logMissing(source.absoluteFilePath());
        image->setCaption(source.fileName());
    }
}

COsdImageDatasource::~COsdImageDatasource() = default;

QFileInfo COsdImageDatasource::storeFile(const QFileInfo &source)
{
    const QDir store(CApplicationDirectories::settingsDirectory());
    const QString target = store.absoluteFilePath(source.fileName());
    // By whatever path: what is replaced below must not be the only copy.
    if (isSamePlace(source.absolutePath(), store.absolutePath())
        || isSamePlace(source.absoluteFilePath(), target))
        return source;
    store.mkpath(QStringLiteral("."));
    if (replaceWithCopy(source, target))
        return QFileInfo(target);
    log(LogLevel::Error,
        QStringLiteral("COsdElementDatasource file copy error (") + source.filePath()
            + QStringLiteral(", ") + target + QLatin1Char(')'));
    return QFileInfo();
}

} // namespace Velmar::VideoOverlay
