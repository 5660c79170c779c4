// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QString>

namespace Velmar::Templates {

/// One choice of a list column.
class VELMAR_PLATFORM_EXPORT CListItem
{
public:
    /// What the database stores, and what people read in its place.
    CListItem(QString internalValue, QString caption);

    QString internalValue() const; ///< what the database holds; compared as text
    QString caption() const;       ///< what is shown, in the catalog's language

private:
    QString m_internalValue;
    QString m_caption;
};

} // namespace Velmar::Templates
