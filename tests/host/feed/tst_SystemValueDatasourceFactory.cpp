// SPDX-License-Identifier: Apache-2.0
#include "host/feed/SystemValueDatasourceFactory.h"
#include "host/feed/SystemValues.h"
#include "host/platform/CatalogStore.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "tests/support/LoggedTest.h"

#include "videooverlay/elements/CVideoOverlayImage.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/osd/COsdValueDatasource.h"
#include "videooverlay/units/UnitsProvider.h"

#include <QtTest>

using namespace Velmar;
using namespace Velmar::Host;
using namespace Velmar::VideoOverlay;
using Shared::LocaleSettings;

namespace {

ElementParam record(const QString &name)
{
    ElementParam param;
    param.insert(QStringLiteral("type"), int(CVideoOverlayElement::SystemText));
    param.insert(QStringLiteral("enabled"), true);
    param.insert(ElementParam::NAME_COLUMNBOUND, name);
    return param;
}

} // namespace

Q_DECLARE_METATYPE(Velmar::Shared::LocaleSettings::Quantity)

class tst_SystemValueDatasourceFactory : public Velmar::Test::LoggedTest
{
    Q_OBJECT

public:
    tst_SystemValueDatasourceFactory()
    {
        allow(QStringLiteral("2 VideoOverlayLibrary: Invalid project.")); // there is none here
    }

private Q_SLOTS:
    void accept_data();
    void accept();
    void textOfEachValue_data();
    void textOfEachValue();
    void emptyUnitFollowsTheUser_data();
    void emptyUnitFollowsTheUser();
    void givenUnitStays();
    void digitsOfTheUsersLocale();
    void captionsFollowTheLanguage();
    void wrongElement();
    void nothingBeforeTheFirstValue();
    void emptyTextIsAValue();
    void everyCaptionedValueIsKnown();

protected:
    void prepare() override
    {
        LocaleSettings::reset();
        LocaleSettings::setLocale(QLocale(QStringLiteral("en_US")));
        Translation::TranslationStore::instance().setDirectory(
            QStringLiteral(TRANSLATIONS_DIRECTORY));
        Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("en_US")));
        m_factory = std::make_unique<SystemValueDatasourceFactory>(
            CATManagement::CatalogStore::instance());
    }

private:
    std::unique_ptr<SystemValueDatasourceFactory> m_factory;
};

void tst_SystemValueDatasourceFactory::accept_data()
{
    QTest::addColumn<QVariant>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("accepted");
    const QVariant system(int(CVideoOverlayElement::SystemText));
    QTest::newRow("speed") << system << QStringLiteral("SPEED") << true;
    QTest::newRow("type as text") << QVariant(QStringLiteral("SystemText"))
                                  << QStringLiteral("SPEED") << true;
    QTest::newRow("pan and tilt") << system << QStringLiteral("PAN AND TILT") << true;
    QTest::newRow("unknown value") << system << QStringLiteral("OBJ_Key") << false;
    QTest::newRow("no value") << system << QString() << false;
    QTest::newRow("inspection text")
        << QVariant(int(CVideoOverlayElement::InspText)) << QStringLiteral("SPEED") << false;
    QTest::newRow("no type") << QVariant() << QStringLiteral("SPEED") << false;
}

void tst_SystemValueDatasourceFactory::accept()
{
    QFETCH(QVariant, type);
    QFETCH(QString, name);
    QFETCH(bool, accepted);
    ElementParam param = record(name);
    param.insert(QStringLiteral("type"), type);
    param.insert(QStringLiteral("textDatasource"), QStringLiteral("DB"));
    QCOMPARE(m_factory->accept(param), accepted);
    CVideoOverlayText text;
    QCOMPARE(m_factory->getDatasource(&text, param) != nullptr, accepted);
    if (name == QLatin1String("PAN AND TILT"))
        QCOMPARE(takeLog().filter(QStringLiteral("cannot find caption")).size(), 1);
}

