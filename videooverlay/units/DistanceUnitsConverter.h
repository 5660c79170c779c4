// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/units/UnitsProvider.h"

namespace Velmar::VideoOverlay {

/// Distances, converted and formatted by the host. A unit may carry a precision tag: "m[.x]" shows
/// metres with the shorter of the host's two precisions; any other tag, like none, the finer one.
class XQVIDEOOVERLAY_EXPORT DistanceUnitsConverter : public UnitsProvider
{
public:
    /// "[": where the precision tag of a unit starts.
    static const QString osdPrecisionIndicator;

    explicit DistanceUnitsConverter();

    /// An empty @p unitFrom stands for metres, an empty @p unitTo for the user's unit. What becomes
    /// of an unknown unit is the host's decision.
    QString convert(QVariant value, QString unitFrom, QString unitTo) override;
    /// The unit without its tag. An empty @p unit stands for the user's.
    QString getSuffix(QString unit) override;
};

} // namespace Velmar::VideoOverlay
