// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/logging/CLogger.h"

#include <QString>

namespace Velmar::VideoOverlay {

using Logging::LogLevel;

/// Every log line of this library carries the same category.
inline void log(LogLevel level, const QString &message)
{
    Logging::CLogger::logMessage(level, QStringLiteral("VideoOverlayLibrary"), message);
}

} // namespace Velmar::VideoOverlay
