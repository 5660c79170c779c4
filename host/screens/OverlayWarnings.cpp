// SPDX-License-Identifier: Apache-2.0
#include "host/screens/OverlayWarnings.h"

#include "host/check/InstalledRules.h"
#include "host/screens/UiTexts.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/display/VideoOverlaySettings.h>
#include <videooverlay/elements/CVideoOverlayText.h>

#include <utility>

namespace Velmar::Host {

using namespace VideoOverlay;
using Kind = ElementFault::Kind;

OverlayWarnings::OverlayWarnings(CVideoOverlayManager &manager, const UiTexts &texts,
                                 std::function<QString(const Element &)> nameOf)
    : m_manager(manager)
    , m_texts(texts)
    , m_nameOf(std::move(nameOf))
{
}

QVariantList OverlayWarnings::find()
{
    if (!std::exchange(m_hasRules, true))
        m_rules = installedRules(CatalogColumns::installed());
    const double cellWidth = m_manager.colWidth();
    const double cellHeight = m_manager.rowHeight();
    if (cellWidth <= 0 || cellHeight <= 0)
        return {};
    const QRectF grid = m_manager.getSettings()->marginRect();
    m_rules.columns = qRound(grid.width() / cellWidth);
    m_rules.rows = qRound(grid.height() / cellHeight);

    const QList<Element *> elements = m_manager.getElementList();
    QVector<CheckedElement> all;
    for (Element *element : elements)
        all.append(checked(*element));
    QVariantList found;
    const QVector<ElementFault> faults = m_rules.check(all);
    for (const ElementFault &fault : faults) {
        if (elements.at(fault.element)->enabled())
            found.append(QVariantMap {{QStringLiteral("index"), fault.element},
                                      {QStringLiteral("text"), textOf(fault, elements)}});
    }
    return found;
}

CheckedElement OverlayWarnings::checked(Element &element) const
{
    CheckedElement checked;
    checked.record = element.getAllProperties();
    checked.caption = element.caption();
    // What is to be seen now is known; what is not yet there takes what its record says.
    if (element.visible() || element.type() == Element::FreePicture)
        checked.size = QSizeF(element.width() / m_manager.colWidth(),
                              element.height() / m_manager.rowHeight());
    const auto *text = qobject_cast<CVideoOverlayText *>(&element);
    if (text && (element.visible() || element.type() == Element::StaticText))
        checked.text = text->text();
    return checked;
}

QString OverlayWarnings::textOf(const ElementFault &fault, const QList<Element *> &elements) const
{
    const Element &element = *elements.at(fault.element);
    const QString name = m_nameOf(element);
    const QString value = element.getAllProperties().value(fault.key).toString();
    switch (fault.kind) {
    case Kind::OutsideGrid:
    case Kind::LeavesGrid:
        return m_texts.text(QStringLiteral("warningOutside")).arg(name);
    case Kind::CutOff:
        return m_texts.text(QStringLiteral("warningClipped")).arg(name);
    case Kind::Overlap:
        return m_texts.text(QStringLiteral("warningOverlap"))
            .arg(name, m_nameOf(*elements.at(fault.other)));
    case Kind::UnknownUnit:
        return m_texts.text(QStringLiteral("warningUnit")).arg(name, value);
    case Kind::UnknownValue:
    case Kind::UnknownColumn:
    case Kind::UnknownAlignment:
    case Kind::UnknownSource:
        break;
    }
    return m_texts.text(QStringLiteral("warningUnknown")).arg(name, value);
}

} // namespace Velmar::Host
