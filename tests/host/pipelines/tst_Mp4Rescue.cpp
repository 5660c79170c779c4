// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/Mp4Rescue.h"

#include "host/pipelines/VideoErrors.h"
#include "tests/support/VideoReader.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace Velmar::Host;

class tst_Mp4Rescue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void withoutItsEnd_data();
    void withoutItsEnd();
    void complete();
    void others_data();
    void others();

private:
    QByteArray content() const;
    void write(const QByteArray &content) const;

    QTemporaryDir m_directory;
    QString m_path; ///< a copy of the recording
    QByteArray m_recording;
};

QByteArray tst_Mp4Rescue::content() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_Mp4Rescue::write(const QByteArray &content) const
{
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

void tst_Mp4Rescue::initTestCase()
{
    QString error;
    QVERIFY2(initialiseVideo(&error), qPrintable(error));
    m_path = m_directory.filePath(QStringLiteral("run.mp4"));
    QProcess program;
    program.start(QStringLiteral(XQOSD_PROGRAM),
                  {QStringLiteral("record"), QStringLiteral("--source"), QStringLiteral("test"),
                   QStringLiteral("--size"), QStringLiteral("320x240"),
                   QStringLiteral("--duration"), QStringLiteral("4"), QStringLiteral("--output"),
                   m_path});
    QVERIFY(program.waitForFinished(60000));
    QCOMPARE(program.exitCode(), 0);
    m_recording = content();
    QCOMPARE(readFrames(m_path).size(), 100);
    QVERIFY(m_recording.contains("hoov")); // else there is nothing to be mended
}

void tst_Mp4Rescue::init()
{
    write(m_recording);
}

void tst_Mp4Rescue::withoutItsEnd_data()
{
    const int list = m_recording.lastIndexOf("moov") - 4;
    QTest::addColumn<int>("length");
    QTest::newRow("nothing of it") << list;
    QTest::newRow("its name") << list + 8;
    QTest::newRow("all but its last bytes") << m_recording.size() - 10;
}

/// As on a disk that has no room for the list of the whole file.
void tst_Mp4Rescue::withoutItsEnd()
{
    QFETCH(int, length);
    write(m_recording.left(length));
    QVERIFY(restoreFirstList(m_path));
    const int frames = readFrames(m_path).size();
    QVERIFY2(frames >= 75, qPrintable(QString::number(frames)));
    // It is as good as it gets.
    const QByteArray restored = content();
    QVERIFY(!restoreFirstList(m_path));
    QCOMPARE(content(), restored);
}

void tst_Mp4Rescue::complete()
{
    QVERIFY(!restoreFirstList(m_path));
    QVERIFY(content() == m_recording);
}

void tst_Mp4Rescue::others_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one byte") << QByteArray("\0", 1);
    QTest::newRow("another format") << QByteArray("\x1a\x45\xdf\xa3hoov....mvhd");
    QTest::newRow("nothing behind its head") << m_recording.left(32);
    QTest::newRow("no list yet") << m_recording.left(2000);
    QTest::newRow("a length that leads nowhere") << QByteArray("\0\0\0\x10"
                                                               "ftypmp42    \xff\xff\xff\xffmdat",
                                                               24);
    QTest::newRow("a length that leads back")
        << QByteArray("\0\0\0\x10"
                      "ftypmp42    \0\0\0\1mdat\xff\xff\xff\xff\xff\xff\xff\xf0",
                      32);
}

void tst_Mp4Rescue::others()
{
    QFETCH(QByteArray, bytes);
    write(bytes);
    QVERIFY(!restoreFirstList(m_path));
    QCOMPARE(content(), bytes);
    QVERIFY(QFile::remove(m_path));
    QVERIFY(!restoreFirstList(m_path));
}

QTEST_GUILESS_MAIN(tst_Mp4Rescue)
#include "tst_Mp4Rescue.moc"
