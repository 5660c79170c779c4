// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/models/SavedRecords_p.h"

#include "videooverlay/elements/ElementType_p.h"
#include "videooverlay/osd/StandInRecord_p.h"

#include <QSet>
#include <QStringList>

#include <algorithm>

namespace Velmar::VideoOverlay {

namespace {

const QString idKey = QStringLiteral("id");
const QString typeKey = QStringLiteral("type");
const QString imagePathKey = QStringLiteral("imagePath");

/// Not QHash::unite, which would keep both values of a key.
ElementParam united(ElementParam base, const ElementParam &above)
{
    for (auto it = above.cbegin(); it != above.cend(); ++it)
        base.insert(it.key(), it.value());
    return base;
}

/// A screen snip or a picture that could not be copied has no source of its own; what the profile
/// or the element's record says must not be lost for that.
void keepImagePath(ElementParam &record, const ElementParam &profileRecord,
                   const ElementParam &elementRecord)
{
    for (const ElementParam *earlier : {&profileRecord, &elementRecord}) {
        const QString path = earlier->value(imagePathKey).toString();
        if (record.value(imagePathKey).toString().isEmpty() && !path.isEmpty())
            record.insert(imagePathKey, path);
    }
}

/// Whether both show the same.
bool isOfTheSame(const ElementParam &one, const ElementParam &other)
{
    return typeOf(one) == typeOf(other)
        && one.value(ElementParam::NAME_COLUMNBOUND) == other.value(ElementParam::NAME_COLUMNBOUND)
        && one.value(QStringLiteral("TDIR_Key")) == other.value(QStringLiteral("TDIR_Key"));
}

} // namespace

SavedRecords::SavedRecords(const QList<ElementParam> &own,
                           const QList<CVideoOverlayElement *> &elements,
                           const QList<ElementParam> &reported, int staleIds)
    : m_own(own)
    , m_elements(elements)
    , m_reported(reported)
    , m_taken(own.size(), false)
    , m_found(elements.size(), -1)
{
    QSet<int> live;
    for (const CVideoOverlayElement *element : elements)
        live.insert(element->id());
    for (int i = 0; i < own.size(); ++i) {
        const QVariant value = own.at(i).value(idKey);
        const int id = value.toInt();
        if (isGeneral(own.at(i)))
            continue;
        if (value.toString().isEmpty() || (id <= staleIds && !live.contains(id)))
            m_withoutId.append(i);
        else if (!m_byId.contains(id))
            m_byId.insert(id, i);
    }
}

QList<ElementParam> SavedRecords::make(Unshown unshown)
{
    findById();
    // Most stand for a record that is untouched; to compare all that differ would take long.
    findStandIns([](const ElementParam &record, const ElementParam &own) {
        return record.isSharedWith(own);
    });
    findStandIns([](const ElementParam &record, const ElementParam &own) { return record == own; });
    findStandIns(isOfTheSame); // changed by the host meanwhile
    findInOrder();

    QList<ElementParam> records;
    if (unshown == Unshown::Kept) {
        for (const int index : qAsConst(m_withoutId)) {
            if (!m_taken.at(index))
                records.append(m_own.at(index));
        }
    }
    for (int row = 0; row < m_elements.size(); ++row)
        addRecord(row, records);
    const ElementParam &general = m_reported.last();
    records.append(general.contains(typeKey)
                       ? general
                       : united(ElementParam::createGeneralSettingsDefault(), general));
    return records;
}

void SavedRecords::findById()
{
    for (int row = 0; row < m_elements.size(); ++row) {
        const int index = m_byId.value(m_elements.at(row)->id(), -1);
        if (index >= 0)
            take(row, index);
    }
}

template <typename IsRecordOf> void SavedRecords::findStandIns(IsRecordOf isRecordOf)
{
    int next = 0; // records and elements mostly come in the same order
    for (int row = 0; row < m_elements.size(); ++row) {
        const StandInRecord *standIn
            = m_found.at(row) < 0 ? StandInRecord::of(*m_elements.at(row)) : nullptr;
        for (int tried = 0; standIn && tried < m_withoutId.size(); ++tried) {
            const int at = (next + tried) % m_withoutId.size();
            const int index = m_withoutId.at(at);
            if (m_taken.at(index) || !isRecordOf(standIn->record(), m_own.at(index)))
                continue;
            take(row, index);
            next = at + 1;
            break;
        }
    }
}

void SavedRecords::findInOrder()
{
    // Once they are told apart, the records that are left are those of deleted elements.
    const bool areToldApart = std::any_of(
        m_elements.cbegin(), m_elements.cend(),
        [](const CVideoOverlayElement *element) { return StandInRecord::of(*element); });
    auto next = m_withoutId.cbegin();
    for (int row = 0; row < m_elements.size(); ++row) {
        CVideoOverlayElement &element = *m_elements.at(row);
        if (m_found.at(row) >= 0 || m_reported.at(row).contains(typeKey))
            continue;
        const bool hasStandIn = StandInRecord::of(element);
        if (!hasStandIn && areToldApart)
            continue;
        while (next != m_withoutId.cend() && m_taken.at(*next))
            ++next;
        if (next == m_withoutId.cend())
            return;
        take(row, *next);
        if (!hasStandIn) // from now on it is known
            new StandInRecord(element, m_own.at(*next));
    }
}

void SavedRecords::take(int row, int index)
{
    m_found[row] = index;
    m_taken[index] = true;
}

void SavedRecords::addRecord(int row, QList<ElementParam> &records) const
{
    const CVideoOverlayElement &element = *m_elements.at(row);
    const ElementParam &reported = m_reported.at(row);
    const ElementParam own = m_found.at(row) < 0 ? ElementParam() : m_own.at(m_found.at(row));
    const ElementParam elementRecord = element.getParamObject();
    if (m_found.at(row) < 0 && !reported.contains(typeKey))
        return; // not from the profile: there is nothing to save
    if (!elementRecord.contains(idKey) && !reported.contains(typeKey)) {
        // It never got a datasource and does not know what it is. The record stays as it is.
        records.append(own);
        return;
    }
    ElementParam record = united(own, reported);
    if (typeOf(record) == CVideoOverlayElement::Watermark)
        return;
    record.insert(idKey, element.id());
    keepImagePath(record, own, elementRecord);
    records.append(record);
}

} // namespace Velmar::VideoOverlay
