// SPDX-License-Identifier: Apache-2.0
#include "platform/directories/CApplicationDirectories.h"
#include "platform/logging/CLogger.h"

#include <QDir>

#include <cstdio>

namespace Velmar {

QString CApplicationDirectories::settingsDirectory()
{
    return QDir::tempPath();
}

QString CApplicationDirectories::readonlyConfigDirectory()
{
    return QDir::rootPath();
}

namespace Logging {

void CLogger::logMessage(LogLevel level, const QString &category, const QString &message)
{
    std::fprintf(stderr, "foreign %d %s %s\n", int(level), qPrintable(category),
                 qPrintable(message));
}

} // namespace Logging

} // namespace Velmar
