// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/AngleUnitsConverter.h"

#include "platform/shared/CLocaleSupport.h"
#include "videooverlay/units/SelfTest_p.h"
#include "videooverlay/units/UnitTable_p.h"

#include <cmath>

namespace Velmar::VideoOverlay {

using Shared::CLocaleSupport;

namespace {

// pi / 180 in single precision, widened: what is on the screen was always computed with it
constexpr double radiansPerDegree = 0.01745329238474369;

const UnitTable<AngleUnitsConverter> &table()
{
    using C = AngleUnitsConverter;
    static const UnitTable<C> units {
        QStringLiteral("AngleUnitsConverter - Units converter not found"),
        LogLevel::Debug,
        CLocaleSupport::angleUnits_degree,
        {
            {CLocaleSupport::angleUnits_hour, 30.0, &C::convertBaseTo__hour},
            {CLocaleSupport::angleUnits_degree, 1.0, &C::convertBaseTo__degrees},
            // not the inverse of the tangent: kept so
            {CLocaleSupport::angleUnits_percent, 3.6, &C::convertBaseTo__percent},
        }};
    return units;
}

} // namespace

AngleUnitsConverter::AngleUnitsConverter(int decimals)
    : m_decimals(decimals)
{
}

QString AngleUnitsConverter::convert(QVariant value, QString from, QString to)
{
    return table().convert(*this, value, from, to, m_decimals);
}

QString AngleUnitsConverter::getSuffix(QString unit)
{
    if (unit.isEmpty())
        return CLocaleSupport::getAngleUnitString();
    if (unit == CLocaleSupport::angleUnits_hour)
        return QStringLiteral("h");
    if (unit == CLocaleSupport::angleUnits_degree)
        return QStringLiteral("\u00B0");
    if (unit == CLocaleSupport::angleUnits_percent)
        return QStringLiteral("%");
    return QString();
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, like those of convert()
double AngleUnitsConverter::convertToBase(double value, QString unit)
{
    return table().toBase(value, unit);
}

double AngleUnitsConverter::convertBaseTo__hour(double value)
{
    return value / 30.0;
}

double AngleUnitsConverter::convertBaseTo__degrees(double value)
{
    return value;
}

double AngleUnitsConverter::convertBaseTo__percent(double value)
{
    return std::tan(value * radiansPerDegree) * 100.0;
}

void AngleUnitsConverter::selfTest()
{
    const QString hour = CLocaleSupport::angleUnits_hour;
    const QString degree = CLocaleSupport::angleUnits_degree;
    const QString percent = CLocaleSupport::angleUnits_percent;
    matchingCases(*this,
                  {
                      {QStringLiteral("0.0000"), degree, hour, 0.0},
                      {QStringLiteral("180.0000"), degree, hour, 6.0},
                      {QStringLiteral("6.0000"), hour, degree, 180.0},
                      {QStringLiteral("12.0000"), hour, degree, 360.0},
                      {QStringLiteral("50.0000"), percent, degree, 180.0},
                      {QStringLiteral("100.0000"), percent, degree, 360.0},
                      {QStringLiteral("45.0000"), degree, percent, 100.0},
                  });
}

} // namespace Velmar::VideoOverlay
