// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QVariant>

#include <optional>

namespace Velmar::VideoOverlay {

/// @p value as a number; empty, and traced, when it is none. One line for every quantity, and it
/// names the angle: whoever searches logs for it finds them all.
std::optional<double> measuredValue(const QVariant &value);

} // namespace Velmar::VideoOverlay
