// SPDX-License-Identifier: Apache-2.0
#include "tests/support/VideoReader.h"

#include "host/pipelines/VideoErrors.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

#include <sys/stat.h>
#include <unistd.h>

using namespace Velmar::Host;

namespace {

constexpr int LimitMs = 60000;
const QByteArray earlierContent("an earlier picture");

struct Outcome
{
    int status = -1;
    QString out;
    QString err;
};

} // namespace

/// What the program leaves on the disk when something goes wrong there.
class tst_xqosd_output : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void killedRecording_data();
    void killedRecording();
    void folderOfTheRecordingIsRemoved_data();
    void folderOfTheRecordingIsRemoved();
    void recordingIsReplacedByAnotherFile();
    void diskThatIsFull_data();
    void diskThatIsFull();
    void diskThatIsFullAtTheVeryEnd_data();
    void diskThatIsFullAtTheVeryEnd();
    void pictureOnAFullDisk_data();
    void pictureOnAFullDisk();
    void pictureReplacesAnother_data();
    void pictureReplacesAnother();
    void pictureIntoAPipe();

private:
    QString path(const char *name) const { return m_directory.filePath(QString::fromLatin1(name)); }
    QString write(const QString &file, const QByteArray &content);
    static QByteArray read(const QString &file);
    static QStringList recording(const QString &output, const QStringList &more = {});
    static Outcome outcomeOf(QProcess &program);
    Outcome run(const QStringList &arguments);
    /// As on a disk with room for @p blocks of 512 bytes in each file.
    Outcome runOnFullDisk(int blocks, const QStringList &arguments);

    QTemporaryDir m_directory;
};

QString tst_xqosd_output::write(const QString &name, const QByteArray &content)
{
    QFile file(name);
    if (file.open(QIODevice::WriteOnly))
        file.write(content);
    return name;
}

QByteArray tst_xqosd_output::read(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList tst_xqosd_output::recording(const QString &output, const QStringList &more)
{
    return QStringList {QStringLiteral("record"),
                        QStringLiteral("--source"),
                        QStringLiteral("test"),
                        QStringLiteral("--size"),
                        QStringLiteral("320x240"),
                        QStringLiteral("--output"),
                        output}
    + more;
}

Outcome tst_xqosd_output::outcomeOf(QProcess &program)
{
    Outcome outcome;
    if (!program.waitForFinished(LimitMs) || program.exitStatus() != QProcess::NormalExit)
        return outcome;
    outcome.status = program.exitCode();
    outcome.out = QString::fromUtf8(program.readAllStandardOutput());
    outcome.err = QString::fromUtf8(program.readAllStandardError());
    return outcome;
}

Outcome tst_xqosd_output::run(const QStringList &arguments)
{
    QProcess program;
    program.start(QStringLiteral(XQOSD_PROGRAM), arguments);
    return outcomeOf(program);
}

Outcome tst_xqosd_output::runOnFullDisk(int blocks, const QStringList &arguments)
{
    QProcess program;
    program.start(QStringLiteral("/bin/sh"),
                  QStringList {QStringLiteral("-c"),
                               QStringLiteral("ulimit -f %1; exec \"$@\"").arg(blocks),
                               QStringLiteral("sh"), QStringLiteral(XQOSD_PROGRAM)}
                      + arguments);
    return outcomeOf(program);
}

void tst_xqosd_output::initTestCase()
{
    QString error;
    QVERIFY2(initialiseVideo(&error), qPrintable(error));
    QVERIFY(m_directory.isValid());
}

void tst_xqosd_output::killedRecording_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("Matroska") << path("killed.mkv");
    QTest::newRow("MP4") << path("killed.mp4");
}

/// As after a power cut: nothing is said any more, and what is on the disk must do.
void tst_xqosd_output::killedRecording()
{
    QFETCH(QString, output);
    QProcess program;
    program.start(QStringLiteral(XQOSD_PROGRAM), recording(output));
    QVERIFY(program.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(output).size() > 500000, LimitMs);
    QCOMPARE(::kill(pid_t(program.processId()), SIGKILL), 0);
    QVERIFY(program.waitForFinished(LimitMs));

    const MediaFacts facts = readFacts(output);
    QCOMPARE(facts.problem, QString());
    QCOMPARE(facts.size, QSize(320, 240));
    const QVector<DecodedFrame> frames = readFrames(output);
    // The last second may be missing; in half a megabyte there are six of them.
    QVERIFY2(frames.size() >= 100, qPrintable(QString::number(frames.size())));
    // Encoders send frames ahead of those that refer to them: the last ones may have gaps.
    for (int i = 1; i < frames.size() - 5; ++i)
        QVERIFY(qAbs(frames.at(i).timeNs - frames.at(i - 1).timeNs - 40000000) <= 1000000);

    // And other programs see as much of it.
    QProcess probe;
    probe.start(QStringLiteral("ffprobe"),
                {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-count_frames"),
                 QStringLiteral("-show_entries"), QStringLiteral("stream=nb_read_frames"),
                 QStringLiteral("-of"), QStringLiteral("csv=p=0"), output});
    QVERIFY(probe.waitForFinished(LimitMs));
    const int found = probe.readAllStandardOutput().trimmed().toInt();
    QVERIFY2(found >= frames.size(), qPrintable(QString::number(found)));

    // It is a source as any other, too.
    const Outcome again = run({QStringLiteral("record"), QStringLiteral("--source"), output,
                               QStringLiteral("--output"), path("again.mkv")});
    QCOMPARE(again.status, 0);
    QVERIFY(readFrames(path("again.mkv")).size() >= 100);
}

