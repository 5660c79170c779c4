// SPDX-License-Identifier: Apache-2.0
#include "tests/support/VideoReader.h"

#include "host/feed/LiveInputParser.h"
#include "host/pipelines/VideoErrors.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

using namespace Velmar::Host;

namespace {

constexpr int LimitMs = 60000;

struct Outcome
{
    int status = -1;
    QString out;
    QString err;
};

} // namespace

/// The program as the operator runs it.
class tst_xqosd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void record();
    void runsWithoutADisplay();
    void quietPrintsNothing();
    void snapshotOfAFrameShowsWhatTheRecordingShows();
    void snapshotOnTransparency();
    void interruptLeavesAPlayableFile_data();
    void interruptLeavesAPlayableFile();
    void signalsAtOnceAreOne();
    void earlierRecordingSurvivesAFailure();
    void telemetryThatNobodyShows();
    void sourceThatWasCutOff();
    void values();
    void languageAndUnits();
    void languageOverTheSystems();
    void missingFont_data();
    void missingFont();
    void liveValuesFromAPipe();
    void errors_data();
    void errors();
    void brokenVideoInstallation();
    void logFile();

private:
    QString path(const char *name) const { return m_directory.filePath(QString::fromLatin1(name)); }
    Outcome run(const QStringList &arguments,
                const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    QString write(const char *name, const QByteArray &content);

    QTemporaryDir m_directory;
    QString m_telemetry;
};

Outcome tst_xqosd::run(const QStringList &arguments, const QProcessEnvironment &environment)
{
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(XQOSD_PROGRAM), arguments);
    Outcome outcome;
    if (!program.waitForFinished(LimitMs) || program.exitStatus() != QProcess::NormalExit)
        return outcome;
    outcome.status = program.exitCode();
    outcome.out = QString::fromUtf8(program.readAllStandardOutput());
    outcome.err = QString::fromUtf8(program.readAllStandardError());
    return outcome;
}

QString tst_xqosd::write(const char *name, const QByteArray &content)
{
    QFile file(path(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(content);
    return file.fileName();
}

void tst_xqosd::initTestCase()
{
    QString error;
    QVERIFY2(initialiseVideo(&error), qPrintable(error));
    QVERIFY(m_directory.isValid());
    m_telemetry
        = write("run.csv", "t_ms,SECTION_DISTANCE_COUNTER,SPEED\n0,1.00,0.5\n500,22.22,5.5\n");
}

void tst_xqosd::record()
{
    const QString output = path("record.mkv");
    const QString png = path("record.png");
    const Outcome outcome
        = run({QStringLiteral("record"), QStringLiteral("--source"), QStringLiteral("test"),
               QStringLiteral("--size"), QStringLiteral("640x480"), QStringLiteral("--duration"),
               QStringLiteral("1"), QStringLiteral("--telemetry"), m_telemetry,
               QStringLiteral("--output"), output, QStringLiteral("--png"), png,
               QStringLiteral("--png-at"), QStringLiteral("0.5")});
    QCOMPARE(outcome.err, QString()); // no terminal, no progress line
    QCOMPARE(outcome.status, 0);
    const QStringList lines = outcome.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines.at(0).startsWith(output + QStringLiteral(": 25 frames, 1.00 s, ")),
             qPrintable(lines.at(0)));
    QCOMPARE(lines.at(1), png);
    QCOMPARE(QImage(png).size(), QSize(640, 480));
    const QVector<DecodedFrame> frames = readFrames(output);
    QCOMPARE(frames.size(), 25);
    // The texts stand in the upper half, above the noise. They change at 500 ms: frame 13 is the
    // first after that.
    const QRect texts(0, 0, 640, 240);
    const auto differ = [&](int a, int b) {
        int pixels = 0;
        const QImage left = frames.at(a).image.copy(texts);
        const QImage right = frames.at(b).image.copy(texts);
        for (int y = 0; y < texts.height(); ++y) {
            for (int x = 0; x < texts.width(); ++x)
                pixels += qAbs(qGray(left.pixel(x, y)) - qGray(right.pixel(x, y))) > 60 ? 1 : 0;
        }
        return pixels > 20;
    };
    QVERIFY(!differ(11, 12));
    QVERIFY(differ(12, 13));
    QVERIFY(!differ(13, 24));
}

void tst_xqosd::runsWithoutADisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        environment.remove(QString::fromLatin1(name));
    const Outcome outcome = run({QStringLiteral("snapshot"), QStringLiteral("--transparent"),
                                 QStringLiteral("--output"), path("display.png")},
                                environment);
    QCOMPARE(outcome.err, QString());
    QCOMPARE(outcome.status, 0);
}

