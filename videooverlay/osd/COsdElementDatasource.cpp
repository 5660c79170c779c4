// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdElementDatasource.h"

#include "platform/appstate/AppState.h"
#include "platform/shared/GlobalLocaleData.h"
#include "platform/translation/CTranslator.h"
#include "videooverlay/elements/ElementType_p.h"

namespace Velmar::VideoOverlay {

COsdElementDatasource::COsdElementDatasource(CVideoOverlayElement *element, ElementParam &param)
    : QObject(element)
    , m_params(param)
    , m_element(element)
{
    param.insert(QStringLiteral("id"), element->id());
    element->setParamObject(param);
    element->setType(typeOf(param));
    element->setRow(param.value(QStringLiteral("row")).toInt());
    element->setColumn(param.value(QStringLiteral("col")).toInt());
    element->setEnabled(param.value(QStringLiteral("enabled")).toBool());
    element->setMaxLineNumber(param.value(QStringLiteral("maxLineNumber")).toInt());
    element->setTimeout(param.value(QStringLiteral("timeout")).toInt());
    element->setCaptionVisible(param.value(QStringLiteral("captionEnabled")).toBool());
}

COsdElementDatasource::~COsdElementDatasource() = default;

void COsdElementDatasource::detach()
{
    for (QObject *followed :
         {static_cast<QObject *>(m_element), static_cast<QObject *>(AppState::instance()),
          static_cast<QObject *>(Shared::GlobalLocaleData::instance()),
          static_cast<QObject *>(Translation::CTranslator::instance())})
        disconnect(followed, nullptr, this, nullptr);
}

} // namespace Velmar::VideoOverlay
