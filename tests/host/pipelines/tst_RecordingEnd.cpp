// SPDX-License-Identifier: Apache-2.0
#include "tests/support/BrokenCamera.h"
#include "tests/support/VideoReader.h"

#include "host/display/OverlayScene.h"
#include "host/pipelines/LiveVideo.h"
#include "host/pipelines/RecordPipeline.h"
#include "host/pipelines/VideoErrors.h"

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>

using namespace Velmar::Host;

namespace {

constexpr int Frames = 30;
constexpr int LimitMs = 30000;

FrameGate::Update noOverlay()
{
    return [](qint64, QSize) {
        return FrameGate::Answer {std::make_shared<OverlaySnapshot>(),
                                  std::numeric_limits<qint64>::max()};
    };
}

SourceSpec testSource()
{
    SourceSpec spec = SourceSpec::fromText(QStringLiteral("test"));
    spec.size = QSize(320, 240);
    return spec;
}

/// What follows the burned frames takes one and waits an hour for the next.
class StuckPipeline : public OverlayPipeline
{
public:
    StuckPipeline()
        : OverlayPipeline(testSource(), noOverlay(), nullptr)
    {
    }
    ~StuckPipeline() override { shutDown(); }

protected:
    bool addOutput(GstElement *frames, QString *error) override
    {
        GstElement *sink = add("fakesink", error);
        g_object_set(sink, "sync", TRUE, "ts-offset", gint64(3600 * GST_SECOND), nullptr);
        return gst_element_link(frames, sink);
    }
    QString outputName() const override { return QStringLiteral("nowhere"); }
};

} // namespace

Q_DECLARE_METATYPE(BrokenCamera::End)

/// What is left of a recording that is stopped or whose source breaks, and what the operator is
/// told.
class tst_RecordingEnd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void recordingIsComplete_data();
    void recordingIsComplete();
    void earlierRecordingStays();
    void cameraThatNeverDelivers();
    void stoppedWhileNothingComes();
    void livePictureTells_data();
    void livePictureTells();
    void pushedFramesArrive_data();
    void pushedFramesArrive();
    void endOfWhatNeverCame();
    void stuckPipelineIsReported();
    void stuckPipelineCanBeStopped();
    void stopInTheMiddleOfSound_data();
    void stopInTheMiddleOfSound();

private:
    QString path(const char *name) const { return m_directory.filePath(QString::fromLatin1(name)); }

    QTemporaryDir m_directory;
};

void tst_RecordingEnd::initTestCase()
{
    QVERIFY(m_directory.isValid());
    QString error;
    QVERIFY2(initialiseVideo(&error), qPrintable(error));
}

void tst_RecordingEnd::recordingIsComplete_data()
{
    using BrokenCamera::End;
    QTest::addColumn<End>("end");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("reason");
    const QString silent = QStringLiteral("/dev/null: nothing has moved for 1 s");
    const QString gone
        = QStringLiteral("/dev/null: cannot be read: Could not read from the device.");
    for (const char *type : {"mkv", "mp4"}) {
        const auto row = [&](const char *name, End end, const QString &reason) {
            QTest::addRow("%s, %s", name, type)
                << end << path(name) + QLatin1Char('.') + QLatin1String(type) << reason;
        };
        row("error", End::Error, QStringLiteral("Failed after iterations as requested."));
        row("unplugged", End::Unplugged, gone);
        row("silence", End::Silence, silent);
        row("end", End::Eos, QStringLiteral("/dev/null: delivers no more pictures"));
    }
}

