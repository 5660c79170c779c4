// SPDX-License-Identifier: Apache-2.0
#include "tests/support/VideoReader.h"

#include "host/pipelines/RecordPipeline.h"
#include "host/pipelines/VideoErrors.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>

using namespace Velmar::Host;

namespace {

constexpr qint64 ChangeNs = 400000000; ///< when the box changes its colour
constexpr qint64 Never = std::numeric_limits<qint64>::max();
constexpr QRect Box(32, 16, 96, 64);
constexpr int LimitMs = 30000;

OverlaySnapshotPtr boxOf(QColor color)
{
    static quint64 revision = 0;
    OverlayItem item;
    item.id = 1;
    item.position = Box.topLeft();
    item.image = QImage(Box.size(), QImage::Format_ARGB32);
    item.image.fill(color);
    item.revision = ++revision;
    auto overlay = std::make_shared<OverlaySnapshot>();
    overlay->items.append(item);
    overlay->revision = revision;
    return overlay;
}

/// Red first, blue from a given time on: like a text with one new reading.
FrameGate::Update redThenBlue()
{
    return [red = boxOf(Qt::red), blue = boxOf(Qt::blue)](qint64 ns, QSize) {
        return ns < ChangeNs ? FrameGate::Answer {red, ChangeNs} : FrameGate::Answer {blue, Never};
    };
}

/// What a lossy codec leaves of a colour.
bool isNear(QRgb pixel, QColor color)
{
    return qAbs(qRed(pixel) - color.red()) < 40 && qAbs(qGreen(pixel) - color.green()) < 40
        && qAbs(qBlue(pixel) - color.blue()) < 40;
}

SourceSpec testSource(QSize size, int rate = 25)
{
    SourceSpec spec = SourceSpec::fromText(QStringLiteral("test"));
    spec.size = size;
    spec.framesPerSecond = rate;
    return spec;
}

/// What went wrong, or nothing.
QString runToEnd(OverlayPipeline &pipeline)
{
    QSignalSpy finished(&pipeline, &OverlayPipeline::finished);
    QSignalSpy failed(&pipeline, &OverlayPipeline::failed);
    QString error;
    if (!pipeline.start(&error))
        return error;
    if (!QTest::qWaitFor([&] { return finished.count() + failed.count() > 0; }, LimitMs))
        return QStringLiteral("no end");
    if (finished.count() == 1 && failed.isEmpty())
        return {};
    return failed.isEmpty() ? QStringLiteral("two ends") : failed.at(0).at(0).toString();
}

} // namespace

class tst_RecordPipeline : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void recording_data();
    void recording();
    void overlayOfTheExactFrame();
    void sizes_data();
    void sizes();
    void pipeRun();
    void audioIsPassedOn_data();
    void audioIsPassedOn();
    void aFileKeepsItsSizeAndLength();
    void aFileCanBeScaled();
    void anotherSizeInTheMiddle();
    void durationEndsAFile();
    void grabbedFrame();
    void stopLeavesAPlayableFile_data();
    void stopLeavesAPlayableFile();
    void destroyedWhileItRuns();
    void constantBitRate();
    void startErrors_data();
    void startErrors();
    void runErrors_data();
    void runErrors();
    void fullDisk_data();
    void fullDisk();

private:
    QString path(const char *name) const { return m_directory.filePath(QString::fromLatin1(name)); }
    /// Records until the end; what went wrong, or nothing.
    QString record(const SourceSpec &source, const QString &output, qint64 durationNs = -1,
                   const QByteArray &encoder = QByteArray());

    QTemporaryDir m_directory;
};

QString tst_RecordPipeline::record(const SourceSpec &source, const QString &output,
                                   qint64 durationNs, const QByteArray &encoder)
{
    RecordPipeline pipeline(source, {output, encoder, 0}, redThenBlue());
    pipeline.setRange(0, durationNs);
    return runToEnd(pipeline);
}

void tst_RecordPipeline::initTestCase()
{
    QVERIFY(m_directory.isValid());
    QString error;
    QVERIFY2(initialiseVideo(&error), qPrintable(error));
}