void tst_xqosd::quietPrintsNothing()
{
    const Outcome outcome
        = run({QStringLiteral("record"), QStringLiteral("--quiet"), QStringLiteral("--size"),
               QStringLiteral("320x240"), QStringLiteral("--duration"), QStringLiteral("0.2"),
               QStringLiteral("--output"), path("quiet.mkv")});
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.out + outcome.err, QString());
    QCOMPARE(readFrames(path("quiet.mkv")).size(), 5);
}

void tst_xqosd::snapshotOfAFrameShowsWhatTheRecordingShows()
{
    const QStringList common {QStringLiteral("--source"),    QStringLiteral("pipe"),
                              QStringLiteral("--size"),      QStringLiteral("640x480"),
                              QStringLiteral("--telemetry"), m_telemetry};
    QCOMPARE(run(QStringList {QStringLiteral("record"), QStringLiteral("--duration"),
                              QStringLiteral("0.8"), QStringLiteral("--output"), path("both.mkv"),
                              QStringLiteral("--png"), path("both.png"), QStringLiteral("--png-at"),
                              QStringLiteral("0.6")}
                 + common)
                 .status,
             0);
    const Outcome outcome
        = run(QStringList {QStringLiteral("snapshot"), QStringLiteral("--at"),
                           QStringLiteral("0.6"), QStringLiteral("--output"), path("snapshot.png")}
              + common);
    QCOMPARE(outcome.err, QString());
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.out, path("snapshot.png") + QLatin1Char('\n'));
    const QImage snapshot(path("snapshot.png"));
    QCOMPARE(snapshot.size(), QSize(640, 480));
    QCOMPARE(snapshot, QImage(path("both.png")));
}

void tst_xqosd::snapshotOnTransparency()
{
    const Outcome outcome
        = run({QStringLiteral("snapshot"), QStringLiteral("--transparent"),
               QStringLiteral("--size"), QStringLiteral("1280x720"), QStringLiteral("--telemetry"),
               m_telemetry, QStringLiteral("--output"), path("transparent.png")});
    QCOMPARE(outcome.status, 0);
    const QImage picture(path("transparent.png"));
    QCOMPARE(picture.size(), QSize(1280, 720));
    QVERIFY(picture.hasAlphaChannel());
    QCOMPARE(qAlpha(picture.pixel(640, 360)), 0);
    bool opaque = false;
    for (int x = 0; x < picture.width(); ++x)
        opaque = opaque || qAlpha(picture.pixel(x, 10)) == 255;
    QVERIFY(opaque); // the uppermost row of texts
}

void tst_xqosd::interruptLeavesAPlayableFile_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<int>("signal");
    QTest::newRow("Ctrl-C, Matroska") << path("int.mkv") << SIGINT;
    QTest::newRow("Ctrl-C, MP4") << path("int.mp4") << SIGINT;
    QTest::newRow("terminated") << path("term.mkv") << SIGTERM;
}

void tst_xqosd::interruptLeavesAPlayableFile()
{
    QFETCH(QString, output);
    QFETCH(int, signal);
    QProcess program;
    program.start(QStringLiteral(XQOSD_PROGRAM),
                  {QStringLiteral("record"), QStringLiteral("--source"), QStringLiteral("test"),
                   QStringLiteral("--size"), QStringLiteral("320x240"), QStringLiteral("--output"),
                   output});
    QVERIFY(program.waitForStarted());
    // Once something has been written, it is in full swing.
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(output).size() > 60000, LimitMs);
    QCOMPARE(::kill(pid_t(program.processId()), signal), 0);
    QVERIFY(program.waitForFinished(LimitMs));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 130);
    const MediaFacts facts = readFacts(output);
    QCOMPARE(facts.problem, QString());
    QVERIFY(facts.seconds > 0.2);
    const int frames = readFrames(output).size();
    QCOMPARE(frames, qRound(facts.seconds * 25));
    QVERIFY(QString::fromUtf8(program.readAllStandardOutput())
                .contains(QStringLiteral(": %1 frames").arg(frames)));
}

