// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/PressureUnitsConverter.h"

#include "platform/shared/CLocaleSupport.h"
#include "videooverlay/units/SelfTest_p.h"
#include "videooverlay/units/UnitTable_p.h"

namespace Velmar::VideoOverlay {

using Shared::CLocaleSupport;

namespace {

const UnitTable<PressureUnitsConverter> &table()
{
    using C = PressureUnitsConverter;
    static const UnitTable<C> units {
        QStringLiteral("PressureUnitsConverter - Units converter not found"),
        LogLevel::Debug,
        CLocaleSupport::pressureUnits_mbar,
        {
            {CLocaleSupport::pressureUnits_mbar, 1.0, &C::convertBaseTo__mbar},
            {CLocaleSupport::pressureUnits_atm, 1013.25, &C::convertBaseTo__atm},
            {CLocaleSupport::pressureUnits_pa, 0.01, &C::convertBaseTo__Pa},
        }};
    return units;
}

} // namespace

PressureUnitsConverter::PressureUnitsConverter(int decimals)
    : m_decimals(decimals)
{
}

QString PressureUnitsConverter::convert(QVariant value, QString from, QString to)
{
    return table().convert(*this, value, from, to, m_decimals);
}

QString PressureUnitsConverter::getSuffix(QString unit)
{
    return unit.isEmpty() ? CLocaleSupport::getPressureUnitString() : unit;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, like those of convert()
double PressureUnitsConverter::convertToBase(double value, QString unit)
{
    return table().toBase(value, unit);
}

double PressureUnitsConverter::convertBaseTo__mbar(double value)
{
    return value;
}

double PressureUnitsConverter::convertBaseTo__atm(double value)
{
    const double bar = value * 0.001; // two roundings, in this order
    return bar * 0.986923267;
}

double PressureUnitsConverter::convertBaseTo__Pa(double value)
{
    return value * 100.0;
}

void PressureUnitsConverter::selfTest()
{
    const QString mbar = CLocaleSupport::pressureUnits_mbar;
    const QString atm = CLocaleSupport::pressureUnits_atm;
    const QString pa = CLocaleSupport::pressureUnits_pa;
    matchingCases(*this,
                  {
                      {QStringLiteral("1.00"), atm, mbar, 1013.25},
                      {QStringLiteral("100.01"), mbar, pa, 10001.0},
                      {QStringLiteral("1000"), mbar, atm, 0.986923267},
                  });
}

} // namespace Velmar::VideoOverlay