void tst_RecordPipeline::recording_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("encoder");
    QTest::addColumn<QString>("videoType");
    QTest::newRow("H.264 in Matroska")
        << path("a.mkv") << QByteArray("x264enc") << QStringLiteral("video/x-h264");
    QTest::newRow("H.264 in MP4") << path("a.mp4") << QByteArray("x264enc")
                                  << QStringLiteral("video/x-h264");
    QTest::newRow("VP8 in Matroska")
        << path("b.mkv") << QByteArray("vp8enc") << QStringLiteral("video/x-vp8");
    QTest::newRow("the best one") << path("c.mkv") << QByteArray()
                                  << QStringLiteral("video/x-h264");
}

void tst_RecordPipeline::recording()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, encoder);
    QFETCH(QString, videoType);

    QCOMPARE(record(testSource({320, 240}), name, 800000000, encoder), QString());

    const MediaFacts facts = readFacts(name);
    QCOMPARE(facts.problem, QString());
    QCOMPARE(facts.videoType, videoType);
    QCOMPARE(facts.audioType, QString());
    QCOMPARE(facts.size, QSize(320, 240));
    QVERIFY2(qAbs(facts.seconds - 0.8) < 0.05, qPrintable(QString::number(facts.seconds)));
    const QVector<DecodedFrame> frames = readFrames(name);
    QCOMPARE(frames.size(), 20);
    // All of the box, and nothing beside it: the first of the bars is white.
    for (const QPoint inside :
         {Box.topLeft() + QPoint(3, 3), Box.center(), Box.bottomLeft() + QPoint(3, -3)}) {
        QVERIFY(isNear(frames.first().image.pixel(inside), Qt::red));
        QVERIFY(isNear(frames.last().image.pixel(inside), Qt::blue));
    }
    for (const QPoint outside : {Box.topLeft() - QPoint(4, 4), Box.bottomLeft() + QPoint(-4, 4)})
        QVERIFY(!isNear(frames.first().image.pixel(outside), Qt::red));
}

void tst_RecordPipeline::overlayOfTheExactFrame()
{
    const QString output = path("exact.mkv");
    RecordPipeline pipeline(testSource({320, 240}, 25), {output, {}, 0}, redThenBlue());
    pipeline.setRange(0, 800000000);
    QCOMPARE(runToEnd(pipeline), QString());
    QCOMPARE(pipeline.frameCount(), 20);
    QCOMPARE(pipeline.positionNs(), qint64(800000000));
    // One question at the start and one at the change; all other frames go straight through.
    QCOMPARE(pipeline.gate().roundTrips(), 2);

    const QVector<DecodedFrame> frames = readFrames(output);
    QCOMPARE(frames.size(), 20);
    for (int i = 0; i < frames.size(); ++i) {
        const QColor expected = i < 10 ? Qt::red : Qt::blue; // frame 10 is shown at 400 ms
        QVERIFY2(isNear(frames.at(i).image.pixel(Box.center()), expected),
                 qPrintable(QString::number(i)));
    }
}

void tst_RecordPipeline::sizes_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("recorded");
    QTest::newRow("even") << QSize(640, 480) << QSize(640, 480);
    QTest::newRow("odd: the last line and column are left out")
        << QSize(641, 361) << QSize(640, 360);
    QTest::newRow("upright") << QSize(180, 320) << QSize(180, 320);
}

void tst_RecordPipeline::sizes()
{
    QFETCH(QSize, size);
    QFETCH(QSize, recorded);
    const QString output = path("sizes.mp4");
    QSize announced;
    RecordPipeline pipeline(testSource(size), {output, {}, 0}, [&](qint64, QSize frame) {
        announced = frame;
        return FrameGate::Answer {boxOf(Qt::red), Never};
    });
    pipeline.setRange(0, 200000000);
    QCOMPARE(runToEnd(pipeline), QString());
    QCOMPARE(announced, recorded);
    QCOMPARE(pipeline.frameSize(), recorded);
    const QVector<DecodedFrame> frames = readFrames(output);
    QCOMPARE(frames.size(), 5);
    QCOMPARE(frames.first().image.size(), recorded);
    QVERIFY(isNear(frames.first().image.pixel(Box.center()), Qt::red));
}

