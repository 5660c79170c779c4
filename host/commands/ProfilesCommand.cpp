// SPDX-License-Identifier: Apache-2.0
#include "host/commands/ProfilesCommand.h"

#include "host/check/ProfileProblem.h"
#include "host/commands/Report.h"
#include "host/profiles/ProfileAccess.h"
#include "host/profiles/ProfileDirectory.h"
#include "host/profiles/ProfileNames.h"
#include "host/profiles/ProfilesLock.h"

#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/CVideoOverlayControl.h>
#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/profiles/COsdSettings.h>
#include <videooverlay/profiles/ProfilesManager.h>

#include <QDir>
#include <QFile>

#include <memory>

namespace Velmar::Host {

using VideoOverlay::Profile;
using VideoOverlay::VideoOverlayProfilesModel;

namespace {

Profile *profileAt(const VideoOverlayProfilesModel &profiles, int row)
{
    return profiles.data(profiles.index(row)).value<Profile *>();
}

/// -1, and a line on the standard error stream, when there is none.
int rowNamed(const VideoOverlayProfilesModel &profiles, const QString &name)
{
    const int row = profileRow(profiles, name);
    if (row >= 0)
        return row;
    reportError(QStringLiteral("There is no profile \"%1\"").arg(name));
    return -1;
}

int list(const VideoOverlayProfilesModel &profiles)
{
    for (int row = 0; row < profiles.rowCount(); ++row) {
        const Profile *profile = profileAt(profiles, row);
        report(QStringLiteral("%1 %2 %3  %4")
                   .arg(row == profiles.currentProfileIndex() ? QStringLiteral("*")
                                                              : QStringLiteral(" "),
                        profile->readOnly() ? QStringLiteral("read-only")
                                            : QStringLiteral("         "),
                        oneLine(profile->caption()), oneLine(profile->path())));
    }
    return 0;
}

QString pathCalled(const QString &name)
{
    return QDir(VideoOverlay::ProfilesManager::profilesDirectory())
        .filePath(name + QStringLiteral(".xml"));
}

/// Whether the current profile is the stored one. The library tells only the log when it could not
/// store it.
int startProfileStatus(const VideoOverlayProfilesModel &profiles)
{
    const Profile *current = profileAt(profiles, profiles.currentProfileIndex());
    return !current || isStartProfile(current->path())
        ? 0
        : reportError(QStringLiteral("%1: the profile to start with cannot be stored")
                          .arg(VideoOverlay::COsdSettings::xmlSettingsPath()));
}

int clone(VideoOverlayProfilesModel &profiles, const QString &name, const QString &newName)
{
    const int row = rowNamed(profiles, name);
    if (row < 0)
        return FailureStatus;
    const QString wanted = newName.trimmed();
    const QString fault = wanted.isEmpty() ? QString() : profileNameFault(wanted);
    const QString problem = profileProblem(*profileAt(profiles, row));
    if (!problem.isEmpty())
        return reportError(problem); // a copy of it would be empty
    const Profile *copy = profiles.clone(profileAt(profiles, row), newName);
    if (!copy)
        return reportError(QStringLiteral("\"%1\" cannot be cloned").arg(name)
                           + (fault.isEmpty() ? fault : QStringLiteral(": ") + fault));
    report(copy->caption());
    return 0;
}

int rename(VideoOverlayProfilesModel &profiles, const QString &name, const QString &newName)
{
    const int row = rowNamed(profiles, name);
    if (row < 0)
        return FailureStatus;
    Profile *profile = profileAt(profiles, row);
    if (profile->readOnly())
        return reportError(QStringLiteral("\"%1\" is read-only").arg(name));
    QString reason = profileNameFault(newName);
    if (reason.isEmpty() && QFile::exists(pathCalled(newName)))
        reason = QStringLiteral("there is a profile of that name");
    if (profile->rename(newName))
        return startProfileStatus(profiles);
    return reportError(
        QStringLiteral("\"%1\" cannot be called \"%2\": %3")
            .arg(name, newName,
                 reason.isEmpty() ? QStringLiteral("its file cannot be renamed") : reason));
}

int remove(VideoOverlayProfilesModel &profiles, const QString &name)
{
    const int row = rowNamed(profiles, name);
    if (row < 0)
        return FailureStatus;
    const Profile *profile = profileAt(profiles, row);
    if (profile->readOnly())
        return reportError(QStringLiteral("\"%1\" is read-only").arg(name));
    const QString path = profile->path();
    profiles.remove(row);
    return QFile::exists(path) ? reportError(QStringLiteral("%1: cannot be removed").arg(path))
                               : startProfileStatus(profiles);
}

int select(VideoOverlayProfilesModel &profiles, const QString &name)
{
    const int row = rowNamed(profiles, name);
    if (row < 0)
        return FailureStatus;
    const QString problem = profileProblem(*profileAt(profiles, row));
    if (!problem.isEmpty())
        return reportError(problem); // a device would start with an empty overlay
    return profiles.setCurrentProfileByIndex(row) ? startProfileStatus(profiles) : FailureStatus;
}

} // namespace

int runProfiles(const Options &options)
{
    const QString action = options.words.value(0, QStringLiteral("list"));
    const QString name = options.words.value(1);
    QString error;
    ProfilesLock lock;
    if (action != QLatin1String("list") && !lock.take(&error))
        return reportError(error);
    // Nothing is displayed: a manager without a display is enough.
    VideoOverlay::CVideoOverlayCapabilities capabilities;
    VideoOverlay::CVideoOverlayControl control;
    VideoOverlay::CVideoOverlayManager manager(control, capabilities);
    const std::unique_ptr<VideoOverlayProfilesModel> profiles = readProfiles(manager);
    if (!holdsAllProfiles(*profiles, &error))
        return reportError(error);
    manager.setProfilesModel(profiles.get());
    selectStartupProfile(*profiles);

    if (action == QLatin1String("list")) {
        warnOfDamage(*profiles);
        return list(*profiles);
    }
    if (action == QLatin1String("clone"))
        return clone(*profiles, name, options.words.value(2));
    if (action == QLatin1String("rename"))
        return rename(*profiles, name, options.words.value(2));
    if (action == QLatin1String("remove"))
        return remove(*profiles, name);
    return select(*profiles, name);
}

} // namespace Velmar::Host
