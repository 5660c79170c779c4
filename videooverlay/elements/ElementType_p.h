// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/CVideoOverlayElement.h"
#include "videooverlay/elements/ElementParam.h"

#include <limits>

namespace Velmar::VideoOverlay {

/// The kind of element that @p record is of, which it may give as a number, by its name or as the
/// type itself. StaticText where it says nothing that is understood; the variant alone would wrap a
/// number that is too large.
inline CVideoOverlayElement::Type typeOf(const ElementParam &record)
{
    const QVariant type = record.value(QStringLiteral("type"));
    bool isNumber = false;
    const double number = type.toDouble(&isNumber);
    if (isNumber
        && (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max()))
        return CVideoOverlayElement::StaticText;
    return type.value<CVideoOverlayElement::Type>();
}

/// The record of what holds for the whole overlay, which is of no element.
inline bool isGeneral(const ElementParam &record)
{
    return record.value(QStringLiteral("general")).toBool();
}

} // namespace Velmar::VideoOverlay
