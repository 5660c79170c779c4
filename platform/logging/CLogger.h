// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QString>

namespace Velmar::Logging {

/// How serious a message is; the numbers are the host logger's own.
enum class LogLevel {
    Error = 1,   ///< something failed
    Warning = 2, ///< a file, object or font is missing
    Info = 3,    ///< a notice
    Debug = 4,   ///< detailed tracing
};

/// The host's log. What becomes of a message (file, console, filter) is the host's decision.
class VELMAR_PLATFORM_EXPORT CLogger
{
public:
    /// Takes one line, without a line end. Callable from every thread; never throws and never
    /// calls back into the caller.
    static void logMessage(LogLevel level, const QString &category, const QString &message);

    CLogger() = delete;
};

} // namespace Velmar::Logging
