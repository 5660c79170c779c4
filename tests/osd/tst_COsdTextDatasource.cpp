// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdTextDatasource.h"

#include "host/platform/AppStateControl.h"
#include "host/platform/CatalogStore.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "tests/osd/RecordedText.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/VirtualSlot.h"
#include "videooverlay/captions/DictCaptionResolver.h"
#include "videooverlay/units/UnitsProvider.h"

#include <QtTest>

#include <memory>

using namespace Velmar;
using namespace Velmar::VideoOverlay;
using CATManagement::CatalogStore;
using Test::RecordedText;

namespace {

const QString germanCatalog = QStringLiteral("EN13508-2-DEU-DE");
const QString englishCatalog = QStringLiteral("EN13508-2-ENG-GB");

/// Brackets what it gets; the suffix follows the unit unless it is set.
class Provider : public UnitsProvider
{
public:
    ~Provider() override { ++destroyed; }
    QString convert(QVariant value, QString from, QString to) override
    {
        calls.append(QStringList {value.toString(), from, to}.join(QLatin1Char('|')));
        return QLatin1Char('[') + value.toString() + QLatin1Char(']');
    }
    QString getSuffix(QString unit) override { return hasSuffix ? unit : QString(); }

    QStringList calls;
    bool hasSuffix = true;
    static int destroyed;
};
int Provider::destroyed = 0;

/// Counts the calls that come through connections.
class Overriding : public COsdTextDatasource
{
public:
    using COsdTextDatasource::COsdTextDatasource;
    void calculateCaption() override { ++calculated; }
    int calculated = 0;
};

} // namespace

class tst_COsdTextDatasource : public Velmar::Test::LoggedTest
{
    Q_OBJECT

protected:
    void prepare() override
    {
        AppStateControl::setActiveProject({});
        Shared::LocaleSettings::reset();
        Shared::LocaleSettings::setLocale(QLocale::c());
        Translation::TranslationStore::instance().setDirectory(
            QFINDTESTDATA("../../data/translations"));
        Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("en")));
        CatalogStore::instance().setDirectory(QFINDTESTDATA("../../data/catalogs"));
    }

