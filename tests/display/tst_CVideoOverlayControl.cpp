// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/display/CVideoOverlayControl.h"

#include "tests/support/LockProbe.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/RecordingDisplayBackend.h"
#include "tests/support/SignalJournal.h"
#include "videooverlay/elements/CVideoOverlayElement.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using Velmar::Test::LockProbe;
using Velmar::Test::methodsOf;
using Velmar::Test::propertiesOf;
using Velmar::Test::RecordingDisplayBackend;
using Velmar::Test::SignalJournal;
using Velmar::VideoOverlay::CAbstractVideoOverlayControlBackend;
using Velmar::VideoOverlay::CVideoOverlayControl;
using Velmar::VideoOverlay::CVideoOverlayElement;

namespace {

constexpr char renderSwitch[] = "NQ5_DISABLE_OSD_RENDER";

QStringList lines(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char('|'), Qt::SkipEmptyParts);
}

/// Sets the environment variable as long as it lives. A null value unsets it.
class RenderSwitch
{
public:
    explicit RenderSwitch(const QByteArray &value) { set(value); }
    ~RenderSwitch() { qunsetenv(renderSwitch); }
    Q_DISABLE_COPY(RenderSwitch)

    static void set(const QByteArray &value)
    {
        if (value.isNull())
            qunsetenv(renderSwitch);
        else
            qputenv(renderSwitch, value);
    }
};

} // namespace

