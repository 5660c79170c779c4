// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/ProfileAccess.h"

#include "host/check/ProfileProblem.h"
#include "host/platform/LogRouter.h"
#include "host/profiles/ProfileDirectory.h"
#include "host/profiles/ProfileNames.h"

#include <platform/logging/CLogger.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/profiles/COsdSettings.h>

#include <QStringList>

#include <optional>

namespace Velmar::Host {

using namespace VideoOverlay;

namespace {

void warn(const QString &text)
{
    Logging::CLogger::logMessage(Logging::LogLevel::Warning, QStringLiteral("Host"), text);
}

Profile *profileAt(const VideoOverlayProfilesModel &profiles, int row)
{
    return profiles.data(profiles.index(row)).value<Profile *>();
}

/// Why the stored path cannot be read; empty when it can.
QString settingsProblem()
{
    const Logging::HeldLog log;
    COsdSettings::getDefaultProfile();
    const QStringList reasons = log.errors();
    return reasons.isEmpty()
        ? QString()
        : QStringLiteral("%1: %2").arg(COsdSettings::xmlSettingsPath(), reasons.first());
}

bool selectStartup(VideoOverlayProfilesModel &profiles, QString *error)
{
    selectStartupProfile(profiles);
    const int row = profiles.currentProfileIndex();
    warnOfDamage(profiles, row < 0 ? nullptr : profileAt(profiles, row));
    if (row < 0)
        *error = QStringLiteral("There is no profile to start with");
    return row >= 0;
}

} // namespace

std::unique_ptr<VideoOverlayProfilesModel> readProfiles(CVideoOverlayManager &manager)
{
    const Logging::HeldLog log;
    return std::make_unique<VideoOverlayProfilesModel>(manager);
}

void warnOfDamage(const VideoOverlayProfilesModel &profiles, const Profile *known)
{
    for (int row = 0; row < profiles.rowCount(); ++row) {
        const Profile *profile = profileAt(profiles, row);
        if (profile != known && profile->damaged())
            warn(profileProblem(*profile));
    }
}

void selectStartupProfile(VideoOverlayProfilesModel &profiles)
{
    std::optional<Logging::HeldLog> log;
    const QString problem = settingsProblem();
    if (!problem.isEmpty()) {
        warn(problem);
        log.emplace(); // the library is about to say the same, without the name
    }
    profiles.selectStartupProfile();
}

bool selectProfile(VideoOverlayProfilesModel &profiles, const QString &name, QString *error)
{
    if (name.isEmpty())
        return selectStartup(profiles, error);
    const int wanted = profileRow(profiles, name);
    if (wanted >= 0) {
        Profile *profile = profileAt(profiles, wanted);
        warnOfDamage(profiles, profile);
        *error = profileProblem(*profile);
        return error->isEmpty() && profiles.setCurrentProfile(profile);
    }
    if (!holdsAllProfiles(profiles, error))
        return false;
    QStringList captions;
    for (int row = 0; row < profiles.rowCount(); ++row)
        captions.append(profileAt(profiles, row)->caption());
    *error = QStringLiteral("There is no profile \"%1\"; there are: %2")
                 .arg(name, captions.join(QStringLiteral(", ")));
    return false;
}

} // namespace Velmar::Host
