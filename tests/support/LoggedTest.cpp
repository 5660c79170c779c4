// SPDX-License-Identifier: Apache-2.0
#include "tests/support/LoggedTest.h"

#include "host/platform/LogRouter.h"

#include <QTest>

#include <mutex>
#include <utility>

namespace Velmar::Test {

using Logging::LogEntry;
using Logging::LogLevel;
using Logging::LogRouter;

namespace {

std::mutex qtWarningsMutex;
QStringList qtWarnings;
QtMessageHandler previousHandler = nullptr;

void recordQtWarning(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtWarningMsg || type == QtCriticalMsg) {
        const std::lock_guard lock(qtWarningsMutex);
        qtWarnings.append(message);
    }
    if (previousHandler)
        previousHandler(type, context, message);
}

QString asLine(const LogEntry &entry)
{
    return QStringLiteral("%1 %2: %3")
        .arg(QString::number(int(entry.level)), entry.category, entry.message);
}

} // namespace

LoggedTest::~LoggedTest() = default;

QStringList LoggedTest::takeLog()
{
    QStringList lines;
    const QVector<LogEntry> entries = m_sink->take();
    for (const LogEntry &entry : entries)
        lines.append(asLine(entry));
    return lines;
}

QStringList LoggedTest::takeQtWarnings()
{
    const std::lock_guard lock(qtWarningsMutex);
    return std::exchange(qtWarnings, {});
}

void LoggedTest::allow(const QString &line)
{
    m_allowed.append(line);
}

void LoggedTest::prepare() { }

void LoggedTest::init()
{
    prepare();
    m_sink = std::make_shared<Logging::RecordingLogSink>();
    LogRouter::instance().addSink(m_sink);
    takeQtWarnings();
    previousHandler = qInstallMessageHandler(recordQtWarning);
}

void LoggedTest::cleanup()
{
    qInstallMessageHandler(previousHandler);
    LogRouter::instance().removeSink(m_sink);

    QStringList unexpected = takeQtWarnings();
    const QVector<LogEntry> entries = m_sink->take();
    for (const LogEntry &entry : entries) {
        if (entry.level <= LogLevel::Warning && !m_allowed.contains(asLine(entry)))
            unexpected.append(asLine(entry));
    }
    if (!unexpected.isEmpty())
        QFAIL(qPrintable(QStringLiteral("Unexpected: ") + unexpected.join(QStringLiteral("; "))));
}

} // namespace Velmar::Test
