// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/FirstStart.h"

#include <platform/directories/CApplicationDirectories.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>

namespace Velmar::Host {

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

/// Whole or not at all.
bool writeAll(const QString &path, const QByteArray &content, QString *error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        return fail(error, path, file.errorString());
    return true;
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
        if (named.isEmpty() || QDir::isAbsolutePath(named) || !QFile::exists(source))
            continue;
        const QString target = settings.absoluteFilePath(QFileInfo(source).fileName());
        QByteArray picture;
        if (!QFile::exists(target)
            && (!readAll(source, &picture, error) || !writeAll(target, picture, error)))
            return false;
        result.replace(QStringLiteral("<PATH>%1</PATH>").arg(named),
                       QStringLiteral("<PATH>%1</PATH>").arg(target.toHtmlEscaped()));
    }
    *profile = result.toUtf8();
    return true;
}

bool takeProfile(const QString &name, const QDir &shipped, const QDir &profiles,
                 const QDir &settings, QString *error)
{
    const QString target = profiles.filePath(name);
    if (QFile::exists(target))
        return true;
    QByteArray profile;
    return readAll(shipped.filePath(name), &profile, error)
        && takePictures(&profile, shipped, settings, error) && writeAll(target, profile, error);
}

} // namespace

bool prepareProfiles(const QString &shippedDirectory, QString *error)
{
    const QDir settings(CApplicationDirectories::settingsDirectory());
    const QDir profiles(settings.filePath(QStringLiteral("osd")));
    const QDir shipped(shippedDirectory);
    const bool isFirst = !profiles.exists();
    if (!profiles.mkpath(QStringLiteral(".")))
        return fail(error, profiles.path(), QStringLiteral("cannot be made"));
    const QStringList names = isFirst ? shipped.entryList({QStringLiteral("*.xml")}, QDir::Files)
                                      : QStringList {defaultProfile};
    for (const QString &name : names) {
        if (!takeProfile(name, shipped, profiles, settings, error))
            return false;
    }
    return true;
}

} // namespace Velmar::Host
