// SPDX-License-Identifier: Apache-2.0
#include "host/feed/ValueFeed.h"

#include <videooverlay/elements/CVideoOverlayText.h>
#include <videooverlay/elements/ElementParam.h>
#include <videooverlay/osd/COsdValueDatasource.h>

#include <algorithm>

namespace Velmar::Host {

using VideoOverlay::COsdValueDatasource;
using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::CVideoOverlayText;
using VideoOverlay::ElementParam;

namespace {

/// Without the lines that a free text has no room for; nobody else cuts them.
QVariant fitted(const QVariant &value, const CVideoOverlayElement &element)
{
    const int lines = element.getMaxLineNumber();
    const QString text = value.toString();
    if (element.type() != CVideoOverlayElement::FreeText || lines < 1
        || text.count(QLatin1Char('\n')) < lines)
        return value;
    return text.section(QLatin1Char('\n'), 0, lines - 1);
}

} // namespace

ValueFeed::~ValueFeed() = default;

QString ValueFeed::makeKey(const ElementParam &param)
{
    const QString bound = param.value(ElementParam::NAME_COLUMNBOUND).toString();
    const auto type = param.value(QStringLiteral("type")).value<CVideoOverlayElement::Type>();
    return bound.isEmpty() && type == CVideoOverlayElement::FreeText
        ? ElementParam::NAME_OSD_FREE_TEXT_BOX
        : bound;
}

void ValueFeed::registerElement(const QString &key, CVideoOverlayElement *element)
{
    if (key.isEmpty() || !element)
        return;
    const QVector<Place> places = m_places.value(element);
    const auto isHere = [&](const Place &place) {
        // Another element may have died at this address.
        return place.name == key && m_elements.value(key).value(place.number) == element;
    };
    if (std::any_of(places.cbegin(), places.cend(), isHere))
        return;
    const quint64 number = ++m_lastNumber;
    m_elements[key].insert(number, element);
    m_places[element].append({key, number});
}

void ValueFeed::unregisterElement(CVideoOverlayElement *element)
{
    const QVector<Place> places = m_places.take(element);
    for (const Place &place : places) {
        if (place.name == ElementParam::NAME_OSD_FREE_TEXT_BOX
            && m_elements.value(place.name).value(place.number) == element)
            noteFreeText(*element);
        Elements &elements = m_elements[place.name];
        elements.remove(place.number);
        if (elements.isEmpty())
            m_elements.remove(place.name);
    }
}

void ValueFeed::setValue(const QString &name, const QVariant &value)
{
    if (value.isNull())
        return;
    m_values.insert(name, value);
    if (name == ElementParam::NAME_OSD_FREE_TEXT_BOX)
        m_freeTextIsOver = false;
    deliver(name, value);
}

QVariant ValueFeed::value(const QString &name) const
{
    return m_values.value(name);
}

void ValueFeed::replay()
{
    const QHash<QString, QVariant> values = m_values;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        if (!m_freeTextIsOver || it.key() != ElementParam::NAME_OSD_FREE_TEXT_BOX)
            deliver(it.key(), it.value());
    }
}

/// What it says at the end, whoever wrote it; and whether it still says it.
void ValueFeed::noteFreeText(const CVideoOverlayElement &element)
{
    const auto *text = qobject_cast<const CVideoOverlayText *>(&element);
    if (!text || text->type() != CVideoOverlayElement::FreeText || !text->enabled())
        return; // one that is switched off tells nothing
    m_freeTextIsOver = !text->visible();
    if (text->visible())
        m_values.insert(ElementParam::NAME_OSD_FREE_TEXT_BOX, text->text());
}

void ValueFeed::clearValues()
{
    m_values.clear();
}

bool ValueFeed::isShown(const QString &name) const
{
    return m_elements.contains(name);
}

QStringList ValueFeed::unshownNames() const
{
    QStringList names;
    for (auto it = m_values.cbegin(); it != m_values.cend(); ++it) {
        if (!isShown(it.key()))
            names.append(it.key());
    }
    names.sort();
    return names;
}

void ValueFeed::deliver(const QString &name, const QVariant &value)
{
    // A copy: a slot that follows a text may switch the profile, and its elements go.
    const Elements elements = m_elements.value(name);
    for (const QPointer<CVideoOverlayElement> &element : elements) {
        if (!element)
            continue;
        // Only now: an element is registered before its datasource is made.
        auto *datasource
            = element->findChild<COsdValueDatasource *>(QString(), Qt::FindDirectChildrenOnly);
        if (datasource)
            datasource->update(fitted(value, *element));
    }
}

} // namespace Velmar::Host
