// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/ProfileDirectory.h"

#include "host/platform/LogRouter.h"

#include <platform/directories/CApplicationDirectories.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/profiles/COsdSettings.h>
#include <videooverlay/profiles/ProfilesManager.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <system_error>

namespace Velmar::Host {

bool listProfileFiles(const QString &directory, QStringList *names, QString *error)
{
    names->clear();
    std::error_code code;
    std::filesystem::directory_iterator entry(QFile::encodeName(directory).toStdString(), code);
    for (; !code && entry != std::filesystem::directory_iterator(); entry.increment(code)) {
        const QString path = QFile::decodeName(entry->path().c_str());
        const QFileInfo file(path);
        // As the library does: letter case does not count.
        if (!file.isHidden() && file.isFile()
            && file.fileName().endsWith(QLatin1String(".xml"), Qt::CaseInsensitive))
            names->append(file.fileName());
    }
    names->sort();
    if (!code)
        return true;
    *error = QStringLiteral("%1: %2").arg(directory, qt_error_string(code.value()));
    return false;
}

bool holdsAllProfiles(const VideoOverlay::VideoOverlayProfilesModel &profiles, QString *error)
{
    const QString directory = VideoOverlay::ProfilesManager::profilesDirectory();
    QStringList names;
    if (!listProfileFiles(directory, &names, error))
        return false;
    if (profiles.rowCount() >= names.size())
        return true;
    *error = QStringLiteral("%1: could not be read").arg(directory);
    return false;
}

bool isStartProfile(const QString &path)
{
    const Logging::HeldLog log;
    const QString stored = VideoOverlay::COsdSettings::getDefaultProfile();
    const QDir directory(CApplicationDirectories::readonlyConfigDirectory());
    return !stored.isEmpty() && QDir::cleanPath(directory.absoluteFilePath(stored)) == path;
}

} // namespace Velmar::Host
