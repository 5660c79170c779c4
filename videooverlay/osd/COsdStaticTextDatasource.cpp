// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdStaticTextDatasource.h"

#include "videooverlay/elements/CVideoOverlayText.h"

#include <QColor>

namespace Velmar::VideoOverlay {

COsdStaticTextDatasource::COsdStaticTextDatasource(CVideoOverlayText *text, ElementParam &param)
    : COsdElementDatasource(text, param)
    , m_text(param.value(QStringLiteral("text")).toString())
{
    text->setBackgroundColor(param.value(QStringLiteral("backgroundColor")).value<QColor>());
    text->setTextColor(param.value(QStringLiteral("textColor")).value<QColor>());
    text->setText(param.value(QStringLiteral("text")).toString());
    text->setVisible(param.value(QStringLiteral("enabled")).toBool());
}

COsdStaticTextDatasource::~COsdStaticTextDatasource() = default;

QString COsdStaticTextDatasource::buildText()
{
    return m_text;
}

void COsdStaticTextDatasource::setValue(const QString &newText)
{
    m_text = newText;
    static_cast<CVideoOverlayText *>(m_element)->setText(buildText());
}

} // namespace Velmar::VideoOverlay
