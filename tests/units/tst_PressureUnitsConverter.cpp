// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/PressureUnitsConverter.h"

#include "tests/units/UnitsTest.h"

#include <QtTest>

using namespace Velmar;
using namespace Velmar::VideoOverlay;

namespace {

const QString mbar = QStringLiteral("mbar");
const QString atm = QStringLiteral("atm");
const QString pa = QStringLiteral("Pa");

const char notFound[] = "4 VideoOverlayLibrary: PressureUnitsConverter - Units converter not found";
const char notANumber[] = "4 VideoOverlayLibrary: AngleUnitsConverter - Units converter not found";

} // namespace

class tst_PressureUnitsConverter : public Test::LoggedTest
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
        const QStringList once {QLatin1String(notFound)};
        const QStringList notNumber {QLatin1String(notANumber)};
        const auto row
            = [](const char *name, const QVariant &value, const QString &from, const QString &to,
                 int decimals, const QString &expected, const QStringList &logged) {
                  QTest::newRow(name) << value << from << to << decimals << expected << logged;
              };
        const auto number = [](double value) { return QString::number(value, 'f', 9); };
        const double value = 12345.675;
        const auto toAtm = [](double mbars) {
            const double first = mbars * 0.001;
            return first * 0.986923267;
        };

        row("mbar to mbar", value, mbar, mbar, 9, number(value), none);
        row("mbar to atm", value, mbar, atm, 9, number(toAtm(value)), none);
        row("mbar to Pa", value, mbar, pa, 9, number(value * 100.0), none);
        row("atm to mbar", value, atm, mbar, 9, number(value * 1013.25), none);
        row("atm to atm", value, atm, atm, 9, number(value), none);
        row("atm to Pa", value, atm, pa, 9, number(value * 1013.25 * 100.0), none);
        row("Pa to mbar", value, pa, mbar, 9, number(value * 0.01), none);
        row("Pa to atm", value, pa, atm, 9, number(toAtm(value * 0.01)), none);
        row("Pa to Pa", value, pa, pa, 9, number(value), none);

        row("one atmosphere", 1, atm, mbar, 2, QStringLiteral("1013.25"), none);
        row("back is not exact", 1013.25, mbar, atm, 9, QStringLiteral("1.000000000"), none);
        row("no source unit: mbar", 1, QString(), pa, 0, QStringLiteral("100"), none);
        row("precision -1 is six decimals", 1, mbar, mbar, -1, QStringLiteral("1.000000"), none);
        row("the sign of what rounds to zero stays", -0.001, mbar, mbar, 2, QStringLiteral("-0.00"),
            none);

        row("no target unit", 10, QString(), QString(), 2, QStringLiteral("10.00"), once);
        row("unknown target: unconverted", 10, atm, QStringLiteral("psi"), 2,
            QStringLiteral("10.00"), once);
        row("unknown source is taken for the base", 10, QStringLiteral("psi"), pa, 2,
            QStringLiteral("1000.00"), once);
        row("both unknown", 10, QStringLiteral("psi"), QStringLiteral("bar"), 2,
            QStringLiteral("10.00"), once + once);
        row("both unknown and equal", 10, QStringLiteral("psi"), QStringLiteral("psi"), 2,
            QStringLiteral("10.00"), none);
        row("units are case-sensitive", 10, atm, QStringLiteral("pa"), 2, QStringLiteral("10.00"),
            once);
        row("no number", QStringLiteral("abc"), atm, pa, 2, QStringLiteral("abc"), notNumber);
        row("no number, unknown units", QStringLiteral("abc"), QStringLiteral("psi"),
            QStringLiteral("bar"), 2, QStringLiteral("abc"), notNumber);
        row("invalid value", QVariant(), atm, pa, 2, QString(), notNumber);
    }

    void convert()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(int, decimals);
        QFETCH(QStringList, logged);
        PressureUnitsConverter converter(decimals);
        QTEST(converter.convert(value, from, to), "expected");
        QCOMPARE(takeLog(), logged);
    }

    void userLocaleDoesNotMatter()
    {
        Shared::LocaleSettings::setLocale(QLocale(QLocale::German));
        PressureUnitsConverter converter(1);
        QCOMPARE(converter.convert(1234.5, mbar, mbar), QStringLiteral("1234.5"));
    }

    void factors()
    {
        PressureUnitsConverter converter(2);
        QVERIFY(converter.convertToBase(0.3, mbar) == 0.3);
        QVERIFY(converter.convertToBase(1.0, atm) == 1013.25);
        QVERIFY(converter.convertToBase(1.0, pa) == 0.01);
        QVERIFY(converter.convertBaseTo__mbar(0.3) == 0.3);
        QVERIFY(converter.convertBaseTo__Pa(0.3) == 0.3 * 100.0);
        // A value at which one product, or the other order, ends in another last bit.
        int differsFromOneProduct = 0;
        int differsFromOtherOrder = 0;
        for (int i = 1; i <= 1000; ++i) {
            const double first = i * 0.001;
            const double expected = first * 0.986923267;
            QVERIFY(converter.convertBaseTo__atm(i) == expected);
            const double other = i * 0.986923267;
            differsFromOneProduct += expected != i * (0.001 * 0.986923267);
            differsFromOtherOrder += expected != other * 0.001;
        }
        QVERIFY(differsFromOneProduct > 0);
        QVERIFY(differsFromOtherOrder > 0);
    }

    void convertToBaseOfUnknownUnit()
    {
        PressureUnitsConverter converter(2);
        QVERIFY(converter.convertToBase(2.5, QStringLiteral("psi")) == 2.5);
        QCOMPARE(takeLog(), QStringList {QLatin1String(notFound)});
    }

    void suffix()
    {
        using Shared::LocaleSettings;
        PressureUnitsConverter converter(2);
        QCOMPARE(converter.getSuffix(atm), atm);
        QCOMPARE(converter.getSuffix(QStringLiteral("psi")), QStringLiteral("psi"));
        QCOMPARE(converter.getSuffix(QString()), mbar);
        QVERIFY(LocaleSettings::setUnit(LocaleSettings::Quantity::Pressure, pa));
        QCOMPARE(converter.getSuffix(QString()), pa);
    }

    void selfTest()
    {
        Test::RecordingConverter<PressureUnitsConverter> converter(2);
        converter.selfTest();
        QStringList inputs;
        for (const QString &call : qAsConst(converter.calls)) {
            inputs.append(call.section(QLatin1Char('|'), 0, 0));
            for (int i : {1, 2}) {
                const QString unit = call.section(QLatin1Char('|'), i, i);
                QVERIFY2(unit == mbar || unit == atm || unit == pa, qPrintable(call));
            }
        }
        QCOMPARE(inputs.join(QLatin1Char(' ')), QStringLiteral("1.00 100.01 1000"));
        QCOMPARE(takeLog(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_PressureUnitsConverter)
#include "tst_PressureUnitsConverter.moc"