void tst_xqosd::signalsAtOnceAreOne()
{
    QProcess program;
    program.start(QStringLiteral(XQOSD_PROGRAM),
                  {QStringLiteral("record"), QStringLiteral("--source"), QStringLiteral("test"),
                   QStringLiteral("--size"), QStringLiteral("320x240"), QStringLiteral("--output"),
                   path("twice.mkv")});
    QVERIFY(program.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(path("twice.mkv")).size() > 60000, LimitMs);
    const pid_t pid = pid_t(program.processId());
    ::kill(pid, SIGINT); // some programs signal their child and then its group
    ::kill(pid, SIGTERM);
    QVERIFY(program.waitForFinished(LimitMs));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 130);
    QVERIFY(!readFrames(path("twice.mkv")).isEmpty());
}

void tst_xqosd::earlierRecordingSurvivesAFailure()
{
    const QString file = write("precious.mkv", "an earlier recording");
    const QString noVideo = write("text.avi", "no video");
    QCOMPARE(run({QStringLiteral("record"), QStringLiteral("--source"), noVideo,
                  QStringLiteral("--output"), file})
                 .status,
             1);
    QCOMPARE(QFileInfo(file).size(), qint64(20));
    QVERIFY(!QFileInfo::exists(file + QStringLiteral(".part")));

    QCOMPARE(run({QStringLiteral("record"), QStringLiteral("--source"), QStringLiteral("test"),
                  QStringLiteral("--size"), QStringLiteral("320x240"), QStringLiteral("--duration"),
                  QStringLiteral("0.2"), QStringLiteral("--output"), file})
                 .status,
             0);
    QCOMPARE(readFrames(file).size(), 5); // a complete one takes its place
    QVERIFY(!QFileInfo::exists(file + QStringLiteral(".part")));
}

void tst_xqosd::telemetryThatNobodyShows()
{
    const QString csv = write("foreign.csv", "t_ms,FOO,BAR\n0,1,2\n");
    const Outcome outcome
        = run({QStringLiteral("snapshot"), QStringLiteral("--transparent"),
               QStringLiteral("--telemetry"), csv, QStringLiteral("--output"), path("bare.png")});
    QCOMPARE(outcome.status, 0);
    QVERIFY2(outcome.err.contains(csv + QStringLiteral(": no text shows FOO, BAR")),
             qPrintable(outcome.err));
}

void tst_xqosd::sourceThatWasCutOff()
{
    const QString whole = path("whole.mkv");
    QCOMPARE(run({QStringLiteral("record"), QStringLiteral("--source"), QStringLiteral("test"),
                  QStringLiteral("--size"), QStringLiteral("320x240"), QStringLiteral("--duration"),
                  QStringLiteral("6"), QStringLiteral("--output"), whole})
                 .status,
             0);
    QVERIFY(QFile::resize(whole, QFileInfo(whole).size() / 3));
    const Outcome outcome = run({QStringLiteral("record"), QStringLiteral("--source"), whole,
                                 QStringLiteral("--output"), path("rest.mkv")});
    QCOMPARE(outcome.status, 0);
    QVERIFY2(outcome.err.contains(QLatin1String("whole.mkv: ends at "))
                 && outcome.err.contains(QLatin1String(" s of 6.00 s")),
             qPrintable(outcome.err));
    QVERIFY(!readFrames(path("rest.mkv")).isEmpty());
}

void tst_xqosd::values()
{
    const Outcome outcome
        = run({QStringLiteral("values"), QStringLiteral("--language"), QStringLiteral("de"),
               QStringLiteral("--units"), QStringLiteral("imperial")});
    QCOMPARE(outcome.err, QString());
    QCOMPARE(outcome.status, 0);
    const QString speed
        = outcome.out.mid(outcome.out.indexOf(QStringLiteral("\nSPEED\n"))).left(400);
    for (const char *line :
         {"  caption   Geschwindigkeit\n", "  quantity  speed\n", "  unit      ft/min\n",
          "  units     m/min, ft/min, inch/min, m/s, ft/s, inch/s, cm/s\n",
          "  input     a number [m/min]\n", "  example   {\"SPEED\": 6.5}\n"})
        QVERIFY2(speed.contains(QString::fromUtf8(line)), line);
    QCOMPARE(outcome.out.count(QStringLiteral("  quantity ")), 19); // with the snips' picture
    QVERIFY(outcome.out.contains(QStringLiteral("\nSCREEN_SNIP\n")));
    // The example at the end is what the live input takes.
    const QString example = outcome.out.trimmed().section(QLatin1Char('\n'), -1);
    LiveInputParser parser;
    const LiveInputParser::Batch batch = parser.feed(example.toUtf8() + '\n');
    QCOMPARE(batch.problems, QStringList());
    QCOMPARE(batch.values.size(), 19);
}

