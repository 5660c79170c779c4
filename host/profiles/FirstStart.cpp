// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/FirstStart.h"

#include "host/check/ProfileProblem.h"
#include "host/platform/LogRouter.h"
#include "host/platform/WholeFile.h"
#include "host/profiles/ProfileDirectory.h"
#include "host/profiles/ProfilesLock.h"

#include <platform/directories/CApplicationDirectories.h>
#include <platform/logging/CLogger.h>
#include <videooverlay/profiles/Profile.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <filesystem>
#include <system_error>

namespace Velmar::Host {

using VideoOverlay::Profile;

namespace {

const QString defaultProfile = QStringLiteral("Halvo push camera system - default.xml");

bool fail(QString *error, const QString &path, const QString &reason)
{
    *error = QStringLiteral("%1: %2").arg(path, reason);
    return false;
}

bool readAll(const QString &path, QByteArray *content, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(error, path, file.errorString());
    *content = file.readAll();
    return file.error() == QFileDevice::NoError || fail(error, path, file.errorString());
}

/// Whether there is a file at @p path. False, and a text in @p error, when that cannot be told.
bool exists(const QString &path, bool *answer, QString *error)
{
    std::error_code code;
    *answer = std::filesystem::exists(QFile::encodeName(path).toStdString(), code);
    return !code || fail(error, path, qt_error_string(code.value()));
}

/// What comes meanwhile stays.
bool writeNew(const QString &path, const QByteArray &content, QString *error)
{
    QString reason;
    return WholeFile::write(path, content, WholeFile::Existing::Keep, &reason)
        || fail(error, path, reason);
}

/// Copies the pictures that @p profile names relative to @p shipped and names the copies instead.
bool takePictures(QByteArray *profile, const QDir &shipped, const QDir &settings, QString *error)
{
    static const QRegularExpression path(QStringLiteral("<PATH>([^<>]*)</PATH>"));
    const QString text = QString::fromUtf8(*profile);
    QString result = text;
    auto matches = path.globalMatch(text);
    while (matches.hasNext()) {
        const QString named = matches.next().captured(1);
        const QString source = shipped.filePath(named);
        bool isShipped = false;
        if (named.isEmpty() || QDir::isAbsolutePath(named))
            continue;
        if (!exists(source, &isShipped, error))
            return false;
        if (!isShipped)
            continue;
        const QString target = settings.absoluteFilePath(QFileInfo(source).fileName());
        QByteArray picture;
        if (!QFile::exists(target)
            && (!readAll(source, &picture, error) || !writeNew(target, picture, error)))
            return false;
        result.replace(QStringLiteral("<PATH>%1</PATH>").arg(named),
                       QStringLiteral("<PATH>%1</PATH>").arg(target.toHtmlEscaped()));
    }
    *profile = result.toUtf8();
    return true;
}

bool isThere(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

/// The shipped profiles that were brought here once. One that is not here any more was removed.
class Deliveries
{
public:
    explicit Deliveries(const QDir &profiles)
        : m_path(profiles.filePath(QStringLiteral(".delivered")))
    {
    }

    bool read(QString *error)
    {
        QByteArray content;
        bool isThere = false;
        if (!exists(m_path, &isThere, error) || (isThere && !readAll(m_path, &content, error)))
            return false;
        m_names = QString::fromUtf8(content).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        return true;
    }

    bool contain(const QString &name) const { return m_names.contains(name); }

    void note(const QString &name)
    {
        m_isChanged = m_isChanged || !contain(name);
        m_names.append(name);
    }

    bool write(QString *error)
    {
        m_names.removeDuplicates();
        const QString text = m_names.join(QLatin1Char('\n')) + QLatin1Char('\n');
        QString reason;
        return !m_isChanged
            || WholeFile::write(m_path, text.toUtf8(), WholeFile::Existing::Replace, &reason)
            || fail(error, m_path, reason);
    }

private:
    QString m_path;
    QStringList m_names;
    bool m_isChanged = false;
};

/// One that says another name is not found as the default one.
bool isUsableDefault(const QString &path, const QString &shippedPath)
{
    const Logging::HeldLog log;
    Profile profile;
    Profile shipped;
    return profile.load(path) && (!shipped.load(shippedPath) || profile.name() == shipped.name());
}

/// Moves the file out of the way, to a name that is not listed.
bool keepAside(const QString &path, QString *error)
{
    QString kept;
    for (int number = 1; number == 1 || isThere(kept); ++number) {
        kept = path + QStringLiteral(".damaged");
        if (number > 1)
            kept += QLatin1Char('.') + QString::number(number);
    }
    const QString problem = profileProblem(path);
    QString reason;
    if (!WholeFile::rename(path, kept, &reason))
        return fail(error, path, reason);
    Logging::CLogger::logMessage(
        Logging::LogLevel::Warning, QStringLiteral("Host"),
        QStringLiteral("%1; the delivered one takes its place, it is kept as %2")
            .arg(problem.isEmpty() ? QStringLiteral("%1: has lost its name").arg(path) : problem,
                 kept));
    return true;
}

/// Brings what is shipped to where the library looks for it.
class Delivery
{
public:
    Delivery(const QDir &shipped, const QDir &settings, const QDir &profiles)
        : m_shipped(shipped)
        , m_settings(settings)
        , m_profiles(profiles)
        , m_deliveries(profiles)
    {
    }

    bool run(QString *error)
    {
        QStringList names;
        if (!listProfileFiles(m_shipped.path(), &names, error) || !m_deliveries.read(error))
            return false;
        names.removeOne(defaultProfile);
        for (const QString &name : qAsConst(names)) {
            if (!isThere(m_profiles.filePath(name)) && !m_deliveries.contain(name)
                && !take(name, error))
                return false;
            m_deliveries.note(name);
        }
        // A device whose settings cannot be written is complete already, or has failed by now.
        return takeDefault(error) && (m_deliveries.write(error) || !m_hasTaken);
    }

private:
    bool takeDefault(QString *error)
    {
        const QString path = m_profiles.filePath(defaultProfile);
        if (isThere(path)) {
            const QString shipped = m_shipped.filePath(defaultProfile);
            // Twice: what fails once may be the disk, and not the file.
            if (isUsableDefault(path, shipped) || isUsableDefault(path, shipped))
                return true;
            if (!keepAside(path, error))
                return false;
        }
        return take(defaultProfile, error);
    }

    bool take(const QString &name, QString *error)
    {
        m_hasTaken = true;
        QByteArray profile;
        return readAll(m_shipped.filePath(name), &profile, error)
            && takePictures(&profile, m_shipped, m_settings, error)
            && writeNew(m_profiles.filePath(name), profile, error);
    }

    const QDir m_shipped;
    const QDir m_settings;
    const QDir m_profiles;
    Deliveries m_deliveries;
    bool m_hasTaken = false;
};

} // namespace

bool prepareProfiles(const QString &shippedDirectory, QString *error)
{
    const QDir settings(CApplicationDirectories::settingsDirectory());
    const QDir profiles(settings.filePath(QStringLiteral("osd")));
    if (!profiles.mkpath(QStringLiteral(".")))
        return fail(error, profiles.path(), QStringLiteral("cannot be made"));
    ProfilesLock lock;
    return lock.take(error) && Delivery(QDir(shippedDirectory), settings, profiles).run(error);
}

} // namespace Velmar::Host
