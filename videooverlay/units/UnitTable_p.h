// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/Log_p.h"
#include "videooverlay/units/MeasuredValue_p.h"

#include <QString>
#include <QVariant>

#include <algorithm>
#include <vector>

namespace Velmar::VideoOverlay {

/// The units of one quantity, in the order in which they are looked up. Every conversion goes
/// through the base unit: towards it a factor is enough, away from it some units need more than one
/// product.
template <typename Converter> struct UnitTable
{
    struct Row
    {
        QString unit;
        double toBase;
        double (Converter::*fromBase)(double);
    };

    QString notFound;       ///< logged about a unit that has no row
    LogLevel unknownSource; ///< level of that line for the unit of the incoming value
    QString baseUnit;       ///< also that of a value without a unit
    std::vector<Row> rows;

    const Row *find(const QString &unit) const
    {
        const auto it = std::find_if(rows.cbegin(), rows.cend(),
                                     [&unit](const Row &row) { return row.unit == unit; });
        return it == rows.cend() ? nullptr : &*it;
    }

    double toBase(double value, const QString &unit) const
    {
        if (const Row *row = find(unit))
            return value * row->toBase;
        log(unknownSource, notFound);
        return value;
    }

    QString convert(Converter &converter, const QVariant &value, const QString &from,
                    const QString &to, int decimals) const
    {
        const QString source = from.isEmpty() ? baseUnit : from;
        const std::optional<double> number = measuredValue(value);
        if (!number)
            return value.toString();
        double shown = *number;
        if (source != to) {
            const double base = converter.convertToBase(*number, source);
            if (const Row *target = find(to))
                shown = (converter.*target->fromBase)(base);
            else // the value as it came, not the one in the base unit
                log(LogLevel::Debug, notFound);
        }
        return QString::number(shown, 'f', decimals);
    }
};

} // namespace Velmar::VideoOverlay
