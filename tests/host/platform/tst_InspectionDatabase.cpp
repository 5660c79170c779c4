// SPDX-License-Identifier: Apache-2.0
#include "host/platform/InspectionDatabase.h"

#include "tests/support/LoggedTest.h"

#include <QDate>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QTime>

#include <csignal>
#include <memory>
#include <sys/resource.h>

using Velmar::Database::CDomainObjectPointer;
using Velmar::Database::InspectionDatabase;
using Kind = InspectionDatabase::Kind;
using RecordPointer = InspectionDatabase::RecordPointer;

namespace {

const QString memory = QStringLiteral(":memory:");

/// Another program's connection, through which files are prepared, locked and looked at.
class OtherProgram
{
public:
    explicit OtherProgram(const QString &path)
    {
        m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name());
        m_database.setDatabaseName(path);
        m_database.open();
    }
    ~OtherProgram()
    {
        m_database = QSqlDatabase();
        QSqlDatabase::removeDatabase(name());
    }
    QVariant run(const char *sql)
    {
        QSqlQuery query(m_database);
        if (!query.exec(QString::fromLatin1(sql))) {
            qWarning("%s", qPrintable(query.lastError().text()));
            return {};
        }
        return query.next() ? query.value(0) : QVariant();
    }

private:
    static QString name() { return QStringLiteral("other program"); }
    QSqlDatabase m_database;
};

/// One record of each kind.
struct Project
{
    explicit Project(InspectionDatabase &db)
    {
        project = db.add(Kind::Project, {},
                         {{QStringLiteral("PRJ_Name"), QStringLiteral("Mill Lane")},
                          {QStringLiteral("PRJ_Client"), QStringLiteral("Town of Ash")}});
        job = db.add(Kind::Job, project,
                     {{QStringLiteral("JOB_Number"), QStringLiteral("J-1")},
                      {QStringLiteral("JOB_Contractor"), QStringLiteral("Pipe & Sons")}});
        from = db.add(Kind::Node, project, {{QStringLiteral("OBJ_Key"), QStringLiteral("4711")}});
        to = db.add(Kind::Node, project, {{QStringLiteral("OBJ_Key"), QStringLiteral("4712")}});
        section = db.add(Kind::Section, project,
                         {{QStringLiteral("OBJ_Key"), QStringLiteral("4711-4712")},
                          {QStringLiteral("OBJ_FromNode_FK"), QVariant::fromValue(asObject(from))},
                          {QStringLiteral("OBJ_ToNode_FK"), QVariant::fromValue(asObject(to))}});
        inspection = db.add(Kind::Inspection, section,
                            {{QStringLiteral("INS_Date"), QDate(2026, 3, 9)},
                             {QStringLiteral("INS_Time"), QTime(8, 5, 30)},
                             {QStringLiteral("INS_EndTime"), QStringLiteral("09:15:00")},
                             {QStringLiteral("INS_Job_FK"), QVariant::fromValue(asObject(job))}});
        observation = db.add(Kind::Observation, inspection,
                             {{QStringLiteral("OBS_OpCode"), QStringLiteral("BAB")},
                              {QStringLiteral("OBS_Distance"), 3.48}});
    }

    static CDomainObjectPointer asObject(const RecordPointer &record) { return record; }

    RecordPointer project, job, from, to, section, inspection, observation;
};

QVariant read(const CDomainObjectPointer &record, const char *column)
{
    return record->readValue(QString::fromLatin1(column));
}

QString key(const CDomainObjectPointer &record)
{
    return record ? read(record, "OBJ_Key").toString() : QStringLiteral("null");
}

} // namespace

class tst_InspectionDatabase : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    QString file(const char *name = "project.db") const
    {
        return m_folder->filePath(QString::fromLatin1(name));
    }

    void write(const QByteArray &bytes) const
    {
        QFile f(file());
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }

    void prepare() override { m_folder = std::make_unique<QTemporaryDir>(); }