void tst_RecordPipeline::pipeRun()
{
    SourceSpec source;
    source.size = QSize(320, 240);
    QCOMPARE(record(source, path("pipe.mkv"), 400000000), QString());
    const QVector<DecodedFrame> frames = readFrames(path("pipe.mkv"));
    QCOMPARE(frames.size(), 10);
    QVERIFY(isNear(frames.first().image.pixel(Box.center()), Qt::red));
    QVERIFY(frames.first().image != frames.last().image);
}

void tst_RecordPipeline::audioIsPassedOn_data()
{
    QTest::addColumn<QString>("audio");
    QTest::addColumn<QString>("muxer");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("audioType");
    const QString mkv = path("audio.mkv");
    const QString mp4 = path("audio.mp4");
    const auto row = [](const char *name, const char *audio, const char *muxer,
                        const QString &output, const char *type) {
        QTest::newRow(name) << QString::fromLatin1(audio) << QString::fromLatin1(muxer) << output
                            << QString::fromLatin1(type);
    };
    row("Vorbis stays", "vorbisenc", "matroskamux", mkv, "audio/x-vorbis");
    row("Opus stays", "opusenc", "matroskamux", mkv, "audio/x-opus");
    row("MP3 stays in MP4", "lamemp3enc", "avimux", mp4, "audio/mpeg");
    row("Vorbis cannot stay in MP4", "vorbisenc", "matroskamux", mp4, nullptr);
    row("uncompressed", "audio/x-raw,format=S16LE", "avimux", mkv, "audio/x-opus");
}

void tst_RecordPipeline::audioIsPassedOn()
{
    QFETCH(QString, audio);
    QFETCH(QString, muxer);
    QFETCH(QString, output);
    QFETCH(QString, audioType);
    const QString source = path("with-audio");
    QVERIFY(runPipeline(QStringLiteral("audiotestsrc num-buffers=48 samplesperbuffer=1000 "
                                       "! audio/x-raw,rate=48000,channels=2 ! audioconvert ! %1 "
                                       "! queue ! %2 name=mux ! filesink location=\"%3\" "
                                       "videotestsrc num-buffers=25 "
                                       "! video/x-raw,width=320,height=240,framerate=25/1 "
                                       "! jpegenc ! queue ! mux.")
                            .arg(audio, muxer, source)));
    RecordPipeline pipeline(SourceSpec::fromText(source), {output, {}, 0}, redThenBlue());
    QSignalSpy warned(&pipeline, &RecordPipeline::warned);
    QCOMPARE(runToEnd(pipeline), QString());
    QCOMPARE(warned.count(), 0);

    const MediaFacts facts = readFacts(output);
    QCOMPARE(facts.problem, QString());
    if (audioType.isEmpty())
        QVERIFY(facts.audioType == QLatin1String("audio/mpeg")
                || facts.audioType == QLatin1String("audio/x-opus"));
    else
        QCOMPARE(facts.audioType, audioType);
    QVERIFY2(qAbs(facts.seconds - 1.0) < 0.15, qPrintable(QString::number(facts.seconds)));
    QCOMPARE(readFrames(output).size(), 25);
}

void tst_RecordPipeline::aFileKeepsItsSizeAndLength()
{
    QCOMPARE(record(testSource({352, 288}, 10), path("first.mkv"), 1000000000), QString());
    QCOMPARE(record(SourceSpec::fromText(path("first.mkv")), path("second.mp4")), QString());
    const MediaFacts facts = readFacts(path("second.mp4"));
    QCOMPARE(facts.size, QSize(352, 288));
    QVERIFY(qAbs(facts.seconds - 1.0) < 0.05);
    const QVector<DecodedFrame> frames = readFrames(path("second.mp4"));
    QCOMPARE(frames.size(), 10);
    QVERIFY(isNear(frames.at(3).image.pixel(Box.center()), Qt::red));
    QVERIFY(isNear(frames.at(4).image.pixel(Box.center()), Qt::blue));
}

void tst_RecordPipeline::aFileCanBeScaled()
{
    QCOMPARE(record(testSource({160, 120}), path("small.mkv"), 200000000), QString());
    SourceSpec source = SourceSpec::fromText(path("small.mkv"));
    source.size = QSize(321, 241);
    QCOMPARE(record(source, path("large.mkv")), QString());
    QCOMPARE(readFacts(path("large.mkv")).size, QSize(320, 240));
}

