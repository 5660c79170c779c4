// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/DomainRecord.h"

#include <QString>
#include <QStringList>
#include <QVector>

namespace Velmar::Database {

/// What the columns of the inspection database are called and hold. The names that go into SQL
/// statements come from here and never from a caller.
struct InspectionSchema
{
    using Kind = DomainRecord::Kind;

    enum class Type { Text, Number, Integer, Date, Time, Reference };
    enum class Access { ReadWrite, ReadOnly };

    struct Column
    {
        QString name;
        Type type = Type::Text;
        Access access = Access::ReadWrite;
        QVector<Kind> refersTo; ///< of a reference: the kinds that may stand there
    };

    struct Table
    {
        QString name;
        QString readFrom; ///< the table itself, or a view that adds columns
        QVector<Column> columns;
        QStringList parentColumns; ///< exactly one of them is not NULL; none for a project

        const Column *column(const QString &columnName) const; ///< null when there is none
    };

    static const Table &table(Kind kind);

    /// Stands in the header of the file, so that other SQLite files are told apart.
    static constexpr int applicationId = 0x58714944;

    /// The statements that lead from version i to version i + 1, for each i from 0.
    static const QVector<QStringList> &migrations();

    static int version() { return migrations().size(); }
};

} // namespace Velmar::Database
