// SPDX-License-Identifier: Apache-2.0
#include "platform/shared/CLocaleSupport.h"

#include "host/platform/LocaleSettings.h"

#include <QDateTime>

#include <cmath>

namespace Velmar::Shared {

const QString CLocaleSupport::speedUnits_m_per_min = QStringLiteral("m/min");
const QString CLocaleSupport::speedUnits_ft_per_min = QStringLiteral("ft/min");
const QString CLocaleSupport::speedUnits_inch_per_min = QStringLiteral("inch/min");
const QString CLocaleSupport::speedUnits_m_per_sec = QStringLiteral("m/s");
const QString CLocaleSupport::speedUnits_ft_per_sec = QStringLiteral("ft/s");
const QString CLocaleSupport::speedUnits_inch_per_sec = QStringLiteral("inch/s");
const QString CLocaleSupport::speedUnits_cm_per_sec = QStringLiteral("cm/s");
const QString CLocaleSupport::angleUnits_hour = QStringLiteral("hour");
const QString CLocaleSupport::angleUnits_degree = QStringLiteral("\u00B0");
const QString CLocaleSupport::angleUnits_percent = QStringLiteral("%");
const QString CLocaleSupport::tempUnits_C = QStringLiteral("\u00B0C");
const QString CLocaleSupport::tempUnits_F = QStringLiteral("\u00B0F");
const QString CLocaleSupport::pressureUnits_mbar = QStringLiteral("mbar");
const QString CLocaleSupport::pressureUnits_atm = QStringLiteral("atm");
const QString CLocaleSupport::pressureUnits_pa = QStringLiteral("Pa");

namespace {

using Quantity = LocaleSettings::Quantity;

/// A time of day alone has no zone: a "t" would print the zone of this moment.
QString withoutZone(const QString &pattern)
{
    return pattern.endsWith(QLatin1String(" t")) ? pattern.chopped(2) : pattern;
}

} // namespace

QString CLocaleSupport::getSpeedUnitString()
{
    return LocaleSettings::unit(Quantity::Speed);
}

QString CLocaleSupport::getAngleUnitString()
{
    return LocaleSettings::unit(Quantity::Angle);
}

QString CLocaleSupport::getTemperatureUnitString()
{
    return LocaleSettings::unit(Quantity::Temperature);
}

QString CLocaleSupport::getPressureUnitString()
{
    return LocaleSettings::unit(Quantity::Pressure);
}

QString CLocaleSupport::getDistanceUnitString()
{
    return LocaleSettings::unit(Quantity::Distance);
}

QLocale CLocaleSupport::getCurrentLocale()
{
    return LocaleSettings::locale();
}

QString CLocaleSupport::getTimeFormat()
{
    return LocaleSettings::timeFormat();
}

QString CLocaleSupport::distanceValueToLocalizedString(double value, bool withUnit, bool fine)
{
    if (std::abs(value) < (fine ? 0.005 : 0.05))
        value = 0.0; // a counter that trembles around its origin would flicker between 0 and -0
    const QString text = getCurrentLocale().toString(value, 'f', fine ? 2 : 1);
    return withUnit ? text + QLatin1Char(' ') + getDistanceUnitString() : text;
}

QString CLocaleSupport::variantToLocalizedString(const QVariant &value, const QString &format)
{
    const QLocale locale = getCurrentLocale();
    const auto pattern
        = [&format](const QString &ofUser) { return format.isEmpty() ? ofUser : format; };
    switch (value.userType()) {
    case QMetaType::QDate:
        return locale.toString(value.toDate(), pattern(LocaleSettings::dateFormat()));
    case QMetaType::QTime:
        return locale.toString(value.toTime(), pattern(withoutZone(LocaleSettings::timeFormat())));
    case QMetaType::QDateTime:
        return locale.toString(value.toDateTime(),
                               pattern(LocaleSettings::dateFormat() + QLatin1Char(' ')
                                       + LocaleSettings::timeFormat()));
    case QMetaType::Float:
    case QMetaType::Double:
        return locale.toString(value.toDouble(), 'f', QLocale::FloatingPointShortest);
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Long:
    case QMetaType::Short:
        return locale.toString(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::ULong:
    case QMetaType::UShort:
        return locale.toString(value.toULongLong());
    default:
        return value.toString();
    }
}

} // namespace Velmar::Shared
