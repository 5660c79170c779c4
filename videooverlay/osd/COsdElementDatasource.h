// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QObject>

namespace Velmar::VideoOverlay {

class CVideoOverlayElement;

/// Feeds one overlay element with its content and is its child. Applies the element's parameter
/// record to it once, when it is made. For the GUI thread; reports no errors: what is missing from
/// the record reads as 0, false, empty or an invalid colour.
class XQVIDEOOVERLAY_EXPORT COsdElementDatasource : public QObject
{
    Q_OBJECT
public:
    /// Becomes a child of @p element. Writes the element's id into @p param, but not into the copy
    /// kept here, and makes @p param the element's record.
    COsdElementDatasource(CVideoOverlayElement *element, ElementParam &param);
    ~COsdElementDatasource() override;

    /// Follows nothing any more. For an element that is about to go but cannot be destroyed yet.
    void detach();

protected:
    ElementParam m_params;           ///< as it was given, without the id
    CVideoOverlayElement *m_element; ///< the parent; never null
};

} // namespace Velmar::VideoOverlay
