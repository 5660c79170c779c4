// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdTextDatasource.h"

#include "platform/shared/GlobalLocaleData.h"
#include "platform/translation/CTranslator.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/units/UnitsProvider.h"

#include <QColor>

#include <algorithm>
#include <utility>

namespace Velmar::VideoOverlay {

namespace {

/// Far beyond the widest grid: a wider padding only costs memory, and the widest cannot be had.
constexpr int MaxWidth = 10000;

} // namespace

COsdTextDatasource::COsdTextDatasource(QSharedPointer<TemplateCaptionResolver> resolver,
                                       CVideoOverlayText *text, ElementParam &param)
    : COsdElementDatasource(text, param)
    , m_captionResolver(std::move(resolver))
{
    text->setBackgroundColor(param.value(QStringLiteral("backgroundColor")).value<QColor>());
    text->setTextColor(param.value(QStringLiteral("textColor")).value<QColor>());
    text->setCaption(m_caption);
    setCaption(param.value(ElementParam::NAME_COLUMNCAPTION).toString());
    if (m_captionResolver)
        connect(m_captionResolver.data(), &TemplateCaptionResolver::resolverReady, this,
                &COsdTextDatasource::calculateCaption);
    connect(Shared::GlobalLocaleData::instance(), &Shared::GlobalLocaleData::localeChanged, this,
            &COsdTextDatasource::update);
    connect(Translation::CTranslator::instance(), &Translation::CTranslator::currentLocaleChanged,
            this, &COsdTextDatasource::renewCaption);
    if (m_captionResolver && m_captionResolver->catalogTemplate())
        calculateCaption();
}

COsdTextDatasource::~COsdTextDatasource() = default;

void COsdTextDatasource::detach()
{
    COsdElementDatasource::detach();
    if (m_captionResolver)
        disconnect(m_captionResolver.data(), nullptr, this, nullptr);
}

void COsdTextDatasource::setUnitProvider(UnitsProvider *provider)
{
    m_unitsProvider = QSharedPointer<UnitsProvider>(provider, [](UnitsProvider *) {});
    update();
}

QString COsdTextDatasource::buildText()
{
    QString body = appendValue(); // before the unit: a provider may keep state
    body += appendUnit();
    if (!body.isEmpty()) {
        const int width = m_params.value(QStringLiteral("max_width")).toInt();
        body = body.rightJustified(std::min(width, MaxWidth), QLatin1Char(' '), false);
    }
    return appendCaption() + body;
}

QString COsdTextDatasource::appendCaption()
{
    return m_element->captionVisible() ? m_caption + QStringLiteral(": ") : QString();
}

QString COsdTextDatasource::appendValue()
{
    return m_unitsProvider
        ? m_unitsProvider->convert(QVariant(m_value), QString(), m_element->unit())
        : m_value;
}

QString COsdTextDatasource::appendUnit()
{
    return m_unitsProvider ? QLatin1Char(' ') + m_unitsProvider->getSuffix(m_element->unit())
                           : QString();
}

void COsdTextDatasource::calculateCaption()
{
    if (!m_captionResolver)
        return;
    const QString caption = m_captionResolver->getCaption(m_params);
    if (!caption.isEmpty())
        setCaption(caption);
}

void COsdTextDatasource::update()
{
    textElement()->setText(buildText());
}

void COsdTextDatasource::setValue(QString newValue)
{
    m_value = std::move(newValue);
    update();
}

void COsdTextDatasource::setCaption(QString newCaption)
{
    m_element->setCaption(newCaption);
    if (m_caption == newCaption)
        return;
    m_caption = std::move(newCaption);
    update();
}

void COsdTextDatasource::renewCaption()
{
    calculateCaption();
}

CVideoOverlayText *COsdTextDatasource::textElement() const
{
    return static_cast<CVideoOverlayText *>(m_element);
}

} // namespace Velmar::VideoOverlay
