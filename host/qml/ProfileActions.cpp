// SPDX-License-Identifier: Apache-2.0
#include "host/qml/ProfileActions.h"

#include "host/qml/LiveOverlay.h"
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

bool ProfileActions::select(int row)
{
    bool done = false;
    const QStringList complaints = Messages::complaintsOf(
        [&] { done = m_overlay.profiles().setCurrentProfileByIndex(row); });
    return report(done, complaints) && !tellIfUnreadable(row);
}

bool ProfileActions::clone(int row, const QString &name)
{
    bool done = false;
    const QStringList complaints = Messages::complaintsOf([&] {
        VideoOverlayProfilesModel &profiles = m_overlay.profiles();
        done = profiles.clone(profileAt(row), name) != nullptr;
    });
    return report(done, complaints);
}

bool ProfileActions::rename(int row, const QString &name)
{
    Profile *profile = profileAt(row);
    if (profile && profile->caption() == name.trimmed()
        && QFileInfo(profile->path()).completeBaseName() == name.trimmed())
        return report(true, {}); // left as it is
    bool done = false;
    const QStringList complaints = Messages::complaintsOf(
        [&] { done = profile && !profile->readOnly() && profile->rename(name.trimmed()); });
    if (!done && complaints.isEmpty()) {
        m_messages.error(m_texts.text(QStringLiteral("errorNotRenamed")).arg(name));
        return false;
    }
    return report(done, complaints);
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
    const QStringList complaints = Messages::complaintsOf([&] { profiles.remove(row); });
    return report(!QFile::exists(path), complaints);
}

} // namespace Velmar::Host
