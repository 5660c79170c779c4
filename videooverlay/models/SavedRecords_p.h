// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/ElementParam.h"

#include <QHash>
#include <QList>
#include <QVector>

namespace Velmar::VideoOverlay {

class CVideoOverlayElement;

/// Makes the records that a profile is to hold out of its own and of what the manager reports. An
/// element and its record are matched by "id". What never got a datasource was never given one: it
/// is matched by the record it stands for.
class SavedRecords
{
public:
    /// What becomes of records that were never made live.
    enum class Unshown { Dropped, Kept };
    /// @p own are the profile's records and must outlive this object. @p reported holds one record
    /// for each of @p elements and then the general settings. Ids up to @p staleIds are of an
    /// earlier overlay unless an element has them.
    SavedRecords(const QList<ElementParam> &own, const QList<CVideoOverlayElement *> &elements,
                 const QList<ElementParam> &reported, int staleIds);

    /// In the order of the elements, what was never shown before them, the general settings last.
    QList<ElementParam> make(Unshown unshown);

private:
    template <typename IsRecordOf> void findStandIns(IsRecordOf isRecordOf);
    void findById();
    void findInOrder();
    void take(int row, int index);
    void addRecord(int row, QList<ElementParam> &records) const;

    const QList<ElementParam> &m_own;
    const QList<CVideoOverlayElement *> &m_elements;
    const QList<ElementParam> &m_reported;
    QHash<int, int> m_byId;   ///< index of a record
    QVector<int> m_withoutId; ///< indices of records, in order
    QVector<bool> m_taken;    ///< for each record of the profile
    QVector<int> m_found;     ///< for each element the index of its record; -1: none
};

} // namespace Velmar::VideoOverlay
