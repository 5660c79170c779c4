// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/DateConverter.h"

#include "tests/units/UnitsTest.h"

#include <QtTest>

using namespace Velmar;
using namespace Velmar::VideoOverlay;

class tst_DateConverter : public Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { Test::pinUserSettings("XYZ-2"); } // two hours ahead, all year

private Q_SLOTS:
    void value_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("expected");
        const QString epoch = QStringLiteral("1970-01-01");
        QTest::newRow("64 bits") << QVariant(qint64(1772359445678)) << "2026-03-01";
        QTest::newRow("floating point") << QVariant(1772359445678.0) << "2026-03-01";
        QTest::newRow("local midnight")
            << QVariant(QDateTime(QDate(2026, 3, 1), QTime(22, 0), Qt::UTC).toMSecsSinceEpoch())
            << "2026-03-02";
        QTest::newRow("just before local midnight") << QVariant(
            QDateTime(QDate(2026, 3, 1), QTime(21, 59, 59), Qt::UTC).toMSecsSinceEpoch())
                                                    << "2026-03-01";
        QTest::newRow("before the epoch") << QVariant(qint64(-86400000)) << "1969-12-31";
        QTest::newRow("text of a number")
            << QVariant(QStringLiteral("1772359445678")) << "2026-03-01";
        QTest::newRow("text in exponent notation is no integer")
            << QVariant(QVariant(1.7e12).toString()) << epoch;
        QTest::newRow("no number") << QVariant(QStringLiteral("abc")) << epoch;
        QTest::newRow("invalid") << QVariant() << epoch;
    }

    void value()
    {
        QFETCH(QVariant, value);
        DateConverter converter;
        QTEST(converter.convert(value, QStringLiteral("m/s"), QStringLiteral("yyyy-MM-dd")),
              "expected");
        QCOMPARE(takeLog(), QStringList());
    }

    void emptyFormatIsTheShortOneOfTheUsersLocale()
    {
        DateConverter converter;
        Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
        QCOMPARE(converter.convert(0, QString(), QString()), QStringLiteral("01.01.70"));
        // a pattern that the user chose for elsewhere has no say
        Shared::LocaleSettings::setDateFormat(QStringLiteral("yyyy"));
        QCOMPARE(converter.convert(0, QString(), QString()), QStringLiteral("01.01.70"));
        Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("en_US")));
        QCOMPARE(converter.convert(0, QString(), QString()), QStringLiteral("1/1/70"));
    }

    void textsAreOfTheUsersLocale()
    {
        Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
        Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("fr_FR")));
        DateConverter converter;
        QCOMPARE(converter.convert(0, QString(), QStringLiteral("dddd d. MMMM yyyy")),
                 QStringLiteral("Donnerstag 1. Januar 1970"));
    }

    void constructionTextIsNotShown()
    {
        DateConverter converter(QStringLiteral("yyyy"));
        QCOMPARE(converter.convert(0, QString(), QStringLiteral("MM")), QStringLiteral("01"));
        Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
        QCOMPARE(converter.convert(0, QString(), QString()), QStringLiteral("01.01.70"));
    }

    void noSuffix()
    {
        DateConverter converter(QStringLiteral("text"));
        QCOMPARE(converter.getSuffix(QString()), QString());
        QCOMPARE(converter.getSuffix(QStringLiteral("m/s")), QString());
    }
};

QTEST_GUILESS_MAIN(tst_DateConverter)
#include "tst_DateConverter.moc"
