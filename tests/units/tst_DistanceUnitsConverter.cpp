// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/DistanceUnitsConverter.h"

#include "tests/units/UnitsTest.h"

#include <QtTest>

using namespace Velmar;
using namespace Velmar::VideoOverlay;

namespace {

const char notANumber[] = "4 VideoOverlayLibrary: AngleUnitsConverter - Units converter not found";

QString hostLine(const char *from, const char *to)
{
    return QStringLiteral("4 Platform: Cannot convert a length from \"%1\" to \"%2\"")
        .arg(QLatin1String(from), QLatin1String(to));
}

} // namespace

class tst_DistanceUnitsConverter : public Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { Test::pinUserSettings(); }

private Q_SLOTS:
    void precisionIndicator()
    {
        QCOMPARE(DistanceUnitsConverter::osdPrecisionIndicator, QStringLiteral("["));
    }

    void convert_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QStringList>("logged");

        const QStringList none;
        const auto row = [](const char *name, const QVariant &value, const char *from,
                            const char *to, const char *expected, const QStringList &logged) {
            QTest::newRow(name) << value << QString::fromLatin1(from) << QString::fromLatin1(to)
                                << QString::fromLatin1(expected) << logged;
        };
        const QVariant abc = QStringLiteral("abc");

        row("equal but for the tag: the host is not asked", 12.345, "rod", "rod[.x]", "12.3", none);
        row("metres stay", 12.345, "m", "m", "12.35", none);
        row("metres in feet", 10, "m", "ft", "32.81", none);
        row("feet in metres", 10, "ft", "m", "3.05", none);
        row("no source unit: metres", 10, "", "ft", "32.81", none);
        row("no target unit: the user's", 10, "cm", "", "0.10", none);
        row("no units at all", QStringLiteral("10"), "", "", "10.00", none);

        row("shorter precision", 12.345, "m", "m[.x]", "12.3", none);
        row("shorter precision, converted", 10, "m", "ft[.x]", "32.8", none);
        row("shorter precision, no source unit", 10, "", "ft[.x]", "32.8", none);
        row("any other tag is fine", 12.345, "m", "m[abc", "12.35", none);
        row("tag of two digits is fine", 12.345, "m", "m[.xx]", "12.35", none);
        row("tag without its end is fine", 12.345, "m", "m[.x", "12.35", none);
        row("empty tag is fine", 12.345, "m", "m[", "12.35", none);
        row("the first tag decides: shorter", 12.345, "m", "m[.x][abc", "12.3", none);
        row("the first tag decides: fine", 12.345, "m", "m[abc[.x]", "12.35", none);
        row("text after the tag is part of it", 12.345, "m", "m[.x] ", "12.35", none);

        row("unknown target goes to the host", 12.345, "m", "rod", "12.35", {hostLine("m", "rod")});
        row("unknown target without its tag", 12.345, "m", "rod[.x]", "12.3",
            {hostLine("m", "rod")});
        row("nothing but a tag", 12.345, "m", "[.x]", "12.3", {hostLine("m", "")});
        row("unknown source goes to the host", 12.345, "rod", "m", "12.35", {hostLine("rod", "m")});
        row("a tag of the source is part of its name", 12.345, "m[.x]", "m", "12.35",
            {hostLine("m[.x]", "m")});
        row("both unknown and equal", 12.345, "rod", "rod", "12.35", none);

        row("no number", abc, "m", "ft", "abc", {QLatin1String(notANumber)});
        row("no number, unknown unit", abc, "rod", "pole[.x]", "abc", {QLatin1String(notANumber)});
        row("invalid value", QVariant(), "", "", "", {QLatin1String(notANumber)});
    }

    void convert()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QStringList, logged);
        DistanceUnitsConverter converter;
        QTEST(converter.convert(value, from, to), "expected");
        QCOMPARE(takeLog(), logged);
    }

    void userUnit()
    {
        using Shared::LocaleSettings;
        QVERIFY(LocaleSettings::setUnit(LocaleSettings::Quantity::Distance, QStringLiteral("ft")));
        DistanceUnitsConverter converter;
        QCOMPARE(converter.convert(10, QString(), QString()), QStringLiteral("32.81"));
        QCOMPARE(converter.getSuffix(QString()), QStringLiteral("ft"));
    }

    void userLocale()
    {
        Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
        DistanceUnitsConverter converter;
        QCOMPARE(converter.convert(1234.5, QStringLiteral("m"), QStringLiteral("m")),
                 QStringLiteral("1.234,50"));
    }

    void suffix_data()
    {
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no unit: the user's") << QString() << QStringLiteral("m");
        QTest::newRow("plain") << QStringLiteral("ft") << QStringLiteral("ft");
        QTest::newRow("unknown") << QStringLiteral("rod") << QStringLiteral("rod");
        QTest::newRow("tag") << QStringLiteral("m[.x]") << QStringLiteral("m");
        QTest::newRow("any tag") << QStringLiteral("inch[abc") << QStringLiteral("inch");
        QTest::newRow("two tags") << QStringLiteral("m[a[b") << QStringLiteral("m");
        QTest::newRow("nothing but a tag") << QStringLiteral("[.x]") << QString();
    }

    void suffix()
    {
        QFETCH(QString, unit);
        DistanceUnitsConverter converter;
        QTEST(converter.getSuffix(unit), "expected");
    }
};

QTEST_GUILESS_MAIN(tst_DistanceUnitsConverter)
#include "tst_DistanceUnitsConverter.moc"