private Q_SLOTS:
    void declaresItsSlotsInOrder()
    {
        const QMetaObject &meta = COsdTextDatasource::staticMetaObject;
        QCOMPARE(Test::methodsOf(meta).join(QLatin1Char('\n')),
                 QStringLiteral("slot calculateCaption()\nslot update()\n"
                                "slot setValue(QString)\n"
                                "slot setCaption(QString)\nslot renewCaption()"));
        QCOMPARE(Test::propertiesOf(meta), QStringList());
        QCOMPARE(Test::slotOf(&COsdTextDatasource::calculateCaption), Test::qObjectSlots);
    }

    void appliesTheRecordInOrder()
    {
        ElementParam param;
        param.insert(QStringLiteral("captionEnabled"), true);
        param.insert(QStringLiteral("backgroundColor"), QStringLiteral("#010203"));
        param.insert(QStringLiteral("textColor"), QColor(4, 5, 6));
        param.insert(ElementParam::NAME_COLUMNCAPTION, QStringLiteral("Street"));
        RecordedText text;
        COsdTextDatasource datasource({}, &text, param);
        QCOMPARE(text.take().join(QStringLiteral(", ")),
                 QStringLiteral("type 0, row 0, column 0, maxLineNumber 0, background #010203, "
                                "foreground #040506, caption , caption Street, text Street: "));
    }

    void readsWhatIsMissingAsNothing()
    {
        ElementParam param;
        RecordedText text;
        text.setBackgroundColor(Qt::red);
        text.setTextColor(Qt::red);
        COsdTextDatasource datasource({}, &text, param);
        QVERIFY(!text.backgroundColor().isValid());
        QVERIFY(!text.textColor().isValid());
        QCOMPARE(text.caption(), QString());
        QCOMPARE(datasource.buildText(), QString());
    }

    void asksALoadedResolverAtOnce()
    {
        ElementParam param = street();
        RecordedText text;
        COsdTextDatasource datasource(resolverWith(germanCatalog), &text, param);
        QCOMPARE(text.caption(), QStringLiteral("Stra\u00DFe"));
        QCOMPARE(text.text(), QStringLiteral("Stra\u00DFe: "));
    }

    void doesNotAskAnEmptyResolver()
    {
        const QSharedPointer<TemplateCaptionResolver> resolver(
            new TemplateCaptionResolver(CatalogStore::instance()));
        ElementParam param = street();
        RecordedText text;
        COsdTextDatasource datasource(resolver, &text, param);
        QCOMPARE(takeLog(), QStringList());
        QCOMPARE(text.caption(), QStringLiteral("of the record"));

        QVERIFY(CatalogStore::instance().loadTemplate(germanCatalog)); // ready later
        QCOMPARE(text.caption(), QStringLiteral("Stra\u00DFe"));
    }

    void keepsTheCaptionWhenThereIsNone()
    {
        const auto resolver = resolverWith(germanCatalog);
        ElementParam param = street();
        param.insert(ElementParam::NAME_COLUMNBOUND, QStringLiteral("none"));
        RecordedText text;
        COsdTextDatasource datasource(resolver, &text, param);
        QCOMPARE(text.caption(), QStringLiteral("of the record"));
        QCOMPARE(takeLog(),
                 QStringList {QStringLiteral(
                     "2 VideoOverlayLibrary: Cannot find caption for none in SECTION")});
    }

    void worksWithoutAResolver()
    {
        ElementParam param = street();
        RecordedText text;
        COsdTextDatasource datasource({}, &text, param);
        datasource.calculateCaption();
        datasource.renewCaption();
        Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("de")));
        QCOMPARE(text.caption(), QStringLiteral("of the record"));
    }

    void connectionsReachTheOverride()
    {
        const auto resolver = resolverWith(germanCatalog);
        ElementParam param = street();
        RecordedText text;
        Overriding datasource(resolver, &text, param);
        QCOMPARE(datasource.calculated, 0); // the constructor's own call reaches the base
        QCOMPARE(text.caption(), QStringLiteral("Stra\u00DFe"));
        resolver->setTemplate(QString(), {});
        QCOMPARE(datasource.calculated, 1); // once, though two classes declare the signal
        Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("de")));
        QCOMPARE(datasource.calculated, 2);
        datasource.renewCaption();
        QCOMPARE(datasource.calculated, 3);
    }

    void followsTheLanguage()
    {
        const QSharedPointer<TemplateCaptionResolver> resolver(
            new DictCaptionResolver(CatalogStore::instance()));
        takeLog();
        ElementParam param;
        param.insert(ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_SPEED);
        param.insert(QStringLiteral("captionEnabled"), true);
        RecordedText text;
        COsdTextDatasource datasource(resolver, &text, param);
        Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("fr")));
        QCOMPARE(text.text(), QStringLiteral("Vitesse: "));
        QCOMPARE(takeLog(),
                 QStringList {QStringLiteral("2 VideoOverlayLibrary: Invalid project.")});
    }

    void followsTheLocaleOfNumbers()
    {
        ElementParam param;
        RecordedText text;
        COsdTextDatasource datasource({}, &text, param);
        Provider provider;
        datasource.setUnitProvider(&provider);
        provider.calls.clear();
        Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("de")));
        QCOMPARE(provider.calls.size(), 1);
    }

    void buildsTheText_data()
    {
        QTest::addColumn<bool>("captionVisible");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<int>("provider"); // 0 none, 1 with a suffix, 2 without
        QTest::addColumn<QVariant>("width");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, bool visible, const char *caption, const char *value,
                            const char *unit, int provider, const QVariant &width,
                            const QString &text) {
            QTest::newRow(name) << visible << QString::fromUtf8(caption) << QString::fromUtf8(value)
                                << QString::fromLatin1(unit) << provider << width << text;
        };
        const QVariant none;
        row("all", true, "Speed", "2.5", "m/min", 1, 13, QStringLiteral("Speed:   [2.5] m/min"));
        row("caption hidden", false, "Speed", "2.5", "m/min", 1, 13,
            QStringLiteral("  [2.5] m/min"));
        row("no provider, no unit", true, "Speed", "2.5", "m/min", 0, none,
            QStringLiteral("Speed: 2.5"));
        row("empty caption", true, "", "2.5", "", 0, none, QStringLiteral(": 2.5"));
        row("empty suffix", true, "Time", "1", "s", 2, none, QStringLiteral("Time: [1] "));
        row("narrower", false, "", "12345", "", 0, 3, QStringLiteral("12345"));
        row("as wide", false, "", "12345", "", 0, 5, QStringLiteral("12345"));
        row("negative width", false, "", "1", "", 0, -5, QStringLiteral("1"));
        row("width as text", false, "", "1", "", 0, QStringLiteral("3"), QStringLiteral("  1"));
        row("no number", false, "", "1", "", 0, QStringLiteral("x"), QStringLiteral("1"));
        row("empty body", true, "C", "", "", 0, 9, QStringLiteral("C: "));
        row("nothing", false, "C", "", "", 0, 9, QString());
        row("units of UTF-16", false, "", "\xF0\x9F\x98\x80", "", 0, 3,
            QString::fromUtf8(" \xF0\x9F\x98\x80"));
    }

    void buildsTheText()
    {
        QFETCH(bool, captionVisible);
        QFETCH(QString, caption);
        QFETCH(QString, value);
        QFETCH(QString, unit);
        QFETCH(int, provider);
        QFETCH(QVariant, width);
        QFETCH(QString, text);
        ElementParam param;
        param.insert(QStringLiteral("captionEnabled"), captionVisible);
        if (width.isValid())
            param.insert(QStringLiteral("max_width"), width);
        CVideoOverlayText element;
        element.setUnit(unit);
        COsdTextDatasource datasource({}, &element, param);
        Provider units;
        units.hasSuffix = provider == 1;
        if (provider > 0)
            datasource.setUnitProvider(&units);
        datasource.setCaption(caption);
        units.calls.clear();

        datasource.setValue(value);

        QCOMPARE(element.text(), text);
        QCOMPARE(datasource.buildText(), text);
        if (provider > 0)
            QCOMPARE(units.calls.constFirst(), value + QStringLiteral("||") + unit);
    }

    void capsAnEndlessWidth()
    {
        ElementParam param;
        param.insert(QStringLiteral("max_width"), 2147483647);
        CVideoOverlayText element;
        COsdTextDatasource datasource({}, &element, param);
        datasource.setValue(QStringLiteral("1"));
        QVERIFY(element.text().endsWith(QStringLiteral(" 1")));
        QVERIFY(element.text().size() < 100000);
    }

    void aCaptionIsAlwaysForwarded()
    {
        ElementParam param;
        param.insert(QStringLiteral("captionEnabled"), true);
        RecordedText text;
        COsdTextDatasource datasource({}, &text, param);
        datasource.setCaption(QStringLiteral("a"));
        text.setCaption(QStringLiteral("other"));
        text.setText(QStringLiteral("other"));
        text.take();
        datasource.setCaption(QStringLiteral("a"));
        QCOMPARE(text.take(), QStringList {QStringLiteral("caption a")}); // not rendered
        datasource.setCaption(QStringLiteral("b"));
        QCOMPARE(text.take(),
                 (QStringList {QStringLiteral("caption b"), QStringLiteral("text b: ")}));
    }

    void aValueIsAlwaysRendered()
    {
        ElementParam param;
        RecordedText text;
        COsdTextDatasource datasource({}, &text, param);
        datasource.setValue(QStringLiteral("1"));
        text.setText(QStringLiteral("other"));
        datasource.setValue(QStringLiteral("1"));
        QCOMPARE(text.text(), QStringLiteral("1"));
    }

    void doesNotOwnItsProvider()
    {
        Provider::destroyed = 0;
        const auto first = std::make_unique<Provider>();
        const auto second = std::make_unique<Provider>();
        ElementParam param;
        {
            CVideoOverlayText text;
            COsdTextDatasource datasource({}, &text, param);
            datasource.setValue(QStringLiteral("1"));
            datasource.setUnitProvider(first.get());
            QCOMPARE(text.text(), QStringLiteral("[1] "));
            datasource.setUnitProvider(second.get());
            QCOMPARE(second->calls.size(), 1);
            datasource.setUnitProvider(nullptr);
            QCOMPARE(text.text(), QStringLiteral("1"));
            datasource.setUnitProvider(second.get());
        }
        QCOMPARE(Provider::destroyed, 0);
    }

    void sharesItsResolver()
    {
        auto resolver = resolverWith(germanCatalog);
        const QWeakPointer<TemplateCaptionResolver> watch(resolver);
        ElementParam param = street();
        {
            CVideoOverlayText text;
            COsdTextDatasource datasource(resolver, &text, param);
            resolver.clear();
            QVERIFY(watch);
        }
        QVERIFY(!watch);
    }

private:
    static QSharedPointer<TemplateCaptionResolver> resolverWith(const QString &catalog)
    {
        QSharedPointer<TemplateCaptionResolver> resolver(
            new TemplateCaptionResolver(CatalogStore::instance()));
        if (!CatalogStore::instance().loadTemplate(catalog))
            qFatal("no catalog");
        return resolver;
    }

    static ElementParam street()
    {
        ElementParam param;
        param.insert(ElementParam::NAME_COLUMNBOUND, QStringLiteral("OBJ_Street"));
        param.insert(QStringLiteral("TDIR_Key"), QStringLiteral("SECTION"));
        param.insert(ElementParam::NAME_COLUMNCAPTION, QStringLiteral("of the record"));
        param.insert(QStringLiteral("captionEnabled"), true);
        return param;
    }
};

QTEST_MAIN(tst_COsdTextDatasource)
#include "tst_COsdTextDatasource.moc"
