// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::VideoOverlay {
class Profile;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

/// Why the library cannot read the profile file at @p path, as "FILE:LINE:COLUMN: REASON" or
/// "FILE: REASON"; empty when it can. What the library says itself names no file.
QString profileProblem(const QString &path);

/// Why @p profile, which was loaded, does not hold what its file holds; empty when it does.
QString profileProblem(const VideoOverlay::Profile &profile);

} // namespace Velmar::Host
