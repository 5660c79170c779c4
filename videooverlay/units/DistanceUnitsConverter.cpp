// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/DistanceUnitsConverter.h"

#include "platform/shared/CLocaleSupport.h"
#include "platform/shared/LengthUnitsConverter.h"
#include "videooverlay/units/MeasuredValue_p.h"

#include <QStringList>

namespace Velmar::VideoOverlay {

using Shared::CLocaleSupport;
using Shared::LengthUnitsConverter;

const QString DistanceUnitsConverter::osdPrecisionIndicator = QStringLiteral("[");

DistanceUnitsConverter::DistanceUnitsConverter() = default;

QString DistanceUnitsConverter::convert(QVariant value, QString unitFrom, QString unitTo)
{
    if (unitFrom.isEmpty())
        unitFrom = QStringLiteral("m");
    const std::optional<double> number = measuredValue(value);
    if (!number)
        return value.toString();
    if (unitTo.isEmpty())
        unitTo = CLocaleSupport::getDistanceUnitString();

    bool fine = true;
    if (unitTo.contains(osdPrecisionIndicator)) {
        const QStringList parts = unitTo.split(osdPrecisionIndicator);
        unitTo = parts.at(0);
        fine = parts.at(1) != QLatin1String(".x]");
    }

    double shown = *number;
    if (unitFrom != unitTo)
        shown = LengthUnitsConverter::convert(unitFrom, unitTo, shown);
    return CLocaleSupport::distanceValueToLocalizedString(shown, false, fine);
}

QString DistanceUnitsConverter::getSuffix(QString unit)
{
    if (unit.isEmpty())
        return CLocaleSupport::getDistanceUnitString();
    return unit.section(osdPrecisionIndicator, 0, 0);
}

} // namespace Velmar::VideoOverlay