void tst_xqosd::languageAndUnits()
{
    const auto picture = [this](const char *name, const QStringList &more) {
        const Outcome outcome
            = run(QStringList {QStringLiteral("snapshot"), QStringLiteral("--transparent"),
                               QStringLiteral("--telemetry"), m_telemetry,
                               QStringLiteral("--output"), path(name)}
                  + more);
        return outcome.status == 0 && outcome.err.isEmpty() ? QImage(path(name)) : QImage();
    };
    const QImage english = picture("en.png", {QStringLiteral("--language"), QStringLiteral("en")});
    const QImage german = picture("de.png", {QStringLiteral("--language"), QStringLiteral("DEU")});
    const QImage feet = picture("ft.png",
                                {QStringLiteral("--language"), QStringLiteral("en"),
                                 QStringLiteral("--units"), QStringLiteral("imperial")});
    QVERIFY(!english.isNull() && !german.isNull() && !feet.isNull());
    QVERIFY(english != german);
    QVERIFY(english != feet);
    // The captions are the same in either unit, up to the value.
    const QRect captions(0, 40, 500, 40);
    QCOMPARE(english.copy(captions), feet.copy(captions));
}

/// What the option says holds for every letter and digit, whatever the machine speaks.
void tst_xqosd::languageOverTheSystems()
{
    const QString run
        = write("all.csv",
                "t_ms,SECTION_DISTANCE_COUNTER,SPEED,CAMERA_PAN,CAMERA_PRESSURE,CAMERA_TEMPERATURE,"
                "DATE,TIME\n0,1234.56,6.5,45,1098,24.6,2026-03-31,14:05:37\n");
    const auto picture = [&](const char *name, const char *systems, const QString &profile) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QString::fromLatin1(systems));
        const Outcome outcome = this->run(
            {QStringLiteral("snapshot"), QStringLiteral("--transparent"),
             QStringLiteral("--telemetry"), run, QStringLiteral("--at"), QStringLiteral("7"),
             QStringLiteral("--language"), QStringLiteral("de"), QStringLiteral("--profile"),
             profile, QStringLiteral("--settings-dir"), path("languages"), QStringLiteral("--log"),
             path("languages.log"), QStringLiteral("--output"), path(name)},
            environment);
        return outcome.status == 0 ? QImage(path(name)) : QImage();
    };
    for (const char *profile : {"Halvo push camera system - default", "Sewer inspection"}) {
        const QString name = QString::fromLatin1(profile);
        const QImage german = picture("german.png", "C.UTF-8", name);
        QVERIFY(!german.isNull());
        QCOMPARE(picture("arabic.png", "ar_EG.UTF-8", name), german);
        QCOMPARE(picture("persian.png", "fa_IR.UTF-8", name), german);
    }
}

void tst_xqosd::missingFont_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("font"); // that the machine has instead
    for (const char *command : {"record", "snapshot"}) {
        QTest::addRow("%s, no font at all", command) << QString::fromLatin1(command) << QString();
        QTest::addRow("%s, another font", command)
            << QString::fromLatin1(command) << QStringLiteral("DejaVu Serif");
    }
}

