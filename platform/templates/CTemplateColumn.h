// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QString>

namespace Velmar::Templates {

/// One column of a table as a catalog template describes it. Lives as long as its template.
class VELMAR_PLATFORM_EXPORT CTemplateColumn
{
public:
    /// What a column holds.
    enum class Type {
        Invalid, ///< the template does not say, or says something unknown
        Text,
        Number,
        Date,
        Time,
        List, ///< the record holds the internal value of a list item
    };

    virtual ~CTemplateColumn();

    virtual QString key() const = 0;      ///< name of the database column, such as "INS_Inspector"
    virtual QString tableKey() const = 0; ///< table that the column belongs to, such as "SECTION"
    virtual QString caption() const = 0;  ///< in the catalog's language
    /// What the column holds.
    virtual Type type() const = 0;
    virtual bool isOsd() const = 0; ///< the column may be shown over the video

protected:
    CTemplateColumn() = default;
    Q_DISABLE_COPY(CTemplateColumn)
};

} // namespace Velmar::Templates
