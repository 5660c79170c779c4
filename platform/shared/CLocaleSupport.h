// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QLocale>
#include <QString>
#include <QVariant>

namespace Velmar::Shared {

/// The user's units, locale and formats, and the names of the units. What the user chose may change
/// at any time; GlobalLocaleData::localeChanged announces it. For the GUI thread.
class VELMAR_PLATFORM_EXPORT CLocaleSupport
{
public:
    /// @name Unit names as they stand in profiles and on the screen
    /// Assumed: all different, not empty, without "[", and equal to the vocabulary of the profile
    /// files.
    /// @{
    static const QString speedUnits_m_per_min;    ///< metres a minute
    static const QString speedUnits_ft_per_min;   ///< feet a minute
    static const QString speedUnits_inch_per_min; ///< inches a minute
    static const QString speedUnits_m_per_sec;    ///< metres a second
    static const QString speedUnits_ft_per_sec;   ///< feet a second
    static const QString speedUnits_inch_per_sec; ///< inches a second
    static const QString speedUnits_cm_per_sec;   ///< centimetres a second
    static const QString angleUnits_hour;         ///< clock position, 30 degrees each
    static const QString angleUnits_degree;       ///< degrees
    static const QString angleUnits_percent;      ///< slope in percent
    static const QString tempUnits_C;             ///< degrees Celsius
    static const QString tempUnits_F;             ///< degrees Fahrenheit
    static const QString pressureUnits_mbar;      ///< millibars
    static const QString pressureUnits_atm;       ///< standard atmospheres
    static const QString pressureUnits_pa;        ///< pascals
    /// @}

    /// @name The unit in which the user wants to see a quantity. Never empty.
    /// @{
    static QString getSpeedUnitString();       ///< of speeds
    static QString getAngleUnitString();       ///< of angles
    static QString getTemperatureUnitString(); ///< of temperatures
    static QString getPressureUnitString();    ///< of pressures
    static QString getDistanceUnitString();    ///< of distances
    /// @}

    /// For numbers and dates; the language of the texts is Translation::CTranslator's.
    static QLocale getCurrentLocale();

    /// The user's pattern for the time of day. May end with a time zone: " t".
    static QString getTimeFormat();

    /// A distance, already in the unit in which it is shown, in the user's locale.
    /// @p withUnit appends a blank and the user's distance unit. @p fine selects two decimals,
    /// otherwise it is one. A distance that rounds to zero has no sign.
    static QString distanceValueToLocalizedString(double value, bool withUnit, bool fine);

    /// A date, time, date and time, or number in the user's locale. @p format is a pattern for
    /// dates and times; an empty one selects the user's own. Numbers have as many decimals as they
    /// need. Anything else becomes its plain text; an invalid value, date or time an empty one.
    static QString variantToLocalizedString(const QVariant &value, const QString &format);

    CLocaleSupport() = delete;
};

} // namespace Velmar::Shared
