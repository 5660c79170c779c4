// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/DomainRecord.h"
#include "platform/platform_export.h"

#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <functional>
#include <memory>

namespace Velmar::Database {

/// One project file of the reference platform: a SQLite database of projects, jobs, sections,
/// nodes, inspections and observations. Several may be open at once. GUI thread only.
/// What fails returns false or null, changes nothing and leaves its reason in errorText().
class VELMAR_PLATFORM_EXPORT InspectionDatabase
{
public:
    using Kind = DomainRecord::Kind;
    using RecordPointer = QSharedPointer<DomainRecord>;
    using Values = QVariantMap; ///< column to value

    enum class Access { ReadWrite, ReadOnly };

    InspectionDatabase();
    ~InspectionDatabase(); ///< closes

    /// How long another program's lock is waited for; from the next open on.
    void setBusyTimeoutMs(int milliseconds);

    /// Makes a new database; a file that is there already is refused. ":memory:" is a database
    /// that ends with close(). What was open before is closed when this succeeded.
    bool create(const QString &path);

    /// Makes a new database with the records that @p fill adds, in one step: when it returns false,
    /// or the program ends meanwhile, there is no file at @p path. Records of @p fill are invalid
    /// afterwards, unless the database is in memory.
    bool create(const QString &path, const std::function<bool()> &fill);

    /// Opens a file, which is brought to the present schema when it is older (not read-only) and
    /// gets its tables when it is empty. A file without permission to write opens read-only.
    bool open(const QString &path, Access access = Access::ReadWrite);

    /// Every record becomes invalid.
    void close();

    bool isOpen() const;
    bool isReadOnly() const;
    QString path() const;      ///< empty while closed
    QString errorText() const; ///< why the last operation failed; empty when it did not

    /// Adds a record below @p parent: null for a project, a project for a job, section and node, a
    /// section or node for an inspection, an inspection for an observation. Dates and times are
    /// QDate, QTime or ISO 8601 text; references are a CDomainObjectPointer or null.
    RecordPointer add(Kind kind, const CDomainObjectPointer &parent, const Values &values = {});
    bool setValues(const CDomainObjectPointer &record, const Values &values);

    /// Removes a record and everything below it; what merely refers to it then refers to nothing.
    bool remove(const CDomainObjectPointer &record);

    /// @p record is of this database and not removed.
    bool contains(const CDomainObjectPointer &record) const;

    QVector<RecordPointer> projects();
    /// In the order in which they were added.
    QVector<RecordPointer> children(const CDomainObjectPointer &parent, Kind kind);

    /// Runs @p work as one step: all of it is stored, or, when it returns false, nothing. May be
    /// nested.
    bool transaction(const std::function<bool()> &work);

private:
    Q_DISABLE_COPY(InspectionDatabase)
    class Connection;
    class Record;

    bool connectTo(const QString &path, Access access, const QString &what);
    bool fail(const QString &what, const QString &why);
    bool checkOpen(const QString &what);
    const Record *own(const CDomainObjectPointer &record, const QString &what);
    bool storable(Kind kind, const Values &values, const QString &what, QStringList &columns,
                  QVariantList &stored);
    QVector<RecordPointer> read(Kind kind, const QString &sql, const QVariantList &values = {});

    std::shared_ptr<Connection> m_connection; ///< records refer to it weakly
    QString m_errorText;
    int m_busyTimeoutMs = 2000;
};

} // namespace Velmar::Database