void tst_xqosd_output::folderOfTheRecordingIsRemoved_data()
{
    QTest::addColumn<bool>("overAnother");
    QTest::newRow("a new file") << false;
    QTest::newRow("over an earlier one") << true;
}

void tst_xqosd_output::folderOfTheRecordingIsRemoved()
{
    QFETCH(bool, overAnother);
    QDir folder(path("removed"));
    QVERIFY(folder.mkpath(QStringLiteral(".")));
    const QString output = folder.filePath(QStringLiteral("run.mkv"));
    const QString written = overAnother ? output + QStringLiteral(".part") : output;
    if (overAnother)
        write(output, earlierContent);
    QProcess program;
    program.start(QStringLiteral(XQOSD_PROGRAM),
                  recording(output, {QStringLiteral("--duration"), QStringLiteral("100")}));
    QVERIFY(program.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(written).size() > 60000, LimitMs);
    QVERIFY(folder.removeRecursively());
    const Outcome outcome = outcomeOf(program);
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.out, QString());
    QCOMPARE(outcome.err,
             QStringLiteral("xqosd: %1: the file is gone: it was removed while it was recorded\n")
                 .arg(output));
}

void tst_xqosd_output::recordingIsReplacedByAnotherFile()
{
    const QString output = path("swapped.mp4");
    QProcess program;
    program.start(QStringLiteral(XQOSD_PROGRAM), recording(output));
    QVERIFY(program.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(output).size() > 60000, LimitMs);
    QVERIFY(QFile::remove(output));
    write(output, earlierContent);
    ::kill(pid_t(program.processId()), SIGINT);
    const Outcome outcome = outcomeOf(program);
    QCOMPARE(outcome.status, 1);
    QVERIFY2(outcome.err.contains(QStringLiteral("another one was put in its place")),
             qPrintable(outcome.err));
    QCOMPARE(read(output), earlierContent);
}

void tst_xqosd_output::diskThatIsFull_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<bool>("overAnother");
    QTest::newRow("Matroska") << path("full.mkv") << false;
    QTest::newRow("Matroska, over another") << path("over.mkv") << true;
    QTest::newRow("MP4") << path("full.mp4") << false;
    QTest::newRow("MP4, over another") << path("over.mp4") << true;
}

void tst_xqosd_output::diskThatIsFull()
{
    QFETCH(QString, output);
    QFETCH(bool, overAnother);
    const QString written = overAnother ? output + QStringLiteral(".part") : output;
    if (overAnother)
        write(output, earlierContent);
    const Outcome outcome = runOnFullDisk(1000, recording(output));
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.err,
             QStringLiteral("xqosd: %1: cannot be written: File too large; "
                            "what was recorded is in %2\n")
                 .arg(output, written));
    if (overAnother)
        QCOMPARE(read(output), earlierContent);
    QVERIFY(readFrames(written).size() > 50);
}

void tst_xqosd_output::diskThatIsFullAtTheVeryEnd_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("Matroska") << path("end.mkv");
    QTest::newRow("MP4") << path("end.mp4");
}

/// Only what stands at the end of a file finds no room.
void tst_xqosd_output::diskThatIsFullAtTheVeryEnd()
{
    QFETCH(QString, output);
    const QStringList arguments
        = recording(output, {QStringLiteral("--duration"), QStringLiteral("4")});
    QCOMPARE(run(arguments).status, 0);
    const int frames = readFrames(output).size();
    const qint64 size = QFileInfo(output).size();
    QVERIFY(QFile::remove(output));
    QProcess program;
    program.start(
        QStringLiteral("prlimit"),
        QStringList {QStringLiteral("--fsize=%1").arg(size - 10), QStringLiteral(XQOSD_PROGRAM)}
            + arguments);
    const Outcome outcome = outcomeOf(program);
    QCOMPARE(outcome.status, 1);
    QVERIFY2(outcome.err.contains(output), qPrintable(outcome.err));
    const int left = readFrames(output).size();
    QVERIFY2(left >= frames - 25, qPrintable(QString::number(left))); // but for a second
}

