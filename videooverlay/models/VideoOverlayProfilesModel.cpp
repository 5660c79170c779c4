// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/models/VideoOverlayProfilesModel.h"

#include "platform/directories/CApplicationDirectories.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/elements/ElementType_p.h"
#include "videooverlay/models/SavedRecords_p.h"
#include "videooverlay/models/ShownProfile_p.h"
#include "videooverlay/osd/StandInRecord_p.h"
#include "videooverlay/profiles/COsdSettings.h"
#include "videooverlay/profiles/ProfilesManager.h"

#include <QDir>
#include <QFileInfo>
#include <QMutexLocker>
#include <QQmlEngine>

#include <algorithm>
#include <limits>
#include <utility>

namespace Velmar::VideoOverlay {

namespace {

const QString idKey = QStringLiteral("id");
const QString textKey = QStringLiteral("text");

constexpr int noId = std::numeric_limits<int>::min() / 2; ///< far from every id, with room around

QString defaultProfileName()
{
    return QStringLiteral("Halvo push camera system - default");
}

/// Whoever shows the display role as text shows what people call the profile.
void registerCaptions()
{
    if (!QMetaType::hasRegisteredConverterFunction<Profile *, QString>())
        QMetaType::registerConverter<Profile *, QString>(
            [](const Profile *profile) { return profile ? profile->caption() : QString(); });
}

/// A change of the text alone, whichever element it is from.
bool isTextOnly(const ElementParam &changes)
{
    return changes.contains(textKey) && changes.size() == (changes.contains(idKey) ? 2 : 1);
}

} // namespace

VideoOverlayProfilesModel::VideoOverlayProfilesModel(CVideoOverlayManager &manager)
    : m_manager(manager)
    , m_profiles(std::make_unique<ProfilesManager>())
    , m_shown(std::make_unique<ShownProfile>(manager))
{
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
    registerCaptions();
    qRegisterMetaType<Profile *>();
    qRegisterMetaType<Profile *>("Profile*"); // for connections by name
    for (Profile *profile : m_profiles->getProfiles())
        connect(profile, &Profile::captionChanged, this, [this, profile] { onRenamed(profile); });
    connect(m_profiles.get(), &ProfilesManager::profileAboutToBeAdded, this,
            &VideoOverlayProfilesModel::beginAdding);
    connect(m_profiles.get(), &ProfilesManager::profileAdded, this,
            &VideoOverlayProfilesModel::endAdding);
    connect(this, &VideoOverlayProfilesModel::profileLoaded, this,
            &VideoOverlayProfilesModel::onLoaded);
}

VideoOverlayProfilesModel::~VideoOverlayProfilesModel() = default;

int VideoOverlayProfilesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_profiles->getProfiles().size();
}

QVariant VideoOverlayProfilesModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !hasIndex(index.row(), index.column())) // views may ask for what left
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return QVariant::fromValue(profileAt(index.row()));
    case IndexRole:
        return index.row();
    default:
        return {};
    }
}

QHash<int, QByteArray> VideoOverlayProfilesModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractListModel::roleNames();
    names.insert(IndexRole, QByteArrayLiteral("index"));
    return names;
}

int VideoOverlayProfilesModel::clone(int index)
{
    return clone(profileAt(index), QString()) ? rowCount() - 1 : -1;
}

Profile *VideoOverlayProfilesModel::clone(Profile *profile, QString name)
{
    return m_profiles->clone(profile, name);
}

bool VideoOverlayProfilesModel::remove(int index)
{
    Profile *profile = profileAt(index);
    if (!profile) {
        log(LogLevel::Error,
            QStringLiteral("Fail to remove profile by index ") + QString::number(index));
        return false;
    }
    if (profile->readOnly())
        return true;
    beginRemoveRows(QModelIndex(), index, index);
    if (m_currentProfile == profile)
        m_currentProfile = nullptr; // nobody may ask for it while it goes
    m_profiles->remove(profile);
    endRemoveRows();

    if (rowCount() > 0) {
        setCurrentProfileByIndex(std::min(index, rowCount() - 1));
    } else {
        m_currentProfile = nullptr;
        announceCurrentProfile(Announced::Another);
    }
    return true;
}

bool VideoOverlayProfilesModel::setCurrentProfileByIndex(int index)
{
    if (Profile *profile = profileAt(index))
        return setCurrentProfile(profile);
    log(LogLevel::Error, QStringLiteral("Fail to set profile by index ") + QString::number(index));
    return false;
}

