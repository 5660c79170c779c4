// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/logging/CLogger.h"

#include <QHash>
#include <QString>
#include <QVector>

#include <memory>
#include <mutex>

namespace Velmar::Logging {

/// One line of the log.
struct LogEntry
{
    LogLevel level = LogLevel::Info;
    QString category;
    QString message;

    bool operator==(const LogEntry &other) const
    {
        return level == other.level && category == other.category && message == other.message;
    }
};

/// Where log lines go. Called with the router's lock held, one line at a time, from any thread:
/// a sink never logs itself.
class VELMAR_PLATFORM_EXPORT LogSink
{
public:
    virtual ~LogSink();
    virtual void write(const LogEntry &entry) = 0;

protected:
    LogSink() = default;
    Q_DISABLE_COPY(LogSink)
};

/// The reference host's log: drops what is above the level of a line's category and hands the rest
/// to every sink. Without a sink, lines of level Warning and below reach the standard error stream.
class VELMAR_PLATFORM_EXPORT LogRouter
{
public:
    static LogRouter &instance();

    /// Lines with a higher number are dropped, unless their category has a level of its own.
    void setLevel(LogLevel level);
    void setCategoryLevel(const QString &category, LogLevel level);
    void clearCategoryLevels();

    void addSink(std::shared_ptr<LogSink> sink);
    void removeSink(const std::shared_ptr<LogSink> &sink);

    void write(const LogEntry &entry);

private:
    LogRouter() = default;
    Q_DISABLE_COPY(LogRouter)

    std::mutex m_mutex; ///< guards every field below
    LogLevel m_level = LogLevel::Debug;
    QHash<QString, LogLevel> m_categoryLevels;
    QVector<std::shared_ptr<LogSink>> m_sinks;
};

} // namespace Velmar::Logging
