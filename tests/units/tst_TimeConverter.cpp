// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/TimeConverter.h"

#include "tests/units/UnitsTest.h"

#include <QtTest>

#include <limits>

using namespace Velmar;
using namespace Velmar::VideoOverlay;

class tst_TimeConverter : public Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { Test::pinUserSettings("XYZ-2"); } // two hours ahead, all year

private Q_SLOTS:
    void format_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const char *format, const char *expected) {
            QTest::newRow(name) << QString::fromLatin1(format) << QString::fromLatin1(expected);
        };
        row("plain", "hh:mm:ss", "03:02:03");
        row("zone at the end", "hh:mm:ss t", "03:02:03");
        row("only one zone is cut", "hh:mm t t", "03:02 XYZ");
        row("blanks before the zone stay", "hh:mm  t", "03:02 ");
        row("zone without a blank stays", "hh:mmt", "03:02XYZ");
        row("zone in front stays", "t hh:mm", "XYZ 03:02");
        row("zone before the end stays", "hh t mm", "03 XYZ 02");
        row("no zone in capitals", "hh:mm T", "03:02 T");
        row("blank after the zone", "hh:mm t ", "03:02 XYZ ");
        row("nothing but the zone", " t", "");
        row("milliseconds", "s.zzz", "3.004");
        row("not a unit", "min", "2in");
    }

    void format()
    {
        QFETCH(QString, format);
        TimeConverter converter;
        QTEST(converter.convert(qint64(3723004), QString(), format), "expected");
        // the second argument is no unit here
        QTEST(converter.convert(qint64(3723004), QStringLiteral("m/s"), format), "expected");
    }

    void value_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("expected");
        const QString epoch = QStringLiteral("02:00:00.000");
        QTest::newRow("64 bits") << QVariant(qint64(1772359445678)) << "12:04:05.678";
        QTest::newRow("32 bits") << QVariant(3723000) << "03:02:03.000";
        QTest::newRow("before the epoch") << QVariant(qint64(-1)) << "01:59:59.999";
        QTest::newRow("text of a number") << QVariant(QStringLiteral("3723000")) << "03:02:03.000";
        QTest::newRow("number with a fraction is rounded") << QVariant(999.5) << "02:00:01.000";
        QTest::newRow("text in exponent notation is no integer")
            << QVariant(QVariant(1e6).toString()) << epoch;
        QTest::newRow("no number") << QVariant(QStringLiteral("abc")) << epoch;
        QTest::newRow("invalid") << QVariant() << epoch;
        QTest::newRow("a date is no number") << QVariant(QDate(2026, 3, 1)) << epoch;
    }

    void value()
    {
        QFETCH(QVariant, value);
        TimeConverter converter;
        QTEST(converter.convert(value, QString(), QStringLiteral("hh:mm:ss.zzz")), "expected");
        QCOMPARE(takeLog(), QStringList());
    }

    void summerTime()
    {
        Test::pinUserSettings("CET-1CEST,M3.5.0,M10.5.0/3");
        TimeConverter converter;
        const QString pattern = QStringLiteral("hh:mm");
        const auto at = [](int month) {
            return QDateTime(QDate(2026, month, 1), QTime(10, 0), Qt::UTC).toMSecsSinceEpoch();
        };
        QCOMPARE(converter.convert(at(1), QString(), pattern), QStringLiteral("11:00"));
        QCOMPARE(converter.convert(at(7), QString(), pattern), QStringLiteral("12:00"));
    }

    void emptyFormatIsTheUsers()
    {
        TimeConverter converter;
        Shared::LocaleSettings::setTimeFormat(QStringLiteral("h.mm t"));
        QCOMPARE(converter.convert(qint64(3723000), QString(), QString()), QStringLiteral("3.02"));
        Shared::LocaleSettings::setTimeFormat(QString());
        Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
        QCOMPARE(converter.convert(qint64(3723000), QString(), QString()),
                 QStringLiteral("03:02:03"));
    }

    void textsAreOfTheUserInterface()
    {
        Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
        Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("sv_SE")));
        TimeConverter converter;
        QCOMPARE(converter.convert(qint64(3723000), QString(), QStringLiteral("h:mm AP")),
                 QStringLiteral("3:02 FM"));
    }

    void noSuffix()
    {
        TimeConverter converter;
        QCOMPARE(converter.getSuffix(QString()), QString());
        QCOMPARE(converter.getSuffix(QStringLiteral("m/s")), QString());
    }
};

QTEST_GUILESS_MAIN(tst_TimeConverter)
#include "tst_TimeConverter.moc"