void tst_RecordPipeline::anotherSizeInTheMiddle()
{
    const QString source = path("two-sizes");
    QVERIFY(runPipeline(
        QStringLiteral("concat name=c ! jpegenc ! filesink location=\"%1.mjpeg\" "
                       "videotestsrc num-buffers=5 ! video/x-raw,width=320,height=240 ! c. "
                       "videotestsrc num-buffers=5 ! video/x-raw,width=160,height=122 ! c.")
            .arg(source)));
    QCOMPARE(record(SourceSpec::fromText(source + QStringLiteral(".mjpeg")), path("one-size.mkv")),
             QString());
    const QVector<DecodedFrame> frames = readFrames(path("one-size.mkv"));
    QVERIFY(!frames.isEmpty());
    for (const DecodedFrame &frame : frames)
        QCOMPARE(frame.image.size(), QSize(320, 240));
}

void tst_RecordPipeline::durationEndsAFile()
{
    QCOMPARE(record(testSource({320, 240}), path("long.mkv"), 2000000000), QString());
    RecordPipeline pipeline(SourceSpec::fromText(path("long.mkv")), {path("short.mkv"), {}, 0},
                            redThenBlue());
    pipeline.setRange(0, 600000000);
    QCOMPARE(runToEnd(pipeline), QString());
    QCOMPARE(readFrames(path("short.mkv")).size(), 15);
}

void tst_RecordPipeline::grabbedFrame()
{
    RecordPipeline pipeline(testSource({320, 240}), {path("grab.mkv"), {}, 0}, redThenBlue());
    pipeline.setRange(0, 800000000);
    pipeline.grabFrame(390000000); // frame 9 is shown from 360 to 400 ms
    QSignalSpy grabbed(&pipeline, &RecordPipeline::frameGrabbed);
    QCOMPARE(runToEnd(pipeline), QString());
    QCOMPARE(grabbed.count(), 1);
    const QImage picture = grabbed.at(0).at(0).value<QImage>();
    QCOMPARE(picture.size(), QSize(320, 240));
    const QRgb pixel = picture.pixel(Box.center());
    QVERIFY(qRed(pixel) > 250 && qGreen(pixel) < 5 && qBlue(pixel) < 5); // no codec in between
}

void tst_RecordPipeline::stopLeavesAPlayableFile_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("Matroska") << path("stopped.mkv");
    QTest::newRow("MP4") << path("stopped.mp4");
}

void tst_RecordPipeline::stopLeavesAPlayableFile()
{
    QFETCH(QString, output);
    // The overlay changes with every frame, so that a frame is always waiting for this thread.
    RecordPipeline pipeline(testSource({320, 240}), {output, {}, 0}, [](qint64 ns, QSize) {
        return FrameGate::Answer {boxOf(Qt::red), ns + 1};
    });
    QSignalSpy finished(&pipeline, &RecordPipeline::finished);
    QSignalSpy failed(&pipeline, &RecordPipeline::failed);
    QString error;
    QVERIFY2(pipeline.start(&error), qPrintable(error));
    QTRY_VERIFY(pipeline.frameCount() >= 30);
    pipeline.stop();
    pipeline.stop(); // impatience does no harm
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, LimitMs);
    QCOMPARE(failed.count(), 0);
    QCOMPARE(readFrames(output).size(), pipeline.frameCount());
    QVERIFY(readFacts(output).seconds > 1.0);
}

void tst_RecordPipeline::destroyedWhileItRuns()
{
    for (int i = 0; i < 3; ++i) {
        RecordPipeline pipeline(testSource({320, 240}), {path("torn.mkv"), {}, 0},
                                [](qint64 ns, QSize) {
                                    return FrameGate::Answer {boxOf(Qt::red), ns + 1};
                                });
        QString error;
        QVERIFY2(pipeline.start(&error), qPrintable(error));
        QTRY_VERIFY(pipeline.frameCount() >= 3);
    } // a frame waits for this thread, which now waits for the pipeline: nothing may hang
}

void tst_RecordPipeline::constantBitRate()
{
    const QString low = path("low.mkv");
    const QString high = path("high.mkv");
    for (const auto &[output, kbit] : {std::pair(low, 100), std::pair(high, 4000)}) {
        RecordPipeline pipeline(testSource({320, 240}), {output, "x264enc", kbit}, redThenBlue());
        pipeline.setRange(0, 2000000000);
        QCOMPARE(runToEnd(pipeline), QString());
    }
    QVERIFY(QFileInfo(low).size() < QFileInfo(high).size());
}

