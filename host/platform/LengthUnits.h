// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QVector>

namespace Velmar::Shared {

/// A unit of length, in whole tenths of a millimetre: integers, so that no factor is rounded.
struct LengthUnit
{
    QString name;
    double tenthsOfMillimetre;
};

/// From the shortest metric to the longest imperial unit.
const QVector<LengthUnit> &lengthUnits();

} // namespace Velmar::Shared
