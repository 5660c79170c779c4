// SPDX-License-Identifier: Apache-2.0
#include "host/platform/LogRouter.h"

#include "host/platform/LogSinks.h"

namespace Velmar::Logging {

LogSink::~LogSink() = default;

LogRouter &LogRouter::instance()
{
    // Never destroyed: static objects may log while the process ends.
    static auto *router = new LogRouter;
    return *router;
}

void LogRouter::setLevel(LogLevel level)
{
    const std::lock_guard lock(m_mutex);
    m_level = level;
}

void LogRouter::setCategoryLevel(const QString &category, LogLevel level)
{
    const std::lock_guard lock(m_mutex);
    m_categoryLevels.insert(category, level);
}

void LogRouter::clearCategoryLevels()
{
    const std::lock_guard lock(m_mutex);
    m_categoryLevels.clear();
}

void LogRouter::addSink(std::shared_ptr<LogSink> sink)
{
    const std::lock_guard lock(m_mutex);
    m_sinks.append(std::move(sink));
}

void LogRouter::removeSink(const std::shared_ptr<LogSink> &sink)
{
    const std::lock_guard lock(m_mutex);
    m_sinks.removeAll(sink);
}

void LogRouter::write(const LogEntry &entry)
{
    const std::lock_guard lock(m_mutex);
    if (entry.level > m_categoryLevels.value(entry.category, m_level))
        return;
    if (m_sinks.isEmpty()) {
        if (entry.level <= LogLevel::Warning)
            StderrLogSink().write(entry);
        return;
    }
    for (const std::shared_ptr<LogSink> &sink : qAsConst(m_sinks))
        sink->write(entry);
}

} // namespace Velmar::Logging
