// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/logging/CLogger.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>
#include <mutex>
#include <thread>

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
    virtual bool isForPeople() const; ///< shown while the program runs; false unless overridden

protected:
    LogSink() = default;
    Q_DISABLE_COPY(LogSink)
};

class HeldLog;

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
    friend class HeldLog;

    LogRouter() = default;
    Q_DISABLE_COPY(LogRouter)

    std::mutex m_mutex; ///< guards every field below
    LogLevel m_level = LogLevel::Debug;
    QHash<QString, LogLevel> m_categoryLevels;
    QVector<std::shared_ptr<LogSink>> m_sinks;
    QVector<HeldLog *> m_held; ///< not owned
};

/// While one exists, what its thread logs is kept from people, because the host has a better line
/// for them: the library's reasons often name no file. Other sinks get it as ever.
class VELMAR_PLATFORM_EXPORT HeldLog
{
public:
    HeldLog();
    ~HeldLog();

    QStringList errors() const; ///< what was logged as an error until now

private:
    friend class LogRouter;
    Q_DISABLE_COPY(HeldLog)

    std::thread::id m_thread;
    QStringList m_errors; ///< guarded by the router
};

} // namespace Velmar::Logging
