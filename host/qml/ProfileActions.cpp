// SPDX-License-Identifier: Apache-2.0
#include "host/qml/ProfileActions.h"

#include "host/check/ProfileProblem.h"
#include "host/profiles/ProfileDirectory.h"
#include "host/qml/LiveOverlay.h"
#include "host/qml/LockedProfiles.h"
#include "host/qml/Messages.h"
#include "host/qml/UiTexts.h"

#include <videooverlay/models/VideoOverlayProfilesModel.h>

#include <QFile>
#include <QFileInfo>

namespace Velmar::Host {

using VideoOverlay::Profile;
using VideoOverlay::VideoOverlayProfilesModel;

ProfileActions::ProfileActions(LiveOverlay &overlay, Messages &messages, const UiTexts &texts,
                               QObject *parent)
    : QObject(parent)
    , m_overlay(overlay)
    , m_messages(messages)
    , m_texts(texts)
{
    connect(&m_overlay.profiles(), &VideoOverlayProfilesModel::currentProfileChanged, this,
            &ProfileActions::currentChanged);
    connect(&m_overlay.profiles(), &VideoOverlayProfilesModel::dataChanged, this,
            &ProfileActions::currentChanged); // renamed
    tellIfUnreadable(currentIndex());
}

Profile *ProfileActions::profileAt(int row) const
{
    const VideoOverlayProfilesModel &profiles = m_overlay.profiles();
    return profiles.data(profiles.index(row)).value<Profile *>();
}

int ProfileActions::currentIndex() const
{
    return m_overlay.profiles().currentProfileIndex();
}

QString ProfileActions::currentName() const
{
    const Profile *profile = profileAt(currentIndex());
    return profile ? profile->caption() : QString();
}

bool ProfileActions::report(bool done, const QStringList &complaints)
{
    if (done)
        m_messages.dismiss();
    else
        m_messages.error(complaints.isEmpty() ? m_texts.text(QStringLiteral("errorNotDone"))
                                              : complaints.join(QLatin1Char('\n')));
    return done;
}

bool ProfileActions::tellIfUnreadable(int row)
{
    const Profile *profile = profileAt(row);
    bool isReadable = true;
    QStringList reasons
        = Messages::complaintsOf([&] { isReadable = !profile || Profile().load(profile->path()); });
    if (isReadable)
        return false;
    reasons.removeDuplicates(); // the parser says the same twice
    m_messages.error(m_texts.text(QStringLiteral("errorProfileUnreadable"))
                         .arg(profile->caption(), reasons.join(QLatin1Char('\n'))));
    return true;
}

/// The library tells only the log when it could not store the profile to start with.
bool ProfileActions::isStartStored() const
{
    const Profile *profile = profileAt(currentIndex());
    return !profile || isStartProfile(profile->path());
}

QString ProfileActions::saveQuestion() const
{
    const Profile *profile = profileAt(currentIndex());
    if (!profile)
        return {};
    const QString problem = profileProblem(*profile);
    if (!problem.isEmpty())
        return m_texts.text(QStringLiteral("overwriteDamaged")).arg(problem);
    return m_overlay.profileStamps().isChanged(profile->path())
        ? m_texts.text(QStringLiteral("overwriteChanged")).arg(profile->caption())
        : QString();
}

bool ProfileActions::select(int row)
{
    const bool done = whileProfilesAreLocked(m_messages, m_texts, [&] {
        bool isSelected = false;
        const QStringList complaints = Messages::complaintsOf(
            [&] { isSelected = m_overlay.profiles().setCurrentProfileByIndex(row); });
        return report(isSelected && isStartStored(), complaints);
    });
    return done && !tellIfUnreadable(row);
}

bool ProfileActions::clone(int row, const QString &name)
{
    if (tellIfUnreadable(row))
        return false; // its copy would be empty
    return whileProfilesAreLocked(m_messages, m_texts, [&] {
        const Profile *copy = nullptr;
        const QStringList complaints = Messages::complaintsOf(
            [&] { copy = m_overlay.profiles().clone(profileAt(row), name); });
        if (copy)
            m_overlay.profileStamps().note(copy->path());
        return report(copy, complaints);
    });
}

bool ProfileActions::rename(int row, const QString &name)
{
    Profile *profile = profileAt(row);
    if (profile && profile->caption() == name.trimmed()
        && QFileInfo(profile->path()).completeBaseName() == name.trimmed())
        return report(true, {}); // left as it is
    return whileProfilesAreLocked(m_messages, m_texts, [&] {
        const bool isChanged = profile && m_overlay.profileStamps().isChanged(profile->path());
        bool done = false;
        const QStringList complaints = Messages::complaintsOf(
            [&] { done = profile && !profile->readOnly() && profile->rename(name.trimmed()); });
        if (!done && complaints.isEmpty()) {
            m_messages.error(m_texts.text(QStringLiteral("errorNotRenamed")).arg(name));
            return false;
        }
        if (done && !isChanged) // what another has changed stays so
            m_overlay.profileStamps().note(profile->path());
        return report(done && isStartStored(), complaints);
    });
}

bool ProfileActions::remove(int row)
{
    VideoOverlayProfilesModel &profiles = m_overlay.profiles();
    const Profile *profile = profileAt(row);
    if (!profile || profile->readOnly()) {
        m_messages.error(m_texts.text(QStringLiteral("errorReadOnly")));
        return false;
    }
    const QString path = profile->path();
    return whileProfilesAreLocked(m_messages, m_texts, [&] {
        const QStringList complaints = Messages::complaintsOf([&] { profiles.remove(row); });
        return report(!QFile::exists(path) && isStartStored(), complaints);
    });
}

} // namespace Velmar::Host
