// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/units/UnitsProvider.h"

namespace Velmar::VideoOverlay {

/// A duration, such as that of a video, up to 23:59:59.999. It is a number of milliseconds, of
/// which the lower 32 bits are read; what cannot be read as one counts as 0.
class XQVIDEOOVERLAY_EXPORT ElapsedTimeConverter : public UnitsProvider
{
public:
    explicit ElapsedTimeConverter();

    /// @p from is ignored. @p format is a pattern, not a unit; an empty one stands for "hh:mm:ss".
    /// A negative duration, or one of a day or more, yields an empty text.
    QString convert(QVariant value, QString from, QString format) override;
    /// Always empty.
    QString getSuffix(QString unit) override;
};

} // namespace Velmar::VideoOverlay