/// A recording of boxes, or of another grid, cannot be made again.
void tst_xqosd::missingFont()
{
    QFETCH(QString, command);
    QFETCH(QString, font);
    QTemporaryDir fonts;
    if (!font.isEmpty()) {
        QDirIterator installed(QStringLiteral("/usr/share/fonts"),
                               {QString(font).remove(QLatin1Char(' ')) + QStringLiteral(".ttf")},
                               QDir::Files, QDirIterator::Subdirectories);
        QVERIFY2(installed.hasNext(), "the package fonts-dejavu-core brings it");
        QVERIFY(QFile::copy(installed.next(), fonts.filePath(QStringLiteral("font.ttf"))));
    }
    const QString settings
        = write("fonts.conf",
                QStringLiteral("<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"fonts.dtd\">"
                               "<fontconfig><dir>%1</dir><cachedir>%2</cachedir></fontconfig>")
                    .arg(fonts.path(), path("font-cache"))
                    .toUtf8());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("FONTCONFIG_FILE"), settings);
    const QString output = path(command == QLatin1String("record") ? "font.mkv" : "font.png");
    QStringList arguments {command,
                           QStringLiteral("--source"),
                           QStringLiteral("test"),
                           QStringLiteral("--size"),
                           QStringLiteral("320x240"),
                           QStringLiteral("--output"),
                           output};
    if (command == QLatin1String("record"))
        arguments.append({QStringLiteral("--duration"), QStringLiteral("1")});
    const Outcome outcome = run(arguments, environment);
    QCOMPARE(outcome.status, 1);
    QVERIFY2(outcome.err.contains(QStringLiteral("\"DejaVu Sans Mono\" is not installed"))
                 && outcome.err.contains(QStringLiteral("fonts-dejavu-core"))
                 && outcome.err.contains(font),
             qPrintable(outcome.err));
    QVERIFY(!QFile::exists(output));
}

void tst_xqosd::liveValuesFromAPipe()
{
    QProcess program;
    program.start(QStringLiteral(XQOSD_PROGRAM),
                  {QStringLiteral("record"), QStringLiteral("--source"), QStringLiteral("test"),
                   QStringLiteral("--size"), QStringLiteral("640x480"), QStringLiteral("--output"),
                   path("live.mkv"), QStringLiteral("--input"), QStringLiteral("stdin")});
    QVERIFY(program.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(
        QFileInfo(path("live.mkv.part")).size() + QFileInfo(path("live.mkv")).size() > 100000,
        LimitMs);
    program.write("nonsense\n{\"SPEED\": 6.5}\n");
    QByteArray errors; // gathered: a question may be asked twice
    const auto warned = [&] {
        errors += program.readAllStandardError();
        return errors.contains("warning: live input, line 1: no JSON");
    };
    QTRY_VERIFY_WITH_TIMEOUT(warned(), LimitMs);
    QTest::qWait(300); // some frames more
    ::kill(pid_t(program.processId()), SIGINT);
    QVERIFY(program.waitForFinished(LimitMs));
    QCOMPARE(program.exitCode(), 130);
    const QVector<DecodedFrame> frames = readFrames(path("live.mkv"));
    QVERIFY(frames.size() > 2);
    // The box of the speed, absent from the first frame; the digits of the time are far less.
    const QImage first = frames.first().image;
    const QImage last = frames.last().image;
    int pixels = 0;
    for (int y = 0; y < first.height() / 2; ++y) {
        for (int x = 0; x < first.width(); ++x)
            pixels += qAbs(qGray(first.pixel(x, y)) - qGray(last.pixel(x, y))) > 60 ? 1 : 0;
    }
    QVERIFY2(pixels > 1500, qPrintable(QString::number(pixels)));
}

void tst_xqosd::errors_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("mentions");

    const QString text = write("text.png", "no picture");
    const QString csv = write("bad.csv", "t_ms,SPEED\n0,1\nlater,2\n");
    const QString out = QStringLiteral(" --output ") + path("never.mkv");
    const QString test = QStringLiteral("record --source test --duration 0.1");
    QTest::newRow("usage") << QStringLiteral("record --output a.mkv --size huge") << 2
                           << QStringLiteral("--size");
    QTest::newRow("no command") << QString() << 2 << QStringLiteral("No command");
    QTest::newRow("missing source") << QStringLiteral("record --source ") + path("none.avi") + out
                                    << 1 << path("none.avi: no such file");
    QTest::newRow("not a video") << QStringLiteral("record --source ") + csv + out << 1
                                 << QStringLiteral("is not a video");
    QTest::newRow("missing camera") << QStringLiteral("record --source /dev/video99") + out << 1
                                    << QStringLiteral("/dev/video99: no such camera device");
    QTest::newRow("not a camera") << QStringLiteral("record --source /dev/null") + out << 1
                                  << QStringLiteral("/dev/null: cannot be read");
    QTest::newRow("missing encoder") << test + QStringLiteral(" --encoder h266enc") + out << 1
                                     << QStringLiteral("\"h266enc\" is not installed");
    QTest::newRow("missing directory") << test + QStringLiteral(" --output ") + path("none/a.mkv")
                                       << 1 << QStringLiteral("no directory");
    QTest::newRow("missing telemetry")
        << test + QStringLiteral(" --telemetry ") + path("none.csv") + out << 1 << path("none.csv");
    QTest::newRow("bad telemetry")
        << test + QStringLiteral(" --telemetry ") + csv + out << 1 << csv + QStringLiteral(":3: ");
    QTest::newRow("unreadable picture") << test + QStringLiteral(" --picture ") + text + out << 1
                                        << text + QStringLiteral(": cannot be read as a picture");
    QTest::newRow("missing picture") << test + QStringLiteral(" --picture ") + path("none.png")
            + out << 1 << path("none.png: cannot be read as a picture");
    QTest::newRow("unreadable watermark") << test + QStringLiteral(" --watermark ") + text
            + out << 1 << text + QStringLiteral(": cannot be read as a picture");
    QTest::newRow("log") << test + QStringLiteral(" --log ") + path("none/log") + out << 1
                         << path("none/log");
    QTest::newRow("frame after the end")
        << test + QStringLiteral(" --png ") + path("late.png") + QStringLiteral(" --png-at 5") + out
        << 1 << QStringLiteral("late.png: not written");
    QTest::newRow("picture into nowhere") << test + QStringLiteral(" --png ") + path("none/a.png")
            + out << 1 << path("none/a.png: cannot be written");
    QTest::newRow("picture on a full disk")
        << QStringLiteral("snapshot --transparent --output /dev/full") << 1
        << QStringLiteral("/dev/full: cannot be written: No space left");
    QTest::newRow("picture over the video") << QStringLiteral("record --source test --output ")
            + path("one.mkv") + QStringLiteral(" --png ")
            + path("one.mkv") << 2 << QStringLiteral("one.mkv: is used for something else already");
    QTest::newRow("log over the telemetry")
        << test + QStringLiteral(" --telemetry ") + csv + QStringLiteral(" --log ") + csv + out << 2
        << csv;
    QTest::newRow("snapshot over its source")
        << QStringLiteral("snapshot --source ") + csv + QStringLiteral(" --output ") + csv << 2
        << csv + QStringLiteral(": is used for something else already");
    QTest::newRow("placeholders in a name")
        << QStringLiteral("record --source test --output %2%3.mkv --fps %3") << 2
        << QStringLiteral("--fps: \"%3\" is not a whole number from 1");
    QTest::newRow("snapshot without source") << QStringLiteral("snapshot --source ")
            + path("none.avi") + QStringLiteral(" --output ")
            + path("never.png") << 1 << QStringLiteral("no such file");
}