void tst_xqosd_output::pictureOnAFullDisk_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("picture");
    QTest::addColumn<bool>("existed");
    const QStringList snapshot {QStringLiteral("snapshot"), QStringLiteral("--transparent"),
                                QStringLiteral("--output")};
    // A recording that no disk has to hold, so that only its picture fails.
    const QString nowhere = path("nowhere.mkv");
    QFile::link(QStringLiteral("/dev/null"), nowhere);
    const QStringList png = recording(
        nowhere, {QStringLiteral("--duration"), QStringLiteral("0.2"), QStringLiteral("--png")});
    const QString picture = path("picture.png");
    QTest::newRow("snapshot") << snapshot + QStringList(picture) << picture << true;
    QTest::newRow("snapshot, none before") << snapshot + QStringList(picture) << picture << false;
    // Small enough to stay in a buffer until the file is closed.
    QTest::newRow("small snapshot")
        << snapshot + QStringList {picture, QStringLiteral("--size"), QStringLiteral("160x90")}
        << picture << true;
    QTest::newRow("--png") << png + QStringList(picture) << picture << true;
}

void tst_xqosd_output::pictureOnAFullDisk()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, picture);
    QFETCH(bool, existed);
    QFile::remove(picture);
    if (existed)
        write(picture, earlierContent);
    const QStringList before = QDir(m_directory.path()).entryList(QDir::Files);
    const Outcome outcome = runOnFullDisk(0, arguments);
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.err,
             QStringLiteral("xqosd: %1: cannot be written: File too large\n").arg(picture));
    if (existed)
        QCOMPARE(read(picture), earlierContent);
    QCOMPARE(QDir(m_directory.path()).entryList(QDir::Files), before);
}

void tst_xqosd_output::pictureReplacesAnother_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("target");
    const QString target = path("target.png");
    QTest::newRow("the file") << target << target;
    QDir(m_directory.path()).mkpath(QStringLiteral("links/deep"));
    QFile::link(path("links/deep"), path("deep"));
    const QString link = path("links/deep/picture.png");
    QVERIFY(::symlink("../../target.png", QFile::encodeName(link).constData()) == 0);
    QTest::newRow("a link in a linked folder") << path("deep/picture.png") << target;
    QTest::newRow("a link to nothing yet") << link << target;
}

void tst_xqosd_output::pictureReplacesAnother()
{
    QFETCH(QString, given);
    QFETCH(QString, target);
    if (qstrcmp(QTest::currentDataTag(), "a link to nothing yet") == 0)
        QFile::remove(target);
    else
        write(target, earlierContent);
    const bool isLink = QFileInfo(given).isSymLink();
    if (!isLink)
        QCOMPARE(::chmod(QFile::encodeName(target).constData(), 0640), 0);
    const Outcome outcome = run({QStringLiteral("snapshot"), QStringLiteral("--transparent"),
                                 QStringLiteral("--size"), QStringLiteral("320x240"),
                                 QStringLiteral("--output"), given});
    QCOMPARE(outcome.err, QString());
    QCOMPARE(outcome.status, 0);
    QCOMPARE(QImage(target).size(), QSize(320, 240));
    QCOMPARE(QFileInfo(given).isSymLink(), isLink);
    struct stat status = {};
    QCOMPARE(::stat(QFile::encodeName(target).constData(), &status), 0);
    if (!isLink)
        QCOMPARE(int(status.st_mode & 07777), 0640);
}

/// What is no file cannot be replaced by one.
void tst_xqosd_output::pictureIntoAPipe()
{
    const QString pipe = path("pipe.png");
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QProcess reader;
    reader.start(QStringLiteral("cat"), {pipe});
    QVERIFY(reader.waitForStarted());
    const Outcome outcome = run({QStringLiteral("snapshot"), QStringLiteral("--transparent"),
                                 QStringLiteral("--size"), QStringLiteral("320x240"),
                                 QStringLiteral("--output"), pipe});
    QCOMPARE(outcome.status, 0);
    QVERIFY(reader.waitForFinished(LimitMs));
    QCOMPARE(QImage::fromData(reader.readAllStandardOutput()).size(), QSize(320, 240));
    QVERIFY(!QFileInfo(pipe).isFile());
}

QTEST_GUILESS_MAIN(tst_xqosd_output)
#include "tst_xqosd_output.moc"
