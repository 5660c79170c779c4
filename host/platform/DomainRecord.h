// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/database/CDomainObject.h"
#include "platform/platform_export.h"

namespace Velmar::Database {

/// A record of the reference platform: knows which table it is from.
class VELMAR_PLATFORM_EXPORT DomainRecord : public CDomainObject
{
public:
    enum class Kind { Project, Job, Section, Node, Inspection, Observation };

    ~DomainRecord() override;
    virtual Kind kind() const = 0;
};

/// Column of a project that names the catalog it was made with.
extern VELMAR_PLATFORM_EXPORT const QString catalogIdColumn;

} // namespace Velmar::Database
