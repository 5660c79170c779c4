// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/DomainRecord.h"

#include <QString>
#include <QVariant>

#include <utility>

namespace Velmar::Test {

/// A project that knows its catalog and nothing else.
class ProjectRecord : public Database::DomainRecord
{
public:
    explicit ProjectRecord(QString catalogId)
        : m_catalogId(std::move(catalogId))
    {
    }

    Kind kind() const override { return Kind::Project; }
    bool isValid() const override { return true; }
    QVariant readValue(const QString &column) const override
    {
        return column == Database::catalogIdColumn ? QVariant(m_catalogId) : QVariant();
    }
    Database::CDomainObjectPointer parentObject() const override { return {}; }
    Database::CDomainObjectPointer resolveExternalObject(const QString &column) const override
    {
        Q_UNUSED(column)
        return {};
    }

private:
    QString m_catalogId;
};

} // namespace Velmar::Test
