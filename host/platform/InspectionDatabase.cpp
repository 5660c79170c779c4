// SPDX-License-Identifier: Apache-2.0
#include "host/platform/InspectionDatabase.h"

#include "host/platform/InspectionSchema.h"
#include "host/platform/WholeFile.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTime>

#include <cmath>
#include <optional>

namespace Velmar::Database {

using Kind = DomainRecord::Kind;
using Column = InspectionSchema::Column;
using Table = InspectionSchema::Table;

namespace {

const QString inMemory = QStringLiteral(":memory:");

QString uniqueConnectionName()
{
    static int count = 0;
    return QStringLiteral("InspectionDatabase%1").arg(++count);
}

QVariant toDate(const QVariant &value)
{
    const QDate date = value.userType() == QMetaType::QString
        ? QDate::fromString(value.toString(), Qt::ISODate)
        : value.toDate();
    return date.isValid() ? date.toString(Qt::ISODate) : QVariant();
}

QVariant toTime(const QVariant &value)
{
    const QTime time = value.userType() == QMetaType::QString
        ? QTime::fromString(value.toString(), Qt::ISODate)
        : value.toTime();
    return time.isValid() ? time.toString(Qt::ISODate) : QVariant();
}

QVariant toNumber(const QVariant &value)
{
    bool ok = false;
    const double number = value.toDouble(&ok);
    return ok && std::isfinite(number) ? QVariant(number) : QVariant();
}

/// Not by QVariant::toLongLong() alone, which rounds 2.7 to 3 and says that it is fine.
QVariant toInteger(const QVariant &value)
{
    const QVariant number = toNumber(value);
    bool ok = false;
    const qlonglong integer = value.toLongLong(&ok);
    return ok && number.isValid() && number.toDouble() == std::floor(number.toDouble())
        ? QVariant(integer)
        : QVariant();
}

QVariant toText(const QVariant &value)
{
    return value.canConvert<QString>() ? QVariant(value.toString()) : QVariant();
}

/// What is stored for @p value; invalid when the column cannot hold it.
QVariant storedValue(InspectionSchema::Type type, const QVariant &value)
{
    if (value.isNull())
        return QVariant(QVariant::String); // bound as NULL
    switch (type) {
    case InspectionSchema::Type::Text:
        return toText(value);
    case InspectionSchema::Type::Number:
        return toNumber(value);
    case InspectionSchema::Type::Integer:
    case InspectionSchema::Type::Reference:
        return toInteger(value);
    case InspectionSchema::Type::Date:
        return toDate(value);
    case InspectionSchema::Type::Time:
        return toTime(value);
    }
    return {};
}

} // namespace

/// The open database. Records hold it weakly and find it gone after close().
class InspectionDatabase::Connection : public std::enable_shared_from_this<Connection>
{
public:
    Connection(QString path, Access access)
        : m_path(std::move(path))
        , m_access(access)
        , m_name(uniqueConnectionName())
    {
    }

    ~Connection()
    {
        m_statements.clear();
        if (!m_database.isValid())
            return;
        m_database.close();
        m_database = QSqlDatabase(); // else removing it would warn that it is in use
        QSqlDatabase::removeDatabase(m_name);
    }

    bool open(int busyTimeoutMs)
    {
        const QString driver = QStringLiteral("QSQLITE");
        if (!QSqlDatabase::isDriverAvailable(driver)) {
            m_error = QStringLiteral("Qt's driver for SQLite is not installed");
            return false;
        }
        m_database = QSqlDatabase::addDatabase(driver, m_name);
        m_database.setDatabaseName(m_path);
        QString options = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(busyTimeoutMs);
        if (m_access == Access::ReadOnly)
            options += QStringLiteral(";QSQLITE_OPEN_READONLY");
        m_database.setConnectOptions(options);
        if (m_database.open())
            return true;
        m_error = textOf(m_database.lastError());
        return false;
    }

    /// @p sql holds names from the schema only; values are bound. Kept prepared for the next time.
    std::optional<QSqlQuery> run(const QString &sql, const QVariantList &values = {})
    {
        auto known = m_statements.find(sql);
        if (known == m_statements.end()) {
            QSqlQuery query(m_database);
            query.setForwardOnly(true);
            if (!query.prepare(sql)) {
                m_error = textOf(query.lastError());
                return {};
            }
            known = m_statements.insert(sql, query);
        }
        QSqlQuery query = *known;
        for (int i = 0; i < values.size(); ++i)
            query.bindValue(i, values.at(i));
        if (query.exec())
            return query;
        m_error = textOf(query.lastError());
        query.finish();
        return {};
    }