bool VideoOverlayProfilesModel::setCurrentProfile(Profile *profile)
{
    if (profile == m_currentProfile)
        return true;
    if (!profile) {
        log(LogLevel::Error, QStringLiteral("Fail to set profile: there is none"));
        return false;
    }
    log(LogLevel::Info, QStringLiteral("Switch current profile to: ") + profile->name());
    m_currentProfile = profile;
    const QPointer<Profile> selected(profile);
    announceCurrentProfile(Announced::Another);
    // Handlers may have selected another profile, which is stored by then, or removed this one.
    if (selected && selected == m_currentProfile)
        COsdSettings::setDefaultProfile(selected->path());
    return true;
}

Profile *VideoOverlayProfilesModel::currentProfile() const
{
    if (!m_currentProfile)
        log(LogLevel::Error, QStringLiteral("Cannot find current profile"));
    return m_currentProfile;
}

void VideoOverlayProfilesModel::saveCurrentProfile(QString name)
{
    if (!m_currentProfile) {
        log(LogLevel::Error, QStringLiteral("Cannot save current profile. Profile not set"));
        return;
    }
    Profile &profile = *m_currentProfile;
    if (!maySave(profile, QStringLiteral("Cannot save current profile. %1"), QStringLiteral("It")))
        return;
    if (!profile.readOnly()) {
        log(LogLevel::Info, QStringLiteral("Saving profile: ") + profile.name());
        save(profile, recordsToSave(profile));
        return;
    }
    log(LogLevel::Info, QStringLiteral("Saving default profile with new name: ") + name);
    m_recordsOfCopy = std::make_unique<QList<ElementParam>>(recordsToSave(profile));
    clone(&profile, name);
    m_recordsOfCopy.reset();
}

void VideoOverlayProfilesModel::revertCurrentProfile()
{
    const Profile *profile = currentProfile();
    if (!profile)
        return;
    log(LogLevel::Debug, QStringLiteral("Reverting current profile: ") + profile->name());
    announceCurrentProfile(Announced::TheSame);
}

Profile *VideoOverlayProfilesModel::applyChanges(Profile *profile)
{
    if (!profile
        || !maySave(*profile, QStringLiteral("Cannot apply changes. %1"),
                    QStringLiteral("The profile")))
        return nullptr;
    profile->elements() = recordsToSave(*profile);
    return profile;
}

bool VideoOverlayProfilesModel::isCurrentProfileChanged()
{
    if (!m_currentProfile) {
        log(LogLevel::Error, QStringLiteral("Current profile is null"));
        return false;
    }
    const QMutexLocker lock(m_manager.mutex());
    const QList<CVideoOverlayElement *> elements = m_manager.getElementList();
    // A text that differs is no edit where it is typed anew for each use.
    const auto typedTexts = std::count_if(
        elements.cbegin(), elements.cend(), [](const CVideoOverlayElement *element) {
            return element->type() == CVideoOverlayElement::FreeText
                && isTextOnly(element->getChangedProperties());
        });
    const QList<ElementParam> changeSets = m_manager.getPropertiesWithChanges();
    for (const ElementParam &changes : changeSets) {
        if (!changes.contains(idKey))
            log(LogLevel::Error, QStringLiteral("Profile changeset doesn't have id key"));
    }
    const auto textsOnly = std::count_if(changeSets.cbegin(), changeSets.cend(), isTextOnly);
    return textsOnly < changeSets.size() || textsOnly > typedTexts
        || handMadeDifferences() != m_knownDifferences;
}

int VideoOverlayProfilesModel::currentProfileIndex() const
{
    return m_currentProfile ? m_profiles->getProfiles().indexOf(m_currentProfile) : -1;
}

QString VideoOverlayProfilesModel::getDefaultProfilePath()
{
    const QString path = COsdSettings::getDefaultProfile();
    if (path.isEmpty())
        log(LogLevel::Error,
            QStringLiteral("Cannot read OSD default profile path form OsdSettings.xml"));
    else
        log(LogLevel::Info, QStringLiteral("OSD profile selected to load: ") + path);
    return path;
}

void VideoOverlayProfilesModel::setProfileByName(const QString &name)
{
    Profile *profile = m_profiles->findProfileByName(name);
    if (!profile) {
        log(LogLevel::Info,
            QStringLiteral("Profile ") + name + QStringLiteral(" not found. Reverting to default"));
        profile = m_profiles->findProfileByName(defaultProfileName());
    }
    if (profile)
        setCurrentProfile(profile);
    else
        log(LogLevel::Error,
            QStringLiteral("Profile ") + defaultProfileName() + QStringLiteral(" not found."));
}

void VideoOverlayProfilesModel::selectStartupProfile()
{
    const QString stored = getDefaultProfilePath();
    if (stored.isEmpty()) {
        // Not by an empty name: every profile that was saved has that.
        setProfileByName(defaultProfileName());
        return;
    }
    const QDir directory(CApplicationDirectories::readonlyConfigDirectory());
    const QString path = QDir::cleanPath(directory.absoluteFilePath(stored));
    if (Profile *profile = m_profiles->findProfileByPath(path))
        setCurrentProfile(profile);
    else
        setProfileByName(QFileInfo(path).completeBaseName());
}