void tst_xqosd::errors()
{
    QFETCH(QString, arguments);
    QFETCH(int, status);
    QFETCH(QString, mentions);
    const Outcome outcome = run(arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts));
    QCOMPARE(outcome.status, status);
    QVERIFY2(outcome.err.contains(mentions), qPrintable(outcome.err));
    const QStringList lines = outcome.err.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QVERIFY2(lines.last().startsWith(QLatin1String("xqosd: ")), qPrintable(outcome.err));
    QCOMPARE(lines.size(), 1);
}

void tst_xqosd::brokenVideoInstallation()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("GST_PLUGIN_SYSTEM_PATH_1_0"), path("no-plugins"));
    environment.insert(QStringLiteral("GST_REGISTRY_1_0"), path("registry.bin"));
    const Outcome outcome
        = run({QStringLiteral("record"), QStringLiteral("--duration"), QStringLiteral("1"),
               QStringLiteral("--output"), path("never.mkv")},
              environment);
    QCOMPARE(outcome.status, 1);
    QVERIFY2(outcome.err.contains(QStringLiteral("is not installed")), qPrintable(outcome.err));
}

void tst_xqosd::logFile()
{
    const Outcome outcome
        = run({QStringLiteral("record"), QStringLiteral("--source"), QStringLiteral("test"),
               QStringLiteral("--size"), QStringLiteral("320x240"), QStringLiteral("--duration"),
               QStringLiteral("0.2"), QStringLiteral("--log"), path("run.log"),
               QStringLiteral("--output"), path("log.mkv")});
    QCOMPARE(outcome.status, 0);
    QVERIFY(QFileInfo::exists(path("run.log")));
}

QTEST_GUILESS_MAIN(tst_xqosd)
#include "tst_xqosd.moc"
