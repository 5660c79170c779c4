// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdImageDatasourceFactory.h"

#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/CVideoOverlayImage.h"
#include "videooverlay/elements/ElementType_p.h"
#include "videooverlay/osd/COsdImageDatasource.h"

namespace Velmar::VideoOverlay {

COsdImageDatasourceFactory::COsdImageDatasourceFactory()
    : CAbstractOsdDatasourceFactory({})
{
}

COsdImageDatasourceFactory::~COsdImageDatasourceFactory() = default;

bool COsdImageDatasourceFactory::accept(ElementParam &param)
{
    return typeOf(param) == CVideoOverlayElement::FreePicture
        && !param.value(QStringLiteral("screenSnip")).toBool();
}

COsdElementDatasource *
COsdImageDatasourceFactory::buildDatasource(CVideoOverlayElement *element, ElementParam &param,
                                            QSharedPointer<TemplateCaptionResolver> resolver)
{
    Q_UNUSED(resolver)
    auto *image = qobject_cast<CVideoOverlayImage *>(element);
    return image ? new COsdImageDatasource(image, param) : nullptr;
}

} // namespace Velmar::VideoOverlay
