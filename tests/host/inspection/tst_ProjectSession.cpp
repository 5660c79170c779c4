// SPDX-License-Identifier: Apache-2.0
#include "host/inspection/ProjectSession.h"

#include "host/platform/AppStateControl.h"
#include "host/platform/CatalogStore.h"
#include "platform/appstate/AppState.h"
#include "tests/support/LoggedTest.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using Velmar::AppState;
using Velmar::AppStateControl;
using Velmar::CATManagement::CatalogStore;
using Velmar::Database::CDomainObjectPointer;
using Velmar::Host::ProjectSession;
using RecordPointer = ProjectSession::RecordPointer;

namespace {

int writesUntilKilled = 0; ///< 0: any number
constexpr int killed = 77;

} // namespace

/// Stands in for that of the system.
extern "C" Q_DECL_EXPORT ssize_t pwrite64(int file, const void *bytes, size_t size, off64_t offset)
{
    if (writesUntilKilled > 0 && --writesUntilKilled == 0)
        ::_exit(killed);
    return ::syscall(SYS_pwrite64, file, bytes, size, offset);
}

namespace {

const QString demoFile = QStringLiteral(DEMO_DIRECTORY "/project/demo.json");
const QString catalog = QStringLiteral("EN13508-2-ENG-GB");

QString read(const CDomainObjectPointer &record, const char *column)
{
    return record->readValue(QString::fromLatin1(column)).toString();
}

/// Writes down what is announced, and what a receiver who asks is told meanwhile.
class Announcements : public QObject
{
public:
    Announcements()
    {
        const AppState *const state = AppState::instance();
        connect(state, &AppState::activeProjectChanged, this, [this](auto project) {
            const bool stored = AppState::instance()->getActiveProject() == project;
            const char *const kind
                = AppState::instance()->isSimpleProjectActive() ? "simple" : "project";
            note(kind, project, stored && isOf(&ProjectSession::project, project));
        });
        connect(state, &AppState::activeInspectionChanged, this, [this](auto inspection) {
            const bool stored = AppStateControl::activeInspection() == inspection;
            note("inspection", inspection, stored && isOf(&ProjectSession::inspection, inspection));
        });
        connect(state, &AppState::observationCreated, this,
                [this](auto observation) { note("observation", observation, true); });
        connect(state, &AppState::templateLoadCompleted, this,
                [this](const QString &id) { m_lines << QStringLiteral("template ") + id; });
    }

    QStringList take() { return std::exchange(m_lines, {}); }

    /// Asked to be alive while the project that follows it is announced.
    CDomainObjectPointer watched;
    const ProjectSession *session = nullptr; ///< asked as well

private:
    bool isOf(RecordPointer (ProjectSession::*ask)() const, const CDomainObjectPointer &record)
    {
        return !session || (session->*ask)() == record;
    }

    void note(const char *what, const CDomainObjectPointer &record, bool stored)
    {
        QString line = QString::fromLatin1(what);
        if (!record)
            line += QStringLiteral(" null");
        else if (!record->isValid())
            line += QStringLiteral(" dead");
        if (!stored)
            line += QStringLiteral(" too early");
        if (watched && !watched->isValid())
            line += QStringLiteral(" after the database was closed");
        m_lines << line;
    }

    QStringList m_lines;
};

/// What opening the demonstration announces; the template only where its catalog is installed.
QStringList opening()
{
    QStringList lines {QStringLiteral("project")};
    if (CatalogStore::instance().catalogIds().contains(catalog))
        lines << QStringLiteral("template ") + catalog;
    return lines;
}

} // namespace

class tst_ProjectSession : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    QString file(const char *name) const { return m_folder->filePath(QString::fromLatin1(name)); }

    void prepare() override
    {
        m_folder = std::make_unique<QTemporaryDir>();
        CatalogStore::instance().setDirectory(QStringLiteral(CATALOG_DIRECTORY));
    }