    bool execute(const QString &sql, const QVariantList &values = {})
    {
        std::optional<QSqlQuery> query = run(sql, values);
        if (query)
            query->finish(); // a statement in progress would keep the file locked
        return query.has_value();
    }

    /// The first value of the first row; nothing when there is no row or the statement failed.
    std::optional<QVariant> value(const QString &sql, const QVariantList &values = {})
    {
        m_error.clear();
        std::optional<QSqlQuery> query = run(sql, values);
        if (!query)
            return {};
        std::optional<QVariant> result;
        if (query->next())
            result = query->value(0);
        else if (query->lastError().isValid())
            m_error = textOf(query->lastError());
        query->finish();
        return result;
    }

    /// Nothing when the statement failed.
    std::optional<QVector<qint64>> numbers(const QString &sql, const QVariantList &values = {})
    {
        std::optional<QSqlQuery> query = run(sql, values);
        if (!query)
            return {};
        QVector<qint64> result;
        while (query->next())
            result.append(query->value(0).toLongLong());
        const QSqlError error = query->lastError();
        query->finish();
        if (!error.isValid())
            return result;
        m_error = textOf(error);
        return {};
    }

    bool prepareSchema();
    bool begin();
    bool commit();
    void rollBack();

    RecordPointer record(Kind kind, qint64 id);
    bool exists(Kind kind, qint64 id);

    QString path() const { return m_path; }
    Access access() const { return m_access; }
    QString error() const { return m_error; }
    qint64 lastId() { return value(QStringLiteral("SELECT last_insert_rowid()"))->toLongLong(); }

private:
    static QString textOf(const QSqlError &error)
    {
        const QString text = error.databaseText().trimmed();
        return text.isEmpty() ? error.driverText().trimmed() : text;
    }

    bool isForeign();
    bool migrate(int from);

    QString m_path;
    Access m_access;
    QString m_name;
    QSqlDatabase m_database;
    QHash<QString, QSqlQuery> m_statements;
    int m_depth = 0; ///< of nested transactions
    QString m_error;
};

class InspectionDatabase::Record : public DomainRecord
{
public:
    Record(std::weak_ptr<Connection> connection, Kind kind, qint64 id)
        : m_connection(std::move(connection))
        , m_kind(kind)
        , m_id(id)
    {
    }

    Kind kind() const override { return m_kind; }
    qint64 id() const { return m_id; }

    bool isOf(const std::shared_ptr<Connection> &connection) const
    {
        return connection && m_connection.lock() == connection;
    }

    bool isValid() const override
    {
        const auto connection = m_connection.lock();
        return connection && connection->exists(m_kind, m_id);
    }

    QVariant readValue(const QString &column) const override
    {
        const Table &table = InspectionSchema::table(m_kind);
        const Column *const known = table.column(column);
        const auto connection = m_connection.lock();
        if (!known || !connection)
            return {};
        const std::optional<QVariant> value = connection->value(
            QStringLiteral("SELECT %1 FROM %2 WHERE Id = ?").arg(known->name, table.readFrom),
            {m_id});
        if (!value)
            return {};
        return value->isNull() ? QVariant(QVariant::String) : *value;
    }

    CDomainObjectPointer parentObject() const override
    {
        for (const QString &column : InspectionSchema::table(m_kind).parentColumns) {
            if (CDomainObjectPointer parent = resolveExternalObject(column))
                return parent;
        }
        return {};
    }