class tst_CVideoOverlayControl : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qunsetenv(renderSwitch); }

    void metaObjects()
    {
        QCOMPARE(propertiesOf(CVideoOverlayControl::staticMetaObject),
                 lines("bool videoOverlayEnabled write videoOverlayEnabledChanged()|"
                       "bool controlActive controlActiveChanged()"));
        QCOMPARE(methodsOf(CVideoOverlayControl::staticMetaObject),
                 lines("signal controlActiveChanged()|signal videoOverlayEnabledChanged()|"
                       "slot onBackendInitialized()|slot onBackendFinalized()"));
        QCOMPARE(methodsOf(CAbstractVideoOverlayControlBackend::staticMetaObject),
                 lines("signal initialized()|signal finalized()|"
                       "signal videoOverlayEnabledChanged()"));
    }

    void withoutBackend()
    {
        CVideoOverlayControl control;
        CVideoOverlayElement element;
        SignalJournal journal(control, CVideoOverlayControl::staticMetaObject);
        QCOMPARE(control.controlActive(), false);
        QCOMPARE(control.displayElement(element), false);
        QCOMPARE(control.deleteElement(element), false);
        QCOMPARE(control.videoOverlayEnabled(), false);
        control.setVideoOverlayEnabled(true);
        control.setPaintMargins(QRectF(1, 2, 3, 4));
        QCOMPARE(control.videoOverlayEnabled(), false);
        QCOMPARE(journal.take(), QStringList());
        QVERIFY(takeLog().isEmpty());

        control.onBackendInitialized(); // only announces
        control.onBackendFinalized();
        QCOMPARE(journal.take(), lines("controlActiveChanged|controlActiveChanged"));
    }

    void renderingDisabledOutranksNothingWithoutBackend()
    {
        const RenderSwitch disabled("1");
        CVideoOverlayControl control;
        CVideoOverlayElement element;
        QCOMPARE(control.displayElement(element), false); // inactive comes first
    }

    void controlActive_data()
    {
        QTest::addColumn<bool>("ready");
        QTest::addColumn<bool>("active");
        QTest::addColumn<bool>("expected");
        QTest::addColumn<QString>("asked");

        QTest::newRow("ready and active") << true << true << true << "isReady|isActive";
        QTest::newRow("not active") << true << false << false << "isReady|isActive";
        QTest::newRow("not ready: not asked further") << false << true << false << "isReady";
        QTest::newRow("neither") << false << false << false << "isReady";
    }

    void controlActive()
    {
        QFETCH(bool, ready);
        QFETCH(bool, active);
        QFETCH(bool, expected);
        QFETCH(QString, asked);
        RecordingDisplayBackend backend;
        backend.ready = ready;
        backend.active = active;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        QCOMPARE(control.controlActive(), expected);
        QCOMPARE(backend.takeCalls().join(QLatin1Char('|')), asked);
    }

    void inactiveRefusesEverything()
    {
        RecordingDisplayBackend backend;
        backend.active = false;
        backend.enabled = true;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        CVideoOverlayElement element;
        QCOMPARE(control.displayElement(element), false);
        QCOMPARE(control.deleteElement(element), false);
        QCOMPARE(control.videoOverlayEnabled(), false);
        control.setVideoOverlayEnabled(false);
        control.setPaintMargins(QRectF(1, 2, 3, 4));
        QCOMPARE(backend.takeCalls(),
                 lines("isReady|isActive|isReady|isActive|isReady|isActive|isReady|isActive|"
                       "isReady|isActive"));
    }

    void setBackendEmitsAndCallsNothing()
    {
        RecordingDisplayBackend backend;
        CVideoOverlayControl control;
        SignalJournal journal(control, CVideoOverlayControl::staticMetaObject);
        control.setBackend(&backend);
        control.setBackend(nullptr);
        control.setBackend(&backend);
        QCOMPARE(journal.take(), QStringList());
        QCOMPARE(backend.takeCalls(), QStringList());
    }

    void displayElement()
    {
        RecordingDisplayBackend backend;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        CVideoOverlayElement element;
        element.setId(5);
        QCOMPARE(control.displayElement(element), true);
        QCOMPARE(backend.takeCalls(), lines("isReady|isActive|displayElement 5"));
        backend.displayResult = false;
        QCOMPARE(control.displayElement(element), false);
    }

    void renderSwitchValues_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("disabled");

        QTest::newRow("not set") << QByteArray() << false;
        QTest::newRow("set but empty") << QByteArray("") << false;
        QTest::newRow("0 is a text, too") << QByteArray("0") << true;
        QTest::newRow("1") << QByteArray("1") << true;
        QTest::newRow("blank") << QByteArray(" ") << true;
        QTest::newRow("word") << QByteArray("false") << true;
    }

    void renderSwitchValues()
    {
        QFETCH(QByteArray, value);
        QFETCH(bool, disabled);
        const RenderSwitch environment(value);
        RecordingDisplayBackend backend;
        backend.displayResult = false;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        CVideoOverlayElement element;
        element.setId(5);

        QCOMPARE(control.displayElement(element), disabled);
        QCOMPARE(backend.takeCalls(),
                 disabled ? lines("isReady|isActive") : lines("isReady|isActive|displayElement 5"));
        QCOMPARE(control.deleteElement(element), true); // not affected
        QCOMPARE(backend.takeCalls(), lines("isReady|isActive|deleteElement 5"));
        control.setVideoOverlayEnabled(true);
        control.setPaintMargins(QRectF(1, 2, 3, 4));
        QVERIFY(backend.takeCalls().endsWith(QStringLiteral("setPaintMargins 1,2 3x4")));
        backend.active = false;
        QCOMPARE(control.displayElement(element), false); // inactive comes first
    }

    void renderSwitchIsReadAtConstruction()
    {
        RecordingDisplayBackend backend;
        backend.displayResult = false;
        CVideoOverlayElement element;

        CVideoOverlayControl drawing;
        const RenderSwitch environment("1");
        CVideoOverlayControl diagnosing;
        RenderSwitch::set(QByteArray());
        drawing.setBackend(&backend);
        diagnosing.setBackend(&backend);
        QCOMPARE(diagnosing.displayElement(element), true);
        RenderSwitch::set("1");
        QCOMPARE(drawing.displayElement(element), false);
    }

    void deleteElementHoldsTheLock()
    {
        RecordingDisplayBackend backend;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        LockProbe<CVideoOverlayElement> element;
        element.setId(5);
        bool locked = false;
        backend.whileDeleting = [&](CVideoOverlayElement &deleted) {
            locked = element.isLocked();
            QCOMPARE(&deleted, &element);
            QCOMPARE(deleted.id(), 5); // the lock is recursive
        };
        QCOMPARE(control.deleteElement(element), true);
        QVERIFY(locked);
        QVERIFY(!element.isLocked());
        QCOMPARE(backend.takeCalls(), lines("isReady|isActive|deleteElement 5"));

        backend.deleteResult = false;
        QCOMPARE(control.deleteElement(element), false);
        QVERIFY(!element.isLocked());
    }

    void videoOverlayEnabled()
    {
        RecordingDisplayBackend backend;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        QCOMPARE(control.videoOverlayEnabled(), false);
        QCOMPARE(backend.takeCalls(), lines("isReady|isActive|videoOverlayEnabled"));
        backend.enabled = true;
        QCOMPARE(control.videoOverlayEnabled(), true);
        QCOMPARE(control.property("videoOverlayEnabled"), QVariant(true));
        QCOMPARE(control.property("controlActive"), QVariant(true));
        backend.ready = false;
        QCOMPARE(control.videoOverlayEnabled(), false);
        QCOMPARE(control.property("controlActive"), QVariant(false));
    }

    void setVideoOverlayEnabled_data()
    {
        QTest::addColumn<bool>("before");
        QTest::addColumn<bool>("requested");
        QTest::newRow("already on") << true << true;
        QTest::newRow("already off") << false << false;
        QTest::newRow("on") << false << true;
        QTest::newRow("off") << true << false;
    }

    void setVideoOverlayEnabled()
    {
        QFETCH(bool, before);
        QFETCH(bool, requested);
        RecordingDisplayBackend backend;
        backend.enabled = before;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        SignalJournal journal(control, CVideoOverlayControl::staticMetaObject);
        control.setVideoOverlayEnabled(requested);

        QStringList expected = lines("isReady|isActive|videoOverlayEnabled");
        if (before != requested)
            expected += QStringLiteral("setVideoOverlayEnabled %1").arg(int(requested));
        QCOMPARE(backend.takeCalls(), expected);
        QCOMPARE(backend.enabled, requested);
        QCOMPARE(journal.take(), QStringList()); // announcing is the backend's affair
    }

    void setPaintMargins()
    {
        RecordingDisplayBackend backend;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        const CVideoOverlayControl &reader = control;
        reader.setPaintMargins(QRectF(-1.5, 2, 30.25, 4));
        QCOMPARE(backend.takeCalls(), lines("isReady|isActive|setPaintMargins -1.5,2 30.25x4"));
    }

    void backendInitialized_data()
    {
        QTest::addColumn<bool>("active");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<QString>("calls");

        QTest::newRow("active and off")
            << true << false
            << "isActive|prepareOverlay|isReady|isActive|videoOverlayEnabled|"
               "setVideoOverlayEnabled 1";
        QTest::newRow("active and already on: no second call")
            << true << true << "isActive|prepareOverlay|isReady|isActive|videoOverlayEnabled";
        QTest::newRow("not active") << false << false << "isActive";
    }

    void backendInitialized()
    {
        QFETCH(bool, active);
        QFETCH(bool, enabled);
        QFETCH(QString, calls);
        RecordingDisplayBackend backend;
        backend.active = active;
        backend.enabled = enabled;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        SignalJournal journal(control, CVideoOverlayControl::staticMetaObject);
        QString callsBeforeSignal;
        journal.setObserver([&](const QString &) {
            callsBeforeSignal = backend.takeCalls().join(QLatin1Char('|'));
        });
        Q_EMIT backend.initialized();
        QCOMPARE(journal.take(), lines("controlActiveChanged"));
        QCOMPARE(callsBeforeSignal, calls);
        QCOMPARE(backend.takeCalls(), QStringList());
    }

    /// Active decides whether the overlay is prepared; being ready is asked by the switch.
    void backendInitializedButNotReady()
    {
        RecordingDisplayBackend backend;
        backend.ready = false;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        Q_EMIT backend.initialized();
        QCOMPARE(backend.takeCalls(), lines("isActive|prepareOverlay|isReady"));
    }

    void backendFinalized()
    {
        RecordingDisplayBackend backend;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        SignalJournal journal(control, CVideoOverlayControl::staticMetaObject);
        backend.ready = false;
        Q_EMIT backend.finalized();
        QCOMPARE(journal.take(), lines("controlActiveChanged"));
        QCOMPARE(backend.takeCalls(), QStringList());
        QCOMPARE(control.controlActive(), false); // the backend is asked again
    }

    void enabledChangeIsPassedOn()
    {
        RecordingDisplayBackend backend;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        control.setBackend(&backend); // connected once all the same
        SignalJournal journal(control, CVideoOverlayControl::staticMetaObject);
        Q_EMIT backend.videoOverlayEnabledChanged();
        QCOMPARE(journal.take(), lines("videoOverlayEnabledChanged"));
    }

    void previousBackendIsDisconnected()
    {
        RecordingDisplayBackend first;
        RecordingDisplayBackend second;
        CVideoOverlayControl control;
        QSignalSpy heardByOthers(&first, &CAbstractVideoOverlayControlBackend::initialized);
        control.setBackend(&first);
        connect(&first, &CAbstractVideoOverlayControlBackend::videoOverlayEnabledChanged, &control,
                &CVideoOverlayControl::controlActiveChanged); // a host's own goes as well
        control.setBackend(&second);
        SignalJournal journal(control, CVideoOverlayControl::staticMetaObject);
        Q_EMIT first.initialized();
        Q_EMIT first.finalized();
        Q_EMIT first.videoOverlayEnabledChanged();
        QCOMPARE(journal.take(), QStringList());
        QCOMPARE(first.takeCalls(), QStringList());
        QCOMPARE(second.takeCalls(), QStringList());
        QCOMPARE(heardByOthers.count(), 1); // other listeners keep their connections
        Q_EMIT second.finalized();
        QCOMPARE(journal.take(), lines("controlActiveChanged"));
    }

    void backendSetToNullWhileElementsLive()
    {
        RecordingDisplayBackend backend;
        CVideoOverlayControl control;
        control.setBackend(&backend);
        CVideoOverlayElement element;
        QVERIFY(control.displayElement(element));
        control.setBackend(nullptr);
        backend.takeCalls();
        QCOMPARE(control.displayElement(element), false);
        QCOMPARE(control.deleteElement(element), false);
        QCOMPARE(control.controlActive(), false);
        QCOMPARE(backend.takeCalls(), QStringList());
    }

    void backendDiesWhileSet()
    {
        auto backend = std::make_unique<RecordingDisplayBackend>();
        CVideoOverlayControl control;
        control.setBackend(backend.get());
        CVideoOverlayElement element;
        QVERIFY(control.displayElement(element));
        backend.reset();
        QCOMPARE(control.controlActive(), false);
        QCOMPARE(control.displayElement(element), false);
        QCOMPARE(control.deleteElement(element), false);
        control.setVideoOverlayEnabled(true);
        control.onBackendInitialized();
        RecordingDisplayBackend next;
        control.setBackend(&next);
        QCOMPARE(control.displayElement(element), true);
    }
};

QTEST_MAIN(tst_CVideoOverlayControl)
#include "tst_CVideoOverlayControl.moc"
