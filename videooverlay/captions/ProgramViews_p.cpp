// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/captions/ProgramViews_p.h"

namespace Velmar::VideoOverlay {

const QSet<QString> &shownProgramViews()
{
    static const QSet<QString> views {
        QStringLiteral("detail_s_inspection"),
        QStringLiteral("detail_s"),
        QStringLiteral("detail_p"),
        QStringLiteral("grid_so"),
    };
    return views;
}

} // namespace Velmar::VideoOverlay
