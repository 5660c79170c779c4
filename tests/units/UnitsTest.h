// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "tests/support/LoggedTest.h"

#include <QStringList>
#include <QVariant>

#include <ctime>

namespace Velmar::Test {

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
