// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QMetaType>
#include <QSharedPointer>
#include <QString>
#include <QVariant>

namespace Velmar::Database {

class CDomainObject;
using CDomainObjectPointer = QSharedPointer<CDomainObject>;

/// One record of the inspection database: a project, job, section, node, inspection or observation.
/// Held by shared pointer, for the GUI thread. A record may cease to be valid while it is held;
/// whatever is asked of it then gives an invalid or null result.
class VELMAR_PLATFORM_EXPORT CDomainObject
{
public:
    virtual ~CDomainObject();

    /// False once the record was deleted or its database closed.
    virtual bool isValid() const = 0;

    /// The value of @p column: dates and times as ISO 8601 text. Invalid for an unknown column and
    /// for an invalid record; a database NULL is a valid null value.
    virtual QVariant readValue(const QString &column) const = 0;

    /// One level up: observation, inspection, section or node, project. Null at the top.
    virtual CDomainObjectPointer parentObject() const = 0;

    /// The record that the foreign key @p column refers to; null when there is none.
    virtual CDomainObjectPointer resolveExternalObject(const QString &column) const = 0;

protected:
    CDomainObject() = default;
    Q_DISABLE_COPY(CDomainObject)
};

} // namespace Velmar::Database

Q_DECLARE_METATYPE(Velmar::Database::CDomainObjectPointer)
