// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/DomainRecord.h"

#include <QHash>
#include <QString>
#include <QVariant>

#include <utility>

namespace Velmar::Test {

/// A record whose values, references and validity a test sets as it likes, for what no database
/// would hold.
class TestRecord : public Database::DomainRecord
{
public:
    explicit TestRecord(Kind kind, Database::CDomainObjectPointer parent = {})
        : m_kind(kind)
        , m_parent(std::move(parent))
    {
    }

    Kind kind() const override { return m_kind; }
    bool isValid() const override { return valid; }
    QVariant readValue(const QString &column) const override { return values.value(column); }
    Database::CDomainObjectPointer parentObject() const override { return m_parent; }
    Database::CDomainObjectPointer resolveExternalObject(const QString &column) const override
    {
        return references.value(column);
    }

    bool valid = true;
    QHash<QString, QVariant> values;
    QHash<QString, Database::CDomainObjectPointer> references;

private:
    Kind m_kind;
    Database::CDomainObjectPointer m_parent;
};

} // namespace Velmar::Test
