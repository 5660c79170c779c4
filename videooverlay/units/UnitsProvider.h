// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/xqvideooverlay_export.h"

#include <QString>
#include <QVariant>

namespace Velmar::VideoOverlay {

/// Turns a measured value into the text shown for it and names the suffix shown after that text.
/// Hosts choose one per system value and hand it to the value's datasource; they may write their
/// own. Called on the GUI thread, once per new value.
///
/// Arguments come by value because a converter may complete them, and the operations are not const
/// because it may keep state.
class XQVIDEOOVERLAY_EXPORT UnitsProvider
{
public:
    virtual ~UnitsProvider();

    /// @p value, measured in @p from, as text in @p to. Always yields a text: what cannot be
    /// converted is shown as it came. Datasources leave @p from empty: the converter's base unit.
    virtual QString convert(QVariant value, QString from, QString to) = 0;

    /// What stands after a value shown in @p unit. Here: the unit itself.
    virtual QString getSuffix(QString unit);
};

} // namespace Velmar::VideoOverlay
