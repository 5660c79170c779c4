// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/ElementParam.h"

#include <QList>
#include <QSet>
#include <QString>

namespace Velmar::VideoOverlay {

/// What belongs to an observation and not to the inspection.
bool isObservationTable(const QString &table);

/// False for columns that nobody means to show, which includes every reference.
bool isDisplayName(const QString &column);

/// Whether a column of that name may be shown when it is in that table.
bool isOfferedUnder(const QString &table, const QString &column);

/// COsdBuilder::generateOsdColumnsKey() of a record; null when it is of no inspection text.
QString inspectionKeyOf(const ElementParam &record);

/// Takes every record with one of these keys out of the list.
void eraseRecords(QList<ElementParam> &records, const QSet<QString> &keys);

} // namespace Velmar::VideoOverlay
