// SPDX-License-Identifier: Apache-2.0
#include "host/feed/TelemetryFile.h"

#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

using Velmar::Host::TelemetryFile;

class tst_TelemetryFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        m_path = m_directory.filePath(QStringLiteral("run.csv"));
    }

    void cleanup() { QFile::remove(m_path); }

    void load()
    {
        write("t_ms,SPEED,NOTE\n"
              "0,1.5,\n"
              "200,,start\n"
              "400,-2e1, 7 \n");
        TelemetryFile file;
        QString error;
        QVERIFY2(file.load(m_path, &error), qPrintable(error));

        QCOMPARE(file.names(), QStringList({QStringLiteral("SPEED"), QStringLiteral("NOTE")}));
        QCOMPARE(file.durationMs(), qint64(400));
        QCOMPARE(file.readings().size(), 4);
        compare(file.readings().at(0), 0, 0, 1.5);
        compare(file.readings().at(1), 200, 1, QStringLiteral("start"));
        compare(file.readings().at(2), 400, 0, -20.0);
        compare(file.readings().at(3), 400, 1, 7.0);
    }

    void load_accepts_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QVariant>("value"); ///< of the last reading

        const QVariant none;
        QTest::newRow("carriage returns") << QByteArray("t_ms,A\r\n0,5\r\n") << QVariant(5.0);
        QTest::newRow("byte order mark")
            << QByteArray("\xef\xbb\xbft_ms,A\n0,5\n") << QVariant(5.0);
        QTest::newRow("no line end at the end") << QByteArray("t_ms,A\n0,5") << QVariant(5.0);
        QTest::newRow("lines without anything")
            << QByteArray("t_ms,A\n\n0,5\n\n\r\n") << QVariant(5.0);
        QTest::newRow("header only") << QByteArray("t_ms,A\n") << none;
        QTest::newRow("the time alone") << QByteArray("t_ms\n0\n") << none;
        QTest::newRow("blank last cell") << QByteArray("t_ms,A\n0,\n") << none;
        QTest::newRow("only blanks in a cell") << QByteArray("t_ms,A\n0,  \n") << none;
        QTest::newRow("quoted nothing") << QByteArray("t_ms,A\n0,\"\"\n") << none;
        QTest::newRow("the same time again") << QByteArray("t_ms,A\n0,5\n0,6\n") << QVariant(6.0);
        QTest::newRow("quoted comma and quotes")
            << QByteArray("t_ms,A\n0,\"a, \"\"b\"\"\"\n") << QVariant(QStringLiteral("a, \"b\""));
        QTest::newRow("quoted number") << QByteArray("t_ms,A\n\"0\",\"5\"\n") << QVariant(5.0);
        QTest::newRow("quote inside of a cell")
            << QByteArray("t_ms,A\n0,2\" pipe\n") << QVariant(QStringLiteral("2\" pipe"));
        QTest::newRow("other letters") << QByteArray("t_ms,A\n0,h\xc3\xb6he \xe2\x82\xac\n")
                                       << QVariant(QStringLiteral("h\u00f6he \u20ac"));
        QTest::newRow("decimal comma is text")
            << QByteArray("t_ms,A\n0,\"1,5\"\n") << QVariant(QStringLiteral("1,5"));
        QTest::newRow("infinity is text")
            << QByteArray("t_ms,A\n0,inf\n") << QVariant(QStringLiteral("inf"));
        QTest::newRow("not a number is text")
            << QByteArray("t_ms,A\n0,nan\n") << QVariant(QStringLiteral("nan"));
        QTest::newRow("longest line") << QByteArray("t_ms,A\n0,") + QByteArray(64 * 1024 - 2, 'x')
                + "\r\n" << QVariant(QString(64 * 1024 - 2, QLatin1Char('x')));
    }

    void load_accepts()
    {
        QFETCH(QByteArray, content);
        QFETCH(QVariant, value);
        write(content);
        TelemetryFile file;
        QString error;
        QVERIFY2(file.load(m_path, &error), qPrintable(error));
        QVERIFY(error.isNull());
        if (value.isValid())
            QCOMPARE(file.readings().last().value, value);
        else
            QVERIFY(file.readings().isEmpty());
    }

    void load_ignoresTheLocale()
    {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        write("t_ms,A\n0,1.5\n");
        TelemetryFile file;
        const bool loaded = file.load(m_path, nullptr);
        QLocale::setDefault(before);
        QVERIFY(loaded);
        QCOMPARE(file.readings().first().value, QVariant(1.5));
    }

    void load_refuses_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("line");
        QTest::addColumn<QString>("reason");

        const auto row
            = [](const char *name, const QByteArray &content, int line, const char *reason) {
                  QTest::newRow(name) << content << line << QString::fromUtf8(reason);
              };
        const char *noTime = "the header line does not begin with \"t_ms\"";
        row("empty", "", 1, "the file is empty");
        row("byte order mark only", "\xef\xbb\xbf", 1, noTime);
        row("empty header line", "\nt_ms,A\n", 1, noTime);
        row("no header", "0,5\n", 1, noTime);
        row("other name of the time", "time,A\n0,5\n", 1, noTime);
        row("time in another column", "A,t_ms\n5,0\n", 1, noTime);
        row("name twice", "t_ms,A,B,A\n", 1, "the column \"A\" occurs twice");
        row("time twice", "t_ms,A,t_ms\n", 1, "the column \"t_ms\" occurs twice");
        row("no name", "t_ms,A,,B\n", 1, "column 3 has no name");
        row("no last name", "t_ms,A,\n", 1, "column 3 has no name");
        row("blank name", "t_ms,\" \"\n", 1, "column 2 has no name");
        row("too few cells", "t_ms,A,B\n0,1\n", 2, "the line has 2 cells, the header has 3");
        row("too many cells", "t_ms,A\n0,1\n5,1,2\n", 3, "the line has 3 cells, the header has 2");
        row("line of blanks", "t_ms,A\n \n", 2, "the line has 1 cells, the header has 2");
        row("no time", "t_ms,A\n,1\n", 2, "the time \"\" is not a whole number of milliseconds");
        row("word for a time", "t_ms,A\nx,1\n", 2,
            "the time \"x\" is not a whole number of milliseconds");
        row("fraction of a millisecond", "t_ms,A\n1.5,1\n", 2,
            "the time \"1.5\" is not a whole number of milliseconds");
        row("negative time", "t_ms,A\n-1,1\n", 2,
            "the time \"-1\" is not a whole number of milliseconds");
        row("time beyond any clock", "t_ms,A\n9223372036854775808,1\n", 2,
            "the time \"9223372036854775808\" is not a whole number of milliseconds");
        row("descending time", "t_ms,A\n200,1\n\n199,1\n", 4,
            "the time 199 ms is before that of an earlier line, 200 ms");
        row("NUL in the header", QByteArray("t_ms,A\0\n0,1\n", 13), 1, "the line has a NUL byte");
        row("NUL in a cell", QByteArray("t_ms,A\n0,\0\n", 12), 2, "the line has a NUL byte");
        row("not UTF-8", "t_ms,A\n0,\xff\n", 2, "the line is not valid UTF-8");
        row("cut letter", "t_ms,A\n0,\xc3\n1,5\n", 2, "the line is not valid UTF-8");
        row("UTF-16", QByteArray("\xff\xfet\0_\0", 6), 1, "the line has a NUL byte");
        row("open quote", "t_ms,A\n0,\"5\n", 2, "a quoted cell is not closed");
        row("quoted cell over two lines", "t_ms,A\n0,\"5\n6\"\n", 2, "a quoted cell is not closed");
        row("text after a quote", "t_ms,A\n0,\"5\"6\n", 2,
            "text follows the closing quote of a cell");
        row("line too long", QByteArray("t_ms,A\n0,") + QByteArray(64 * 1024 - 1, 'x') + "\n", 2,
            "the line is longer than 65536 bytes");
        row("no line end for a megabyte", QByteArray("t_ms,A\n0,") + QByteArray(1 << 20, 'x'), 2,
            "the line is longer than 65536 bytes");
    }

    void load_refuses()
    {
        QFETCH(QByteArray, content);
        QFETCH(int, line);
        QFETCH(QString, reason);

        TelemetryFile file;
        write("t_ms,A\n0,1\n100,2\n");
        QVERIFY(file.load(m_path, nullptr));
        write(content);
        QString error;

        QVERIFY(!file.load(m_path, &error));

        QCOMPARE(error, QStringLiteral("%1:%2: %3").arg(m_path).arg(line).arg(reason));
        QVERIFY(!file.load(m_path, nullptr));
        // What was loaded before is still there.
        QCOMPARE(file.names(), QStringList(QStringLiteral("A")));
        QCOMPARE(file.readings().size(), 2);
        QCOMPARE(file.durationMs(), qint64(100));
        QCOMPARE(file.interpolated(QStringLiteral("A"), 50), 1.5);
    }

    void load_refusesWhatCannotBeOpened_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing") << m_directory.filePath(QStringLiteral("missing.csv"));
        QTest::newRow("directory") << m_directory.path();
        QTest::newRow("no path") << QString();
    }

    void load_refusesWhatCannotBeOpened()
    {
        QFETCH(QString, path);
        if (path.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, "QFSFileEngine::open: No file name specified");
        TelemetryFile file;
        QString error;
        QVERIFY(!file.load(path, &error));
        QVERIFY2(error.startsWith(path + QStringLiteral(":1: cannot open: ")), qPrintable(error));
        QVERIFY(file.names().isEmpty());
    }

    void load_replacesWhatWasLoaded()
    {
        TelemetryFile file;
        write("t_ms,A\n0,1\n100,2\n");
        QVERIFY(file.load(m_path, nullptr));
        write("t_ms,B\n0,x\n");
        QVERIFY(file.load(m_path, nullptr));
        QCOMPARE(file.names(), QStringList(QStringLiteral("B")));
        QCOMPARE(file.readings().size(), 1);
        QCOMPARE(file.durationMs(), qint64(0));
        QCOMPARE(file.interpolated(QStringLiteral("A"), 50, -1.0), -1.0);
    }

    void interpolated_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<qint64>("timeMs");
        QTest::addColumn<double>("value");

        const auto row = [](const char *name, const char *column, qint64 timeMs, double value) {
            QTest::newRow(name) << QString::fromUtf8(column) << timeMs << value;
        };
        row("before the first reading", "A", 99, -1.0);
        row("on the first reading", "A", 100, 10.0);
        row("between, over a blank", "A", 200, 15.0);
        row("on a reading", "A", 300, 20.0);
        row("the last of two at one time", "A", 400, 40.0);
        row("up to the first of two at one time", "A", 350, 25.0);
        row("after the last reading", "A", 9999, 40.0);
        row("text among the numbers", "MIXED", 400, -1.0);
        row("text", "TEXT", 400, -1.0);
        row("always blank", "BLANK", 400, -1.0);
        row("unknown", "C", 400, -1.0);
        row("the time itself", "t_ms", 400, -1.0);
        row("held while it rests", "RESTING", 4000, 10.0);
        row("moving at last", "RESTING", 4500, 15.0);
    }

    void interpolated()
    {
        QFETCH(QString, name);
        QFETCH(qint64, timeMs);
        QFETCH(double, value);
        write("t_ms,A,MIXED,TEXT,BLANK,RESTING\n"
              "0,,1,a,,10\n"
              "100,10,2,,,\n"
              "200,,x,,,\n"
              "300,20,4,,,\n"
              "400,30,5,,,\n"
              "400,40,6,,,\n"
              "5000,,,,,20\n");
        TelemetryFile file;
        QVERIFY(file.load(m_path, nullptr));
        QCOMPARE(file.interpolated(name, timeMs, -1.0), value);
    }

    /// Whose difference is no number any more: the camera of the drawn run must not leave the pipe.
    void interpolated_betweenNumbersFarApart()
    {
        write("t_ms,A\n0,-1.5e308\n1000,1.5e308\n");
        TelemetryFile file;
        QVERIFY(file.load(m_path, nullptr));
        QCOMPARE(file.interpolated(QStringLiteral("A"), 250), -0.75e308);
        QCOMPARE(file.interpolated(QStringLiteral("A"), 500), 0.0);
        QCOMPARE(file.interpolated(QStringLiteral("A"), 999), 1.497e308);
    }

    void demoRunIsPlausible()
    {
        TelemetryFile file;
        QString error;
        QVERIFY2(file.load(QStringLiteral(DEMO_DIRECTORY "/telemetry.csv"), &error),
                 qPrintable(error));
        QVERIFY(file.durationMs() >= 5 * 60 * 1000);
        const QStringList names = {
            QStringLiteral("TOTAL_DISTANCE_COUNTER"),
            QStringLiteral("SECTION_DISTANCE_COUNTER"),
            QStringLiteral("SPEED"),
            QStringLiteral("CAMERA_TILT"),
            QStringLiteral("CAMERA_PAN"),
            QStringLiteral("CAMERA_PRESSURE"),
            QStringLiteral("CAMERA_TEMPERATURE"),
            QStringLiteral("CRAWLER_PITCH"),
            QStringLiteral("CRAWLER_ROLL"),
            QStringLiteral("CRAWLER_TEMPERATURE"),
            QStringLiteral("CRAWLER_PRESSURE"),
            QStringLiteral("OBJECT_TEMPERATURE"),
            QStringLiteral("OBS_OpCode"),
            QStringLiteral("OBS_Memo"),
        };
        QCOMPARE(file.names(), names);
    }

    /// The distance is the integral of the speed, which is given in metres a minute.
    void demoRunDrivesAsFastAsItSays()
    {
        TelemetryFile file;
        QVERIFY(file.load(QStringLiteral(DEMO_DIRECTORY "/telemetry.csv"), nullptr));
        const QString speed = QStringLiteral("SPEED");
        const QString section = QStringLiteral("SECTION_DISTANCE_COUNTER");
        const QString total = QStringLiteral("TOTAL_DISTANCE_COUNTER");

        double driven = 0.0;
        bool reversed = false;
        // Blank cells repeat the last value, so the readings are held, not interpolated.
        double lastSpeed = 0.0;
        for (qint64 t = 200; t <= file.durationMs(); t += 200) {
            const double now = held(file, speed, t);
            driven += (lastSpeed + now) / 2.0 / 60.0 * 0.2;
            lastSpeed = now;
            reversed = reversed || now < 0.0;
            const double counter = held(file, section, t);
            QVERIFY2(
                std::abs(counter - driven) < 0.02,
                qPrintable(
                    QStringLiteral("%1 ms: %2 m, driven %3 m").arg(t).arg(counter).arg(driven)));
            QVERIFY(std::abs(held(file, total, t) - counter - 128.4) < 0.0015);
        }
        QVERIFY(reversed);
        QVERIFY(driven > 20.0);
    }

    /// A demonstration that lasts less than half a minute must have something to show.
    void demoRunChangesFromTheBeginning()
    {
        TelemetryFile file;
        QVERIFY(file.load(QStringLiteral(DEMO_DIRECTORY "/telemetry.csv"), nullptr));
        QHash<int, int> changes;
        for (const TelemetryFile::Reading &reading : file.readings()) {
            if (reading.timeMs > 0 && reading.timeMs <= 25000)
                ++changes[reading.column];
        }
        for (int column = 0; column < file.names().size(); ++column) {
            const QString name = file.names().at(column);
            QVERIFY2(changes.value(column) >= 2, qPrintable(name));
        }
    }

private:
    void write(const QByteArray &content)
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), qint64(content.size()));
    }

    static void compare(const TelemetryFile::Reading &reading, qint64 timeMs, int column,
                        const QVariant &value)
    {
        QCOMPARE(reading.timeMs, timeMs);
        QCOMPARE(reading.column, column);
        QCOMPARE(reading.value, value);
    }

    /// The last reading at or before @p timeMs.
    static double held(const TelemetryFile &file, const QString &name, qint64 timeMs)
    {
        const int column = file.names().indexOf(name);
        double value = 0.0;
        for (const TelemetryFile::Reading &reading : file.readings()) {
            if (reading.timeMs > timeMs)
                break;
            if (reading.column == column)
                value = reading.value.toDouble();
        }
        return value;
    }

    QTemporaryDir m_directory;
    QString m_path;
};

QTEST_GUILESS_MAIN(tst_TelemetryFile)
#include "tst_TelemetryFile.moc"
