// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QString>

namespace Velmar::Templates {

class CTemplateColumn;

/// One screen of the inspection program as a catalog template describes it: an ordered choice of
/// columns. Lives as long as its template.
class VELMAR_PLATFORM_EXPORT CProgramView
{
public:
    virtual ~CProgramView();

    virtual QString key() const = 0; ///< such as "detail_s_inspection"
    /// How many columns there are.
    virtual int columnCount() const = 0;
    /// Null for an index out of range.
    virtual const CTemplateColumn *column(int index) const = 0;

protected:
    CProgramView() = default;
    Q_DISABLE_COPY(CProgramView)
};

} // namespace Velmar::Templates