void tst_SystemValueDatasourceFactory::textOfEachValue_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *unit, const QVariant &value,
                        const char *expected) {
        QTest::addRow("%s %s", name, unit) << QString::fromLatin1(name) << QString::fromUtf8(unit)
                                           << value << QString::fromUtf8(expected);
    };
    for (const char *name :
         {"SECTION_DISTANCE_COUNTER", "TOTAL_DISTANCE_COUNTER", "SAT_DISTANCE_COUNTER"}) {
        row(name, "", 12.346, "12.35 m");
        row(name, "m[.x]", 12.346, "12.3 m");
        row(name, "ft", 3.048, "10.00 ft");
    }
    row("SPEED", "", 6.5, "6.50 m/min");
    row("SPEED", "ft/min", 10.0, "32.81 ft/min");
    row("SPEED", "m/s", 60.0, "1.00 m/s");
    for (const char *name : {"CAMERA_TILT", "CAMERA_PAN"}) {
        row(name, "", -3.4, "-3 \xC2\xB0");
        row(name, "hour", 45.0, "1.5 h");
    }
    row("CAMERA_TILT", "%", 45.0, "100.0 %");
    row("CAMERA_PAN", "\xC2\xB0", -0.2, "0 \xC2\xB0"); // no sign before nothing
    for (const char *name : {"CRAWLER_PITCH", "CRAWLER_ROLL"}) {
        row(name, "", -0.82, "-0.8 \xC2\xB0");
        row(name, "%", 45.0, "100.0 %");
        row(name, "\xC2\xB0", -0.02, "0.0 \xC2\xB0");
    }
    for (const char *name : {"CAMERA_TEMPERATURE", "CRAWLER_TEMPERATURE", "OBJECT_TEMPERATURE"}) {
        row(name, "", 24.6,
            "24.6 \xC2\xB0"
            "C");
        row(name,
            "\xC2\xB0"
            "F",
            24.6,
            "76.3 \xC2\xB0"
            "F");
    }
    for (const char *name : {"CAMERA_PRESSURE", "CRAWLER_PRESSURE"}) {
        row(name, "", 1098.4, "1098 mbar");
        row(name, "atm", 1013.25, "1.000 atm");
        row(name, "Pa", 10.0, "1000 Pa");
    }
    row("DATE", "yyyy-MM-dd", qint64(86400000), "1970-01-02 ");
    row("DATE", "", qint64(86400000), "1/2/70 ");
    row("TIME", "hh:mm:ss", qint64(3723000), "01:02:03 ");
    row("VIDEO_TIME_COUNTER", "", qint64(3723000), "01:02:03 ");
    row("VIDEO_TIME_COUNTER", "mm:ss", qint64(3723000), "02:03 ");
    row("VIDEO_TIME_COUNTER", "hh:mm", qint64(1000000), "00:16 "); // not "1e+06"
    row("SPEED", "m/min", QStringLiteral("---"), "--- m/min");
}

void tst_SystemValueDatasourceFactory::textOfEachValue()
{
    QFETCH(QString, name);
    QFETCH(QString, unit);
    QFETCH(QVariant, value);
    QFETCH(QString, expected);
    CVideoOverlayText text;
    ElementParam param = record(name);
    param.insert(QStringLiteral("unit"), unit);
    auto *datasource = qobject_cast<COsdValueDatasource *>(m_factory->getDatasource(&text, param));
    QVERIFY(datasource);
    QCOMPARE(datasource->parent(), &text);
    datasource->update(value);
    QCOMPARE(text.text(), expected);
}

void tst_SystemValueDatasourceFactory::emptyUnitFollowsTheUser_data()
{
    using Quantity = LocaleSettings::Quantity;
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<Quantity>("quantity");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    const auto row = [](const char *name, const QVariant &value, Quantity quantity,
                        const QString &unit, const QString &before, const QString &after) {
        QTest::addRow("%s %s", name, qPrintable(unit))
            << QString::fromLatin1(name) << value << quantity << unit << before << after;
    };
    const QString degree(QChar(0xB0));
    row("SPEED", 7.73, Quantity::Speed, QStringLiteral("ft/min"), QStringLiteral("7.73 m/min"),
        QStringLiteral("25.36 ft/min"));
    row("TOTAL_DISTANCE_COUNTER", 3.048, Quantity::Distance, QStringLiteral("ft"),
        QStringLiteral("3.05 m"), QStringLiteral("10.00 ft"));
    // The sign, not the name; and the decimals that the unit needs.
    row("CAMERA_PAN", 45.0, Quantity::Angle, QStringLiteral("hour"), QStringLiteral("45 ") + degree,
        QStringLiteral("1.5 h"));
    row("OBJECT_TEMPERATURE", 24.6, Quantity::Temperature, degree + QLatin1Char('F'),
        QStringLiteral("24.6 ") + degree + QLatin1Char('C'),
        QStringLiteral("76.3 ") + degree + QLatin1Char('F'));
    row("CAMERA_PRESSURE", 1013.25, Quantity::Pressure, QStringLiteral("atm"),
        QStringLiteral("1013 mbar"), QStringLiteral("1.000 atm"));
}

/// At once, and without a trace in the record: the choice is the user's, not the profile's.
void tst_SystemValueDatasourceFactory::emptyUnitFollowsTheUser()
{
    QFETCH(QString, name);
    QFETCH(QVariant, value);
    QFETCH(LocaleSettings::Quantity, quantity);
    QFETCH(QString, unit);
    QFETCH(QString, before);
    QFETCH(QString, after);
    CVideoOverlayText text;
    ElementParam param = record(name);
    param.insert(QStringLiteral("captionEnabled"), false);
    auto *datasource = qobject_cast<COsdValueDatasource *>(m_factory->getDatasource(&text, param));
    QVERIFY(datasource);
    const ElementParam made = text.getParamObject();
    text.applyChangesToOrigParams();
    datasource->update(value);
    QCOMPARE(text.text(), before);
    QVERIFY(LocaleSettings::setUnit(quantity, unit));
    QCOMPARE(text.text(), after);
    LocaleSettings::setUnitSystem(LocaleSettings::UnitSystem::Metric);
    QCOMPARE(text.text(), before);

    QCOMPARE(text.unit(), QString());
    QVERIFY(!made.contains(QStringLiteral("unit")));
    QVERIFY(text.getChangedProperties().isEmpty());
    QCOMPARE(text.getAllProperties().value(QStringLiteral("unit")).toString(), QString());
}

