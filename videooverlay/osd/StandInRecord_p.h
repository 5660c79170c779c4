// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/ElementParam.h"

#include <QObject>

namespace Velmar::VideoOverlay {

class CVideoOverlayElement;

/// Tells which record of its profile an element without a datasource stands for. Only a datasource
/// writes an "id" into a record, and without one the record could not be found again when the
/// profile is saved. A child of the element; shares the profile's record until that is changed.
class StandInRecord : public QObject
{
    Q_OBJECT
public:
    StandInRecord(CVideoOverlayElement &element, const ElementParam &record);
    ~StandInRecord() override;

    const ElementParam &record() const { return m_record; }

    static const StandInRecord *of(const CVideoOverlayElement &element); ///< null: it has none

private:
    const ElementParam m_record;
};

} // namespace Velmar::VideoOverlay
