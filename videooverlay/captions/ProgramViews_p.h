// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSet>
#include <QString>

namespace Velmar::VideoOverlay {

/// Keys of the program views whose columns can be shown over the video.
const QSet<QString> &shownProgramViews();

} // namespace Velmar::VideoOverlay
