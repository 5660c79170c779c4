// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdElementDatasource.h"

#include "videooverlay/elements/CVideoOverlayElement.h"

namespace Velmar::VideoOverlay {

COsdElementDatasource::COsdElementDatasource(CVideoOverlayElement *element, ElementParam &param)
    : QObject(element)
    , m_params(param)
    , m_element(element)
{
    param.insert(QStringLiteral("id"), element->id());
    element->setParamObject(param);
    element->setType(param.value(QStringLiteral("type")).value<CVideoOverlayElement::Type>());
    element->setRow(param.value(QStringLiteral("row")).toInt());
    element->setColumn(param.value(QStringLiteral("col")).toInt());
    element->setEnabled(param.value(QStringLiteral("enabled")).toBool());
    element->setMaxLineNumber(param.value(QStringLiteral("maxLineNumber")).toInt());
    element->setTimeout(param.value(QStringLiteral("timeout")).toInt());
    element->setCaptionVisible(param.value(QStringLiteral("captionEnabled")).toBool());
}

COsdElementDatasource::~COsdElementDatasource() = default;

} // namespace Velmar::VideoOverlay
