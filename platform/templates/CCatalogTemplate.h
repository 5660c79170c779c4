// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"
#include "platform/templates/CListItem.h"

#include <QMetaType>
#include <QSharedPointer>
#include <QVector>

namespace Velmar::Templates {

class CProgramView;
class CTemplateColumn;

/// What a catalog says about the records of a project: which columns there are, how they are
/// called and what they may hold. Held by shared pointer, never changed once it is handed out.
class VELMAR_PLATFORM_EXPORT CCatalogTemplate
{
public:
    virtual ~CCatalogTemplate();

    /// How many program views there are.
    virtual int programViewCount() const = 0;
    /// Null for an index out of range; may be null within it.
    virtual const CProgramView *programView(int index) const = 0;

    /// The choices of a list column; null when @p column has no list.
    virtual const QVector<CListItem> *itemList(const CTemplateColumn &column) const = 0;

protected:
    CCatalogTemplate() = default;
    Q_DISABLE_COPY(CCatalogTemplate)
};

} // namespace Velmar::Templates

Q_DECLARE_METATYPE(QSharedPointer<Velmar::Templates::CCatalogTemplate>)
