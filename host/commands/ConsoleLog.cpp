// SPDX-License-Identifier: Apache-2.0
#include "host/commands/ConsoleLog.h"

#include <algorithm>
#include <iterator>

namespace Velmar::Host {

namespace {

/// Beginnings of lines that the library writes in the course of business: about each profile, about
/// columns that this record does not have, about captions while no project is open, about edits.
constexpr const char *chatter[] = {
    "profile found: '",
    "Invalid project.",
    "invalid value for  ",
    "Cannot find caption for ",
    "Domain object not found for ",
    "Cannot find profile path",
    "Profile changeset doesn't have id key",
};

bool isChatter(const Logging::LogEntry &entry)
{
    return entry.category == QLatin1String("VideoOverlayLibrary")
        && std::any_of(std::begin(chatter), std::end(chatter), [&entry](const char *beginning) {
               return entry.message.startsWith(QLatin1String(beginning));
           });
}

} // namespace

void ConsoleLog::write(const Logging::LogEntry &entry)
{
    if (entry.level <= Logging::LogLevel::Warning && !isChatter(entry))
        StderrLogSink::write(entry);
}

} // namespace Velmar::Host
