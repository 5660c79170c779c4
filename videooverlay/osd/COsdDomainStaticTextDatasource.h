// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/database/CDomainObject.h"
#include "videooverlay/osd/COsdElementDatasource.h"

#include <QSharedPointer>
#include <QString>

namespace Velmar::VideoOverlay {

class CVideoOverlayText;

/// A static text that shows a column of the active project, and its own caption while there is no
/// value to show.
class XQVIDEOOVERLAY_EXPORT COsdDomainStaticTextDatasource : public COsdElementDatasource
{
    Q_OBJECT
public:
    /// Shows the active project's value at once and follows the active project from now on.
    COsdDomainStaticTextDatasource(CVideoOverlayText *text, ElementParam &param);
    ~COsdDomainStaticTextDatasource() override;

    void setValue(const QString &newText); ///< writes it into the element

public Q_SLOTS:
    /// @p project may be null.
    void onProjectChanged(QSharedPointer<Database::CDomainObject> project);

private:
    QString m_text;
};

} // namespace Velmar::VideoOverlay
