// SPDX-License-Identifier: Apache-2.0
#include "host/platform/LogSinks.h"

#include <QDateTime>

#include <cstdio>

namespace Velmar::Logging {

namespace {

/// One entry is one line, whatever its message quotes from a file: line feeds, carriage returns,
/// and what a terminal takes as a command.
QByteArray oneLine(const QString &text)
{
    QString line;
    line.reserve(text.size());
    for (const QChar character : text) {
        if (character == QLatin1Char('\n'))
            line += QLatin1String("\\n");
        else if (character.category() == QChar::Other_Control)
            line += QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
        else
            line += character;
    }
    return line.toUtf8();
}

} // namespace

QString levelName(LogLevel level)
{
    switch (level) {
    case LogLevel::Error:
        return QStringLiteral("error");
    case LogLevel::Warning:
        return QStringLiteral("warning");
    case LogLevel::Info:
        return QStringLiteral("info");
    case LogLevel::Debug:
        return QStringLiteral("debug");
    }
    return QString::number(int(level));
}

FileLogSink::FileLogSink(const QString &path)
    : m_file(path)
{
    m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text);
}

bool FileLogSink::isOpen() const
{
    return m_file.isOpen();
}

void FileLogSink::write(const LogEntry &entry)
{
    if (!m_file.isOpen())
        return;
    const QString line = QStringLiteral("%1 %2 %3: %4")
                             .arg(QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs),
                                  levelName(entry.level), entry.category, entry.message);
    m_file.write(oneLine(line) + '\n');
    m_file.flush();
}

void StderrLogSink::write(const LogEntry &entry)
{
    const QString line
        = QStringLiteral("%1: %2: %3").arg(levelName(entry.level), entry.category, entry.message);
    std::fprintf(stderr, "%s\n", oneLine(line).constData());
}

bool StderrLogSink::isForPeople() const
{
    return true;
}

void RecordingLogSink::write(const LogEntry &entry)
{
    const std::lock_guard lock(m_mutex);
    m_entries.append(entry);
}

QVector<LogEntry> RecordingLogSink::entries() const
{
    const std::lock_guard lock(m_mutex);
    return m_entries;
}

QVector<LogEntry> RecordingLogSink::take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_entries, {});
}

} // namespace Velmar::Logging
