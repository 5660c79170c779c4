// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::VideoOverlay {
class VideoOverlayProfilesModel;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

/// The row of the profile that people call @p text: by its name or, when none has that, by the path
/// of its file, which may start from the working directory. -1 when there is none.
int profileRow(const VideoOverlay::VideoOverlayProfilesModel &profiles, const QString &text);

/// Why no profile can be called @p name, for people; empty when one can, unless there is one
/// already.
QString profileNameFault(const QString &name);

} // namespace Velmar::Host
