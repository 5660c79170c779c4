// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/CAbstractOsdDatasourceFactory.h"

#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/osd/COsdBuilder.h"

#include <utility>

namespace Velmar::VideoOverlay {

CAbstractOsdDatasourceFactory::CAbstractOsdDatasourceFactory(
    QSharedPointer<TemplateCaptionResolver> resolver)
    : m_captionResolver(std::move(resolver))
{
}

CAbstractOsdDatasourceFactory::~CAbstractOsdDatasourceFactory()
{
    if (m_builder)
        m_builder->forgetFactory(this);
}

COsdElementDatasource *CAbstractOsdDatasourceFactory::getDatasource(CVideoOverlayElement *element,
                                                                    ElementParam &param)
{
    return accept(param) ? buildDatasource(element, param, m_captionResolver) : nullptr;
}

} // namespace Velmar::VideoOverlay
