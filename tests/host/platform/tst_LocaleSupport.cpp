// SPDX-License-Identifier: Apache-2.0
#include "platform/shared/CLocaleSupport.h"

#include "platform/shared/GlobalLocaleData.h"
#include "platform/shared/LengthUnitsConverter.h"
#include "tests/units/UnitsTest.h"

#include <QtTest>

#include <functional>

using namespace Velmar;
using namespace Velmar::Shared;

namespace {

using Quantity = LocaleSettings::Quantity;

} // namespace

class tst_LocaleSupport : public Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { Test::pinUserSettings(); }

private Q_SLOTS:
    void unitNames()
    {
        QCOMPARE(CLocaleSupport::speedUnits_m_per_min, QStringLiteral("m/min"));
        QCOMPARE(CLocaleSupport::speedUnits_ft_per_min, QStringLiteral("ft/min"));
        QCOMPARE(CLocaleSupport::speedUnits_inch_per_min, QStringLiteral("inch/min"));
        QCOMPARE(CLocaleSupport::speedUnits_m_per_sec, QStringLiteral("m/s"));
        QCOMPARE(CLocaleSupport::speedUnits_ft_per_sec, QStringLiteral("ft/s"));
        QCOMPARE(CLocaleSupport::speedUnits_inch_per_sec, QStringLiteral("inch/s"));
        QCOMPARE(CLocaleSupport::speedUnits_cm_per_sec, QStringLiteral("cm/s"));
        QCOMPARE(CLocaleSupport::angleUnits_hour, QStringLiteral("hour"));
        QCOMPARE(CLocaleSupport::angleUnits_degree, QString(QChar(0xB0)));
        QCOMPARE(CLocaleSupport::angleUnits_percent, QStringLiteral("%"));
        QCOMPARE(CLocaleSupport::tempUnits_C, QChar(0xB0) + QStringLiteral("C"));
        QCOMPARE(CLocaleSupport::tempUnits_F, QChar(0xB0) + QStringLiteral("F"));
        QCOMPARE(CLocaleSupport::pressureUnits_mbar, QStringLiteral("mbar"));
        QCOMPARE(CLocaleSupport::pressureUnits_atm, QStringLiteral("atm"));
        QCOMPARE(CLocaleSupport::pressureUnits_pa, QStringLiteral("Pa"));
    }

    void unitChoice_data()
    {
        QTest::addColumn<int>("quantity");
        QTest::addColumn<QString>("metric");
        QTest::addColumn<QString>("imperial");
        QTest::addColumn<QStringList>("choices");
        const auto row = [](const char *name, Quantity quantity, const char16_t *metric,
                            const char16_t *imperial, const char16_t *choices) {
            QTest::newRow(name) << int(quantity) << QString::fromUtf16(metric)
                                << QString::fromUtf16(imperial)
                                << QString::fromUtf16(choices).split(QLatin1Char(' '));
        };
        row("speed", Quantity::Speed, u"m/min", u"ft/min",
            u"m/min ft/min inch/min m/s ft/s inch/s cm/s");
        row("angle", Quantity::Angle, u"\u00B0", u"\u00B0", u"hour \u00B0 %");
        row("temperature", Quantity::Temperature, u"\u00B0C", u"\u00B0F", u"\u00B0C \u00B0F");
        row("pressure", Quantity::Pressure, u"mbar", u"mbar", u"mbar atm Pa");
        row("distance", Quantity::Distance, u"m", u"ft", u"mm cm m km inch ft yd mile");
    }

    void unitChoice()
    {
        QFETCH(int, quantity);
        QFETCH(QString, metric);
        QFETCH(QString, imperial);
        QFETCH(QStringList, choices);
        const auto which = Quantity(quantity);
        const auto shown = [which] {
            switch (which) {
            case Quantity::Speed:
                return CLocaleSupport::getSpeedUnitString();
            case Quantity::Angle:
                return CLocaleSupport::getAngleUnitString();
            case Quantity::Temperature:
                return CLocaleSupport::getTemperatureUnitString();
            case Quantity::Pressure:
                return CLocaleSupport::getPressureUnitString();
            case Quantity::Distance:
                return CLocaleSupport::getDistanceUnitString();
            }
            return QString();
        };
        QSignalSpy changed(GlobalLocaleData::instance(), &GlobalLocaleData::localeChanged);

        QCOMPARE(shown(), metric);
        QCOMPARE(LocaleSettings::units(which), choices);
        int expectedSignals = 0;
        for (const QString &unit : qAsConst(choices)) {
            if (unit != shown())
                ++expectedSignals;
            QVERIFY(LocaleSettings::setUnit(which, unit));
            QVERIFY(LocaleSettings::setUnit(which, unit)); // the same again: silent
            QCOMPARE(shown(), unit);
            QCOMPARE(changed.count(), expectedSignals);
        }
        QVERIFY(!LocaleSettings::setUnit(which, QStringLiteral("furlong")));
        QVERIFY(!LocaleSettings::setUnit(which, QString()));
        QCOMPARE(shown(), choices.last());
        QCOMPARE(changed.count(), expectedSignals);

        LocaleSettings::setUnitSystem(LocaleSettings::UnitSystem::Imperial);
        QCOMPARE(shown(), imperial);
        LocaleSettings::setUnitSystem(LocaleSettings::UnitSystem::Metric);
        QCOMPARE(shown(), metric);
    }

    void changesAreAnnouncedOnceAndAfterwards_data()
    {
        QTest::addColumn<int>("change");
        QTest::newRow("unit system") << 0;
        QTest::newRow("locale") << 1;
        QTest::newRow("time format") << 2;
        QTest::newRow("date format") << 3;
        QTest::newRow("reset") << 4;
    }

    void changesAreAnnouncedOnceAndAfterwards()
    {
        QFETCH(int, change);
        const std::function<void()> changes[] {
            [] { LocaleSettings::setUnitSystem(LocaleSettings::UnitSystem::Imperial); },
            [] { LocaleSettings::setLocale(QLocale(QLocale::German)); },
            [] { LocaleSettings::setTimeFormat(QStringLiteral("hh 'h'")); },
            [] { LocaleSettings::setDateFormat(QStringLiteral("yyyy")); },
            [] { LocaleSettings::reset(); },
        };
        const auto state = [] {
            return QStringList {CLocaleSupport::getSpeedUnitString(),
                                CLocaleSupport::getDistanceUnitString(),
                                CLocaleSupport::getTemperatureUnitString(),
                                CLocaleSupport::getCurrentLocale().name(),
                                CLocaleSupport::getTimeFormat(),
                                CLocaleSupport::variantToLocalizedString(QDate(2026, 3, 1), {})};
        };
        if (change == 4)
            LocaleSettings::setTimeFormat(QStringLiteral("'before' hh"));
        const QStringList before = state();
        QStringList whenAnnounced;
        QObject context;
        connect(GlobalLocaleData::instance(), &GlobalLocaleData::localeChanged, &context,
                [&] { whenAnnounced = state(); });
        QSignalSpy changed(GlobalLocaleData::instance(), &GlobalLocaleData::localeChanged);
        changes[change]();
        QCOMPARE(changed.count(), 1);
        QVERIFY(whenAnnounced != before);
        QCOMPARE(whenAnnounced, state());
        changes[change]();
        QCOMPARE(changed.count(), 1);
    }

    void withoutAChoiceTheSystemsLocale()
    {
        LocaleSettings::reset();
        const QLocale before;
        QLocale::setDefault(QLocale(QStringLiteral("pl_PL")));
        QCOMPARE(CLocaleSupport::getCurrentLocale(), QLocale(QStringLiteral("pl_PL")));
        QLocale::setDefault(before);
    }

    void timeFormat()
    {
        LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
        QCOMPARE(CLocaleSupport::getTimeFormat(), QStringLiteral("HH:mm:ss t"));
        LocaleSettings::setTimeFormat(QStringLiteral("h:mm"));
        QCOMPARE(CLocaleSupport::getTimeFormat(), QStringLiteral("h:mm"));
    }

    void distance_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<double>("value");
        QTest::addColumn<bool>("withUnit");
        QTest::addColumn<bool>("fine");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const char *locale, double value, bool withUnit,
                            bool fine, const char *expected) {
            QTest::newRow(name) << QString::fromLatin1(locale) << value << withUnit << fine
                                << QString::fromLatin1(expected);
        };
        row("fine", "C", 12.345, false, true, "12.35");
        row("short", "C", 12.345, false, false, "12.3");
        row("zero", "C", 0.0, false, true, "0.00");
        row("fine with the unit", "C", 12.345, true, true, "12.35 m");
        row("short with the unit", "C", 12.345, true, false, "12.3 m");
        row("decimal comma and grouping", "de_DE", 1234.5, false, true, "1.234,50");
        row("negative", "C", -1.25, false, true, "-1.25");
        row("rounds to zero: no sign, fine", "C", -0.0049, false, true, "0.00");
        row("rounds to zero: no sign, short", "C", -0.049, false, false, "0.0");
        row("does not round to zero, fine", "C", -0.0051, false, true, "-0.01");
        row("does not round to zero, short", "C", -0.051, false, false, "-0.1");
        row("negative zero", "C", -0.0, false, true, "0.00");
    }

    void distance()
    {
        QFETCH(QString, locale);
        QFETCH(double, value);
        QFETCH(bool, withUnit);
        QFETCH(bool, fine);
        LocaleSettings::setLocale(QLocale(locale));
        QTEST(CLocaleSupport::distanceValueToLocalizedString(value, withUnit, fine), "expected");
    }

    void variant_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("expected");
        const QDate date(2026, 3, 1);
        const QTime time(14, 5, 9);
        const QDateTime moment(date, time, Qt::UTC);
        const QString none;
        QTest::newRow("date") << QVariant(date) << none << "01.03.26";
        QTest::newRow("date, pattern")
            << QVariant(date) << "d. MMMM yyyy" << QStringLiteral("1. M\u00E4rz 2026");
        QTest::newRow("invalid date") << QVariant(QDate()) << none << "";
        QTest::newRow("time without a zone") << QVariant(time) << none << "14:05:09";
        QTest::newRow("time, pattern") << QVariant(time) << "h.mm"
                                       << "14.05";
        QTest::newRow("invalid time") << QVariant(QTime()) << none << "";
        QTest::newRow("date and time") << QVariant(moment) << none << "01.03.26 14:05:09 UTC";
        QTest::newRow("date and time, pattern") << QVariant(moment) << "dd.MM. hh:mm"
                                                << "01.03. 14:05";
        QTest::newRow("invalid date and time") << QVariant(QDateTime()) << none << "";
        QTest::newRow("double") << QVariant(1234.5) << none << "1.234,5";
        QTest::newRow("a format is not for numbers") << QVariant(1234.5) << "hh"
                                                     << "1.234,5";
        QTest::newRow("float") << QVariant(0.5F) << none << "0,5";
        QTest::newRow("integer") << QVariant(-1234567) << none << "-1.234.567";
        QTest::newRow("64 bits") << QVariant(qint64(-9876543210)) << none << "-9.876.543.210";
        QTest::newRow("unsigned") << QVariant(quint64(18446744073709551615U)) << none
                                  << "18.446.744.073.709.551.615";
        QTest::newRow("text") << QVariant(QStringLiteral("1234.5")) << none << "1234.5";
        QTest::newRow("invalid") << QVariant() << none << "";
    }

    void variant()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, format);
        LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
        QTEST(CLocaleSupport::variantToLocalizedString(value, format), "expected");
    }

    void variantInTheUsersFormats()
    {
        LocaleSettings::setDateFormat(QStringLiteral("yyyy/MM/dd"));
        LocaleSettings::setTimeFormat(QStringLiteral("hh-mm"));
        const QDateTime moment(QDate(2026, 3, 1), QTime(14, 5, 9), Qt::UTC);
        const auto text = [](const QVariant &value) {
            return CLocaleSupport::variantToLocalizedString(value, {});
        };
        QCOMPARE(text(moment.date()), QStringLiteral("2026/03/01"));
        QCOMPARE(text(moment.time()), QStringLiteral("14-05"));
        QCOMPARE(text(moment), QStringLiteral("2026/03/01 14-05"));
    }

    void length_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<double>("expected");
        const struct
        {
            const char *name;
            double metres;
        } units[] {{"mm", 0.001},    {"cm", 0.01},   {"m", 1.0},     {"km", 1000.0},
                   {"inch", 0.0254}, {"ft", 0.3048}, {"yd", 0.9144}, {"mile", 1609.344}};
        for (const auto &from : units) {
            for (const auto &to : units) {
                QTest::addRow("%s to %s", from.name, to.name)
                    << QString::fromLatin1(from.name) << QString::fromLatin1(to.name)
                    << 7.5 * from.metres / to.metres;
            }
        }
    }

    void length()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(double, expected);
        QCOMPARE(LengthUnitsConverter::convert(from, to, 7.5), expected);
    }

    void lengthIsExactWhereTheUnitsAre()
    {
        const auto convert = [](const char *from, const char *to, double value) {
            return LengthUnitsConverter::convert(QString::fromLatin1(from), QString::fromLatin1(to),
                                                 value);
        };
        QVERIFY(convert("ft", "inch", 7.0) == 84.0);
        QVERIFY(convert("mile", "ft", 1.0) == 5280.0);
        QVERIFY(convert("yd", "ft", 3.0) == 9.0);
        QVERIFY(convert("inch", "mm", 10.0) == 254.0);
        QVERIFY(convert("m", "m", 0.1) == 0.1);
    }

    void lengthOfUnknownUnit()
    {
        const auto line = [](const char *from, const char *to) {
            return QStringLiteral("4 Platform: Cannot convert a length from \"%1\" to \"%2\"")
                .arg(QLatin1String(from), QLatin1String(to));
        };
        const QString m = QStringLiteral("m");
        const QString rod = QStringLiteral("rod");
        QVERIFY(LengthUnitsConverter::convert(rod, m, 2.5) == 2.5);
        QVERIFY(LengthUnitsConverter::convert(m, rod, 2.5) == 2.5);
        QVERIFY(LengthUnitsConverter::convert(m, QString(), 2.5) == 2.5);
        QCOMPARE(takeLog(), QStringList({line("rod", "m"), line("m", "rod"), line("m", "")}));
    }

    void everyUnitOfTheUserIsALength()
    {
        const QStringList units = LocaleSettings::units(Quantity::Distance);
        for (const QString &unit : units)
            QVERIFY(LengthUnitsConverter::convert(QStringLiteral("m"), unit, 1.0) > 0.0);
        QCOMPARE(takeLog(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_LocaleSupport)
#include "tst_LocaleSupport.moc"
