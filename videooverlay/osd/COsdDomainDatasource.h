// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/osd/COsdTextDatasource.h"

#include <QSet>
#include <QString>

namespace Velmar::VideoOverlay {

/// A text that shows a column of the inspection database.
class XQVIDEOOVERLAY_EXPORT COsdDomainDatasource : public COsdTextDatasource
{
    Q_OBJECT
public:
    /// The program views of a catalog template whose columns may be shown over the video.
    static const QSet<QString> &allowedProgramViews();
};

} // namespace Velmar::VideoOverlay
