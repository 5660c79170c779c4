// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/FrameGate.h"

#include <QtTest>

#include <atomic>
#include <future>

using namespace Velmar::Host;

namespace {

OverlaySnapshotPtr overlayNumber(quint64 number)
{
    auto overlay = std::make_shared<OverlaySnapshot>();
    overlay->revision = number;
    return overlay;
}

} // namespace

class tst_FrameGate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFrameGetsTheOverlayOfItsTime();
    void framesBeforeTheNextChangeDoNotAsk();
    void anEarlierFrameAsksAgain();
    void anotherFrameSizeAsksAgain();
    void theElementsThreadAnswersItself();
    void cancelFreesAWaitingFrame();
    void afterCancelNobodyIsAsked();
};

void tst_FrameGate::aFrameGetsTheOverlayOfItsTime()
{
    QObject context;
    QThread *const here = QThread::currentThread();
    bool askedHere = true;
    auto gate = std::make_shared<FrameGate>(&context, [&](qint64 ns, QSize) {
        askedHere = askedHere && QThread::currentThread() == here;
        return FrameGate::Answer {overlayNumber(quint64(ns)), ns + 1};
    });
    auto frames = std::async(std::launch::async, [gate] {
        bool all = true;
        for (qint64 ns = 0; ns < 200; ++ns)
            all = all && gate->overlayAt(ns)->revision == quint64(ns);
        return all;
    });
    QTRY_VERIFY(frames.wait_for(std::chrono::seconds(0)) == std::future_status::ready);
    QVERIFY(frames.get());
    QVERIFY(askedHere);
    QCOMPARE(gate->roundTrips(), 200);
}

void tst_FrameGate::framesBeforeTheNextChangeDoNotAsk()
{
    QObject context;
    auto gate = std::make_shared<FrameGate>(&context, [](qint64 ns, QSize) {
        return FrameGate::Answer {overlayNumber(quint64(ns)), 100};
    });
    QCOMPARE(gate->overlayAt(10)->revision, quint64(10));
    QCOMPARE(gate->overlayAt(99)->revision, quint64(10));
    QCOMPARE(gate->roundTrips(), 1);
    QCOMPARE(gate->overlayAt(100)->revision, quint64(100)); // the change belongs to its own time
    QCOMPARE(gate->roundTrips(), 2);
}

void tst_FrameGate::anEarlierFrameAsksAgain()
{
    QObject context;
    auto gate = std::make_shared<FrameGate>(&context, [](qint64 ns, QSize) {
        return FrameGate::Answer {overlayNumber(quint64(ns)), 1000};
    });
    QCOMPARE(gate->overlayAt(50)->revision, quint64(50));
    QCOMPARE(gate->overlayAt(49)->revision, quint64(49));
}

void tst_FrameGate::anotherFrameSizeAsksAgain()
{
    QObject context;
    auto gate = std::make_shared<FrameGate>(&context, [](qint64, QSize size) {
        return FrameGate::Answer {overlayNumber(quint64(size.width())), 1000};
    });
    gate->setFrameSize({640, 480});
    QCOMPARE(gate->overlayAt(0)->revision, quint64(640));
    gate->setFrameSize({1280, 720});
    QCOMPARE(gate->overlayAt(1)->revision, quint64(1280));
    gate->setFrameSize({1280, 720});
    gate->overlayAt(2);
    QCOMPARE(gate->roundTrips(), 2);
}

void tst_FrameGate::theElementsThreadAnswersItself()
{
    QObject context;
    auto gate = std::make_shared<FrameGate>(&context, [](qint64, QSize) {
        return FrameGate::Answer {overlayNumber(7), 1};
    });
    QCOMPARE(gate->overlayAt(0)->revision, quint64(7)); // without an event loop
}

void tst_FrameGate::cancelFreesAWaitingFrame()
{
    QObject context;
    auto gate = std::make_shared<FrameGate>(&context, [](qint64, QSize) {
        return FrameGate::Answer {overlayNumber(7), 1};
    });
    auto frame = std::async(std::launch::async, [gate] { return gate->overlayAt(0); });
    while (gate->roundTrips() == 0)
        std::this_thread::yield();
    gate->cancel(); // no event was handled in between: the frame waits, or is just about to
    const OverlaySnapshotPtr overlay = frame.get();
    QVERIFY(overlay);
    QCOMPARE(overlay->revision, quint64(0));
    QCoreApplication::processEvents(); // the question that is still under way finds nobody
}

void tst_FrameGate::afterCancelNobodyIsAsked()
{
    QObject context;
    int asked = 0;
    auto gate = std::make_shared<FrameGate>(&context, [&asked](qint64, QSize) {
        ++asked;
        return FrameGate::Answer {overlayNumber(7), 1};
    });
    QCOMPARE(gate->overlayAt(0)->revision, quint64(7));
    gate->cancel();
    QCOMPARE(gate->overlayAt(5)->revision, quint64(7));
    QCOMPARE(asked, 1);
}

QTEST_GUILESS_MAIN(tst_FrameGate)
#include "tst_FrameGate.moc"