private Q_SLOTS:
    void demo()
    {
        ProjectSession session;
        QVERIFY2(session.createDemo(file("demo.db"), demoFile), qPrintable(session.errorText()));
        QVERIFY(!session.isOpen());
        QVERIFY2(session.open(file("demo.db")), qPrintable(session.errorText()));
        QCOMPARE(read(session.project(), "PRJ_CatalogId"), catalog);
        const auto inspections = session.inspections();
        QCOMPARE(inspections.size(), 2);
        const auto section = inspections.at(0)->parentObject();
        QCOMPARE(read(section, "OBJ_Key"), QStringLiteral("4711-4712"));
        QCOMPARE(read(section, "OBJ_Size"), QStringLiteral("300"));
        QCOMPARE(read(section, "OBJ_Material"), QStringLiteral("CO"));
        const auto from = section->resolveExternalObject(QStringLiteral("OBJ_FromNode_FK"));
        QVERIFY(from);
        QCOMPARE(read(from, "OBJ_Key"), QStringLiteral("4711"));
        QCOMPARE(read(inspections.at(0), "V_INS_Contractor"), QStringLiteral("Hale Pipe Survey"));
        QCOMPARE(read(inspections.at(1)->parentObject(), "OBJ_Key"), QStringLiteral("4713"));
        using Kind = Velmar::Database::InspectionDatabase::Kind;
        QCOMPARE(session.database()->children(inspections.at(0), Kind::Observation).size(), 5);
    }

    void demoOfAnotherCatalog()
    {
        ProjectSession session;
        QVERIFY(session.createDemo(file("demo.db"), demoFile, QStringLiteral("EN13508-2-DEU-DE")));
        QVERIFY(!session.createDemo(file("demo.db"), demoFile)); // never over a file
        QVERIFY(session.errorText().contains(QStringLiteral("there is such a file already")));
        session.open(file("demo.db"));
        QCOMPARE(read(session.project(), "PRJ_CatalogId"), QStringLiteral("EN13508-2-DEU-DE"));
    }

    /// What a killed program left under the name would refuse it for good.
    void killedWhileItIsMade()
    {
        int status = -1;
        const pid_t child = ::fork();
        if (child == 0) {
            ProjectSession session;
            writesUntilKilled = 20; // in the middle of the records
            session.createDemo(file("demo.db"), demoFile);
            ::_exit(0);
        }
        QVERIFY(child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status));
        QCOMPARE(WEXITSTATUS(status), killed);
        QVERIFY(!QFile::exists(file("demo.db")));
        ProjectSession session;
        QVERIFY2(session.createDemo(file("demo.db"), demoFile), qPrintable(session.errorText()));
        QVERIFY(session.open(file("demo.db")));
        QCOMPARE(session.inspections().size(), 2);
    }

    void brokenDemo_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char *name, const char *text, const char *reason) {
            QTest::newRow(name) << QByteArray(text) << QString::fromLatin1(reason);
        };
        row("empty", "", "at byte");
        row("cut off", R"({"project": {)", "at byte");
        row("list", "[]", "it has no \"project\"");
        row("unknown column", R"({"project": {"PRJ_None": 1}})", "there is no column \"PRJ_None\"");
        row("unknown node", R"({"project": {}, "sections": [{"OBJ_FromNode_FK": "9"}]})",
            "OBJ_FromNode_FK refers to \"9\", which is not there");
        row("unknown job",
            R"({"project": {}, "nodes": [{"OBJ_Key": "1"}],
                "inspections": [{"object": "1", "INS_Job_FK": "J"}]})",
            "INS_Job_FK refers to \"J\", which is not there");
        row("unknown object", R"({"project": {}, "inspections": [{"object": "1"}]})",
            "there is no section or node \"1\"");
        row("no date",
            R"({"project": {}, "nodes": [{"OBJ_Key": "1"}],
                "inspections": [{"object": "1", "INS_Date": "tomorrow"}]})",
            "column INS_Date cannot hold \"tomorrow\"");
        QTest::newRow("far larger than any") << R"({"project": {}})" + QByteArray(16 << 20, ' ')
                                             << QStringLiteral("larger than 16 MiB");
    }

    void brokenDemo()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, reason);
        QFile json(file("demo.json"));
        QVERIFY(json.open(QIODevice::WriteOnly));
        json.write(text);
        json.close();
        ProjectSession session;
        QVERIFY(!session.createDemo(file("demo.db"), file("demo.json")));
        QVERIFY2(session.errorText().contains(reason), qPrintable(session.errorText()));
        QVERIFY2(session.errorText().contains(file("demo.json")), qPrintable(session.errorText()));
        QVERIFY(!QFile::exists(file("demo.db")));
    }

    void order()
    {
        ProjectSession session;
        session.createDemo(file("one.db"), demoFile);
        session.createDemo(file("two.db"), demoFile);
        Announcements announced;
        announced.session = &session;
        QVERIFY(session.open(file("one.db")));
        QCOMPARE(announced.take(), opening());
        QCOMPARE(session.hasTemplate(), opening().size() == 2);

        const RecordPointer inspection = session.inspections().constFirst();
        QVERIFY(session.startInspection(inspection));
        session.announceInspectionAgain();
        const QString begun = QStringLiteral("inspection");
        QCOMPARE(announced.take(), QStringList({begun, begun}));

        announced.watched = inspection;
        const QString ended = QStringLiteral("inspection null");
        QVERIFY(session.open(file("two.db")));
        QCOMPARE(announced.take(), QStringList(ended) + opening());
        QVERIFY(!inspection->isValid());
        QVERIFY(!session.inspection());

        const RecordPointer next = session.inspections().constLast();
        session.startInspection(next);
        announced.take();
        announced.watched = next;
        session.close();
        QCOMPARE(announced.take(), QStringList({ended, QStringLiteral("project null")}));
        QVERIFY(!next->isValid());
        session.close();
        session.endInspection();
        session.announceInspectionAgain();
        QCOMPARE(announced.take(), QStringList());
    }

    void aFailedOpenChangesNothing()
    {
        ProjectSession session;
        session.createDemo(file("demo.db"), demoFile);
        session.open(file("demo.db"));
        const RecordPointer inspection = session.inspections().constFirst();
        session.startInspection(inspection);
        Velmar::Database::InspectionDatabase().create(file("empty.db"));
        Announcements announced;
        QVERIFY(!session.open(file("none.db")));
        QVERIFY(session.errorText().contains(QStringLiteral("there is no such file")));
        QVERIFY(!session.open(file("empty.db")));
        QVERIFY(session.errorText().contains(QStringLiteral("holds no project")));
        QVERIFY(!session.openSimple(file("none")));
        QVERIFY(session.errorText().contains(QStringLiteral("there is no such folder")));
        QCOMPARE(announced.take(), QStringList());
        QVERIFY(inspection->isValid());
        QCOMPARE(session.inspection(), inspection);
    }

    void simple()
    {
        ProjectSession session;
        Announcements announced;
        QVERIFY2(session.openSimple(m_folder->path()), qPrintable(session.errorText()));
        QCOMPARE(announced.take(), QStringList(QStringLiteral("simple")));
        QVERIFY(session.isSimple());
        QVERIFY(session.inspections().isEmpty());
        QCOMPARE(read(session.project(), "PRJ_Name"), QFileInfo(m_folder->path()).fileName());
        session.close();
        QCOMPARE(announced.take(), QStringList(QStringLiteral("project null")));
        QVERIFY(!session.isSimple());
    }

    void startInspectionRefuses()
    {
        ProjectSession session, other;
        session.createDemo(file("one.db"), demoFile);
        QVERIFY(!session.startInspection({}));
        QVERIFY(session.errorText().contains(QStringLiteral("no project is open")));
        session.open(file("one.db"));
        const RecordPointer removed = session.inspections().constLast();
        session.database()->remove(removed);
        Velmar::Database::InspectionDatabase database;
        database.open(file("one.db"));
        using Kind = Velmar::Database::InspectionDatabase::Kind;
        const auto foreignSection
            = database.children(database.projects().constFirst(), Kind::Section).at(1);
        const auto foreign = database.children(foreignSection, Kind::Inspection).constFirst();
        Announcements announced;
        for (const RecordPointer &wrong : {RecordPointer(), session.project(), removed, foreign}) {
            QVERIFY(!session.startInspection(wrong));
            QVERIFY(session.errorText().contains(QStringLiteral("no such inspection")));
        }
        QCOMPARE(announced.take(), QStringList());
    }

    void observations()
    {
        ProjectSession session;
        session.createDemo(file("demo.db"), demoFile);
        ProjectSession::Observation entry;
        entry.code = QStringLiteral("BAB");
        entry.distance = 17.6;
        entry.remark = QStringLiteral("Along");
        entry.time = QTime(8, 9, 10);
        session.open(file("demo.db"));
        Announcements announced;
        QVERIFY(!session.createObservation(entry));
        QVERIFY(session.errorText().contains(QStringLiteral("no inspection is active")));
        session.startInspection(session.inspections().constFirst());
        announced.take();

        RecordPointer made = session.createObservation(entry);
        QVERIFY2(made, qPrintable(session.errorText()));
        QCOMPARE(announced.take(), QStringList(QStringLiteral("observation")));
        QCOMPARE(read(made, "OBS_OpCode"), QStringLiteral("BAB"));
        QCOMPARE(read(made, "OBS_Observation"), QStringLiteral("BAB"));
        QCOMPARE(read(made, "OBS_Distance"), QStringLiteral("17.6"));
        QCOMPARE(read(made, "OBS_Memo"), QStringLiteral("Along"));
        QCOMPARE(read(made, "OBS_Time"), QStringLiteral("08:09:10"));
        entry.text = QStringLiteral("Crack");
        QCOMPARE(read(session.createObservation(entry), "OBS_Observation"),
                 QStringLiteral("Crack"));
        announced.take();

        entry.distance = qQNaN();
        QVERIFY(!session.createObservation(entry));
        QVERIFY(session.errorText().contains(QStringLiteral("OBS_Distance")));
        QCOMPARE(announced.take(), QStringList());
    }

    void runThatIsPlayedAgain()
    {
        ProjectSession session;
        session.createDemo(file("demo.db"), demoFile);
        ProjectSession::Observation entry;
        entry.code = QStringLiteral("BAB");
        entry.distance = 23.456;
        session.open(file("demo.db"));
        QVERIFY(!session.repeatObservation(entry));
        QVERIFY(session.errorText().contains(QStringLiteral("no inspection is active")));
        const RecordPointer inspection = session.inspections().constFirst();
        const auto count = [&] {
            using Kind = Velmar::Database::DomainRecord::Kind;
            return session.database()->children(inspection, Kind::Observation).size();
        };
        const int before = count();
        for (int run = 0; run < 3; ++run) {
            QVERIFY(session.startInspection(inspection));
            Announcements announced;
            entry.remark = QStringLiteral("seen from both sides");
            QVERIFY(session.repeatObservation(entry));
            QVERIFY(session.repeatObservation(entry)); // a run may say the same twice
            entry.remark.clear();
            const RecordPointer last = session.repeatObservation(entry);
            QCOMPARE(read(last, "OBS_Memo"), QString());
            QCOMPARE(announced.take(),
                     (QStringList {QStringLiteral("observation"), QStringLiteral("observation"),
                                   QStringLiteral("observation")}));
            QCOMPARE(count(), before + 3);
        }
    }
};

QTEST_GUILESS_MAIN(tst_ProjectSession)
#include "tst_ProjectSession.moc"
