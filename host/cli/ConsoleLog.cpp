// SPDX-License-Identifier: Apache-2.0
#include "host/cli/ConsoleLog.h"

namespace Velmar::Host {

void ConsoleLog::write(const Logging::LogEntry &entry)
{
    if (entry.level <= Logging::LogLevel::Warning
        && entry.message != QLatin1String("Invalid project."))
        StderrLogSink::write(entry);
}

} // namespace Velmar::Host
