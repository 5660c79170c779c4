// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/StandInRecord_p.h"

#include "videooverlay/elements/CVideoOverlayElement.h"

namespace Velmar::VideoOverlay {

StandInRecord::StandInRecord(CVideoOverlayElement &element, const ElementParam &record)
    : QObject(&element)
    , m_record(record)
{
}

StandInRecord::~StandInRecord() = default;

const StandInRecord *StandInRecord::of(const CVideoOverlayElement &element)
{
    return element.findChild<StandInRecord *>(QString(), Qt::FindDirectChildrenOnly);
}

} // namespace Velmar::VideoOverlay
