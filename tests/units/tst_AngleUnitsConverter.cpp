// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/AngleUnitsConverter.h"

#include "tests/units/UnitsTest.h"

#include <QtTest>

#include <cmath>

using namespace Velmar;
using namespace Velmar::VideoOverlay;

namespace {

const QString hour = QStringLiteral("hour");
const QString degree = QStringLiteral("\u00B0");
const QString percent = QStringLiteral("%");

const char notFound[] = "4 VideoOverlayLibrary: AngleUnitsConverter - Units converter not found";

} // namespace

class tst_AngleUnitsConverter : public Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { Test::pinUserSettings(); }

private Q_SLOTS:
    void convert_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("lines");

        const auto row = [](const char *name, const QVariant &value, const QString &from,
                            const QString &to, int decimals, const char *expected, int lines = 0) {
            QTest::newRow(name) << value << from << to << decimals << QString::fromLatin1(expected)
                                << lines;
        };
        const auto number = [](double value) { return QString::number(value, 'f', 9).toLatin1(); };
        constexpr double radians = 0.01745329238474369;
        const double value = 31.25;
        const auto tangent = [](double degrees) { return std::tan(degrees * radians) * 100.0; };

        row("hour to hour", value, hour, hour, 9, number(value));
        row("hour to degree", value, hour, degree, 9, number(value * 30.0));
        row("hour to percent", value, hour, percent, 9, number(tangent(value * 30.0)));
        row("degree to hour", value, degree, hour, 9, number(value / 30.0));
        row("degree to degree", value, degree, degree, 9, number(value));
        row("degree to percent", value, degree, percent, 9, number(tangent(value)));
        row("percent to hour", value, percent, hour, 9, number(value * 3.6 / 30.0));
        row("percent to degree", value, percent, degree, 9, number(value * 3.6));
        row("percent to percent", value, percent, percent, 9, number(value));

        row("45 degrees are 100 percent", 45, degree, percent, 2, "100.00");
        row("100 percent are a full turn", 100, percent, degree, 0, "360");
        row("90 degrees in single-precision radians", 90, degree, percent, 2, "8218301442.69");
        row("no source unit: degrees", 90, QString(), hour, 1, "3.0");
        row("no decimals", QStringLiteral("2.5"), degree, degree, 0, "3");
        row("precision -1 is six decimals", 1.25, degree, degree, -1, "1.250000");
        row("the sign of what rounds to zero stays", -0.001, degree, degree, 2, "-0.00");

        row("no target unit", 10, QString(), QString(), 2, "10.00", 1);
        row("unknown target: unconverted", 6, hour, QStringLiteral("rad"), 2, "6.00", 1);
        row("unknown source is taken for the base", 60, QStringLiteral("rad"), hour, 2, "2.00", 1);
        row("both unknown", 6, QStringLiteral("rad"), QStringLiteral("gon"), 2, "6.00", 2);
        row("both unknown and equal", 6, QStringLiteral("rad"), QStringLiteral("rad"), 2, "6.00");
        row("units are case-sensitive", 6, hour, QStringLiteral("Hour"), 2, "6.00", 1);
        row("bytes of the degree sign are no degree sign", 6, hour, QString::fromLatin1("\xC2\xB0"),
            2, "6.00", 1);
        row("no number", QStringLiteral("abc"), hour, degree, 2, "abc", 1);
        row("no number, unknown units", QStringLiteral("abc"), QStringLiteral("rad"),
            QStringLiteral("gon"), 2, "abc", 1);
        row("invalid value", QVariant(), hour, degree, 2, "", 1);
    }

    void convert()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(int, decimals);
        QFETCH(int, lines);
        AngleUnitsConverter converter(decimals);
        QTEST(converter.convert(value, from, to), "expected");
        QStringList logged;
        for (int i = 0; i < lines; ++i)
            logged.append(QLatin1String(notFound));
        QCOMPARE(takeLog(), logged);
    }

    void userLocaleDoesNotMatter()
    {
        Shared::LocaleSettings::setLocale(QLocale(QLocale::German));
        AngleUnitsConverter converter(1);
        QCOMPARE(converter.convert(1234.5, degree, degree), QStringLiteral("1234.5"));
    }

    void factors()
    {
        AngleUnitsConverter converter(2);
        QVERIFY(converter.convertToBase(1.0, hour) == 30.0);
        QVERIFY(converter.convertToBase(0.3, degree) == 0.3);
        QVERIFY(converter.convertToBase(1.0, percent) == 3.6);
        int differsFromProduct = 0;
        for (int i = 1; i <= 360; ++i) {
            QVERIFY(converter.convertBaseTo__hour(i) == i / 30.0);
            differsFromProduct += i / 30.0 != i * (1.0 / 30.0);
        }
        QVERIFY(differsFromProduct > 0);
        QVERIFY(converter.convertBaseTo__degrees(0.3) == 0.3);
        QVERIFY(converter.convertBaseTo__percent(1.0) == std::tan(0.01745329238474369) * 100.0);
        // of single precision
        QVERIFY(0.01745329238474369 == double(0.017453292f));
    }

    void convertToBaseOfUnknownUnit()
    {
        AngleUnitsConverter converter(2);
        QVERIFY(converter.convertToBase(2.5, QStringLiteral("rad")) == 2.5);
        QCOMPARE(takeLog(), QStringList {QLatin1String(notFound)});
    }

    void suffix_data()
    {
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("expected");
        QTest::newRow("hour") << hour << QStringLiteral("h");
        QTest::newRow("degree") << degree << QString(QChar(0xB0));
        QTest::newRow("percent") << percent << QStringLiteral("%");
        QTest::newRow("unknown") << QStringLiteral("x") << QString();
        QTest::newRow("a sign is no unit") << QStringLiteral("h") << QString();
    }

    void suffix()
    {
        QFETCH(QString, unit);
        AngleUnitsConverter converter(2);
        QTEST(converter.getSuffix(unit), "expected");
    }

    void suffixOfNoUnitIsTheNameOfTheUsers()
    {
        using Shared::LocaleSettings;
        AngleUnitsConverter converter(2);
        QCOMPARE(converter.getSuffix(QString()), degree);
        QVERIFY(LocaleSettings::setUnit(LocaleSettings::Quantity::Angle, hour));
        QCOMPARE(converter.getSuffix(QString()), QStringLiteral("hour"));
    }

    void selfTest()
    {
        Test::RecordingConverter<AngleUnitsConverter> converter(2);
        converter.selfTest();
        QStringList inputs;
        for (const QString &call : qAsConst(converter.calls)) {
            inputs.append(call.section(QLatin1Char('|'), 0, 0));
            for (int i : {1, 2}) {
                const QString unit = call.section(QLatin1Char('|'), i, i);
                QVERIFY2(unit == hour || unit == degree || unit == percent, qPrintable(call));
            }
        }
        QCOMPARE(inputs.join(QLatin1Char(' ')),
                 QStringLiteral("0.0000 180.0000 6.0000 12.0000 50.0000 100.0000 45.0000"));
        QCOMPARE(takeLog(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_AngleUnitsConverter)
#include "tst_AngleUnitsConverter.moc"