    CDomainObjectPointer resolveExternalObject(const QString &column) const override
    {
        const Column *const known = InspectionSchema::table(m_kind).column(column);
        if (!known || known->type != InspectionSchema::Type::Reference)
            return {};
        if (known->refersTo.size() > 1)
            return parentObject(); // the inspected object, a section or a node
        const QVariant id = readValue(column);
        const auto connection = m_connection.lock();
        if (id.isNull() || !connection)
            return {};
        return connection->record(known->refersTo.first(), id.toLongLong());
    }

private:
    std::weak_ptr<Connection> m_connection;
    Kind m_kind;
    qint64 m_id;
};

InspectionDatabase::RecordPointer InspectionDatabase::Connection::record(Kind kind, qint64 id)
{
    return RecordPointer(new Record(weak_from_this(), kind, id));
}

bool InspectionDatabase::Connection::exists(Kind kind, qint64 id)
{
    return value(QStringLiteral("SELECT 1 FROM %1 WHERE Id = ?")
                     .arg(InspectionSchema::table(kind).name),
                 {id})
        .has_value();
}

bool InspectionDatabase::Connection::begin()
{
    // The outermost takes the lock for writing at once: two programs that both read first and
    // write then would block each other.
    const QString sql = m_depth == 0 ? QStringLiteral("BEGIN IMMEDIATE")
                                     : QStringLiteral("SAVEPOINT Step%1").arg(m_depth);
    if (!execute(sql))
        return false;
    ++m_depth;
    return true;
}

bool InspectionDatabase::Connection::commit()
{
    --m_depth;
    if (execute(m_depth == 0 ? QStringLiteral("COMMIT")
                             : QStringLiteral("RELEASE Step%1").arg(m_depth)))
        return true;
    ++m_depth;
    rollBack();
    return false;
}

void InspectionDatabase::Connection::rollBack()
{
    const QString reason = m_error; // what led here, not what a second failure says
    --m_depth;
    if (m_depth == 0) {
        execute(QStringLiteral("ROLLBACK"));
    } else {
        execute(QStringLiteral("ROLLBACK TO Step%1").arg(m_depth));
        execute(QStringLiteral("RELEASE Step%1").arg(m_depth));
    }
    m_error = reason;
}

/// A file without our mark that holds something.
bool InspectionDatabase::Connection::isForeign()
{
    const QVariant mark = value(QStringLiteral("PRAGMA application_id")).value_or(0);
    return mark.toInt() != InspectionSchema::applicationId
        && value(QStringLiteral("SELECT count(*) FROM sqlite_master")).value_or(1).toInt() > 0;
}

bool InspectionDatabase::Connection::prepareSchema()
{
    // The first statement that reads the file: here a lock or garbage shows.
    const std::optional<QVariant> stored = value(QStringLiteral("PRAGMA user_version"));
    if (!stored)
        return false;
    if (isForeign()) {
        m_error = QStringLiteral("this is a database of another program");
        return false;
    }
    const int version = stored->toInt();
    if (version > InspectionSchema::version() || version < 0) {
        m_error = QStringLiteral("its schema has version %1, this program knows versions up to %2")
                      .arg(version)
                      .arg(InspectionSchema::version());
        return false;
    }
    if (version < InspectionSchema::version() && !migrate(version))
        return false;
    return execute(QStringLiteral("PRAGMA foreign_keys = ON"));
}

bool InspectionDatabase::Connection::migrate(int from)
{
    if (m_access == Access::ReadOnly) {
        m_error = QStringLiteral("its schema has version %1 and cannot be brought to version %2, "
                                 "because the file is read-only")
                      .arg(from)
                      .arg(InspectionSchema::version());
        return false;
    }
    if (!begin())
        return false;
    // Another program may have done it while the lock was waited for.
    const int now = value(QStringLiteral("PRAGMA user_version")).value_or(from).toInt();
    bool done = true;
    for (int version = now; done && version < InspectionSchema::version(); ++version) {
        for (const QString &statement : InspectionSchema::migrations().at(version))
            done = done && execute(statement);
    }
    done = done
        && execute(
               QStringLiteral("PRAGMA application_id = %1").arg(InspectionSchema::applicationId))
        && execute(QStringLiteral("PRAGMA user_version = %1").arg(InspectionSchema::version()));
    if (done)
        return commit();
    rollBack();
    return false;
}

InspectionDatabase::InspectionDatabase() = default;
InspectionDatabase::~InspectionDatabase() = default;

void InspectionDatabase::setBusyTimeoutMs(int milliseconds)
{
    m_busyTimeoutMs = qMax(0, milliseconds);
}

bool InspectionDatabase::fail(const QString &what, const QString &why)
{
    m_errorText = QStringLiteral("Cannot %1: %2").arg(what, why);
    return false;
}

bool InspectionDatabase::connectTo(const QString &path, Access access, const QString &what)
{
    const auto connection = std::make_shared<Connection>(path, access);
    if (!connection->open(m_busyTimeoutMs) || !connection->prepareSchema())
        return fail(what, connection->error());
    m_connection = connection;
    return true;
}

bool InspectionDatabase::create(const QString &path)
{
    return create(path, [] { return true; });
}

bool InspectionDatabase::create(const QString &path, const std::function<bool()> &fill)
{
    m_errorText.clear();
    const QString what = QStringLiteral("create project database \"%1\"").arg(path);
    const QFileInfo file(path);
    const bool isFile = path != inMemory;
    if (isFile && path.isEmpty())
        return fail(what, QStringLiteral("the name is empty"));
    if (isFile && (file.exists() || file.isSymLink()))
        return fail(what, QStringLiteral("there is such a file already"));
    if (isFile && !file.absoluteDir().exists())
        return fail(what, QStringLiteral("there is no directory \"%1\"").arg(file.absolutePath()));

    const std::shared_ptr<Connection> before = m_connection;
    const QString target = file.absoluteFilePath();
    const QString unfinished = isFile ? WholeFile::nameBeside(target) : path;
    bool isDone = connectTo(unfinished, Access::ReadWrite, what);
    if (isDone && !transaction(fill))
        isDone = !m_errorText.isEmpty() && fail(what, m_errorText);
    if (isDone && !isFile)
        return true;
    if (isDone) {
        m_connection.reset(); // closes it: it is whole
        QString reason;
        isDone = WholeFile::rename(unfinished, target, &reason) || fail(what, reason);
    }
    if (isDone && connectTo(target, Access::ReadWrite, what))
        return true;
    m_connection = before;
    if (isFile && !isDone) {
        QFile::remove(unfinished);
        QFile::remove(unfinished + QStringLiteral("-journal"));
    }
    return false;
}

bool InspectionDatabase::open(const QString &path, Access access)
{
    m_errorText.clear();
    const QString what = QStringLiteral("open project database \"%1\"").arg(path);
    if (path == inMemory)
        return connectTo(path, Access::ReadWrite, what);
    const QFileInfo file(path);
    if (!file.exists())
        return fail(what, QStringLiteral("there is no such file"));
    if (!file.isFile())
        return fail(what, QStringLiteral("this is not a file"));
    if (!file.isReadable())
        return fail(what, QStringLiteral("no permission to read it"));
    return connectTo(file.absoluteFilePath(), file.isWritable() ? access : Access::ReadOnly, what);
}

void InspectionDatabase::close()
{
    m_errorText.clear();
    m_connection.reset();
}

bool InspectionDatabase::isOpen() const
{
    return m_connection != nullptr;
}

bool InspectionDatabase::isReadOnly() const
{
    return m_connection && m_connection->access() == Access::ReadOnly;
}

QString InspectionDatabase::path() const
{
    return m_connection ? m_connection->path() : QString();
}

QString InspectionDatabase::errorText() const
{
    return m_errorText;
}

bool InspectionDatabase::checkOpen(const QString &what)
{
    m_errorText.clear();
    return m_connection || fail(what, QStringLiteral("no project database is open"));
}

bool InspectionDatabase::contains(const CDomainObjectPointer &record) const
{
    const auto *const known = dynamic_cast<const Record *>(record.data());
    return known && known->isOf(m_connection) && known->isValid();
}

const InspectionDatabase::Record *InspectionDatabase::own(const CDomainObjectPointer &record,
                                                          const QString &what)
{
    const auto *const known = dynamic_cast<const Record *>(record.data());
    const bool isOurs = known && known->isOf(m_connection);
    if (isOurs && known->isValid())
        return known;
    // A file that is locked cannot tell whether the record is there.
    const QString error = isOurs ? m_connection->error() : QString();
    fail(what,
         error.isEmpty() ? QStringLiteral("the record is not, or no longer, in this database")
                         : error);
    return nullptr;
}

namespace {

/// Where the number of a parent of that kind stands in @p table; empty when it cannot be one.
QString parentColumn(const Table &table, Kind parent)
{
    for (const QString &name : table.parentColumns) {
        if (table.column(name)->refersTo.contains(parent))
            return name;
    }
    return {};
}

QString placeholders(int count)
{
    QStringList marks;
    for (int i = 0; i < count; ++i)
        marks.append(QStringLiteral("?"));
    return marks.join(QStringLiteral(", "));
}

} // namespace

bool InspectionDatabase::storable(Kind kind, const Values &values, const QString &what,
                                  QStringList &columns, QVariantList &stored)
{
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        const Column *const column = InspectionSchema::table(kind).column(it.key());
        if (!column)
            return fail(what, QStringLiteral("there is no column \"%1\"").arg(it.key()));
        if (column->access == InspectionSchema::Access::ReadOnly)
            return fail(what, QStringLiteral("column %1 cannot be written").arg(it.key()));
        QVariant value = it.value();
        if (value.userType() == qMetaTypeId<CDomainObjectPointer>()) {
            const auto target = value.value<CDomainObjectPointer>();
            const Record *const record = target ? own(target, what) : nullptr;
            if (target && !record)
                return false;
            if (record && !column->refersTo.contains(record->kind()))
                return fail(
                    what, QStringLiteral("column %1 cannot refer to such a record").arg(it.key()));
            value = record ? QVariant(record->id()) : QVariant();
        }
        const QVariant converted = storedValue(column->type, value);
        if (!converted.isValid())
            return fail(what,
                        QStringLiteral("column %1 cannot hold \"%2\"")
                            .arg(it.key(), it.value().toString()));
        columns.append(column->name);
        stored.append(converted);
    }
    return true;
}

