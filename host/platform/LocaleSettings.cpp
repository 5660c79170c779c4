// SPDX-License-Identifier: Apache-2.0
#include "host/platform/LocaleSettings.h"

#include "host/platform/LengthUnits.h"
#include "platform/shared/CLocaleSupport.h"
#include "platform/shared/GlobalLocaleData.h"

#include <QMap>

#include <optional>

namespace Velmar::Shared {

namespace {

using Quantity = LocaleSettings::Quantity;
using Units = QMap<Quantity, QString>;

const Units &unitsOf(LocaleSettings::UnitSystem system)
{
    static const Units metric {
        {Quantity::Speed, CLocaleSupport::speedUnits_m_per_min},
        {Quantity::Angle, CLocaleSupport::angleUnits_degree},
        {Quantity::Temperature, CLocaleSupport::tempUnits_C},
        {Quantity::Pressure, CLocaleSupport::pressureUnits_mbar},
        {Quantity::Distance, QStringLiteral("m")},
    };
    static const Units imperial {
        {Quantity::Speed, CLocaleSupport::speedUnits_ft_per_min},
        {Quantity::Angle, CLocaleSupport::angleUnits_degree},
        {Quantity::Temperature, CLocaleSupport::tempUnits_F},
        {Quantity::Pressure, CLocaleSupport::pressureUnits_mbar},
        {Quantity::Distance, QStringLiteral("ft")},
    };
    return system == LocaleSettings::UnitSystem::Imperial ? imperial : metric;
}

struct Choices
{
    Units units = unitsOf(LocaleSettings::UnitSystem::Metric);
    std::optional<QLocale> locale; ///< empty: the system's, as it is when asked for
    QString timeFormat;
    QString dateFormat;

    bool operator==(const Choices &other) const
    {
        return units == other.units && locale == other.locale && timeFormat == other.timeFormat
            && dateFormat == other.dateFormat;
    }
};

Choices &current()
{
    static Choices choices;
    return choices;
}

void apply(const Choices &choices)
{
    if (current() == choices)
        return;
    current() = choices;
    Q_EMIT GlobalLocaleData::instance()->localeChanged();
}

QStringList lengthUnitNames()
{
    QStringList names;
    for (const LengthUnit &unit : lengthUnits())
        names.append(unit.name);
    return names;
}

} // namespace

QStringList LocaleSettings::units(Quantity quantity)
{
    switch (quantity) {
    case Quantity::Speed:
        return {CLocaleSupport::speedUnits_m_per_min,    CLocaleSupport::speedUnits_ft_per_min,
                CLocaleSupport::speedUnits_inch_per_min, CLocaleSupport::speedUnits_m_per_sec,
                CLocaleSupport::speedUnits_ft_per_sec,   CLocaleSupport::speedUnits_inch_per_sec,
                CLocaleSupport::speedUnits_cm_per_sec};
    case Quantity::Angle:
        return {CLocaleSupport::angleUnits_hour, CLocaleSupport::angleUnits_degree,
                CLocaleSupport::angleUnits_percent};
    case Quantity::Temperature:
        return {CLocaleSupport::tempUnits_C, CLocaleSupport::tempUnits_F};
    case Quantity::Pressure:
        return {CLocaleSupport::pressureUnits_mbar, CLocaleSupport::pressureUnits_atm,
                CLocaleSupport::pressureUnits_pa};
    case Quantity::Distance:
        return lengthUnitNames();
    }
    return {};
}

QString LocaleSettings::unit(Quantity quantity)
{
    return current().units.value(quantity);
}

bool LocaleSettings::setUnit(Quantity quantity, const QString &unit)
{
    if (!units(quantity).contains(unit))
        return false;
    Choices choices = current();
    choices.units.insert(quantity, unit);
    apply(choices);
    return true;
}

void LocaleSettings::setUnitSystem(UnitSystem system)
{
    Choices choices = current();
    choices.units = unitsOf(system);
    apply(choices);
}

QLocale LocaleSettings::locale()
{
    return current().locale.value_or(QLocale());
}

void LocaleSettings::setLocale(const QLocale &locale)
{
    Choices choices = current();
    choices.locale = locale;
    apply(choices);
}

QString LocaleSettings::timeFormat()
{
    const QString &pattern = current().timeFormat;
    return pattern.isEmpty() ? locale().timeFormat(QLocale::LongFormat) : pattern;
}

void LocaleSettings::setTimeFormat(const QString &pattern)
{
    Choices choices = current();
    choices.timeFormat = pattern;
    apply(choices);
}

QString LocaleSettings::dateFormat()
{
    const QString &pattern = current().dateFormat;
    return pattern.isEmpty() ? locale().dateFormat(QLocale::ShortFormat) : pattern;
}

void LocaleSettings::setDateFormat(const QString &pattern)
{
    Choices choices = current();
    choices.dateFormat = pattern;
    apply(choices);
}

void LocaleSettings::reset()
{
    apply(Choices());
}

} // namespace Velmar::Shared
