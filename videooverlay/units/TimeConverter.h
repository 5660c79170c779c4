// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/units/UnitsProvider.h"

namespace Velmar::VideoOverlay {

/// The clock time of a moment, in local time. A moment is a 64-bit number of milliseconds since
/// 1970-01-01T00:00:00 UTC; what cannot be read as one counts as 0.
class XQVIDEOOVERLAY_EXPORT TimeConverter : public UnitsProvider
{
public:
    explicit TimeConverter();

    /// @p from is ignored. @p format is a pattern, not a unit; an empty one stands for the user's.
    /// A time zone at its end (" t") is left out; anywhere else it is shown. Texts such as AM and
    /// PM are in the language of the user interface.
    QString convert(QVariant value, QString from, QString format) override;
    /// Always empty.
    QString getSuffix(QString unit) override;

private:
    QString m_text; ///< part of the object's layout; nothing reads it
};

} // namespace Velmar::VideoOverlay