InspectionDatabase::RecordPointer
InspectionDatabase::add(Kind kind, const CDomainObjectPointer &parent, const Values &values)
{
    const Table &table = InspectionSchema::table(kind);
    const QString what = QStringLiteral("add a record to %1").arg(table.name);
    if (!checkOpen(what))
        return {};
    QStringList columns;
    QVariantList stored;
    if (!storable(kind, values, what, columns, stored))
        return {};
    if (parent || !table.parentColumns.isEmpty()) {
        const Record *const above = own(parent, what);
        if (!above)
            return {};
        const QString column = parentColumn(table, above->kind());
        if (column.isEmpty()) {
            fail(what,
                 QStringLiteral("it cannot stand below a record of %1")
                     .arg(InspectionSchema::table(above->kind()).name));
            return {};
        }
        columns.append(column);
        stored.append(above->id());
    }
    const QString sql = columns.isEmpty()
        ? QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(table.name)
        : QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
              .arg(table.name, columns.join(QStringLiteral(", ")), placeholders(columns.size()));
    if (m_connection->execute(sql, stored))
        return m_connection->record(kind, m_connection->lastId());
    fail(what, m_connection->error());
    return {};
}

bool InspectionDatabase::setValues(const CDomainObjectPointer &record, const Values &values)
{
    const QString what = QStringLiteral("change a record");
    if (!checkOpen(what))
        return false;
    const Record *const known = own(record, what);
    QStringList columns;
    QVariantList stored;
    if (!known || !storable(known->kind(), values, what, columns, stored))
        return false;
    if (columns.isEmpty())
        return true;
    const QString sql = QStringLiteral("UPDATE %1 SET %2 = ? WHERE Id = ?")
                            .arg(InspectionSchema::table(known->kind()).name,
                                 columns.join(QStringLiteral(" = ?, ")));
    return m_connection->execute(sql, stored << known->id()) || fail(what, m_connection->error());
}

