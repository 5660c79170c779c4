// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/LocaleSettings.h"
#include "host/platform/LogRouter.h"
#include "host/platform/LogSinks.h"
#include "host/platform/TranslationStore.h"

#include <QStringList>
#include <QVariant>

#include <ctime>
#include <memory>

namespace Velmar::Test {

/// What is logged while this object lives.
class RecordedLog
{
public:
    RecordedLog() { Logging::LogRouter::instance().addSink(m_sink); }
    ~RecordedLog() { Logging::LogRouter::instance().removeSink(m_sink); }
    Q_DISABLE_COPY(RecordedLog)

    /// The lines since the last call, each as "4 Category: message".
    QStringList take()
    {
        QStringList lines;
        const QVector<Logging::LogEntry> entries = m_sink->take();
        for (const Logging::LogEntry &entry : entries)
            lines.append(
                QStringLiteral("%1 %2: %3")
                    .arg(QString::number(int(entry.level)), entry.category, entry.message));
        return lines;
    }

private:
    std::shared_ptr<Logging::RecordingLogSink> m_sink
        = std::make_shared<Logging::RecordingLogSink>();
};

/// Takes every call of convert() down, as "text|from|to".
template <typename Converter> class RecordingConverter : public Converter
{
public:
    using Converter::Converter;

    QString convert(QVariant value, QString from, QString to) override
    {
        calls.append(QStringList {value.toString(), from, to}.join(QLatin1Char('|')));
        return Converter::convert(value, from, to);
    }

    QStringList calls;
};

/// The same answers on every machine: the C locale, metric units, a fixed time zone.
inline void pinUserSettings(const char *timeZone = "UTC")
{
    Shared::LocaleSettings::reset();
    Shared::LocaleSettings::setLocale(QLocale::c());
    Translation::TranslationStore::instance().setLocale(QLocale::c());
    qputenv("TZ", timeZone);
    tzset();
}

} // namespace Velmar::Test
