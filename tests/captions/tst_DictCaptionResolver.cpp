// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/captions/DictCaptionResolver.h"

#include "host/platform/AppStateControl.h"
#include "host/platform/CatalogStore.h"
#include "host/platform/TranslationStore.h"
#include "platform/catmanagement/CCatalogDescriptor.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/ProjectRecord.h"
#include "videooverlay/elements/ElementParam.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <type_traits>

using namespace Velmar;
using namespace Velmar::VideoOverlay;
using CATManagement::CatalogStore;
using Test::ProjectRecord;
using Translation::TranslationStore;

static_assert(std::is_base_of_v<TemplateCaptionResolver, DictCaptionResolver>);

namespace {

const QString invalidProject = QStringLiteral("2 VideoOverlayLibrary: Invalid project.");
const QString cannotFind
    = QStringLiteral("2 VideoOverlayLibrary: DictCaptionResolver cannot find caption!");

struct Text
{
    const char *key;
    const char *english;
};

const Text texts[] = {
    {"SECTION_DISTANCE_COUNTER", "Section distance counter"},
    {"TOTAL_DISTANCE_COUNTER", "Total distance counter"},
    {"SAT_DISTANCE_COUNTER", "SAT distance counter"},
    {"SPEED", "Speed"},
    {"DATE", "Date"},
    {"TIME", "Time"},
    {"VIDEO_TIME_COUNTER", "Video Time Counter"},
    {"CAMERA_TILT", "Camera Tilt"},
    {"CAMERA_TEMPERATURE", "Camera Temperature"},
    {"CAMERA_PAN", "Camera Pan"},
    {"CAMERA_PRESSURE", "Camera Pressure"},
    {"CRAWLER_PITCH", "Crawler Pitch"},
    {"CRAWLER_ROLL", "Crawler Roll"},
    {"CRAWLER_TEMPERATURE", "Crawler Temperature"},
    {"CRAWLER_PRESSURE", "Crawler Pressure"},
    {"OBJECT_TEMPERATURE", "Object Temperature"},
};

struct Language
{
    const char *code; ///< of a catalog
    const char *file;
    const char *locale;
    const char
        *speed; ///< one text in full, so that the files are not only compared with themselves
};

const Language languages[] = {
    {"ENG", "ENG", "en", "Speed"},
    {"DEU", "DEU", "de", "Geschwindigkeit"},
    {"FRE", "FRA", "fr", "Vitesse"},
    {"SPA", "SPA", "es", "Velocidad"},
    {"ITA", "ITA", "it", "Velocit\u00E0"},
    {"NLD", "NLD", "nl", "Snelheid"},
    {"POL", "POL", "pl", "Pr\u0119dko\u015B\u0107"},
    {"CES", "CES", "cs", "Rychlost"},
    {"SWE", "SWE", "sv", "Hastighet"},
};

ElementParam boundTo(const QVariant &key)
{
    ElementParam param;
    param.insert(QStringLiteral("columnBound"), key);
    return param;
}

QString captionOf(const DictCaptionResolver &resolver, const char *key)
{
    ElementParam param = boundTo(QString::fromLatin1(key));
    return resolver.getCaption(param);
}

} // namespace

class tst_DictCaptionResolver : public Velmar::Test::LoggedTest
{
    Q_OBJECT

protected:
    void prepare() override
    {
        AppStateControl::setActiveProject({});
        TranslationStore::instance().setDirectory(QFINDTESTDATA("../../data/translations"));
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("en_GB")));
        CatalogStore::instance().setDirectory(m_catalogs.path());
    }

