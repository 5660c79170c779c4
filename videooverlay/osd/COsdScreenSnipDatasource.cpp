// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdScreenSnipDatasource.h"

#include "videooverlay/elements/CVideoOverlayImage.h"

namespace Velmar::VideoOverlay {

COsdScreenSnipDatasource::COsdScreenSnipDatasource(CVideoOverlayImage *image, ElementParam &param)
    : COsdElementDatasource(image, param)
{
    image->setScaleFactor(param.value(QStringLiteral("scale")).toDouble());
    image->setVisible(param.value(QStringLiteral("enabled")).toBool());
    image->setCaption(param.value(QStringLiteral("caption")).toString());
}

COsdScreenSnipDatasource::~COsdScreenSnipDatasource() = default;

void COsdScreenSnipDatasource::update(QImage picture)
{
    // A picture over somebody else's pixels would change with them.
    static_cast<CVideoOverlayImage *>(m_element)->setImage(picture.copy());
}

} // namespace Velmar::VideoOverlay
