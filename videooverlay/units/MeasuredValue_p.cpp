// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/MeasuredValue_p.h"

#include "videooverlay/Log_p.h"

namespace Velmar::VideoOverlay {

std::optional<double> measuredValue(const QVariant &value)
{
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (isNumber)
        return number;
    log(LogLevel::Debug, QStringLiteral("AngleUnitsConverter - Units converter not found"));
    return std::nullopt;
}

} // namespace Velmar::VideoOverlay