void tst_SystemValueDatasourceFactory::givenUnitStays()
{
    CVideoOverlayText text;
    ElementParam param = record(QStringLiteral("SPEED"));
    param.insert(QStringLiteral("unit"), QStringLiteral("cm/s"));
    auto *datasource = qobject_cast<COsdValueDatasource *>(m_factory->getDatasource(&text, param));
    QVERIFY(datasource);
    datasource->update(6.0);
    LocaleSettings::setUnitSystem(LocaleSettings::UnitSystem::Imperial);
    QCOMPARE(text.unit(), QStringLiteral("cm/s"));
    QCOMPARE(text.text(), QStringLiteral("10.00 cm/s"));
}

/// Not those of the system's, whose locale may be another one.
void tst_SystemValueDatasourceFactory::digitsOfTheUsersLocale()
{
    CVideoOverlayText text;
    ElementParam param = record(QStringLiteral("VIDEO_TIME_COUNTER"));
    auto *datasource = qobject_cast<COsdValueDatasource *>(m_factory->getDatasource(&text, param));
    QVERIFY(datasource);
    datasource->update(qint64(3723000));
    QCOMPARE(text.text(), QStringLiteral("01:02:03 "));
    LocaleSettings::setLocale(QLocale(QStringLiteral("ar_EG")));
    QCOMPARE(text.text(), QString::fromUtf8("\u0660\u0661:\u0660\u0662:\u0660\u0663 "));
    LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
    QCOMPARE(text.text(), QStringLiteral("01:02:03 "));
}

void tst_SystemValueDatasourceFactory::captionsFollowTheLanguage()
{
    CVideoOverlayText text;
    ElementParam param = record(QStringLiteral("SPEED"));
    param.insert(QStringLiteral("captionEnabled"), true);
    param.insert(QStringLiteral("max_width"), 12);
    auto *datasource = qobject_cast<COsdValueDatasource *>(m_factory->getDatasource(&text, param));
    QVERIFY(datasource);
    datasource->update(QVariant(6.5));
    QCOMPARE(text.text(), QStringLiteral("Speed:   6.50 m/min"));
    Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("de_DE")));
    QCOMPARE(text.text(), QStringLiteral("Geschwindigkeit:   6.50 m/min"));
    QCOMPARE(m_factory->caption(QStringLiteral("CAMERA_PRESSURE")), QStringLiteral("Kameradruck"));
}

void tst_SystemValueDatasourceFactory::wrongElement()
{
    CVideoOverlayImage image;
    ElementParam param = record(QStringLiteral("SPEED"));
    QCOMPARE(m_factory->getDatasource(&image, param), nullptr);
    QCOMPARE(image.children().size(), 1); // its own timer
}

void tst_SystemValueDatasourceFactory::nothingBeforeTheFirstValue()
{
    CVideoOverlayText date;
    ElementParam param = record(QStringLiteral("DATE"));
    QVERIFY(m_factory->getDatasource(&date, param));
    QCOMPARE(date.text().trimmed(), QString()); // not the start of the epoch
    CVideoOverlayText speed;
    ElementParam other = record(QStringLiteral("SPEED"));
    QVERIFY(m_factory->getDatasource(&speed, other));
    QCOMPARE(speed.text(), QStringLiteral(" m/min"));
}

/// A null text would be ignored, and the one before it stay on the display.
void tst_SystemValueDatasourceFactory::emptyTextIsAValue()
{
    const QString name = ElementParam::NAME_OSD_FREE_TEXT_BOX;
    CVideoOverlayText text;
    ElementParam param = record(name);
    auto *datasource = qobject_cast<COsdValueDatasource *>(m_factory->getDatasource(&text, param));
    QVERIFY(datasource);
    for (const QString &empty : {QString(), QString::fromLatin1("")}) {
        datasource->update(QStringLiteral("root intrusion"));
        QString error;
        datasource->update(SystemValues::read(*SystemValues::find(name), empty, &error));
        QCOMPARE(text.text(), QString());
        QCOMPARE(error, QString());
    }
    takeLog();
}

void tst_SystemValueDatasourceFactory::everyCaptionedValueIsKnown()
{
    int captioned = 0;
    for (const SystemValue &value : SystemValues::all()) {
        QCOMPARE(SystemValues::find(value.name), &value);
        QCOMPARE(m_factory->converter(value.name) == nullptr,
                 value.quantity == SystemValue::Quantity::Text);
        QVERIFY(!value.description.isEmpty() && !value.example.isEmpty());
        captioned += !m_factory->caption(value.name).isEmpty();
    }
    QCOMPARE(SystemValues::all().size(), 18);
    QCOMPARE(captioned, 16);
    QCOMPARE(takeLog().filter(QStringLiteral("cannot find caption")).size(), 2);
    QVERIFY(!SystemValues::find(QStringLiteral("speed")));
}

QTEST_MAIN(tst_SystemValueDatasourceFactory)
#include "tst_SystemValueDatasourceFactory.moc"
