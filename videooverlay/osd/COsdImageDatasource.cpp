// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdImageDatasource.h"

#include "platform/directories/CApplicationDirectories.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/elements/CVideoOverlayImage.h"
#include "videooverlay/profiles/COsdSettings.h"
#include "videooverlay/profiles/ProfilesManager.h"
#include "videooverlay/profiles/ReplaceFile_p.h"

#include <QDir>

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

/// The settings directory is not the pictures' alone. Where letter case does not count, "OSD" is
/// the folder of the profiles, too.
bool isTaken(const QString &fileName)
{
    const QString settings = QFileInfo(COsdSettings::xmlSettingsPath()).fileName();
    const QString profiles = QFileInfo(ProfilesManager::profilesDirectory()).fileName();
    return fileName.compare(settings, Qt::CaseInsensitive) == 0
        || fileName.compare(profiles, Qt::CaseInsensitive) == 0;
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
    if (!isTaken(source.fileName()) && copyFile(source.filePath(), target, Existing::Replace))
        return QFileInfo(target);
    log(LogLevel::Error,
        QStringLiteral("COsdElementDatasource file copy error (") + source.filePath()
            + QStringLiteral(", ") + target + QLatin1Char(')'));
    return QFileInfo();
}

} // namespace Velmar::VideoOverlay
