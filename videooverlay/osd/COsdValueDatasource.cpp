// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdValueDatasource.h"

#include "videooverlay/elements/CVideoOverlayText.h"

#include <QPointer>

#include <utility>

namespace Velmar::VideoOverlay {

COsdValueDatasource::COsdValueDatasource(QSharedPointer<TemplateCaptionResolver> resolver,
                                         CVideoOverlayText *text, ElementParam &param)
    : COsdTextDatasource(std::move(resolver), text, param)
{
    text->setUnit(param.value(QStringLiteral("unit")).toString());
    text->setVisible(param.value(QStringLiteral("enabled")).toBool());
    text->setAlignment(param.value(QStringLiteral("align")).toString());
    // After the unit was set, so that nothing is written twice.
    connect(text, &CVideoOverlayElement::captionVisibleChanged, this, &COsdTextDatasource::update);
    connect(text, &CVideoOverlayElement::unitChanged, this, &COsdTextDatasource::update);
    calculateCaption();
}

COsdValueDatasource::~COsdValueDatasource() = default;

void COsdValueDatasource::update(QVariant newValue)
{
    if (newValue.isNull())
        return;
    const QPointer<CVideoOverlayElement> element(m_element);
    setValue(newValue.toString());
    // A slot that follows the text may have switched the profile, and this object is gone as well.
    if (element)
        element->setVisible(true);
}

} // namespace Velmar::VideoOverlay
