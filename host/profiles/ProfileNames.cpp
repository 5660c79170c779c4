// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/ProfileNames.h"

#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/profiles/ProfilesManager.h>

#include <QFileInfo>

#include <algorithm>

namespace Velmar::Host {

using VideoOverlay::Profile;
using VideoOverlay::ProfilesManager;
using VideoOverlay::VideoOverlayProfilesModel;

int profileRow(const VideoOverlayProfilesModel &profiles, const QString &text)
{
    const auto profileAt
        = [&](int row) { return profiles.data(profiles.index(row)).value<Profile *>(); };
    const int count = profiles.rowCount();
    for (int row = 0; row < count; ++row) {
        if (profileAt(row)->caption() == text || profileAt(row)->path() == text)
            return row;
    }
    const QString file = QFileInfo(text).canonicalFilePath(); // empty when there is none
    for (int row = 0; !file.isEmpty() && row < count; ++row) {
        if (QFileInfo(profileAt(row)->path()).canonicalFilePath() == file)
            return row;
    }
    return -1;
}

QString profileNameFault(const QString &name)
{
    const auto isControl = [](QChar letter) { return letter.category() == QChar::Other_Control; };
    if (ProfilesManager::isProfileName(name))
        return {};
    if (name.trimmed().isEmpty())
        return QStringLiteral("it is empty");
    if (name.startsWith(QLatin1Char('.')))
        return QStringLiteral("a name that begins with a dot is that of a hidden file");
    if (name.contains(QLatin1Char('/')))
        return QStringLiteral("it names another folder");
    if (std::any_of(name.begin(), name.end(), isControl))
        return QStringLiteral("it has line feeds or other control characters");
    return QStringLiteral("it is too long for a file");
}

} // namespace Velmar::Host
