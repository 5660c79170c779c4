// SPDX-License-Identifier: Apache-2.0
#include "host/commands/ProgressLine.h"

#include <QtTest>

using namespace Velmar::Host;

class tst_ProgressLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void text_data();
    void text();
};

void tst_ProgressLine::text_data()
{
    QTest::addColumn<int>("frames");
    QTest::addColumn<qint64>("position");
    QTest::addColumn<qint64>("duration");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("expected");
    const qint64 s = 1000000000;
    QTest::newRow("start") << 0 << qint64(0) << 10 * s << 0.0
                           << QStringLiteral("0 frames, 0.0 fps, 0:00 of 0:10");
    QTest::newRow("a third, at half speed")
        << 250 << 20 * s << 60 * s << 40.0
        << QStringLiteral("250 frames, 6.3 fps, 0:20 of 1:00, 1:20 left");
    QTest::newRow("unknown length")
        << 100 << 125 * s << qint64(-1) << 50.0 << QStringLiteral("100 frames, 2.0 fps, 2:05");
    QTest::newRow("longer than announced")
        << 100 << 11 * s << 10 * s << 1.0
        << QStringLiteral("100 frames, 100.0 fps, 0:11 of 0:10, 0:00 left");
}

void tst_ProgressLine::text()
{
    QFETCH(int, frames);
    QFETCH(qint64, position);
    QFETCH(qint64, duration);
    QFETCH(double, seconds);
    QFETCH(QString, expected);
    QCOMPARE(ProgressLine::text(frames, position, duration, seconds), expected);
}

QTEST_GUILESS_MAIN(tst_ProgressLine)
#include "tst_ProgressLine.moc"