void tst_RecordPipeline::startErrors_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QByteArray>("encoder");
    QTest::addColumn<QString>("mentions");
    const QString test = QStringLiteral("test");
    const QString output = path("never.mkv");
    const auto text = [](const char *latin) { return QString::fromLatin1(latin); };
    QTest::newRow("no file") << path("none.mkv") << output << QByteArray() << text("no such file");
    QTest::newRow("a directory") << m_directory.path() << output << QByteArray()
                                 << text("is not a file");
    QTest::newRow("no camera") << text("/dev/video99") << output << QByteArray()
                               << text("no such camera");
    QTest::newRow("no encoder") << test << output << QByteArray("av1superenc")
                                << text("\"av1superenc\" is not installed");
    QTest::newRow("the package is named")
        << test << output << QByteArray("openh264enc") << text("gstreamer1.0-plugins-bad");
    QTest::newRow("not an encoder")
        << test << output << QByteArray("videoscale") << text("no video encoder");
    QTest::newRow("VP9 in MP4") << test << path("never.mp4") << QByteArray("vp9enc")
                                << text("cannot be held by MP4");
    QTest::newRow("VP8 in MP4") << test << path("never.mp4") << QByteArray("vp8enc")
                                << text("cannot be held by MP4");
    QTest::newRow("no directory") << test << path("none/never.mkv") << QByteArray()
                                  << text("no directory");
    QTest::newRow("output is a directory")
        << test << path("dir.mkv") << QByteArray() << text("is a directory");
    QTest::newRow("no container") << test << path("never.txt") << QByteArray()
                                  << text(".mkv or .mp4");
}

void tst_RecordPipeline::startErrors()
{
    QFETCH(QString, source);
    QFETCH(QString, output);
    QFETCH(QByteArray, encoder);
    QFETCH(QString, mentions);
    if (encoder == "openh264enc"
        && ObjectRef<GstElementFactory>(gst_element_factory_find("openh264enc")))
        return; // a machine on which that one can be had
    QDir(m_directory.path()).mkpath(QStringLiteral("dir.mkv"));
    RecordPipeline pipeline(SourceSpec::fromText(source), {output, encoder, 0}, redThenBlue());
    QSignalSpy failed(&pipeline, &RecordPipeline::failed);
    QString error;
    QVERIFY(!pipeline.start(&error));
    QVERIFY2(error.contains(mentions), qPrintable(error));
    QCoreApplication::processEvents();
    QCOMPARE(failed.count(), 0);
    QVERIFY(!QFileInfo(output).isFile());
}

void tst_RecordPipeline::runErrors_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("mentions");
    QTest::newRow("text") << QByteArray("This is a text, and no video at all.\n").repeated(50)
                          << QStringLiteral("is not a video");
    QTest::newRow("noise") << QByteArray("\x8f\x03\xee\x71").repeated(2000)
                           << QStringLiteral("is not a video");
    QTest::newRow("empty") << QByteArray() << QStringLiteral("is not a video");
    QTest::newRow("only the beginning of a header")
        << QByteArray("\x1a\x45\xdf\xa3\x01\x00\x00\x00", 8) << QString();
}

void tst_RecordPipeline::runErrors()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, mentions);
    QFile file(path("broken"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    const QString error = record(SourceSpec::fromText(file.fileName()), path("never.mkv"));
    QVERIFY(error.startsWith(file.fileName()));
    QVERIFY2(error.contains(mentions), qPrintable(error));
    QVERIFY(!QFileInfo::exists(path("never.mkv")));
}

void tst_RecordPipeline::fullDisk_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("Matroska") << path("full.mkv");
    QTest::newRow("MP4") << path("full.mp4");
}

void tst_RecordPipeline::fullDisk()
{
    QFETCH(QString, output);
    QVERIFY(QFile::link(QStringLiteral("/dev/full"), output));
    const QString error = record(testSource({320, 240}), output, 400000000);
    QCOMPARE(error, output + QStringLiteral(": the disk is full"));
}

QTEST_GUILESS_MAIN(tst_RecordPipeline)
#include "tst_RecordPipeline.moc"
