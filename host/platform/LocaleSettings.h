// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QLocale>
#include <QString>
#include <QStringList>

namespace Velmar::Shared {

/// What the user chose: units, locale and formats. CLocaleSupport answers from here. Every change
/// emits GlobalLocaleData::localeChanged once; the current value again is silent. GUI thread only.
class VELMAR_PLATFORM_EXPORT LocaleSettings
{
public:
    enum class Quantity { Speed, Angle, Temperature, Pressure, Distance };
    enum class UnitSystem {
        Metric,   ///< m/min, degrees, °C, mbar, m: what holds until the user chooses
        Imperial, ///< ft/min, degrees, °F, mbar, ft
    };

    /// The units from which the user may choose.
    static QStringList units(Quantity quantity);
    static QString unit(Quantity quantity);
    /// False, and nothing changes, for a unit that is not among units().
    static bool setUnit(Quantity quantity, const QString &unit);
    /// Sets the unit of every quantity.
    static void setUnitSystem(UnitSystem system);

    /// For numbers and dates. The system's, unless set.
    static QLocale locale();
    static void setLocale(const QLocale &locale);

    /// Patterns for the time of day and the date; an empty one stands for the locale's: long for
    /// times, because that one has the seconds, and short for dates.
    static QString timeFormat();
    static void setTimeFormat(const QString &pattern);
    static QString dateFormat();
    static void setDateFormat(const QString &pattern);

    /// Back to the system's locale with its formats, and to metric units.
    static void reset();

    LocaleSettings() = delete;
};

} // namespace Velmar::Shared