private Q_SLOTS:
    void initTestCase()
    {
        for (const Language &language : languages)
            writeCatalog(language.code, "CH");
        writeCatalog("JPN", "JP"); // a language without translations
    }

    void cleanupTestCase()
    {
        AppStateControl::setActiveProject({});
        CatalogStore::instance().setDirectory(QString());
        TranslationStore::instance().setDirectory(QString());
    }

    void addsNothingToTheMetaObject()
    {
        QCOMPARE(Test::methodsOf(DictCaptionResolver::staticMetaObject), QStringList());
    }

    void captions_data()
    {
        QTest::addColumn<QByteArray>("catalogLanguage");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("caption");
        for (const Language &language : languages) {
            const QJsonObject shipped = shippedTexts(language.file);
            QCOMPARE(shipped.size(), 16);
            QCOMPARE(shipped.value(QStringLiteral("SPEED")).toString(),
                     QString::fromUtf8(language.speed));
            for (const Text &text : texts) {
                const QString key = QString::fromLatin1(text.key);
                const QString caption = shipped.value(key).toString();
                QVERIFY2(!caption.isEmpty(), text.key);
                if (qstrcmp(language.code, "ENG") == 0)
                    QCOMPARE(caption, QString::fromLatin1(text.english));
                QTest::addRow("%s %s", language.code, text.key)
                    << QByteArray(language.code) << QString::fromLatin1(language.locale) << key
                    << caption;
            }
        }
    }

    void captions()
    {
        QFETCH(QByteArray, catalogLanguage);
        QFETCH(QString, locale);
        QFETCH(QString, key);
        QFETCH(QString, caption);
        ElementParam param = boundTo(key);

        // In the language of the interface ...
        TranslationStore::instance().setLocale(QLocale(locale));
        const DictCaptionResolver interfaceTexts(CatalogStore::instance());
        QCOMPARE(takeLog(), QStringList {invalidProject});
        QCOMPARE(interfaceTexts.getCaption(param), caption);

        // ... and in that of the project's catalog, whatever the interface speaks.
        TranslationStore::instance().setLocale(
            QLocale(catalogLanguage == "ENG" ? QStringLiteral("de") : QStringLiteral("en")));
        takeLog();
        openProject(catalogLanguage);
        const DictCaptionResolver projectTexts(CatalogStore::instance());
        QCOMPARE(projectTexts.getCaption(param), caption);
        QCOMPARE(takeLog(), QStringList());
    }

    void englishStandsInForMissingTranslations()
    {
        openProject("JPN");
        DictCaptionResolver resolver(CatalogStore::instance());
        for (const Text &text : texts)
            QCOMPARE(captionOf(resolver, text.key), QString::fromLatin1(text.english));
        AppStateControl::setActiveProject({});
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("ja")));
        for (const Text &text : texts)
            QCOMPARE(captionOf(resolver, text.key), QString::fromLatin1(text.english));
        QCOMPARE(takeLog(), (QStringList {invalidProject, invalidProject}));
    }

    void unknownValuesHaveNoCaption_data()
    {
        QTest::addColumn<QVariant>("key");
        QTest::newRow("free text") << QVariant(QStringLiteral("OSD_FREE_TEXT_BOX"));
        QTest::newRow("pan and tilt") << QVariant(ElementParam::NAME_PAN_AND_TILT);
        QTest::newRow("case") << QVariant(QStringLiteral("speed"));
        QTest::newRow("blank") << QVariant(QStringLiteral("SPEED "));
        QTest::newRow("empty") << QVariant(QString());
        QTest::newRow("missing") << QVariant();
        QTest::newRow("number") << QVariant(3);
    }

    void unknownValuesHaveNoCaption()
    {
        QFETCH(QVariant, key);
        const DictCaptionResolver resolver(CatalogStore::instance());
        takeLog();
        ElementParam param = boundTo(key);
        QCOMPARE(resolver.getCaption(param), QString());
        QCOMPARE(takeLog(), QStringList {cannotFind});
        ElementParam empty;
        QCOMPARE(resolver.getCaption(empty), QString());
        QCOMPARE(takeLog(), QStringList {cannotFind});
    }

    void convertsTheBinding()
    {
        const DictCaptionResolver resolver(CatalogStore::instance());
        takeLog();
        ElementParam param = boundTo(QByteArray("SPEED"));
        QCOMPARE(resolver.getCaption(param), QStringLiteral("Speed"));
    }

    void languageCode_data()
    {
        QTest::addColumn<QByteArray>("catalogLanguage");
        QTest::addColumn<QString>("code");
        QTest::newRow("FRE is FRA") << QByteArray("FRE") << QStringLiteral("FRA");
        QTest::newRow("DEU stays") << QByteArray("DEU") << QStringLiteral("DEU");
        QTest::newRow("NLD stays") << QByteArray("NLD") << QStringLiteral("NLD");
    }

    void languageCode()
    {
        QFETCH(QByteArray, catalogLanguage);
        QFETCH(QString, code);
        openProject(catalogLanguage);
        DictCaptionResolver resolver(CatalogStore::instance());
        QString language;
        QString country;
        QVERIFY(resolver.getLanguageCode(language, country));
        QCOMPARE(language, code);
        QCOMPARE(country, QStringLiteral("CH"));
    }

    void aFrenchCatalogAsksForFranceAndItsCountry()
    {
        // The country's own file has the last word, so that the code shows in the text.
        QTemporaryDir directory;
        writeTranslation(directory, "FRA", "general");
        writeTranslation(directory, "FRA_CH", "Swiss");
        writeTranslation(directory, "FRE_CH", "wrong");
        TranslationStore::instance().setDirectory(directory.path());
        takeLog();
        openProject("FRE");
        const DictCaptionResolver resolver(CatalogStore::instance());
        QCOMPARE(captionOf(resolver, "SPEED"), QStringLiteral("Swiss"));
        QCOMPARE(captionOf(resolver, "DATE"), QStringLiteral("Date"));
        QCOMPARE(takeLog(), QStringList());
    }

    void withoutALanguageBothStayAsTheyAre_data()
    {
        QTest::addColumn<QString>("catalog"); // null: no project
        QTest::addColumn<QString>("line");
        QTest::newRow("no project") << QString() << invalidProject;
        QTest::newRow("unknown catalog")
            << QStringLiteral("X")
            << QStringLiteral("2 VideoOverlayLibrary: Cannot find catalog descriptor for id: <X> ");
        QTest::newRow("project without a catalog")
            << QStringLiteral("")
            << QStringLiteral("2 VideoOverlayLibrary: Cannot find catalog descriptor for id: <> ");
    }

    void withoutALanguageBothStayAsTheyAre()
    {
        QFETCH(QString, catalog);
        QFETCH(QString, line);
        if (!catalog.isNull())
            open(catalog);
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("de")));
        takeLog();
        DictCaptionResolver resolver(CatalogStore::instance());
        QCOMPARE(takeLog(), QStringList {line});
        QString language = QStringLiteral("a");
        QString country = QStringLiteral("b");
        QVERIFY(!resolver.getLanguageCode(language, country));
        QCOMPARE(language, QStringLiteral("a"));
        QCOMPARE(country, QStringLiteral("b"));
        QCOMPARE(takeLog(), QStringList {line});
        QCOMPARE(captionOf(resolver, "SPEED"), QStringLiteral("Geschwindigkeit"));
    }

    void findsDescriptors()
    {
        DictCaptionResolver resolver(CatalogStore::instance());
        takeLog();
        QVERIFY(!resolver.getCatalogDescriptor(QString()));
        QVERIFY(!resolver.getCatalogDescriptor(QStringLiteral("X")));
        QCOMPARE(resolver.getCatalogDescriptor(QStringLiteral("POL"))->languageCode(),
                 QStringLiteral("POL"));
    }

    void followsATemplateBeforeItAnnouncesCaptions()
    {
        DictCaptionResolver resolver(CatalogStore::instance());
        openProject("DEU");
        QCOMPARE(captionOf(resolver, "SPEED"), QStringLiteral("Speed")); // not before the template
        QString seen;
        connect(&resolver, &CaptionResolver::resolverReady, this,
                [&] { seen = captionOf(resolver, "SPEED"); });
        takeLog();
        QVERIFY(CatalogStore::instance().loadTemplate(QStringLiteral("DEU")));
        QCOMPARE(seen, QStringLiteral("Geschwindigkeit"));
    }

    void aProjectThatIsOpenedDoesNothingYet()
    {
        DictCaptionResolver resolver(CatalogStore::instance());
        takeLog();
        QSignalSpy ready(&resolver, &TemplateCaptionResolver::resolverReady);
        QSignalSpy readyOfBase(&resolver, &CaptionResolver::resolverReady);
        openProject("DEU");
        openProject("POL"); // switched
        QCOMPARE(ready.count(), 0);
        QCOMPARE(readyOfBase.count(), 0);
        QCOMPARE(captionOf(resolver, "SPEED"), QStringLiteral("Speed"));
        QCOMPARE(takeLog(), QStringList());
    }

    void aClosedProjectBringsTheInterfaceBack()
    {
        openProject("DEU");
        DictCaptionResolver resolver(CatalogStore::instance());
        QCOMPARE(captionOf(resolver, "SPEED"), QStringLiteral("Geschwindigkeit"));
        QSignalSpy ready(&resolver, &TemplateCaptionResolver::resolverReady);
        QSignalSpy readyOfBase(&resolver, &CaptionResolver::resolverReady);
        QSignalSpy templates(&resolver, &TemplateCaptionResolver::templateReady);
        QString seen;
        connect(&resolver, &CaptionResolver::resolverReady, this,
                [&] { seen = captionOf(resolver, "SPEED"); });

        AppStateControl::setActiveProject({});

        QCOMPARE(seen, QStringLiteral("Speed"));
        QCOMPARE(ready.count(), 1);
        QCOMPARE(readyOfBase.count(), 1);
        QCOMPARE(templates.count(), 0);
        QCOMPARE(takeLog(), QStringList {invalidProject});
    }

    void followsTheInterfaceSilently()
    {
        DictCaptionResolver resolver(CatalogStore::instance());
        QSignalSpy ready(&resolver, &TemplateCaptionResolver::resolverReady);
        takeLog();
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("sv")));
        QCOMPARE(captionOf(resolver, "SPEED"), QStringLiteral("Hastighet"));
        QCOMPARE(takeLog(), QStringList {invalidProject});
        QCOMPARE(ready.count(), 0);

        openProject("DEU");
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("it")));
        QCOMPARE(captionOf(resolver, "SPEED"), QStringLiteral("Geschwindigkeit"));
        QCOMPARE(takeLog(), QStringList());
    }

