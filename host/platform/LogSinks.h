// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/LogRouter.h"

#include <QFile>
#include <QVector>

#include <mutex>

namespace Velmar::Logging {

/// "error", "warning", "info" or "debug".
VELMAR_PLATFORM_EXPORT QString levelName(LogLevel level);

/// Appends one line per message to a file: UTC time, level, category, message. Every line is on its
/// way to the disk before the call returns.
class VELMAR_PLATFORM_EXPORT FileLogSink : public LogSink
{
public:
    explicit FileLogSink(const QString &path);

    bool isOpen() const; ///< false: the file cannot be written, and lines are lost
    void write(const LogEntry &entry) override;

private:
    QFile m_file;
};

/// For programs that run on a terminal.
class VELMAR_PLATFORM_EXPORT StderrLogSink : public LogSink
{
public:
    void write(const LogEntry &entry) override;
    bool isForPeople() const override;
};

/// Keeps what was logged, so that a test can compare it. Safe to read while others log.
class VELMAR_PLATFORM_EXPORT RecordingLogSink : public LogSink
{
public:
    void write(const LogEntry &entry) override;

    QVector<LogEntry> entries() const;
    /// What was logged since the last call.
    QVector<LogEntry> take();

private:
    mutable std::mutex m_mutex; ///< guards the entries
    QVector<LogEntry> m_entries;
};

} // namespace Velmar::Logging
