// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/TempUnitsConverter.h"

#include "tests/units/UnitsTest.h"

#include <QtTest>

#include <cmath>

using namespace Velmar;
using namespace Velmar::VideoOverlay;

namespace {

const QString celsius = QStringLiteral("\u00B0C");
const QString fahrenheit = QStringLiteral("\u00B0F");

const char notFound[] = "1 VideoOverlayLibrary: TempUnitsConverter - Units converter not found";
const char notANumber[] = "4 VideoOverlayLibrary: AngleUnitsConverter - Units converter not found";

} // namespace

class tst_TempUnitsConverter : public Test::LoggedTest
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
        QTest::addColumn<QStringList>("logged");

        const QStringList none;
        const QStringList error {QLatin1String(notFound)};
        const QStringList notNumber {QLatin1String(notANumber)};
        const auto row
            = [](const char *name, const QVariant &value, const QString &from, const QString &to,
                 int decimals, const char *expected, const QStringList &logged) {
                  QTest::newRow(name)
                      << value << from << to << decimals << QString::fromLatin1(expected) << logged;
              };

        row("freezing", 0, celsius, fahrenheit, 1, "32.0", none);
        row("boiling", 212, fahrenheit, celsius, 1, "100.0", none);
        row("where the scales meet", -40, fahrenheit, celsius, 0, "-40", none);
        row("rounded once: 48.7 otherwise", 9.25, celsius, fahrenheit, 1, "48.6", none);
        row("a third", 33, fahrenheit, celsius, 9, "0.555555556", none);
        row("Celsius stays", QStringLiteral("21.25"), celsius, celsius, 2, "21.25", none);
        row("Fahrenheit stays", 70.5, fahrenheit, fahrenheit, 1, "70.5", none);
        row("no source unit: Celsius", 100, QString(), fahrenheit, 0, "212", none);
        row("no target unit: the user's", 21, celsius, QString(), 1, "21.0", none);
        row("no units at all", 21, QString(), QString(), 1, "21.0", none);
        row("no target unit, converted to the user's", 212, fahrenheit, QString(), 0, "100", none);
        row("precision -1 is six decimals", 1.5, celsius, celsius, -1, "1.500000", none);
        row("the sign of what rounds to zero stays", -0.01, celsius, celsius, 1, "-0.0", none);

        row("unknown target", 10, celsius, QStringLiteral("K"), 1, "10.0", error);
        row("unknown source", 10, QStringLiteral("K"), celsius, 1, "10.0", error);
        row("both unknown", 10, QStringLiteral("K"), QStringLiteral("R"), 1, "10.0", error);
        row("both unknown and equal", 10, QStringLiteral("K"), QStringLiteral("K"), 1, "10.0",
            none);
        row("units are case-sensitive", 10, celsius, QStringLiteral("\u00B0f"), 1, "10.0", error);
        row("no number", QStringLiteral("abc"), celsius, fahrenheit, 1, "abc", notNumber);
        row("no number, unknown units", QStringLiteral("abc"), QStringLiteral("K"),
            QStringLiteral("R"), 1, "abc", notNumber);
        row("invalid value", QVariant(), celsius, fahrenheit, 1, "", notNumber);
    }

    void convert()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(int, decimals);
        QFETCH(QStringList, logged);
        TempUnitsConverter converter(decimals);
        QTEST(converter.convert(value, from, to), "expected");
        QCOMPARE(takeLog(), logged);
    }

    void userUnit()
    {
        using Shared::LocaleSettings;
        QVERIFY(LocaleSettings::setUnit(LocaleSettings::Quantity::Temperature, fahrenheit));
        TempUnitsConverter converter(0);
        QCOMPARE(converter.convert(100, QString(), QString()), QStringLiteral("212"));
        QCOMPARE(converter.getSuffix(QString()), fahrenheit);
    }

    void userLocale_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("expected");
        QTest::newRow("decimal comma and grouping")
            << QStringLiteral("de_DE") << 1234.5 << QStringLiteral("1.234,50");
        QTest::newRow("decimal point and grouping")
            << QStringLiteral("en_US") << 1234.5 << QStringLiteral("1,234.50");
        QTest::newRow("the minus sign, not the hyphen")
            << QStringLiteral("sv_SE") << -5.25 << QStringLiteral("\u22125,25");
        QTest::newRow("other digits")
            << QStringLiteral("ar_EG") << 12.5 << QStringLiteral("\u0661\u0662\u066B\u0665\u0660");
    }

    void userLocale()
    {
        QFETCH(QString, locale);
        QFETCH(double, value);
        Shared::LocaleSettings::setLocale(QLocale(locale));
        // the language of the user interface has no say
        Translation::TranslationStore::instance().setLocale(QLocale(QLocale::Polish));
        TempUnitsConverter converter(2);
        QTEST(converter.convert(value, fahrenheit, fahrenheit), "expected");
        QTEST(converter.convert(value, celsius, celsius), "expected");
        QTEST(converter.convert(value, QStringLiteral("K"), QStringLiteral("K")), "expected");
    }

    void exactConversions()
    {
        TempUnitsConverter converter(1);
        int differsFromTwoRoundings = 0;
        for (int i = -400; i <= 400; ++i) {
            const double value = i / 8.0 + 0.1;
            QVERIFY(converter.convert_C_to_F(value) == std::fma(value, 1.8, 32.0));
            const double product = value * 1.8;
            differsFromTwoRoundings += std::fma(value, 1.8, 32.0) != product + 32.0;
            QVERIFY(converter.convert_F_to_C(value) == (value - 32.0) * 5.0 / 9.0);
        }
        QVERIFY(differsFromTwoRoundings > 0);
    }

    void suffix()
    {
        TempUnitsConverter converter(1);
        QCOMPARE(converter.getSuffix(QString()), celsius);
        QCOMPARE(converter.getSuffix(fahrenheit), fahrenheit);
        QCOMPARE(converter.getSuffix(QStringLiteral("K")), QStringLiteral("K"));
    }

    void selfTest()
    {
        Test::RecordingConverter<TempUnitsConverter> converter(2);
        converter.selfTest();
        QStringList inputs;
        for (const QString &call : qAsConst(converter.calls)) {
            inputs.append(call.section(QLatin1Char('|'), 0, 0));
            for (int i : {1, 2}) {
                const QString unit = call.section(QLatin1Char('|'), i, i);
                QVERIFY2(unit == celsius || unit == fahrenheit, qPrintable(call));
            }
        }
        QCOMPARE(inputs.join(QLatin1Char(' ')), QStringLiteral("7.2222 -17.2222"));
        QCOMPARE(takeLog(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_TempUnitsConverter)
#include "tst_TempUnitsConverter.moc"