void tst_RecordingEnd::recordingIsComplete()
{
    QFETCH(BrokenCamera::End, end);
    QFETCH(QString, output);
    QFETCH(QString, reason);
    QVERIFY(BrokenCamera::plugIn(Frames, end));
    RecordPipeline pipeline(SourceSpec::fromText(BrokenCamera::device()), {output, {}, 0},
                            noOverlay());
    pipeline.setStallLimit(1000);
    QSignalSpy finished(&pipeline, &RecordPipeline::finished);
    QSignalSpy failed(&pipeline, &RecordPipeline::failed);
    QSignalSpy warned(&pipeline, &RecordPipeline::warned);
    QString error;
    QVERIFY2(pipeline.start(&error), qPrintable(error));
    QTRY_COMPARE_WITH_TIMEOUT(finished.count() + failed.count(), 1, LimitMs);

    QCOMPARE(failed.count(), end == BrokenCamera::End::Eos ? 0 : 1);
    if (end == BrokenCamera::End::Eos) {
        QCOMPARE(warned.count(), 1);
        QCOMPARE(warned.at(0).at(0).toString(), reason);
    } else {
        const QString told = failed.at(0).at(0).toString();
        QVERIFY2(told.contains(reason), qPrintable(told));
        QVERIFY2(told.endsWith(QStringLiteral("; what was recorded is in ") + output),
                 qPrintable(told));
    }
    const MediaFacts facts = readFacts(output);
    QCOMPARE(facts.problem, QString());
    QVERIFY2(qAbs(facts.seconds - double(Frames) / BrokenCamera::FramesPerSecond) < 0.05,
             qPrintable(QString::number(facts.seconds)));
    QVERIFY(facts.seekable);
    const QVector<DecodedFrame> frames = readFrames(output);
    QCOMPARE(frames.size(), Frames);
    const int wanted = Frames * 2 / 3;
    const DecodedFrame found = readFrameAt(output, frames.at(wanted).timeNs);
    QCOMPARE(found.timeNs, frames.at(wanted).timeNs);
    QCOMPARE(found.image, frames.at(wanted).image);
}

void tst_RecordingEnd::earlierRecordingStays()
{
    const QString output = path("earlier.mkv");
    QFile earlier(output);
    QVERIFY(earlier.open(QIODevice::WriteOnly));
    earlier.write("an earlier recording");
    earlier.close();
    QVERIFY(BrokenCamera::plugIn(Frames, BrokenCamera::End::Unplugged));
    RecordPipeline pipeline(SourceSpec::fromText(BrokenCamera::device()), {output, {}, 0},
                            noOverlay());
    QSignalSpy failed(&pipeline, &RecordPipeline::failed);
    QString error;
    QVERIFY2(pipeline.start(&error), qPrintable(error));
    QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 1, LimitMs);
    QCOMPARE(QFileInfo(output).size(), earlier.size());
    const QString part = output + QStringLiteral(".part");
    QVERIFY(failed.at(0).at(0).toString().endsWith(part));
    QCOMPARE(readFrames(part).size(), Frames);
}

void tst_RecordingEnd::cameraThatNeverDelivers()
{
    const QString output = path("nothing.mkv");
    QVERIFY(BrokenCamera::plugIn(0, BrokenCamera::End::Silence));
    RecordPipeline pipeline(SourceSpec::fromText(BrokenCamera::device()), {output, {}, 0},
                            noOverlay());
    pipeline.setStallLimit(1000);
    QSignalSpy failed(&pipeline, &RecordPipeline::failed);
    QString error;
    QVERIFY2(pipeline.start(&error), qPrintable(error));
    QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 1, LimitMs);
    QCOMPARE(failed.at(0).at(0).toString(), QStringLiteral("/dev/null: delivers no picture"));
    QVERIFY(!QFileInfo::exists(output));
}

void tst_RecordingEnd::stoppedWhileNothingComes()
{
    const QString output = path("stopped.mp4");
    QVERIFY(BrokenCamera::plugIn(Frames, BrokenCamera::End::Silence));
    RecordPipeline pipeline(SourceSpec::fromText(BrokenCamera::device()), {output, {}, 0},
                            noOverlay());
    QSignalSpy finished(&pipeline, &RecordPipeline::finished);
    QString error;
    QVERIFY2(pipeline.start(&error), qPrintable(error));
    QTRY_COMPARE_WITH_TIMEOUT(pipeline.frameCount(), Frames, LimitMs);
    QElapsedTimer timer;
    timer.start();
    pipeline.stop();
    QVERIFY(finished.wait(LimitMs));
    QVERIFY2(timer.elapsed() < 4500, "waits for a picture that does not come");
    QCOMPARE(readFrames(output).size(), Frames);
    QVERIFY(readFacts(output).seekable);
}

