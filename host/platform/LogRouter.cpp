// SPDX-License-Identifier: Apache-2.0
#include "host/platform/LogRouter.h"

#include "host/platform/LogSinks.h"

namespace Velmar::Logging {

LogSink::~LogSink() = default;

bool LogSink::isForPeople() const
{
    return false;
}

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
    bool isHeld = false;
    for (HeldLog *held : qAsConst(m_held)) {
        if (held->m_thread != std::this_thread::get_id())
            continue;
        isHeld = true;
        if (entry.level == LogLevel::Error)
            held->m_errors.append(entry.message);
    }
    if (m_sinks.isEmpty() && !isHeld && entry.level <= LogLevel::Warning)
        StderrLogSink().write(entry);
    for (const std::shared_ptr<LogSink> &sink : qAsConst(m_sinks)) {
        if (!isHeld || !sink->isForPeople())
            sink->write(entry);
    }
}

HeldLog::HeldLog()
    : m_thread(std::this_thread::get_id())
{
    LogRouter &router = LogRouter::instance();
    const std::lock_guard lock(router.m_mutex);
    router.m_held.append(this);
}

HeldLog::~HeldLog()
{
    LogRouter &router = LogRouter::instance();
    const std::lock_guard lock(router.m_mutex);
    router.m_held.removeOne(this);
}

QStringList HeldLog::errors() const
{
    const std::lock_guard lock(LogRouter::instance().m_mutex);
    return m_errors;
}

} // namespace Velmar::Logging
