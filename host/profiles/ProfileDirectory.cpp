// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/ProfileDirectory.h"

#include "host/platform/LogRouter.h"

#include <platform/directories/CApplicationDirectories.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/profiles/COsdSettings.h>
#include <videooverlay/profiles/ProfilesManager.h>

#include <QDir>
#include <QFile>

#include <filesystem>
#include <system_error>

namespace Velmar::Host {

namespace {

/// False, with the reason in @p code, when that cannot be told. A link that leads nowhere, or in a
/// circle, leads to no file.
bool isFile(const std::filesystem::directory_entry &entry, bool *answer, std::error_code *code)
{
    const std::filesystem::file_status status = entry.status(*code);
    if (std::filesystem::status_known(status) || *code == std::errc::too_many_symbolic_link_levels)
        code->clear();
    *answer = std::filesystem::is_regular_file(status);
    return !*code;
}

} // namespace

bool listProfileFiles(const QString &directory, QStringList *names, QString *error)
{
    names->clear();
    std::error_code code;
    std::filesystem::directory_iterator entry(QFile::encodeName(directory).toStdString(), code);
    for (; !code && entry != std::filesystem::directory_iterator(); entry.increment(code)) {
        const QString name = QFile::decodeName(entry->path().filename().c_str());
        // As the library does: letter case does not count.
        if (name.startsWith(QLatin1Char('.'))
            || !name.endsWith(QLatin1String(".xml"), Qt::CaseInsensitive))
            continue;
        bool isProfile = false;
        if (!isFile(*entry, &isProfile, &code))
            break;
        if (isProfile)
            names->append(name);
    }
    names->sort();
    if (!code)
        return true;
    names->clear();
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
