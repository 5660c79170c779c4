// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QString>

namespace Velmar::Shared {

/// Lengths in the units that the host knows.
class VELMAR_PLATFORM_EXPORT LengthUnitsConverter
{
public:
    /// @p value, given in @p from, in @p to. Never fails: with a unit that the host does not know,
    /// the value comes back unconverted.
    static double convert(const QString &from, const QString &to, double value);

    LengthUnitsConverter() = delete;
};

} // namespace Velmar::Shared
