// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/ElapsedTimeConverter.h"

#include "tests/units/UnitsTest.h"

#include <QtTest>

#include <limits>

using namespace Velmar;
using namespace Velmar::VideoOverlay;

class tst_ElapsedTimeConverter : public Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { Test::pinUserSettings("XYZ-2"); } // a duration has no time zone

private Q_SLOTS:
    void value_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("expected");
        const QString zero = QStringLiteral("00:00:00");
        QTest::newRow("zero") << QVariant(0) << zero;
        QTest::newRow("hours, minutes and seconds") << QVariant(3723000) << "01:02:03";
        QTest::newRow("last of the day") << QVariant(86399999) << "23:59:59";
        QTest::newRow("a day does not wrap") << QVariant(86400000) << "";
        QTest::newRow("more than a day does not wrap") << QVariant(90000000) << "";
        QTest::newRow("negative") << QVariant(-1) << "";
        QTest::newRow("a negative day does not wrap") << QVariant(-86400000) << "";
        QTest::newRow("floating point") << QVariant(1e6) << "00:16:40";
        QTest::newRow("64 bits") << QVariant(qint64(3723000)) << "01:02:03";
        QTest::newRow("cut to 32 bits") << QVariant(qint64(4294968296)) << "00:00:01";
        QTest::newRow("cut to a negative number") << QVariant(qint64(4294967295)) << "";
        QTest::newRow("smallest") << QVariant(std::numeric_limits<qint64>::min()) << zero;
        QTest::newRow("text of a number") << QVariant(QStringLiteral("3723000")) << "01:02:03";
        QTest::newRow("text is cut as well")
            << QVariant(QStringLiteral("4294968296")) << "00:00:01";
        QTest::newRow("text in exponent notation is no integer")
            << QVariant(QVariant(1e6).toString()) << zero;
        QTest::newRow("no number") << QVariant(QStringLiteral("abc")) << zero;
        QTest::newRow("invalid") << QVariant() << zero;
    }

    void value()
    {
        QFETCH(QVariant, value);
        ElapsedTimeConverter converter;
        QTEST(converter.convert(value, QString(), QString()), "expected");
        QTEST(converter.convert(value, QStringLiteral("m/s"), QStringLiteral("hh:mm:ss")),
              "expected");
        QCOMPARE(takeLog(), QStringList());
    }

    void format()
    {
        ElapsedTimeConverter converter;
        QCOMPARE(converter.convert(3723004, QString(), QStringLiteral("h.m.s.zzz")),
                 QStringLiteral("1.2.3.004"));
    }

    void noSuffix()
    {
        ElapsedTimeConverter converter;
        QCOMPARE(converter.getSuffix(QString()), QString());
        QCOMPARE(converter.getSuffix(QStringLiteral("m/s")), QString());
    }
};

QTEST_GUILESS_MAIN(tst_ElapsedTimeConverter)
#include "tst_ElapsedTimeConverter.moc"