void VideoOverlayProfilesModel::forwardProfileLoaded() { }

Profile *VideoOverlayProfilesModel::profileAt(int row) const
{
    return m_profiles->getProfiles().value(row);
}

void VideoOverlayProfilesModel::announceCurrentProfile(Announced announced)
{
    {
        const ShownProfile::Announcement announcement(*m_shown, m_currentProfile,
                                                      announced == Announced::Another);
        Q_EMIT currentProfileChanged(m_currentProfile);
    }
    rememberDifferences();
}

bool VideoOverlayProfilesModel::isAnnouncing(const Profile *profile) const
{
    return m_shown->isAnnouncing(profile);
}

bool VideoOverlayProfilesModel::isCurrent(const Profile *profile) const
{
    return m_currentProfile == profile;
}

void VideoOverlayProfilesModel::onLoaded()
{
    m_shown->setLoaded();
    rememberDifferences();
}

void VideoOverlayProfilesModel::onRenamed(Profile *profile)
{
    const QModelIndex changed = index(m_profiles->getProfiles().indexOf(profile));
    if (changed.isValid())
        Q_EMIT dataChanged(changed, changed);
    if (profile == m_currentProfile)
        COsdSettings::setDefaultProfile(profile->path());
}

void VideoOverlayProfilesModel::beginAdding()
{
    beginInsertRows(QModelIndex(), rowCount(), rowCount());
}

void VideoOverlayProfilesModel::endAdding()
{
    Profile *profile = m_profiles->getProfiles().last();
    connect(profile, &Profile::captionChanged, this, [this, profile] { onRenamed(profile); });
    // Before anybody hears of it: a screen may select it at once, and then the overlay is another.
    if (const auto records = std::move(m_recordsOfCopy))
        save(*profile, *records);
    endInsertRows();
}

/// Says in the log why not: @p message with the reason in it, which begins with @p subject.
bool VideoOverlayProfilesModel::maySave(const Profile &profile, const QString &message,
                                        const QString &subject) const
{
    switch (m_shown->state(profile, m_currentProfile)) {
    case ShownProfile::State::Loading:
        log(LogLevel::Error, message.arg(QStringLiteral("A profile is being loaded")));
        return false;
    case ShownProfile::State::NotShown:
        log(LogLevel::Error, message.arg(subject + QStringLiteral(" was not loaded")));
        return false;
    case ShownProfile::State::Added:
    case ShownProfile::State::Shown:
        break;
    }
    return true;
}

QList<ElementParam> VideoOverlayProfilesModel::recordsToSave(const Profile &profile) const
{
    const QMutexLocker lock(m_manager.mutex());
    const QList<CVideoOverlayElement *> elements = m_manager.getElementList();
    const QList<ElementParam> reported = m_manager.getAllPropertiesWithChanges();
    const bool isShown = m_shown->state(profile, m_currentProfile) == ShownProfile::State::Shown;
    SavedRecords records(profile.elements(), elements, reported, m_shown->staleIds());
    return records.make(isShown ? SavedRecords::Unshown::Dropped : SavedRecords::Unshown::Kept);
}

/// When saving fails, the profile is as it was, and so is what counts as changed.
void VideoOverlayProfilesModel::save(Profile &profile, const QList<ElementParam> &records)
{
    const QList<ElementParam> before = profile.elements();
    profile.elements() = records;
    if (!m_profiles->saveProfile(&profile)) {
        profile.elements() = before;
        return;
    }
    m_manager.resetChanges();
    rememberDifferences();
}

/// The ids of live elements without a record in the current profile, and of records whose element
/// is gone. Elements that follow the catalog come and go with their records. Records and elements
/// that have no id to be matched by are only counted.
QSet<int> VideoOverlayProfilesModel::handMadeDifferences() const
{
    QSet<int> ids;
    int withoutId = 0; // records less elements
    const QList<CVideoOverlayElement *> elements = m_manager.getElementList();
    for (const CVideoOverlayElement *element : elements) {
        if (StandInRecord::of(*element))
            --withoutId;
        else
            ids.insert(element->id());
    }
    if (!m_currentProfile)
        return ids;
    for (const ElementParam &record : qAsConst(*m_currentProfile).elements()) {
        const QVariant id = record.value(idKey);
        if (isGeneral(record))
            continue;
        if (!id.isValid())
            ++withoutId;
        else if (!ids.remove(id.toInt()))
            ids.insert(id.toInt());
    }
    ids.insert(noId + withoutId);
    return ids;
}

void VideoOverlayProfilesModel::rememberDifferences()
{
    m_knownDifferences = handMadeDifferences();
}

} // namespace Velmar::VideoOverlay
