// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/database/CDomainObject.h"
#include "platform/platform_export.h"

#include <QString>

namespace Velmar::Database {

/// Finds what belongs to a record. Null goes in and comes out; nothing is ever thrown.
class VELMAR_PLATFORM_EXPORT CDomainObjectHelper
{
public:
    /// The identifier of the catalog that the record's project was made with; empty when unknown.
    static QString catalogIdFromObject(const CDomainObjectPointer &object);

    /// The inspection that @p object is or belongs to; null for records above an inspection.
    static CDomainObjectPointer inspectionObjectFromObject(const CDomainObjectPointer &object);

    /// @p object itself when it is an observation, else null.
    static CDomainObjectPointer observationObjectFromObject(const CDomainObjectPointer &object);

    CDomainObjectHelper() = delete;
};

} // namespace Velmar::Database
