// SPDX-License-Identifier: Apache-2.0
#include "host/feed/LiveInputParser.h"

#include <QtTest>

using namespace Velmar::Host;

class tst_LiveInputParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void refused_data();
    void refused();
    void anyPortions();
    void linesAreCounted();
    void longLines();
    void unknownNamesOnce();
    void floodOfNames();

private:
    static QStringList shown(const LiveInputParser::Batch &batch)
    {
        QStringList lines;
        for (const LiveInputParser::Value &value : batch.values)
            lines.append(
                QStringLiteral("%1=%2 %3")
                    .arg(value.name,
                         value.value.isNull() ? QStringLiteral("null") : value.value.toString(),
                         QString::fromLatin1(value.value.typeName())));
        return lines;
    }
};

void tst_LiveInputParser::values_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("expected");
    const auto one = [](const char *text) { return QStringList(QString::fromUtf8(text)); };
    QTest::newRow("number") << QByteArray("{\"SPEED\": 1.2}") << one("SPEED=1.2 double");
    QTest::newRow("negative") << QByteArray("{\"CAMERA_TILT\":-3}")
                              << one("CAMERA_TILT=-3 qlonglong");
    QTest::newRow("text") << QByteArray("{\"SPEED\": \"---\"}") << one("SPEED=--- QString");
    QTest::newRow("empty text") << QByteArray("{\"SPEED\": \"\"}") << one("SPEED= QString");
    QTest::newRow("letters of UTF-8")
        << QByteArray("{\"PAN AND TILT\": \"3\xC2\xB0\"}") << one("PAN AND TILT=3\xC2\xB0 QString");
    QTest::newRow("several, by name") << QByteArray("{\"SPEED\":1,\"CAMERA_PAN\":2}")
                                      << QStringList({QStringLiteral("CAMERA_PAN=2 qlonglong"),
                                                      QStringLiteral("SPEED=1 qlonglong")});
    QTest::newRow("date") << QByteArray("{\"DATE\":\"1970-01-02\"}")
                          << one("DATE=129600000 qlonglong"); // noon
    QTest::newRow("moment in UTC")
        << QByteArray("{\"DATE\":\"1970-01-02T00:00:01Z\"}") << one("DATE=86401000 qlonglong");
    QTest::newRow("moment with offset")
        << QByteArray("{\"TIME\":\"1970-01-02T02:00:00+02:00\"}") << one("TIME=86400000 qlonglong");
    QTest::newRow("time") << QByteArray("{\"TIME\":\"01:00:00\"}")
                          << one("TIME=947898000000 qlonglong");
    QTest::newRow("moment as number")
        << QByteArray("{\"TIME\":1774958730000}") << one("TIME=1774958730000 qlonglong");
    QTest::newRow("duration") << QByteArray("{\"VIDEO_TIME_COUNTER\":\"01:02:03\"}")
                              << one("VIDEO_TIME_COUNTER=3723000 qlonglong");
    QTest::newRow("duration as number") << QByteArray("{\"VIDEO_TIME_COUNTER\":1500.9}")
                                        << one("VIDEO_TIME_COUNTER=1500 qlonglong");
    QTest::newRow("picture for the screen snips")
        << QByteArray("{\"SCREEN_SNIP\":\"/tmp/map.png\"}")
        << one("SCREEN_SNIP=/tmp/map.png QString");
    QTest::newRow("no new value") << QByteArray("{\"SPEED\":null,\"CAMERA_PAN\":1}")
                                  << one("CAMERA_PAN=1 qlonglong");
    QTest::newRow("nothing") << QByteArray("{}") << QStringList();
    QTest::newRow("blank line") << QByteArray(" \t\r") << QStringList();
    QTest::newRow("carriage return") << QByteArray("{\"SPEED\":1}\r") << one("SPEED=1 qlonglong");
    QTest::newRow("twice: the last")
        << QByteArray("{\"SPEED\":1,\"SPEED\":2}") << one("SPEED=2 qlonglong");
}

void tst_LiveInputParser::values()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, expected);
    LiveInputParser parser;
    const LiveInputParser::Batch batch = parser.feed(line + '\n');
    QCOMPARE(batch.problems, QStringList());
    QCOMPARE(shown(batch), expected);
}