bool InspectionDatabase::remove(const CDomainObjectPointer &record)
{
    const QString what = QStringLiteral("remove a record");
    if (!checkOpen(what))
        return false;
    const Record *const known = own(record, what);
    if (!known)
        return false;
    const QString sql = QStringLiteral("DELETE FROM %1 WHERE Id = ?")
                            .arg(InspectionSchema::table(known->kind()).name);
    return m_connection->execute(sql, {known->id()}) || fail(what, m_connection->error());
}

QVector<InspectionDatabase::RecordPointer> InspectionDatabase::read(Kind kind, const QString &sql,
                                                                    const QVariantList &values)
{
    const std::optional<QVector<qint64>> ids = m_connection->numbers(sql, values);
    QVector<RecordPointer> result;
    if (!ids) {
        fail(QStringLiteral("read records"), m_connection->error());
        return result;
    }
    for (const qint64 id : *ids)
        result.append(m_connection->record(kind, id));
    return result;
}

QVector<InspectionDatabase::RecordPointer> InspectionDatabase::projects()
{
    if (!checkOpen(QStringLiteral("read records")))
        return {};
    return read(Kind::Project, QStringLiteral("SELECT Id FROM PROJECT ORDER BY Id"));
}

QVector<InspectionDatabase::RecordPointer>
InspectionDatabase::children(const CDomainObjectPointer &parent, Kind kind)
{
    const QString what = QStringLiteral("read records");
    if (!checkOpen(what))
        return {};
    const Record *const above = own(parent, what);
    if (!above)
        return {};
    const Table &table = InspectionSchema::table(kind);
    const QString column = parentColumn(table, above->kind());
    if (column.isEmpty())
        return {};
    return read(
        kind, QStringLiteral("SELECT Id FROM %1 WHERE %2 = ? ORDER BY Id").arg(table.name, column),
        {above->id()});
}

bool InspectionDatabase::transaction(const std::function<bool()> &work)
{
    const QString what = QStringLiteral("change the project database");
    if (!checkOpen(what))
        return false;
    const auto connection = m_connection; // should the work close the database
    if (!connection->begin())
        return fail(what, connection->error());
    if (!work()) {
        connection->rollBack();
        return false;
    }
    return connection->commit() || fail(what, connection->error());
}

} // namespace Velmar::Database
