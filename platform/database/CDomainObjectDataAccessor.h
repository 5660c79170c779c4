// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/database/CDomainObject.h"
#include "platform/platform_export.h"

#include <QString>
#include <QVariant>

namespace Velmar::Database {

/// Reads columns of one record at a time.
class VELMAR_PLATFORM_EXPORT CDomainObjectDataAccessor
{
public:
    CDomainObjectDataAccessor();
    ~CDomainObjectDataAccessor();

    void setDomainObject(const CDomainObjectPointer &object); ///< may be null

    /// As CDomainObject::readValue(); invalid without a record.
    QVariant readValue(const QString &column) const;

private:
    Q_DISABLE_COPY(CDomainObjectDataAccessor)
    CDomainObjectPointer m_object;
};

} // namespace Velmar::Database
