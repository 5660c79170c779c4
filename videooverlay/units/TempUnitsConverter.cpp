// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/TempUnitsConverter.h"

#include "platform/shared/CLocaleSupport.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/units/MeasuredValue_p.h"
#include "videooverlay/units/SelfTest_p.h"

#include <cmath>

namespace Velmar::VideoOverlay {

using Shared::CLocaleSupport;

TempUnitsConverter::TempUnitsConverter(int decimals)
    : m_decimals(decimals)
{
}

QString TempUnitsConverter::convert(QVariant value, QString unitFrom, QString unitTo)
{
    const std::optional<double> number = measuredValue(value);
    if (!number)
        return value.toString();
    if (unitTo.isEmpty())
        unitTo = CLocaleSupport::getTemperatureUnitString();
    if (unitFrom.isEmpty())
        unitFrom = CLocaleSupport::tempUnits_C;

    double shown = *number;
    if (unitFrom != unitTo) {
        if (unitTo == CLocaleSupport::tempUnits_C && unitFrom == CLocaleSupport::tempUnits_F)
            shown = convert_F_to_C(shown);
        else if (unitTo == CLocaleSupport::tempUnits_F && unitFrom == CLocaleSupport::tempUnits_C)
            shown = convert_C_to_F(shown);
        else
            log(LogLevel::Error, QStringLiteral("TempUnitsConverter - Units converter not found"));
    }
    return CLocaleSupport::getCurrentLocale().toString(shown, 'f', m_decimals);
}

QString TempUnitsConverter::getSuffix(QString unit)
{
    return unit.isEmpty() ? CLocaleSupport::getTemperatureUnitString() : unit;
}

double TempUnitsConverter::convert_F_to_C(double value)
{
    return (value - 32.0) * 5.0 / 9.0;
}

double TempUnitsConverter::convert_C_to_F(double value)
{
    return std::fma(value, 1.8, 32.0);
}

void TempUnitsConverter::selfTest()
{
    const QString celsius = CLocaleSupport::tempUnits_C;
    const QString fahrenheit = CLocaleSupport::tempUnits_F;
    matchingCases(*this,
                  {
                      {QStringLiteral("7.2222"), celsius, fahrenheit, 45.0},
                      {QStringLiteral("-17.2222"), celsius, fahrenheit, 1.0},
                  });
}

} // namespace Velmar::VideoOverlay
