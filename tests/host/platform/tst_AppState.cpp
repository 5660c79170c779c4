// SPDX-License-Identifier: Apache-2.0
#include "platform/appstate/AppState.h"

#include "host/platform/AppStateControl.h"
#include "tests/support/LoggedTest.h"

#include <QSignalSpy>
#include <QtTest>

using Velmar::AppState;
using Velmar::AppStateControl;
using Velmar::Database::CDomainObject;
using Velmar::Database::CDomainObjectPointer;

namespace {

/// A record of a host whose database knows nothing: which one it is, is all that matters here.
class Record : public CDomainObject
{
public:
    bool isValid() const override { return true; }
    QVariant readValue(const QString &) const override { return {}; }
    CDomainObjectPointer parentObject() const override { return {}; }
    CDomainObjectPointer resolveExternalObject(const QString &) const override { return {}; }
};

CDomainObjectPointer makeRecord()
{
    return CDomainObjectPointer(new Record);
}

} // namespace

class tst_AppState : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override
    {
        AppStateControl::setActiveInspection({});
        AppStateControl::setActiveProject({});
    }

    static CDomainObjectPointer record(const QSignalSpy &spy, int index)
    {
        return spy.at(index).at(0).value<CDomainObjectPointer>();
    }

private Q_SLOTS:
    void one()
    {
        QVERIFY(AppState::instance());
        QCOMPARE(AppState::instance(), AppState::instance());
    }

    void withoutAProject()
    {
        QVERIFY(AppState::instance()->getActiveProject().isNull());
        QVERIFY(!AppState::instance()->isSimpleProjectActive());
        QVERIFY(AppStateControl::activeInspection().isNull());
    }

    void project_data()
    {
        QTest::addColumn<bool>("simple");
        QTest::newRow("full") << false;
        QTest::newRow("simple") << true;
    }

    void project()
    {
        QFETCH(bool, simple);
        AppState *state = AppState::instance();
        const auto opened = makeRecord();
        QSignalSpy changed(state, &AppState::activeProjectChanged);
        QSignalSpy inspection(state, &AppState::activeInspectionChanged);
        CDomainObjectPointer whenAnnounced;
        bool simpleWhenAnnounced = !simple;
        QObject receiver;
        connect(state, &AppState::activeProjectChanged, &receiver, [&] {
            whenAnnounced = state->getActiveProject();
            simpleWhenAnnounced = state->isSimpleProjectActive();
        });

        AppStateControl::setActiveProject(opened,
                                          simple ? AppStateControl::ProjectKind::Simple
                                                 : AppStateControl::ProjectKind::Full);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(record(changed, 0), opened);
        QCOMPARE(state->getActiveProject(), opened);
        QCOMPARE(state->isSimpleProjectActive(), simple);
        QCOMPARE(whenAnnounced, opened);
        QCOMPARE(simpleWhenAnnounced, simple);

        AppStateControl::setActiveProject({}, AppStateControl::ProjectKind::Simple);
        QCOMPARE(changed.count(), 2);
        QVERIFY(record(changed, 1).isNull());
        QVERIFY(state->getActiveProject().isNull());
        QVERIFY(!state->isSimpleProjectActive());
        QVERIFY(whenAnnounced.isNull());
        QVERIFY(!simpleWhenAnnounced);
        QCOMPARE(inspection.count(), 0);
    }

    void fullIsTheDefaultKind()
    {
        AppStateControl::setActiveProject(makeRecord(), AppStateControl::ProjectKind::Simple);
        AppStateControl::setActiveProject(makeRecord());
        QVERIFY(!AppState::instance()->isSimpleProjectActive());
    }

    void theSameProjectIsAnnouncedAgain()
    {
        const auto opened = makeRecord();
        AppStateControl::setActiveProject(opened);
        QSignalSpy changed(AppState::instance(), &AppState::activeProjectChanged);
        AppStateControl::setActiveProject(opened);
        QCOMPARE(changed.count(), 1);
    }

    void closedProjectIsReleased()
    {
        auto opened = makeRecord();
        const QWeakPointer<CDomainObject> watched = opened;
        AppStateControl::setActiveProject(opened);
        opened.clear();
        QVERIFY(!watched.isNull());
        AppStateControl::setActiveProject({});
        QVERIFY(watched.isNull());
    }

    void inspection()
    {
        AppState *state = AppState::instance();
        const auto begun = makeRecord();
        QSignalSpy changed(state, &AppState::activeInspectionChanged);
        QSignalSpy project(state, &AppState::activeProjectChanged);
        CDomainObjectPointer whenAnnounced;
        QObject receiver;
        connect(state, &AppState::activeInspectionChanged, &receiver,
                [&] { whenAnnounced = AppStateControl::activeInspection(); });

        AppStateControl::setActiveInspection(begun);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(record(changed, 0), begun);
        QCOMPARE(AppStateControl::activeInspection(), begun);
        QCOMPARE(whenAnnounced, begun);

        AppStateControl::setActiveInspection({});
        QCOMPARE(changed.count(), 2);
        QVERIFY(record(changed, 1).isNull());
        QVERIFY(AppStateControl::activeInspection().isNull());
        QVERIFY(whenAnnounced.isNull());
        QCOMPARE(project.count(), 0);
    }

    void observation()
    {
        const auto made = makeRecord();
        QSignalSpy created(AppState::instance(), &AppState::observationCreated);
        AppStateControl::announceObservation(made);
        QCOMPARE(created.count(), 1);
        QCOMPARE(record(created, 0), made);
        QVERIFY(AppStateControl::activeInspection().isNull()); // an observation is no inspection
    }

    void templateLoaded()
    {
        QSignalSpy loaded(AppState::instance(), &AppState::templateLoadCompleted);
        AppStateControl::announceTemplate(QStringLiteral("A"));
        QCOMPARE(loaded.count(), 1);
        QCOMPARE(loaded.at(0).at(0).toString(), QStringLiteral("A"));
    }
};

QTEST_GUILESS_MAIN(tst_AppState)
#include "tst_AppState.moc"
