// SPDX-License-Identifier: Apache-2.0
#include "host/platform/Directories.h"

#include "platform/directories/CApplicationDirectories.h"

#include <QDir>
#include <QStandardPaths>

namespace Velmar {

namespace {

QString &settingsPath()
{
    static QString path;
    return path;
}

QString &readonlyPath()
{
    static QString path;
    return path;
}

QString absolute(const QString &path)
{
    return path.isEmpty() ? path : QDir::cleanPath(QDir().absoluteFilePath(path));
}

} // namespace

void Directories::setSettingsDirectory(const QString &path)
{
    settingsPath() = absolute(path);
}

void Directories::setReadonlyConfigDirectory(const QString &path)
{
    readonlyPath() = absolute(path);
}

QString CApplicationDirectories::settingsDirectory()
{
    if (!settingsPath().isEmpty())
        return settingsPath();
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/xqosd");
}

QString CApplicationDirectories::readonlyConfigDirectory()
{
    if (!readonlyPath().isEmpty())
        return readonlyPath();
    return QStringLiteral(VELMAR_READONLY_CONFIG_DIRECTORY);
}

} // namespace Velmar