void tst_RecordingEnd::livePictureTells_data()
{
    using BrokenCamera::End;
    QTest::addColumn<End>("end");
    QTest::addColumn<int>("frames");
    QTest::addColumn<QString>("reason");
    QTest::newRow("error") << End::Error << Frames << QStringLiteral("Failed after iterations");
    QTest::newRow("unplugged") << End::Unplugged << Frames
                               << QStringLiteral("/dev/null: cannot be read");
    QTest::newRow("silence") << End::Silence << Frames
                             << QStringLiteral("/dev/null: has delivered no picture for 1 s");
    QTest::newRow("end") << End::Eos << Frames
                         << QStringLiteral("/dev/null: delivers no more pictures");
    QTest::newRow("never a picture")
        << End::Silence << 0 << QStringLiteral("/dev/null: has delivered no picture for 2 s");
}

void tst_RecordingEnd::livePictureTells()
{
    QFETCH(BrokenCamera::End, end);
    QFETCH(int, frames);
    QFETCH(QString, reason);
    QVERIFY(BrokenCamera::plugIn(frames, end));
    LiveVideo video(SourceSpec::fromText(BrokenCamera::device()));
    video.setStallLimit(1000);
    QSignalSpy failed(&video, &LiveVideo::failed);
    QString error;
    QVERIFY2(video.start(&error), qPrintable(error));
    QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 1, LimitMs);
    QVERIFY2(failed.at(0).at(0).toString().contains(reason),
             qPrintable(failed.at(0).at(0).toString()));
    QVERIFY(video.playedFrames() <= frames && video.playedFrames() >= frames - 1);
}

void tst_RecordingEnd::pushedFramesArrive_data()
{
    using BrokenCamera::End;
    QTest::addColumn<End>("end");
    QTest::newRow("error") << End::Error;
    QTest::newRow("unplugged") << End::Unplugged;
    QTest::newRow("silence") << End::Silence;
    QTest::newRow("end") << End::Eos;
}

/// The recording of a live picture that breaks is ended by whoever plays the picture.
void tst_RecordingEnd::pushedFramesArrive()
{
    QFETCH(BrokenCamera::End, end);
    const QString output = path("pushed.mkv");
    QVERIFY(BrokenCamera::plugIn(Frames, end));
    LiveVideo video(SourceSpec::fromText(BrokenCamera::device()));
    video.setStallLimit(1000);
    SourceSpec pushed;
    pushed.kind = SourceSpec::Kind::Pushed;
    pushed.input = std::make_shared<FrameInput>();
    RecordPipeline recording(pushed, {output, {}, 0},
                             std::make_shared<OverlayScene>(QSize(320, 240)));
    QSignalSpy finished(&recording, &RecordPipeline::finished);
    QSignalSpy failed(&video, &LiveVideo::failed);
    QSignalSpy ended(&video, &LiveVideo::ended);
    QString error;
    QVERIFY2(recording.start(&error), qPrintable(error));
    video.setRecording(pushed.input);
    QVERIFY2(video.start(&error), qPrintable(error));
    QTRY_COMPARE_WITH_TIMEOUT(failed.count() + ended.count(), 1, LimitMs);

    QElapsedTimer timer;
    timer.start();
    recording.stop();
    QVERIFY(finished.wait(LimitMs));
    QVERIFY2(timer.elapsed() < 4500, "waits for a picture that does not come");
    // On a busy machine single frames come too late to be taken.
    const int count = recording.frameCount();
    QVERIFY2(count <= Frames && count >= Frames * 2 / 3, qPrintable(QString::number(count)));
    QCOMPARE(readFrames(output).size(), count);
    const MediaFacts facts = readFacts(output);
    QVERIFY2(qAbs(facts.seconds - double(Frames) / BrokenCamera::FramesPerSecond) < 0.25,
             qPrintable(QString::number(facts.seconds)));
    QVERIFY(facts.seekable);
}