private Q_SLOTS:
    void startsClosed()
    {
        InspectionDatabase db;
        QVERIFY(!db.isOpen());
        QVERIFY(!db.isReadOnly());
        QCOMPARE(db.path(), QString());
        QCOMPARE(db.errorText(), QString());
        QVERIFY(!db.add(Kind::Project, {}));
        QCOMPARE(db.errorText(),
                 QStringLiteral("Cannot add a record to PROJECT: no project database is open"));
        QVERIFY(db.projects().isEmpty());
        QVERIFY(!db.errorText().isEmpty());
        QVERIFY(!db.transaction([] { return true; }));
        db.close();
        QCOMPARE(db.errorText(), QString());
    }

    void storesAcrossPrograms()
    {
        {
            InspectionDatabase db;
            QVERIFY2(db.create(file()), qPrintable(db.errorText()));
            QCOMPARE(db.path(), file());
            const Project p(db);
            QVERIFY2(p.observation, qPrintable(db.errorText()));
        }
        {
            OtherProgram other(file());
            QCOMPARE(other.run("PRAGMA user_version").toInt(), 1);
            QCOMPARE(other.run("PRAGMA application_id").toInt(), 0x58714944);
            QCOMPARE(other.run("PRAGMA integrity_check").toString(), QStringLiteral("ok"));
        }
        InspectionDatabase db;
        QVERIFY2(db.open(file()), qPrintable(db.errorText()));
        QCOMPARE(db.projects().size(), 1);
        const RecordPointer project = db.projects().constFirst();
        QCOMPARE(read(project, "PRJ_Name").toString(), QStringLiteral("Mill Lane"));
        const auto nodes = db.children(project, Kind::Node);
        QCOMPARE(nodes.size(), 2);
        QCOMPARE(key(nodes.at(0)), QStringLiteral("4711"));
        QCOMPARE(key(nodes.at(1)), QStringLiteral("4712"));
        QVERIFY(db.children(project, Kind::Observation).isEmpty());
        QVERIFY(takeQtWarnings().isEmpty());
    }

    void anEmptyFileStaysOne()
    {
        write({});
        InspectionDatabase db;
        QVERIFY(!db.open(file()));
        QCOMPARE(
            db.errorText(),
            QStringLiteral("Cannot open project database \"%1\": the file is empty").arg(file()));
        QCOMPARE(QFileInfo(file()).size(), qint64(0));
        // A database without a table is no less somebody else's.
        OtherProgram(file()).run("VACUUM");
        const qint64 size = QFileInfo(file()).size();
        QVERIFY(size > 0);
        QVERIFY(!db.open(file()));
        QVERIFY2(db.errorText().endsWith(QStringLiteral(": it holds nothing")),
                 qPrintable(db.errorText()));
        QCOMPARE(QFileInfo(file()).size(), size);
    }

    void cannotOpen_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("reason");
        QTest::newRow("no file") << "none.db"
                                 << "there is no such file";
        QTest::newRow("no directory") << "none/none.db"
                                      << "there is no such file";
        QTest::newRow("a directory") << "."
                                     << "this is not a file";
    }

    void cannotOpen()
    {
        QFETCH(QString, path);
        QFETCH(QString, reason);
        path = m_folder->filePath(path);
        InspectionDatabase db;
        QVERIFY(!db.open(path));
        QCOMPARE(db.errorText(),
                 QStringLiteral("Cannot open project database \"%1\": %2").arg(path, reason));
        QVERIFY(!db.isOpen());
        QVERIFY(!QFile::exists(file("none.db"))); // nothing was made
    }

    void refusesFiles_data()
    {
        QTest::addColumn<QByteArray>("garbage");
        QTest::addColumn<QByteArray>("sql");
        QTest::addColumn<QString>("reason");
        QTest::newRow("garbage") << QByteArray(5000, 'x') << QByteArray()
                                 << "file is not a database";
        QTest::newRow("newer schema") << QByteArray() << QByteArray("PRAGMA user_version = 2")
                                      << "its schema has version 2, this program knows versions up "
                                         "to 1";
        QTest::newRow("impossible version")
            << QByteArray() << QByteArray("PRAGMA user_version = -1")
            << "its schema has version -1, this program knows versions up to 1";
        QTest::newRow("another program's")
            << QByteArray() << QByteArray("PRAGMA application_id = 7")
            << "this is a database of another program";
    }

    void refusesFiles()
    {
        QFETCH(QByteArray, garbage);
        QFETCH(QByteArray, sql);
        QFETCH(QString, reason);
        InspectionDatabase db;
        if (sql.isEmpty()) {
            write(garbage);
        } else {
            QVERIFY(db.create(file()));
            db.close();
            OtherProgram(file()).run(sql.constData());
        }
        QVERIFY(!db.open(file()));
        QCOMPARE(db.errorText(),
                 QStringLiteral("Cannot open project database \"%1\": %2").arg(file(), reason));
        QVERIFY(!db.isOpen());
    }

    void aFailedOpenKeepsWhatIsOpen()
    {
        InspectionDatabase db;
        QVERIFY(db.create(memory));
        const RecordPointer project = db.add(Kind::Project, {});
        QVERIFY(!db.open(file("none.db")));
        QVERIFY(project->isValid());
        QVERIFY(db.create(file()));
        QVERIFY(!project->isValid());
    }

    void cannotCreate_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("reason");
        QTest::newRow("there already") << "there.db"
                                       << "there is such a file already";
        QTest::newRow("no directory") << "none/new.db"
                                      << "there is no directory";
    }

    void cannotCreate()
    {
        QFETCH(QString, path);
        QFETCH(QString, reason);
        QFile there(file("there.db"));
        QVERIFY(there.open(QIODevice::WriteOnly));
        there.write("precious");
        there.close();
        InspectionDatabase db;
        QVERIFY(!db.create(m_folder->filePath(path)));
        QVERIFY2(db.errorText().contains(reason), qPrintable(db.errorText()));
        QCOMPARE(there.size(), qint64(8));
        QVERIFY(!db.create(QString()));
        QVERIFY(db.errorText().contains(QStringLiteral("the name is empty")));
    }

    void locked()
    {
        InspectionDatabase db;
        db.setBusyTimeoutMs(50);
        QVERIFY(db.create(file()));
        const RecordPointer project = db.add(Kind::Project, {});
        OtherProgram other(file());
        other.run("BEGIN EXCLUSIVE");

        QElapsedTimer watch;
        watch.start();
        QVERIFY(!db.add(Kind::Project, {}));
        QVERIFY2(db.errorText().contains(QStringLiteral("database is locked")),
                 qPrintable(db.errorText()));
        QVERIFY(!db.transaction([] { return true; }));
        QVERIFY(db.errorText().contains(QStringLiteral("database is locked")));
        // Not that the record above were missing, which cannot be looked up.
        QVERIFY(!db.add(Kind::Section, project));
        QVERIFY2(db.errorText().contains(QStringLiteral("database is locked")),
                 qPrintable(db.errorText()));
        QVERIFY(!project->readValue(QStringLiteral("PRJ_Name")).isValid());
        InspectionDatabase second;
        second.setBusyTimeoutMs(50);
        QVERIFY(!second.open(file()));
        QVERIFY(second.errorText().endsWith(QStringLiteral("database is locked")));
        QVERIFY(watch.elapsed() < 5000);

        other.run("ROLLBACK");
        QVERIFY(project->isValid());
        QVERIFY(db.add(Kind::Project, {}));
        QVERIFY(second.open(file()));
    }

    /// Reading leaves no statement behind that would keep another program from writing.
    void readingLeavesNoLock()
    {
        InspectionDatabase db;
        QVERIFY(db.create(file()));
        const Project p(db);
        QVERIFY(read(p.project, "PRJ_Name").isValid());
        QVERIFY(p.project->isValid());
        QCOMPARE(db.projects().size(), 1);
        OtherProgram other(file());
        other.run("UPDATE PROJECT SET PRJ_Name = 'Changed'");
        QCOMPARE(read(p.project, "PRJ_Name").toString(), QStringLiteral("Changed"));
    }

    void readOnly()
    {
        InspectionDatabase db;
        QVERIFY(db.create(file()));
        const Project before(db);
        QVERIFY(db.open(file(), InspectionDatabase::Access::ReadOnly));
        QVERIFY(db.isReadOnly());
        const RecordPointer project = db.projects().constFirst();
        QCOMPARE(read(project, "PRJ_Name").toString(), QStringLiteral("Mill Lane"));
        QVERIFY(!db.add(Kind::Job, project));
        QVERIFY2(db.errorText().contains(QStringLiteral("readonly")), qPrintable(db.errorText()));
        QVERIFY(!db.remove(project));
        QVERIFY(project->isValid());
    }

    void readOnlyCannotMigrate()
    {
        InspectionDatabase db;
        QVERIFY(db.create(file()));
        db.close();
        OtherProgram(file()).run("PRAGMA user_version = 0");
        QVERIFY(!db.open(file(), InspectionDatabase::Access::ReadOnly));
        QVERIFY(db.errorText().endsWith(QStringLiteral("because the file is read-only")));
    }

    /// The limit on the size of files stands for a disk without room.
    void diskRefuses()
    {
        InspectionDatabase db;
        QVERIFY(db.create(file()));
        const RecordPointer project = db.add(Kind::Project, {});
        rlimit before {};
        getrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limited = before;
        limited.rlim_cur = static_cast<rlim_t>(QFile(file()).size());
        setrlimit(RLIMIT_FSIZE, &limited);
        const QString large(1000000, QLatin1Char('x'));
        const bool stored = db.transaction([&] {
            return db.setValues(project, {{QStringLiteral("PRJ_City"), QStringLiteral("Ash")}})
                && db.setValues(project, {{QStringLiteral("PRJ_Name"), large}});
        });
        const QString reason = db.errorText();
        setrlimit(RLIMIT_FSIZE, &before);
        QVERIFY(!stored);
        QVERIFY2(reason.contains(QStringLiteral("disk")), qPrintable(reason));
        QVERIFY(read(project, "PRJ_City").isNull());
        QVERIFY(db.setValues(project, {{QStringLiteral("PRJ_Name"), large}}));
    }

    void parents()
    {
        InspectionDatabase db;
        QVERIFY(db.create(memory));
        const Project p(db);
        CDomainObjectPointer record = p.observation;
        QList<Kind> kinds;
        for (; record; record = record->parentObject())
            kinds << record.dynamicCast<Velmar::Database::DomainRecord>()->kind();
        QCOMPARE(kinds,
                 QList<Kind>({Kind::Observation, Kind::Inspection, Kind::Section, Kind::Project}));
        const RecordPointer ofNode = db.add(Kind::Inspection, p.to);
        QCOMPARE(key(ofNode->parentObject()), QStringLiteral("4712"));
        QVERIFY(p.job->parentObject());
    }

    void wrongParents()
    {
        InspectionDatabase db, other;
        QVERIFY(db.create(memory));
        QVERIFY(other.create(memory));
        const Project p(db);
        const Project foreign(other);
        QVERIFY(!db.add(Kind::Job, {}));
        QVERIFY(!db.add(Kind::Project, p.project));
        QCOMPARE(db.errorText(),
                 QStringLiteral("Cannot add a record to PROJECT: it cannot stand "
                                "below a record of PROJECT"));
        QVERIFY(!db.add(Kind::Observation, p.section));
        QVERIFY(!db.add(Kind::Inspection, p.job));
        QVERIFY(!db.add(Kind::Job, foreign.project));
        QVERIFY(!db.remove(foreign.project));
        QVERIFY(!db.setValues(p.inspection,
                              {{QStringLiteral("INS_Job_FK"),
                                QVariant::fromValue(CDomainObjectPointer(foreign.job))}}));
        QVERIFY(foreign.project->isValid());
    }

    void foreignKeys()
    {
        InspectionDatabase db;
        QVERIFY(db.create(memory));
        const Project p(db);
        const auto follow = [](const RecordPointer &record, const char *column) {
            return record->resolveExternalObject(QString::fromLatin1(column));
        };
        QCOMPARE(key(follow(p.section, "OBJ_FromNode_FK")), QStringLiteral("4711"));
        QCOMPARE(key(follow(p.section, "OBJ_ToNode_FK")), QStringLiteral("4712"));
        QCOMPARE(key(follow(p.inspection, "INS_Object_REF")), QStringLiteral("4711-4712"));
        QCOMPARE(read(follow(p.inspection, "INS_Job_FK"), "JOB_Number").toString(),
                 QStringLiteral("J-1"));
        QVERIFY(!follow(p.inspection, "INS_Number"));
        QVERIFY(!follow(p.inspection, "INS_None_FK"));
        QVERIFY(!follow(p.inspection, ""));

        const QString job = QStringLiteral("INS_Job_FK");
        QVERIFY(!db.setValues(p.inspection, {{job, 4711}}));
        QVERIFY(db.errorText().contains(QStringLiteral("FOREIGN KEY")));
        QVERIFY(!db.setValues(p.inspection,
                              {{job, QVariant::fromValue(CDomainObjectPointer(p.section))}}));
        QVERIFY(follow(p.inspection, "INS_Job_FK"));
        QVERIFY(db.setValues(p.inspection, {{job, QVariant()}}));
        QVERIFY(!follow(p.inspection, "INS_Job_FK"));
    }

    void valuesOfTheView()
    {
        InspectionDatabase db;
        QVERIFY(db.create(memory));
        const Project p(db);
        QCOMPARE(read(p.inspection, "V_INS_Customer").toString(), QStringLiteral("Town of Ash"));
        QCOMPARE(read(p.inspection, "V_INS_Contractor").toString(), QStringLiteral("Pipe & Sons"));
        QCOMPARE(read(p.inspection, "V_INS_DateOfStart").toString(), QStringLiteral("2026-03-09"));
        QCOMPARE(read(p.inspection, "V_INS_TimeOfStart").toString(), QStringLiteral("08:05:30"));
        QVERIFY(read(p.inspection, "V_INS_DateOfEnd").isNull());
        QCOMPARE(read(p.inspection, "V_INS_TimeOfEnd").toString(), QStringLiteral("09:15:00"));
        const RecordPointer ofNode = db.add(Kind::Inspection, p.to);
        QCOMPARE(read(ofNode, "V_INS_Customer").toString(), QStringLiteral("Town of Ash"));
        QVERIFY(read(ofNode, "V_INS_Contractor").isNull());
    }

    void readValue_data()
    {
        QTest::addColumn<QString>("column");
        QTest::addColumn<bool>("known");
        for (const char *known : {"INS_Number", "INS_Remark", "INS_Object_REF", "V_INS_Customer"})
            QTest::newRow(known) << QString::fromLatin1(known) << true;
        for (const char *unknown :
             {"", "Id", "ins_number", " INS_Number", "PRJ_Name", "x; DROP TABLE SECINSP",
              "INS_Number FROM SECINSP; DROP TABLE SECOBS; --", "1", "*", "\"INS_Number\""})
            QTest::newRow(unknown) << QString::fromLatin1(unknown) << false;
    }

    void readValue()
    {
        QFETCH(QString, column);
        QFETCH(bool, known);
        InspectionDatabase db;
        QVERIFY(db.create(memory));
        const Project p(db);
        QCOMPARE(p.inspection->readValue(column).isValid(), known);
        if (!known)
            QVERIFY(!db.setValues(p.inspection, {{column, QStringLiteral("x")}}));
        QVERIFY(p.observation->isValid());
    }

    void nullAndEmpty()
    {
        InspectionDatabase db;
        QVERIFY(db.create(memory));
        const Project p(db);
        QVERIFY(read(p.project, "PRJ_City").isValid());
        QVERIFY(read(p.project, "PRJ_City").isNull());
        QVERIFY(db.setValues(p.project, {{QStringLiteral("PRJ_City"), QStringLiteral("")}}));
        QVERIFY(!read(p.project, "PRJ_City").isNull());
        QCOMPARE(read(p.project, "PRJ_City").toString(), QString());
    }

    void values_data()
    {
        QTest::addColumn<QString>("column");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("expected"); // null: refused
        const auto row = [](const char *name, const char *column, const QVariant &value,
                            const char *expected) {
            QTest::newRow(name) << QString::fromLatin1(column) << value
                                << QString::fromUtf8(expected);
        };
        row("date", "INS_Date", QDate(2026, 11, 1), "2026-11-01");
        row("date as text", "INS_Date", QStringLiteral("2026-11-01"), "2026-11-01");
        row("no such day", "INS_Date", QStringLiteral("2026-02-30"), nullptr);
        row("local date", "INS_Date", QStringLiteral("01.11.2026"), nullptr);
        row("time", "INS_Time", QTime(7, 0), "07:00:00");
        row("no such time", "INS_Time", QStringLiteral("25:00"), nullptr);
        row("a code with a leading zero", "INS_Weather", QStringLiteral("03"), "03");
        row("number into a text", "INS_Number", 12, "12");
        row("letters", "INS_Remark",
            QString::fromUtf8("Stra\xc3\x9f"
                              "e '; DROP TABLE SECINSP; --"),
            "Stra\xc3\x9f"
            "e '; DROP TABLE SECINSP; --");
        row("list into a text", "INS_Remark", QVariantList {1}, nullptr);
        row("of the view", "V_INS_Customer", QStringLiteral("x"), nullptr);
        row("the parent", "INS_Section_FK", 1, nullptr);
    }

    void values()
    {
        QFETCH(QString, column);
        QFETCH(QVariant, value);
        QFETCH(QString, expected);
        InspectionDatabase db;
        QVERIFY(db.create(memory));
        const Project p(db);
        const QVariant before = p.inspection->readValue(column);
        QCOMPARE(db.setValues(p.inspection, {{column, value}}), !expected.isNull());
        if (expected.isNull()) {
            QVERIFY(db.errorText().contains(column));
            QCOMPARE(p.inspection->readValue(column), before);
        } else {
            QCOMPARE(db.errorText(), QString());
            QCOMPARE(p.inspection->readValue(column), QVariant(expected));
        }
    }

    void numbers()
    {
        InspectionDatabase db;
        QVERIFY(db.create(memory));
        const Project p(db);
        const QString size = QStringLiteral("OBJ_Size");
        QCOMPARE(read(p.observation, "OBS_Distance"), QVariant(3.48));
        QVERIFY(db.setValues(p.section, {{size, QStringLiteral("300")}}));
        QCOMPARE(read(p.section, "OBJ_Size"), QVariant(300));
        QVERIFY(!db.setValues(p.section, {{size, 2.7}}));
        QVERIFY(!db.setValues(p.section, {{size, QStringLiteral("wide")}}));
        QVERIFY(!db.setValues(p.section, {{QStringLiteral("OBJ_Length"), qQNaN()}}));
        QCOMPARE(read(p.section, "OBJ_Size"), QVariant(300));
    }

    void removing()
    {
        InspectionDatabase db;
        QVERIFY(db.create(memory));
        const Project p(db);
        QVERIFY(db.remove(p.from)); // the section stays, without its node
        QVERIFY(p.section->isValid());
        QVERIFY(read(p.section, "OBJ_FromNode_FK").isNull());
        QVERIFY(db.remove(p.job));
        QVERIFY(p.inspection->isValid());
        QVERIFY(db.remove(p.section));
        QVERIFY(!p.inspection->isValid());
        QVERIFY(!p.observation->isValid());
        QVERIFY(!read(p.observation, "OBS_OpCode").isValid());
        QVERIFY(!p.observation->parentObject());
        QVERIFY(!p.inspection->resolveExternalObject(QStringLiteral("INS_Object_REF")));
        QVERIFY(!db.remove(p.section));
        QVERIFY(!db.setValues(p.section, {}));
        QVERIFY(p.project->isValid());
    }

    void aDeadRecordStaysDead()
    {
        InspectionDatabase db;
        QVERIFY(db.create(memory));
        const RecordPointer dead = db.add(Kind::Project, {});
        QVERIFY(db.remove(dead));
        QVERIFY(db.add(Kind::Project, {}));
        QVERIFY(!dead->isValid());
    }

    void closing()
    {
        RecordPointer survivor;
        {
            InspectionDatabase db;
            QVERIFY(db.create(file()));
            const Project p(db);
            db.close();
            QVERIFY(!p.project->isValid());
            QVERIFY(!read(p.project, "PRJ_Name").isValid());
            QVERIFY(!p.observation->parentObject());
            QVERIFY(!p.section->resolveExternalObject(QStringLiteral("OBJ_ToNode_FK")));
            QVERIFY(db.open(file()));
            QVERIFY(!p.project->isValid()); // it was of the connection that is gone
            survivor = db.projects().constFirst();
            QVERIFY(survivor->isValid());
        }
        QVERIFY(!survivor->isValid());
        QVERIFY(QSqlDatabase::connectionNames().isEmpty());
        QVERIFY(takeQtWarnings().isEmpty());
    }

    void severalAtOnce()
    {
        InspectionDatabase one, two;
        QVERIFY(one.create(memory));
        QVERIFY(two.create(memory));
        const RecordPointer first
            = one.add(Kind::Project, {}, {{QStringLiteral("PRJ_Name"), QStringLiteral("one")}});
        const RecordPointer second
            = two.add(Kind::Project, {}, {{QStringLiteral("PRJ_Name"), QStringLiteral("two")}});
        one.close();
        QVERIFY(!first->isValid());
        QCOMPARE(read(second, "PRJ_Name").toString(), QStringLiteral("two"));
    }

    void transactions()
    {
        InspectionDatabase db;
        QVERIFY(db.create(memory));
        const auto add = [&] { return db.add(Kind::Project, {}) != nullptr; };
        QVERIFY(!db.transaction([&] { return add() && add() && !add(); }));
        QCOMPARE(db.projects().size(), 0);
        QVERIFY(db.transaction([&] {
            const bool inner = db.transaction([&] { return !add(); });
            return !inner && add() && db.transaction(add);
        }));
        QCOMPARE(db.projects().size(), 2);
    }
};

QTEST_GUILESS_MAIN(tst_InspectionDatabase)
#include "tst_InspectionDatabase.moc"
