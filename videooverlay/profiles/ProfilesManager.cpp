// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/ProfilesManager.h"

#include "platform/directories/CApplicationDirectories.h"
#include "videooverlay/Log_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <memory>

namespace Velmar::VideoOverlay {

namespace {

const QString xmlSuffix = QStringLiteral(".xml");

/// "Main" becomes "Main(copy)", "Main(copy)" becomes "Main(copy 1)", "Main(copy7)" "Main(copy 8)".
QString nextCopyName(const QString &name)
{
    static const QRegularExpression copySuffix(QStringLiteral("\\(copy\\s?([0-9]*)\\)\\z"),
                                               QRegularExpression::InvertedGreedinessOption);
    const QRegularExpressionMatch match = copySuffix.match(name);
    if (!match.hasMatch())
        return name + QStringLiteral("(copy)");
    bool isNumber = false;
    const qint64 number = match.captured(1).toInt(&isNumber); // wide, so that one more always fits
    return name.left(match.capturedStart())
        + QStringLiteral("(copy %1)").arg(isNumber ? number + 1 : 1);
}

} // namespace

QString ProfilesManager::profilesDirectory()
{
    return QDir::cleanPath(CApplicationDirectories::settingsDirectory() + QDir::separator()
                           + QStringLiteral("osd"));
}

bool ProfilesManager::isProfileName(const QString &name)
{
    constexpr int maximumBytes = 255; // what file systems allow
    const QByteArray encoded = QFile::encodeName(name + xmlSuffix);
    return !name.trimmed().isEmpty() && !name.startsWith(QLatin1Char('.')) // a hidden file
        && !name.contains(QLatin1Char('/')) && !name.contains(QDir::separator())
        && !name.contains(QChar::Null) && encoded.size() <= maximumBytes
        && QFile::decodeName(encoded) == name + xmlSuffix; // else it would be another name
}

ProfilesManager::ProfilesManager(QObject *parent)
    : QObject(parent)
    , m_directory(profilesDirectory())
{
    populateProfiles();
}

ProfilesManager::~ProfilesManager() = default;

QStringList ProfilesManager::getProfilesPath() const
{
    return QDir(m_directory).entryList({QStringLiteral("*.xml")}, QDir::Files);
}

void ProfilesManager::populateProfiles()
{
    const QString directory = QDir(m_directory).absolutePath();
    const QStringList files = getProfilesPath();
    for (const QString &file : files) {
        auto *profile = new Profile(this);
        profile->load(directory + QDir::separator() + file);
        m_profiles.append(profile);
        log(LogLevel::Error,
            QStringLiteral("profile found: '") + profile->name() + QStringLiteral("'    '")
                + profile->path() + QLatin1Char('\''));
    }
}

const QList<Profile *> &ProfilesManager::getProfiles() const
{
    return m_profiles;
}

bool ProfilesManager::saveProfile(Profile *profile)
{
    return profile && profile->save();
}

QString ProfilesManager::checkDuplicates(const QString &name) const
{
    const QStringList taken = getProfilesPath();
    QString candidate = name;
    for (int attempt = 0; taken.contains(candidate + xmlSuffix); ++attempt) {
        if (attempt == 100)
            return {};
        candidate = nextCopyName(candidate);
    }
    return candidate;
}

QString ProfilesManager::freePathForClone(const Profile &source, const QString &newName) const
{
    const QFileInfo file(source.path());
    const QString trimmed = newName.trimmed();
    const QString wanted = trimmed.isEmpty() ? file.completeBaseName() : trimmed;
    const QString name = checkDuplicates(wanted);
    const QString path
        = file.absolutePath() + QDir::separator() + name + QLatin1Char('.') + file.suffix();
    // The rule for names knows the profile directory and the suffix ".xml" alone; the source may
    // lie elsewhere or be spelled ".XML", and no file may be overwritten by a copy.
    if (!isProfileName(name) || QFileInfo::exists(path)) {
        log(LogLevel::Error, QStringLiteral("Cloning error: no file for the name ") + wanted);
        return {};
    }
    return path;
}

Profile *ProfilesManager::clone(Profile *source, const QString &newName)
{
    if (!source) {
        log(LogLevel::Error, QStringLiteral("Cloning error"));
        return nullptr;
    }
    const QString path = freePathForClone(*source, newName);
    if (path.isEmpty())
        return nullptr;
    std::unique_ptr<Profile> copy(source->clone());
    copy->setReadOnly(false);
    copy->setName(QFileInfo(path).completeBaseName());
    copy->setPath(path);
    if (!copy->save())
        return nullptr;
    Q_EMIT profileAboutToBeAdded();
    Profile *added = copy.release();
    added->setParent(this);
    m_profiles.append(added);
    Q_EMIT profileAdded();
    return added;
}

Profile *ProfilesManager::findProfileByPath(const QString &path) const
{
    const auto found
        = std::find_if(m_profiles.cbegin(), m_profiles.cend(),
                       [&](const Profile *profile) { return profile->path() == path; });
    if (found != m_profiles.cend())
        return *found;
    log(LogLevel::Error, QStringLiteral("Cannot find profile path"));
    return nullptr;
}

Profile *ProfilesManager::findProfileByName(const QString &name) const
{
    const auto found
        = std::find_if(m_profiles.cbegin(), m_profiles.cend(),
                       [&](const Profile *profile) { return profile->name() == name; });
    if (found != m_profiles.cend())
        return *found;
    log(LogLevel::Error, QStringLiteral("Cannot find profile name"));
    return nullptr;
}

void ProfilesManager::remove(Profile *profile)
{
    if (!m_profiles.contains(profile)) {
        log(LogLevel::Error, QStringLiteral("Cannot delete. Profile doesn't exists"));
        return;
    }
    const QString path = profile->path();
    const bool deleted = QFile::remove(path);
    m_profiles.removeOne(profile);
    if (!deleted)
        log(LogLevel::Error,
            QStringLiteral("Deleting profile file '") + path + QStringLiteral("' failed"));
    profile->deleteLater();
}

} // namespace Velmar::VideoOverlay
