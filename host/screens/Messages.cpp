// SPDX-License-Identifier: Apache-2.0
#include "host/screens/Messages.h"

#include "host/platform/LogSinks.h"

#include <memory>

namespace Velmar::Host {

Messages::Messages(QObject *parent)
    : QObject(parent)
{
}

void Messages::error(const QString &text)
{
    show(text, true);
}

void Messages::notice(const QString &text)
{
    show(text, false);
}

void Messages::dismiss()
{
    show(QString(), false);
}

void Messages::show(const QString &text, bool isError)
{
    if (m_text == text && m_isError == isError)
        return;
    m_text = text;
    m_isError = isError;
    Q_EMIT changed();
}

QStringList Messages::complaintsOf(const std::function<void()> &work)
{
    const auto sink = std::make_shared<Logging::RecordingLogSink>();
    Logging::LogRouter::instance().addSink(sink);
    work();
    Logging::LogRouter::instance().removeSink(sink);
    QStringList complaints;
    const QVector<Logging::LogEntry> entries = sink->take();
    for (const Logging::LogEntry &entry : entries) {
        if (entry.level == Logging::LogLevel::Error)
            complaints.append(entry.message);
    }
    return complaints;
}

} // namespace Velmar::Host