void tst_LiveInputParser::refused_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("mentions");
    QTest::addColumn<int>("values"); // that come all the same
    QTest::newRow("no JSON") << QByteArray("SPEED=1") << QStringLiteral("no JSON: ") << 0;
    QTest::newRow("cut off") << QByteArray("{\"SPEED\":") << QStringLiteral("no JSON: ") << 0;
    QTest::newRow("two objects") << QByteArray("{\"SPEED\":1}{\"SPEED\":2}")
                                 << QStringLiteral("no JSON: ") << 0;
    QTest::newRow("array") << QByteArray("[1]") << QStringLiteral("no JSON object") << 0;
    QTest::newRow("number") << QByteArray("1") << QStringLiteral("no JSON") << 0;
    QTest::newRow("NUL") << QByteArray("{\"SPEED\":1}\0", 12) << QStringLiteral("NUL") << 0;
    QTest::newRow("escaped NUL") << QByteArray("{\"SPEED\":\"\\u0000\"}")
                                 << QStringLiteral("SPEED: holds a NUL") << 0;
    QTest::newRow("invalid UTF-8")
        << QByteArray("{\"SPEED\":\"\xC3(\"}") << QStringLiteral("no JSON: ") << 0;
    QTest::newRow("object inside") << QByteArray("{\"CAMERA_PAN\":1,\"SPEED\":{}}")
                                   << QStringLiteral("SPEED: neither a number nor a text") << 0;
    QTest::newRow("array inside") << QByteArray("{\"SPEED\":[1]}")
                                  << QStringLiteral("SPEED: neither") << 0;
    QTest::newRow("truth") << QByteArray("{\"SPEED\":true}") << QStringLiteral("SPEED: neither")
                           << 0;
    QTest::newRow("no date") << QByteArray("{\"DATE\":\"tomorrow\",\"SPEED\":1}")
                             << QStringLiteral("DATE: not a date") << 1;
    QTest::newRow("no such day") << QByteArray("{\"DATE\":\"2026-02-30\"}")
                                 << QStringLiteral("DATE: not a date") << 0;
    QTest::newRow("no time") << QByteArray("{\"TIME\":\"25:00:00\"}")
                             << QStringLiteral("TIME: not a time") << 0;
    QTest::newRow("moment out of range")
        << QByteArray("{\"TIME\":1e300}") << QStringLiteral("TIME: not a time") << 0;
    QTest::newRow("no duration") << QByteArray("{\"VIDEO_TIME_COUNTER\":\"x\"}")
                                 << QStringLiteral("VIDEO_TIME_COUNTER: not a duration") << 0;
    QTest::newRow("unknown") << QByteArray("{\"speed\":1,\"SPEED\":1}")
                             << QStringLiteral("speed: no such value") << 1;
    QTest::newRow("unprintable name")
        << QByteArray("{\"a\\nb\":1}") << QStringLiteral("a?b: no such value") << 0;
    QTest::newRow("deep") << QByteArray(3000, '[') << QStringLiteral("no JSON: ") << 0;
}

void tst_LiveInputParser::refused()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, mentions);
    QFETCH(int, values);
    LiveInputParser parser;
    const LiveInputParser::Batch batch = parser.feed(line + '\n');
    QCOMPARE(batch.problems.size(), 1);
    QVERIFY2(batch.problems.first().startsWith(QStringLiteral("line 1: ") + mentions)
                 || batch.problems.first().contains(mentions),
             qPrintable(batch.problems.first()));
    QVERIFY(!batch.problems.first().contains(QLatin1Char('\n')));
    QCOMPARE(batch.values.size(), values);
    // The next line is read as if nothing had happened.
    QCOMPARE(parser.feed("{\"SPEED\":9}\n").values.size(), 1);
}

void tst_LiveInputParser::anyPortions()
{
    const QByteArray stream = "{\"SPEED\":1}\n\n{\"SPEED\":2}\r\nbroken\n{\"SPEED\":3}";
    for (int size = 1; size <= stream.size(); ++size) {
        LiveInputParser parser;
        LiveInputParser::Batch all;
        for (int begin = 0; begin < stream.size(); begin += size) {
            const LiveInputParser::Batch batch = parser.feed(stream.mid(begin, size));
            all.values += batch.values;
            all.problems += batch.problems;
        }
        QCOMPARE(all.values.size(), 2);
        const LiveInputParser::Batch last = parser.finish();
        QCOMPARE(shown(last), QStringList(QStringLiteral("SPEED=3 qlonglong")));
        QCOMPARE(all.problems.size(), 1);
        QVERIFY(all.problems.first().startsWith(QStringLiteral("line 4: ")));
        QCOMPARE(parser.finish().values.size(), 0);
    }
}

void tst_LiveInputParser::linesAreCounted()
{
    LiveInputParser parser;
    const LiveInputParser::Batch batch = parser.feed("x\n{}\n\ny\n");
    QCOMPARE(batch.problems.size(), 2);
    QVERIFY(batch.problems.at(0).startsWith(QStringLiteral("line 1: ")));
    QVERIFY(batch.problems.at(1).startsWith(QStringLiteral("line 4: ")));
}

void tst_LiveInputParser::longLines()
{
    const QByteArray value = "{\"SPEED\":1}";
    LiveInputParser parser;
    const QByteArray longest = value + QByteArray(LiveInputParser::LongestLine - value.size(), ' ');
    QCOMPARE(parser.feed(longest + '\n').values.size(), 1);

    QCOMPARE(parser.feed(longest).problems.size(), 0);
    const LiveInputParser::Batch beyond = parser.feed(" ");
    QCOMPARE(beyond.problems, QStringList(QStringLiteral("line 2: longer than 65536 bytes")));
    QCOMPARE(parser.feed(longest + longest).problems, QStringList()); // reported already
    const LiveInputParser::Batch next = parser.feed(value + '\n' + value + '\n');
    QCOMPARE(next.problems, QStringList());
    QCOMPARE(next.values.size(), 1); // the second: the first still ends the long line
}

void tst_LiveInputParser::unknownNamesOnce()
{
    LiveInputParser parser;
    QCOMPARE(parser.feed("{\"A\":1}\n").problems,
             QStringList(QStringLiteral("line 1: A: no such value; xqosd values lists them")));
    QCOMPARE(parser.feed("{\"A\":2}\n{\"B\":1}\n").problems.size(), 1);
}

void tst_LiveInputParser::floodOfNames()
{
    LiveInputParser parser;
    int problems = 0;
    for (int i = 0; i < 1000; ++i)
        problems
            += parser.feed(QByteArray("{\"N") + QByteArray::number(i) + "\":1}\n").problems.size();
    QCOMPARE(problems, 200);
}

QTEST_GUILESS_MAIN(tst_LiveInputParser)
#include "tst_LiveInputParser.moc"
