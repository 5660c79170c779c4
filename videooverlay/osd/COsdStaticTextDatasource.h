// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/osd/COsdElementDatasource.h"

#include <QString>

namespace Velmar::VideoOverlay {

class CVideoOverlayText;

/// A fixed text, taken from the record.
class XQVIDEOOVERLAY_EXPORT COsdStaticTextDatasource : public COsdElementDatasource
{
    Q_OBJECT
public:
    /// Takes text, colours and visibility from @p param; becomes a child of @p text.
    COsdStaticTextDatasource(CVideoOverlayText *text, ElementParam &param);
    ~COsdStaticTextDatasource() override;

    /// The text as it is.
    QString buildText();
    void setValue(const QString &newText); ///< writes it into the element

private:
    QString m_text;
};

} // namespace Velmar::VideoOverlay
