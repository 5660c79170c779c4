// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/VideoErrors.h"
#include "host/platform/CatalogStore.h"
#include "host/platform/Directories.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "host/screens/LiveOverlay.h"
#include "host/screens/Messages.h"
#include "host/screens/UiTexts.h"
#include "host/screens/VideoController.h"
#include "tests/support/BrokenCamera.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/VideoReader.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

using namespace Velmar;
using namespace Velmar::Host;

namespace {

constexpr int LimitMs = 30000;
constexpr int Frames = 50;

/// The picture and its recording, without the screens.
struct Live
{
    explicit Live(const SourceSpec &source, const QString &directory)
        : video({source, directory}, overlay, messages, texts)
    {
    }

    LiveOverlay overlay {QSize(320, 240)};
    Messages messages;
    UiTexts texts;
    VideoController video;
};

} // namespace

Q_DECLARE_METATYPE(BrokenCamera::End)

class tst_VideoController : public Velmar::Test::LoggedTest
{
    Q_OBJECT

protected:
    void prepare() override;

private Q_SLOTS:
    void initTestCase();
    void videoThatEnds();
    void cameraThatBreaks_data();
    void cameraThatBreaks();
    void cameraThatComesBack();
    void stoppedBeforeAPictureCame();

private:
    QString recordings() const { return m_root->filePath(QStringLiteral("recordings")); }

    std::unique_ptr<QTemporaryDir> m_root;
};

void tst_VideoController::initTestCase()
{
    QString error;
    QVERIFY2(initialiseVideo(&error), qPrintable(error));
}

void tst_VideoController::prepare()
{
    m_root = std::make_unique<QTemporaryDir>();
    const QDir data(QStringLiteral(XQ_DATA_DIRECTORY));
    Directories::setSettingsDirectory(m_root->filePath(QStringLiteral("settings")));
    Directories::setReadonlyConfigDirectory(data.path());
    CATManagement::CatalogStore::instance().setDirectory(data.filePath(QStringLiteral("catalogs")));
    Translation::TranslationStore::instance().setDirectory(
        data.filePath(QStringLiteral("translations")));
    Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("en_GB")));
    Shared::LocaleSettings::reset();
}

/// A film that is over ends its recording; nobody has to wait for a frame that will not come.
void tst_VideoController::videoThatEnds()
{
    const QString film = m_root->filePath(QStringLiteral("film.mkv"));
    QVERIFY(runPipeline(QStringLiteral("videotestsrc num-buffers=%1 "
                                       "! video/x-raw,width=320,height=240,framerate=25/1 "
                                       "! x264enc ! matroskamux ! filesink location=\"%2\"")
                            .arg(Frames)
                            .arg(film)));
    Live live(SourceSpec::fromText(film), recordings());
    QSignalSpy finished(&live.video, &VideoController::recordingFinished);
    live.video.start();
    QTRY_VERIFY_WITH_TIMEOUT(live.video.isRunning(), LimitMs);
    live.video.startRecording();
    QCOMPARE(live.video.recordState(), VideoController::Recording);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(finished.wait(LimitMs));
    QVERIFY2(timer.elapsed() < 4500, "waits for a frame"); // and not only for the film
    const QString path = live.video.recordingPath();
    QCOMPARE(live.messages.text(), QStringLiteral("The video is over. Recorded: %1").arg(path));
    QVERIFY(!live.messages.isError());

    const MediaFacts facts = readFacts(path);
    QCOMPARE(facts.problem, QString());
    QVERIFY(facts.seekable);
    const int recorded = readFrames(path).size();
    QVERIFY2(recorded > 10 && recorded <= Frames, qPrintable(QString::number(recorded)));
    // Frames that came too late are left out, but not their time.
    QVERIFY2(facts.seconds > recorded / 25.0 - 0.05 && facts.seconds < Frames / 25.0 + 0.25,
             qPrintable(QString::number(facts.seconds)));
    QTRY_VERIFY_WITH_TIMEOUT(live.video.isRunning(), LimitMs); // from the start again
    takeLog();
}

