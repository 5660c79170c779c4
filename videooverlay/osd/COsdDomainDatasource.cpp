// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdDomainDatasource.h"

namespace Velmar::VideoOverlay {

const QSet<QString> &COsdDomainDatasource::allowedProgramViews()
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