private:
    void writeCatalog(const char *language, const char *country)
    {
        QFile file(m_catalogs.filePath(QString::fromLatin1(language) + QStringLiteral(".json")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("{ \"uniqueId\": \"") + language
                   + "\", \"name\": \"n\", "
                     "\"languageCode\": \""
                   + language + "\", \"countryCode\": \"" + country
                   + "\", \"tables\": [], \"lists\": [], \"programViews\": [] }");
    }

    static void writeTranslation(const QTemporaryDir &directory, const char *code,
                                 const char *speed)
    {
        QFile file(directory.filePath(QString::fromLatin1(code) + QStringLiteral(".json")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("{ \"language\": \"") + code
                   + "\", \"locale\": \"fr\", \"texts\": { "
                     "\"Velmar.Corvane.App.OsdSystemTextCaption\": { \"SPEED\": \""
                   + speed + "\" } } }");
    }

    static QJsonObject shippedTexts(const char *language)
    {
        QFile file(QFINDTESTDATA("../../data/translations/") + QString::fromLatin1(language)
                   + QStringLiteral(".json"));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QJsonDocument::fromJson(file.readAll())
            .object()
            .value(QStringLiteral("texts"))
            .toObject()
            .value(QStringLiteral("Velmar.Corvane.App.OsdSystemTextCaption"))
            .toObject();
    }

    static void open(const QString &catalogId)
    {
        AppStateControl::setActiveProject(
            Database::CDomainObjectPointer(new ProjectRecord(catalogId)));
    }

    static void openProject(const QByteArray &language) { open(QString::fromLatin1(language)); }

    QTemporaryDir m_catalogs;
};

QTEST_GUILESS_MAIN(tst_DictCaptionResolver)
#include "tst_DictCaptionResolver.moc"
