// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/SpeedUnitsConverter.h"

#include "platform/shared/CLocaleSupport.h"
#include "videooverlay/units/SelfTest_p.h"
#include "videooverlay/units/UnitTable_p.h"

namespace Velmar::VideoOverlay {

using Shared::CLocaleSupport;

namespace {

const UnitTable<SpeedUnitsConverter> &table()
{
    using C = SpeedUnitsConverter;
    static const UnitTable<C> units {
        QStringLiteral("SpeedUnitsConverter - Units converter not found"),
        LogLevel::Error,
        CLocaleSupport::speedUnits_m_per_min,
        {
            {CLocaleSupport::speedUnits_m_per_min, 1.0, &C::convertBaseTo__m_per_min},
            {CLocaleSupport::speedUnits_ft_per_min, 0.3048, &C::convertBaseTo__ft_per_min},
            {CLocaleSupport::speedUnits_inch_per_min, 0.0254, &C::convertBaseTo__inch_per_min},
            {CLocaleSupport::speedUnits_m_per_sec, 60.0, &C::convertBaseTo__m_per_sec},
            // per second, read with the factors per minute: kept so
            {CLocaleSupport::speedUnits_ft_per_sec, 0.3048, &C::convertBaseTo__ft_per_sec},
            {CLocaleSupport::speedUnits_inch_per_sec, 0.0254, &C::convertBaseTo__inch_per_sec},
            {CLocaleSupport::speedUnits_cm_per_sec, 0.6, &C::convertBaseTo__cm_per_sec},
        }};
    return units;
}

} // namespace

SpeedUnitsConverter::SpeedUnitsConverter() = default;

QString SpeedUnitsConverter::convert(QVariant value, QString from, QString to)
{
    return table().convert(*this, value, from, to, 2);
}

QString SpeedUnitsConverter::getSuffix(QString unit)
{
    return unit.isEmpty() ? CLocaleSupport::getSpeedUnitString() : unit;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, like those of convert()
double SpeedUnitsConverter::convertToBase(double value, QString unit)
{
    return table().toBase(value, unit);
}

double SpeedUnitsConverter::convertBaseTo__m_per_min(double value)
{
    return value;
}

double SpeedUnitsConverter::convertBaseTo__ft_per_sec(double value)
{
    return value * 0.0546806649;
}

double SpeedUnitsConverter::convertBaseTo__inch_per_sec(double value)
{
    return value * 0.656167979;
}

double SpeedUnitsConverter::convertBaseTo__ft_per_min(double value)
{
    return value * 3.2808399;
}

double SpeedUnitsConverter::convertBaseTo__cm_per_sec(double value)
{
    return value * 1.6666666667;
}

double SpeedUnitsConverter::convertBaseTo__inch_per_min(double value)
{
    return value * 39.3700787;
}

double SpeedUnitsConverter::convertBaseTo__m_per_sec(double value)
{
    return value * 0.0166666667;
}

void SpeedUnitsConverter::selfTest()
{
    const QString m = QStringLiteral("m/s");
    const QString ft = QStringLiteral("ft/s");
    const QString inch = QStringLiteral("inch/s");
    matchingCases(*this,
                  {
                      {QStringLiteral("0.0000"), m, m, 0.0},
                      {QStringLiteral("1.0000"), m, m, 1.0},
                      {QStringLiteral("1.0100"), m, m, 1.01},

                      {QStringLiteral("0.00"), m, ft, 0.0},
                      {QStringLiteral("1.01"), m, ft, 3.3136},
                      {QStringLiteral("10.01"), m, ft, 32.8412},
                      {QStringLiteral("10.00"), m, ft, 32.8084},
                      {QStringLiteral("9.99"), m, ft, 32.7756},

                      {QStringLiteral("0.00"), m, inch, 0.0},
                      {QStringLiteral("1.01"), m, inch, 39.7638},
                      {QStringLiteral("10.01"), m, inch, 394.0945},
                      {QStringLiteral("10.00"), m, inch, 393.7008},
                      {QStringLiteral("9.99"), m, inch, 393.3071},

                      {QStringLiteral("0.00"), inch, inch, 0.0},
                      {QStringLiteral("39.76"), inch, inch, 39.76},
                      {QStringLiteral("394.09"), inch, inch, 394.09},
                      {QStringLiteral("393.70"), inch, inch, 393.7},
                      {QStringLiteral("393.30"), inch, inch, 393.3},

                      {QStringLiteral("0.000000"), inch, ft, 0.0},
                      {QStringLiteral("39.760000"), inch, ft, 3.3133},
                      {QStringLiteral("394.090000"), inch, ft, 32.8408},
                      {QStringLiteral("393.700000"), inch, ft, 32.8083},
                      {QStringLiteral("393.300000"), inch, ft, 32.775},

                      {QStringLiteral("0.000000"), inch, m, 0.0},
                      {QStringLiteral("39.760000"), inch, m, 1.0099},
                      {QStringLiteral("394.090000"), inch, m, 10.0099},
                      {QStringLiteral("393.700000"), inch, m, 10.0},
                      {QStringLiteral("393.300000"), inch, m, 9.9898},
                  });
}

} // namespace Velmar::VideoOverlay
