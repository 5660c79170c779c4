// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/ElementParam.h"

#include <QList>
#include <QSet>
#include <QString>

namespace Velmar::Templates {
class CCatalogTemplate;
}

namespace Velmar::VideoOverlay {

/// What a template offers, in terms of COsdBuilder::generateOsdColumnsKey().
QSet<QString> inspectionKeysOf(const Templates::CCatalogTemplate &catalogTemplate);

/// The key of a record; null when it is of no inspection text.
QString inspectionKeyOf(const ElementParam &record);

/// The first record with that key that has no id yet; null when there is none.
ElementParam *recordWithoutId(QList<ElementParam> &records, const QString &key);

/// Takes every record with one of these keys out of the list.
void eraseRecords(QList<ElementParam> &records, const QSet<QString> &keys);

} // namespace Velmar::VideoOverlay
