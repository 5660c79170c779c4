// SPDX-License-Identifier: Apache-2.0
#include "host/feed/ValueFeed.h"

#include <videooverlay/elements/CVideoOverlayElement.h>
#include <videooverlay/elements/ElementParam.h>
#include <videooverlay/osd/COsdValueDatasource.h>

#include <algorithm>

namespace Velmar::Host {

using VideoOverlay::COsdValueDatasource;
using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::ElementParam;

ValueFeed::~ValueFeed() = default;

QString ValueFeed::makeKey(const ElementParam &param)
{
    return param.value(ElementParam::NAME_COLUMNBOUND).toString();
}

void ValueFeed::registerElement(const QString &key, CVideoOverlayElement *element)
{
    if (key.isEmpty() || !element)
        return;
    Elements &elements = m_elements[key];
    if (!elements.contains(element))
        elements.append(element);
}

void ValueFeed::unregisterElement(CVideoOverlayElement *element)
{
    for (auto it = m_elements.begin(); it != m_elements.end();) {
        it->removeAll(element);
        it = it->isEmpty() ? m_elements.erase(it) : std::next(it);
    }
}

void ValueFeed::setValue(const QString &name, const QVariant &value)
{
    if (value.isNull())
        return;
    m_values.insert(name, value);
    deliver(name, value);
}

QVariant ValueFeed::value(const QString &name) const
{
    return m_values.value(name);
}

void ValueFeed::replay()
{
    const QHash<QString, QVariant> values = m_values;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        deliver(it.key(), it.value());
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
            datasource->update(value);
    }
}

} // namespace Velmar::Host
