// SPDX-License-Identifier: Apache-2.0
#include "platform/shared/LengthUnitsConverter.h"

#include "host/platform/LengthUnits.h"
#include "platform/logging/CLogger.h"

#include <algorithm>

namespace Velmar::Shared {

namespace {

const LengthUnit *findUnit(const QString &name)
{
    const QVector<LengthUnit> &units = lengthUnits();
    const auto it = std::find_if(units.cbegin(), units.cend(),
                                 [&name](const LengthUnit &unit) { return unit.name == name; });
    return it == units.cend() ? nullptr : &*it;
}

} // namespace

const QVector<LengthUnit> &lengthUnits()
{
    static const QVector<LengthUnit> units {
        {QStringLiteral("mm"), 10},    {QStringLiteral("cm"), 100},
        {QStringLiteral("m"), 10000},  {QStringLiteral("km"), 10000000},
        {QStringLiteral("inch"), 254}, {QStringLiteral("ft"), 3048},
        {QStringLiteral("yd"), 9144},  {QStringLiteral("mile"), 16093440},
    };
    return units;
}

double LengthUnitsConverter::convert(const QString &from, const QString &to, double value)
{
    const LengthUnit *source = findUnit(from);
    const LengthUnit *target = findUnit(to);
    if (!source || !target) {
        // Tracing only: with a profile that names such a unit this happens for every value.
        Logging::CLogger::logMessage(
            Logging::LogLevel::Debug, QStringLiteral("Platform"),
            QStringLiteral("Cannot convert a length from \"%1\" to \"%2\"").arg(from, to));
        return value;
    }
    if (source == target)
        return value;
    return value * source->tenthsOfMillimetre / target->tenthsOfMillimetre;
}

} // namespace Velmar::Shared
