// SPDX-License-Identifier: Apache-2.0
#include "host/display/OverlayScene.h"
#include "host/pipelines/LiveVideo.h"
#include "host/pipelines/RecordPipeline.h"
#include "host/pipelines/VideoErrors.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/VideoReader.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace Velmar;
using namespace Velmar::Host;

class tst_LiveVideo : public Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void playsAtItsOwnSpeed();
    void recordsWhileThePictureRuns();
    void aFailedRecordingDoesNotStopThePicture();
    void failures_data();
    void failures();

private:
    static SourceSpec bars();
    QTemporaryDir m_directory;
};

void tst_LiveVideo::initTestCase()
{
    QString error;
    QVERIFY2(initialiseVideo(&error), qPrintable(error));
    QFile text(m_directory.filePath(QStringLiteral("text")));
    QVERIFY(text.open(QIODevice::WriteOnly));
    text.write("no video at all");
}

SourceSpec tst_LiveVideo::bars()
{
    SourceSpec source = SourceSpec::fromText(QStringLiteral("test"));
    source.size = QSize(320, 240);
    source.framesPerSecond = 25;
    return source;
}

void tst_LiveVideo::playsAtItsOwnSpeed()
{
    LiveVideo video(bars());
    QSignalSpy frames(&video, &LiveVideo::frame);
    QElapsedTimer timer;
    QString error;
    QVERIFY2(video.start(&error), qPrintable(error));
    timer.start();
    while (video.positionNs() < 1000000000 && timer.elapsed() < 20000)
        QVERIFY(frames.wait());

    QVERIFY(timer.elapsed() >= 950); // drawn frames would otherwise come in a few milliseconds
    QVERIFY(video.shownFrames() <= video.playedFrames());
    QVERIFY(video.playedFrames() >= 25);
    const QImage picture = frames.last().at(0).value<QImage>();
    QCOMPARE(picture.size(), QSize(320, 240));
    const QColor white = picture.pixelColor(5, 5); // the first bar, in limited range and back
    QVERIFY(white.lightness() > 250);
    video.stop();
    QCOMPARE(picture.pixelColor(5, 5), white); // outlives the video
}

void tst_LiveVideo::recordsWhileThePictureRuns()
{
    const QString path = m_directory.filePath(QStringLiteral("live.mkv"));
    LiveVideo video(bars());
    const auto scene = std::make_shared<OverlayScene>(QSize(320, 240));
    const auto input = std::make_shared<FrameInput>();
    SourceSpec pushed;
    pushed.kind = SourceSpec::Kind::Pushed;
    pushed.input = input;
    RecordPipeline recording(pushed, {path, {}, 0}, scene);
    QSignalSpy finished(&recording, &RecordPipeline::finished);
    QSignalSpy frames(&video, &LiveVideo::frame);
    QString error;
    QVERIFY2(video.start(&error), qPrintable(error));
    while (frames.count() < 5)
        QVERIFY(frames.wait());

    QVERIFY2(recording.start(&error), qPrintable(error));
    video.setRecording(input);
    while (recording.frameCount() < 25)
        QVERIFY(frames.wait());
    recording.stop();
    QVERIFY(finished.wait());
    const int shown = video.shownFrames();
    video.setRecording(nullptr);

    const MediaFacts facts = readFacts(path);
    QCOMPARE(facts.problem, QString());
    QCOMPARE(facts.size, QSize(320, 240));
    const QVector<DecodedFrame> recorded = readFrames(path);
    QVERIFY(recorded.size() >= 25);
    QCOMPARE(recorded.constFirst().timeNs, qint64(0));
    QVERIFY(frames.wait()); // the picture still runs
    QVERIFY(video.shownFrames() > shown);
}

void tst_LiveVideo::aFailedRecordingDoesNotStopThePicture()
{
    LiveVideo video(bars());
    const auto input = std::make_shared<FrameInput>();
    SourceSpec pushed;
    pushed.kind = SourceSpec::Kind::Pushed;
    pushed.input = input;
    RecordPipeline recording(pushed, {QStringLiteral("/nowhere/live.mkv"), {}, 0},
                             std::make_shared<OverlayScene>(QSize(320, 240)));
    QSignalSpy frames(&video, &LiveVideo::frame);
    QString error;
    QVERIFY2(video.start(&error), qPrintable(error));
    QVERIFY(!recording.start(&error));
    QCOMPARE(error, QStringLiteral("/nowhere/live.mkv: there is no directory /nowhere"));
    video.setRecording(input); // and nobody takes it
    const int shown = video.shownFrames();
    QVERIFY(frames.wait());
    QVERIFY(video.shownFrames() > shown);
}

void tst_LiveVideo::failures_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("starts");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no file") << QStringLiteral("/none.mkv") << false
                             << QStringLiteral("/none.mkv: no such file");
    QTest::newRow("no camera") << QStringLiteral("/dev/video99") << false
                               << QStringLiteral("/dev/video99: no such camera device");
    QTest::newRow("no video") << m_directory.filePath(QStringLiteral("text")) << true << QString();
}

void tst_LiveVideo::failures()
{
    QFETCH(QString, source);
    QFETCH(bool, starts);
    QFETCH(QString, reason);
    LiveVideo video(SourceSpec::fromText(source));
    QSignalSpy failed(&video, &LiveVideo::failed);
    QString error;
    QCOMPARE(video.start(&error), starts);
    if (starts) {
        QVERIFY(failed.wait());
        QVERIFY(failed.at(0).at(0).toString().startsWith(source + QLatin1String(": ")));
    } else {
        QCOMPARE(error, reason);
    }
}

QTEST_MAIN(tst_LiveVideo)
#include "tst_LiveVideo.moc"
