// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/osd/COsdTextDatasource.h"

#include <QVariant>

namespace Velmar::VideoOverlay {

/// A text whose value is pushed in from outside: distance, speed, time, the free text box. The host
/// calls update() with every new value; nothing is polled.
class XQVIDEOOVERLAY_EXPORT COsdValueDatasource : public COsdTextDatasource
{
    Q_OBJECT
public:
    /// Takes unit, visibility and alignment from @p param; becomes a child of @p text.
    COsdValueDatasource(QSharedPointer<TemplateCaptionResolver> resolver, CVideoOverlayText *text,
                        ElementParam &param);
    ~COsdValueDatasource() override;

    using COsdTextDatasource::update;

public Q_SLOTS:
    /// Shows a new value, and the element with it. A null or invalid one is ignored; hand an empty
    /// text over as QString(""). Whoever follows the element's signals may destroy it meanwhile.
    virtual void update(QVariant newValue);
};

} // namespace Velmar::VideoOverlay
