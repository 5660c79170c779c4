// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

namespace Velmar::VideoOverlay {

/// The integer part of @p value, or the int next to it where none holds that much; 0 for what is no
/// number. A plain conversion is undefined there, and what counts rows and columns may be any int,
/// whose place in pixels then is beyond all of them.
inline int toInt(double value)
{
    if (std::isnan(value))
        return 0;
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    return int(std::clamp(value, lowest, highest));
}

} // namespace Velmar::VideoOverlay
