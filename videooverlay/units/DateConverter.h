// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/units/UnitsProvider.h"

namespace Velmar::VideoOverlay {

/// The calendar date of a moment, in local time. A moment is a 64-bit number of milliseconds since
/// 1970-01-01T00:00:00 UTC; what cannot be read as one counts as 0.
class XQVIDEOOVERLAY_EXPORT DateConverter : public UnitsProvider
{
public:
    explicit DateConverter();
    /// @p text is kept and not used.
    explicit DateConverter(const QString &text);

    /// @p from is ignored. @p format is a pattern, not a unit; an empty one stands for the short
    /// date format of the user's locale.
    QString convert(QVariant value, QString from, QString format) override;
    /// Always empty.
    QString getSuffix(QString unit) override;

private:
    QString m_text; ///< part of the object's layout; nothing reads it
};

} // namespace Velmar::VideoOverlay