void tst_RecordingEnd::endOfWhatNeverCame()
{
    const QString output = path("empty.mkv");
    SourceSpec pushed;
    pushed.kind = SourceSpec::Kind::Pushed;
    pushed.input = std::make_shared<FrameInput>();
    RecordPipeline recording(pushed, {output, {}, 0},
                             std::make_shared<OverlayScene>(QSize(320, 240)));
    QSignalSpy finished(&recording, &RecordPipeline::finished);
    QString error;
    QVERIFY2(recording.start(&error), qPrintable(error));
    recording.stop();
    QCOMPARE(finished.count(), 0); // it follows
    QVERIFY(finished.wait(1000));
    QCOMPARE(recording.frameCount(), 0);
    QVERIFY(!QFileInfo::exists(output));
}

void tst_RecordingEnd::stuckPipelineIsReported()
{
    StuckPipeline pipeline;
    pipeline.setStallLimit(1000);
    QSignalSpy failed(&pipeline, &OverlayPipeline::failed);
    QString error;
    QVERIFY2(pipeline.start(&error), qPrintable(error));
    QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 1, LimitMs);
    QCOMPARE(failed.at(0).at(0).toString(), QStringLiteral("test: nothing has moved for 1 s"));
}

void tst_RecordingEnd::stuckPipelineCanBeStopped()
{
    StuckPipeline pipeline;
    pipeline.setStallLimit(1000);
    QSignalSpy finished(&pipeline, &OverlayPipeline::finished);
    QSignalSpy failed(&pipeline, &OverlayPipeline::failed);
    QString error;
    QVERIFY2(pipeline.start(&error), qPrintable(error));
    QTRY_VERIFY(pipeline.frameCount() > 0);
    pipeline.stop();
    QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 1, LimitMs);
    QCOMPARE(failed.at(0).at(0).toString(),
             QStringLiteral("nowhere: cannot be completed: nothing has moved for 1 s"));
    QCOMPARE(finished.count(), 0);
}

void tst_RecordingEnd::stopInTheMiddleOfSound_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("Matroska") << path("sound.mkv");
    QTest::newRow("MP4") << path("sound.mp4");
}

/// Sound and picture end each for itself, or the container waits for one of them.
void tst_RecordingEnd::stopInTheMiddleOfSound()
{
    QFETCH(QString, output);
    const QString film = path("film.mkv");
    QVERIFY(runPipeline(QStringLiteral("audiotestsrc num-buffers=3000 samplesperbuffer=480 "
                                       "! audio/x-raw,rate=48000 ! audioconvert ! opusenc ! queue "
                                       "! matroskamux name=mux ! filesink location=\"%1\" "
                                       "videotestsrc num-buffers=750 "
                                       "! video/x-raw,width=320,height=240,framerate=25/1 "
                                       "! jpegenc ! queue ! mux.")
                            .arg(film)));
    RecordPipeline pipeline(SourceSpec::fromText(film), {output, {}, 0}, noOverlay());
    QSignalSpy finished(&pipeline, &RecordPipeline::finished);
    QString error;
    QVERIFY2(pipeline.start(&error), qPrintable(error));
    QTRY_VERIFY_WITH_TIMEOUT(pipeline.frameCount() >= 50, LimitMs);
    pipeline.stop();
    QVERIFY(finished.wait(LimitMs));
    const MediaFacts facts = readFacts(output);
    QCOMPARE(facts.problem, QString());
    QVERIFY(!facts.audioType.isEmpty());
    // The sound that waited for the picture goes with the frames that did not come.
    const double seconds = double(pipeline.frameCount()) / BrokenCamera::FramesPerSecond;
    QVERIFY2(qAbs(facts.seconds - seconds) < 0.3, qPrintable(QString::number(facts.seconds)));
    QCOMPARE(readFrames(output).size(), pipeline.frameCount());
    QVERIFY(pipeline.frameCount() < 750);
}

QTEST_GUILESS_MAIN(tst_RecordingEnd)
#include "tst_RecordingEnd.moc"