void tst_VideoController::cameraThatBreaks_data()
{
    using BrokenCamera::End;
    QTest::addColumn<End>("end");
    QTest::addColumn<QString>("reason");
    QTest::newRow("error") << End::Error << QStringLiteral("Failed after iterations as requested.");
    QTest::newRow("unplugged") << End::Unplugged
                               << QStringLiteral(
                                      "/dev/null: cannot be read: Could not read from the device.");
    QTest::newRow("silence") << End::Silence
                             << QStringLiteral("/dev/null: has delivered no picture for 5 s");
    QTest::newRow("end") << End::Eos << QStringLiteral("/dev/null: delivers no more pictures");
}

void tst_VideoController::cameraThatBreaks()
{
    QFETCH(BrokenCamera::End, end);
    QFETCH(QString, reason);
    QVERIFY(BrokenCamera::plugIn(Frames, end));
    Live live(SourceSpec::fromText(BrokenCamera::device()), recordings());
    QSignalSpy finished(&live.video, &VideoController::recordingFinished);
    live.video.start();
    QTRY_VERIFY_WITH_TIMEOUT(live.video.isRunning(), LimitMs);
    live.video.startRecording();
    QVERIFY(finished.wait(LimitMs));
    QVERIFY(!live.video.isRunning());

    // What is told is not that all went well.
    const QString path = live.video.recordingPath();
    QVERIFY(live.messages.isError());
    QVERIFY2(live.messages.text().contains(reason), qPrintable(live.messages.text()));
    QVERIFY2(live.messages.text().endsWith(QStringLiteral(" Recorded until then: ") + path),
             qPrintable(live.messages.text()));
    const MediaFacts facts = readFacts(path);
    QCOMPARE(facts.problem, QString());
    QVERIFY(facts.seekable);
    const int recorded = readFrames(path).size();
    QVERIFY2(recorded > 10 && recorded <= Frames, qPrintable(QString::number(recorded)));
    // Frames that came too late are left out, but not their time.
    QVERIFY2(facts.seconds > recorded / 25.0 - 0.05 && facts.seconds < Frames / 25.0 + 0.25,
             qPrintable(QString::number(facts.seconds)));
    takeLog();
}

void tst_VideoController::cameraThatComesBack()
{
    QVERIFY(BrokenCamera::plugIn(Frames, BrokenCamera::End::Unplugged));
    Live live(SourceSpec::fromText(BrokenCamera::device()), recordings());
    QSignalSpy finished(&live.video, &VideoController::recordingFinished);
    live.video.start();
    for (int i = 1; i <= 2; ++i) {
        QTRY_VERIFY_WITH_TIMEOUT(live.video.isRunning(), LimitMs);
        live.video.startRecording();
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), i, LimitMs);
        QVERIFY(readFrames(live.video.recordingPath()).size() > 10);
    }
    QVERIFY(finished.at(0) != finished.at(1));
    takeLog();
}

void tst_VideoController::stoppedBeforeAPictureCame()
{
    QVERIFY(BrokenCamera::plugIn(5, BrokenCamera::End::Silence));
    Live live(SourceSpec::fromText(BrokenCamera::device()), recordings());
    QSignalSpy finished(&live.video, &VideoController::recordingFinished);
    QSignalSpy frames(&live.video, &VideoController::frame);
    live.video.start();
    QTRY_COMPARE_WITH_TIMEOUT(frames.count(), 5, LimitMs);
    live.video.startRecording();
    QCOMPARE(live.video.recordState(), VideoController::Recording);
    live.video.stopRecording();
    QTRY_COMPARE_WITH_TIMEOUT(live.video.recordState(), VideoController::Idle, LimitMs);
    QVERIFY(live.messages.isError());
    QCOMPARE(live.messages.text(), QStringLiteral("There is no picture to record"));
    QCOMPARE(finished.count(), 0);
    QCOMPARE(QDir(recordings()).entryList(QDir::Files), QStringList());
    takeLog();
}

QTEST_MAIN(tst_VideoController)
#include "tst_VideoController.moc"
