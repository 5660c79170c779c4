// SPDX-License-Identifier: Apache-2.0
#include "platform/translation/CTranslator.h"

#include "host/platform/Directories.h"
#include "tests/support/TextFile.h"
#include "tests/units/UnitsTest.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace Velmar;
using namespace Velmar::Translation;
using Velmar::Test::writeFile;

namespace {

const QString context = QStringLiteral("Some.Context");
const QString speedKey = QStringLiteral("Some.Context.Txt.SPEED");
const QString timeKey = QStringLiteral("Some.Context.Txt.TIME");

QByteArray texts(const char *language, const char *locale, const char *entries)
{
    return QByteArray("{ \"language\": \"") + language + "\", \"locale\": \"" + locale
        + "\", \"texts\": { \"Some.Context\": { " + entries + " } } }";
}

QString speed()
{
    return CTranslator::instance()->txt(context, QStringLiteral("SPEED"), QStringLiteral("default"),
                                        {});
}

} // namespace

class tst_CTranslator : public Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override
    {
        Test::pinUserSettings();
        m_directory = std::make_unique<QTemporaryDir>();
        writeFile(path("FRA.json"),
                  texts("FRA", "fr", "\"SPEED\": \"Vitesse\", \"TIME\": \"Heure\""));
        writeFile(path("FRA_CH.json"), texts("FRA_CH", "fr_CH", "\"SPEED\": \"Allure\""));
        writeFile(path("DEU.json"),
                  texts("DEU", "de", "\"SPEED\": \"Tempo %1 von %2\", \"TIME\": \"\""));
        TranslationStore::instance().setDirectory(m_directory->path());
    }

private Q_SLOTS:
    void textPart() { QCOMPARE(QString(CTranslator::TXT_PART), QStringLiteral(".Txt.")); }

    void interfaceLanguage_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("speedText");
        QTest::addColumn<QString>("timeText");
        QTest::newRow("language") << "fr_FR"
                                  << "Vitesse"
                                  << "Heure";
        QTest::newRow("country, and language for the rest") << "fr_CH"
                                                            << "Allure"
                                                            << "Heure";
        QTest::newRow("no file") << "pl_PL"
                                 << "default"
                                 << "default";
        QTest::newRow("an empty text is a text") << "de_AT"
                                                 << "Tempo %1 von %2"
                                                 << "";
    }

    void interfaceLanguage()
    {
        QFETCH(QString, locale);
        QFETCH(QString, timeText);
        TranslationStore::instance().setLocale(QLocale(locale));
        QCOMPARE(CTranslator::instance()->locale(), QLocale(locale));
        QTEST(speed(), "speedText");
        QCOMPARE(CTranslator::instance()->txt(context, QStringLiteral("TIME"),
                                              QStringLiteral("default"), {}),
                 timeText);
        QCOMPARE(CTranslator::instance()->txt(QStringLiteral("Other"), QStringLiteral("SPEED"),
                                              QStringLiteral("default"), {}),
                 QStringLiteral("default"));
    }

    void arguments_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariantList>("args");
        QTest::addColumn<QString>("expected");
        QTest::newRow("none") << "a %1" << QVariantList {} << "a %1";
        QTest::newRow("order") << "%2 of %1" << QVariantList {1, QStringLiteral("x")} << "x of 1";
        QTest::newRow("twice") << "%1%1" << QVariantList {7} << "77";
        QTest::newRow("place without an argument") << "%1 %2 %1" << QVariantList {7} << "7 %2 7";
        QTest::newRow("an argument is not searched")
            << "%1 %2" << QVariantList {QStringLiteral("%2"), 5} << "%2 5";
        QTest::newRow("no place") << "100 % sure" << QVariantList {1} << "100 % sure";
        QTest::newRow("zero is no place") << "%0 %1" << QVariantList {1} << "%0 1";
    }

    void arguments()
    {
        QFETCH(QString, text);
        QFETCH(QVariantList, args);
        QTEST(CTranslator::instance()->txt(context, QStringLiteral("NONE"), text, args),
              "expected");
    }

    void argumentsOfATranslatedText()
    {
        TranslationStore::instance().setLocale(QLocale(QLocale::German));
        QCOMPARE(CTranslator::instance()->txt(context, QStringLiteral("SPEED"), QString(), {1, 2}),
                 QStringLiteral("Tempo 1 von 2"));
    }

    void localeChangeIsAnnouncedOnceAndAfterwards()
    {
        CTranslator *translator = CTranslator::instance();
        QSignalSpy changed(translator, &CTranslator::currentLocaleChanged);
        QString whenAnnounced;
        QObject receiver;
        connect(translator, &CTranslator::currentLocaleChanged, &receiver,
                [&whenAnnounced] { whenAnnounced = speed(); });
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("fr_FR")));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(whenAnnounced, QStringLiteral("Vitesse"));
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("fr_FR")));
        QCOMPARE(changed.count(), 1);
    }

    void translate_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("speedText");
        QTest::addColumn<QString>("timeText");
        QTest::newRow("language") << "FRA"
                                  << "Vitesse"
                                  << "Heure";
        QTest::newRow("country, and language for the rest") << "FRA_CH"
                                                            << "Allure"
                                                            << "Heure";
        QTest::newRow("country without a file") << "FRA_BE"
                                                << "Vitesse"
                                                << "Heure";
        QTest::newRow("unknown language") << "XXX_FR"
                                          << "default"
                                          << "default";
        QTest::newRow("no code") << ""
                                 << "default"
                                 << "default";
    }

    void translate()
    {
        QFETCH(QString, code);
        CTranslator *translator = CTranslator::instance();
        TranslationStore::instance().setLocale(QLocale(QLocale::German)); // has no say here
        const QString fallback = QStringLiteral("default");
        QCOMPARE(translator->translate(speedKey, fallback, code), fallback); // not ready yet

        translator->updateTranslationForGivenKeys(code, {QStringLiteral("SPEED")});
        QTEST(translator->translate(speedKey, fallback, code), "speedText");
        QCOMPARE(translator->translate(timeKey, fallback, code), fallback); // not asked for

        translator->updateTranslationForGivenKeys(code, {QStringLiteral("TIME")});
        QTEST(translator->translate(speedKey, fallback, code), "speedText");
        QTEST(translator->translate(timeKey, fallback, code), "timeText");
    }

    void updateReadsTheFileAgain()
    {
        CTranslator *translator = CTranslator::instance();
        const QStringList keys {QStringLiteral("SPEED")};
        const QString code = QStringLiteral("FRA_FR");
        translator->updateTranslationForGivenKeys(code, keys);
        writeFile(path("FRA.json"), texts("FRA", "fr", "\"SPEED\": \"Rapidit\xC3\xA9\""));
        QCOMPARE(translator->translate(speedKey, QString(), code), QStringLiteral("Vitesse"));
        translator->updateTranslationForGivenKeys(code, keys);
        QCOMPARE(translator->translate(speedKey, QString(), code), QStringLiteral("Rapidit\u00E9"));
    }

    void brokenFile_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("reason");
        QTest::newRow("no JSON") << QByteArray("{\n\"language\": \"ESP\",\n\"locale\" }")
                                 << "line 3: missing name separator";
        QTest::newRow("no language")
            << QByteArray("{ \"locale\": \"es\" }") << "\"language\" or \"locale\" is missing";
        QTest::newRow("no locale")
            << QByteArray("{ \"language\": \"ESP\" }") << "\"language\" or \"locale\" is missing";
        QTest::newRow("a list") << QByteArray("[]") << "\"language\" or \"locale\" is missing";
        QTest::newRow("a number for a text")
            << texts("ESP", "es", "\"SPEED\": 5") << "\"SPEED\" of \"Some.Context\" is not a text";
        QTest::newRow("far larger than any")
            << texts("ESP", "es", "\"SPEED\": \"Velocidad\"") + QByteArray(16 * 1024 * 1024, ' ')
            << "larger than 16 MiB";
    }

    void brokenFile()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, reason);
        const QString broken = path("ESP.json");
        writeFile(broken, content);
        TranslationStore::instance().setDirectory(m_directory->path());
        QCOMPARE(
            takeLog(),
            QStringList {
                QStringLiteral("2 Platform: Cannot read translations %1: %2").arg(broken, reason)});
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("fr_FR")));
        QCOMPARE(speed(), QStringLiteral("Vitesse")); // the others are not affected
    }

    void fileThatDisappears()
    {
        QVERIFY(QFile::remove(path("FRA.json")));
        CTranslator::instance()->updateTranslationForGivenKeys(QStringLiteral("FRA"),
                                                               {QStringLiteral("SPEED")});
        const QStringList lines = takeLog();
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines.first().startsWith(QStringLiteral("2 Platform: Cannot read translations ")
                                          + path("FRA.json")),
                 qPrintable(lines.first()));
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("fr_FR")));
        QCOMPARE(speed(), QStringLiteral("Vitesse")); // as it was read before
    }

    void directory()
    {
        TranslationStore &store = TranslationStore::instance();
        store.setLocale(QLocale(QStringLiteral("fr_FR")));
        CTranslator::instance()->updateTranslationForGivenKeys(QStringLiteral("FRA"),
                                                               {QStringLiteral("SPEED")});
        QSignalSpy changed(CTranslator::instance(), &CTranslator::currentLocaleChanged);
        const QTemporaryDir other;
        store.setDirectory(other.path());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(speed(), QStringLiteral("default"));
        QCOMPARE(CTranslator::instance()->translate(speedKey, QStringLiteral("default"),
                                                    QStringLiteral("FRA")),
                 QStringLiteral("default"));
        QCOMPARE(store.availableLocales(), QList<QLocale>());
        store.setDirectory(m_directory->path());
        QCOMPARE(store.availableLocales(),
                 QList<QLocale>({QLocale(QStringLiteral("de")), QLocale(QStringLiteral("fr")),
                                 QLocale(QStringLiteral("fr_CH"))}));
    }

    void installedDirectory()
    {
        const QTemporaryDir installed;
        QVERIFY(QDir(installed.path()).mkdir(QStringLiteral("translations")));
        writeFile(installed.filePath(QStringLiteral("translations/FRA.json")),
                  texts("FRA", "fr", "\"SPEED\": \"Install\xC3\xA9\""));
        Directories::setReadonlyConfigDirectory(installed.path());
        TranslationStore::instance().setDirectory(QString());
        TranslationStore::instance().setLocale(QLocale(QStringLiteral("fr_FR")));
        QCOMPARE(speed(), QStringLiteral("Install\u00E9"));
        Directories::setReadonlyConfigDirectory(QString());
    }

    void shippedCaptions_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("speedText");
        QTest::newRow("en") << "ENG"
                            << "Speed";
        QTest::newRow("de") << "DEU"
                            << "Geschwindigkeit";
        QTest::newRow("fr") << "FRA"
                            << "Vitesse";
        QTest::newRow("es") << "SPA"
                            << "Velocidad";
        QTest::newRow("it") << "ITA" << QStringLiteral("Velocit\u00E0");
        QTest::newRow("nl") << "NLD"
                            << "Snelheid";
        QTest::newRow("pl") << "POL" << QStringLiteral("Pr\u0119dko\u015B\u0107");
        QTest::newRow("cs") << "CES"
                            << "Rychlost";
        QTest::newRow("sv") << "SWE"
                            << "Hastighet";
    }

    void shippedCaptions()
    {
        QFETCH(QString, code);
        TranslationStore &store = TranslationStore::instance();
        store.setDirectory(QFINDTESTDATA("../../../data/translations"));
        QCOMPARE(store.availableLocales().size(), 9);
        const QLocale locale(QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(store.availableLocales().contains(locale));
        store.setLocale(locale);

        const QString captions = QStringLiteral("Velmar.Corvane.App.OsdSystemTextCaption");
        const QStringList keys = QStringLiteral("SECTION_DISTANCE_COUNTER TOTAL_DISTANCE_COUNTER "
                                                "SAT_DISTANCE_COUNTER SPEED DATE TIME "
                                                "VIDEO_TIME_COUNTER CAMERA_TILT "
                                                "CAMERA_TEMPERATURE CAMERA_PAN CAMERA_PRESSURE "
                                                "CRAWLER_PITCH CRAWLER_ROLL CRAWLER_TEMPERATURE "
                                                "CRAWLER_PRESSURE OBJECT_TEMPERATURE")
                                     .split(QLatin1Char(' '));
        CTranslator *translator = CTranslator::instance();
        translator->updateTranslationForGivenKeys(code, keys);
        QSet<QString> different;
        for (const QString &key : keys) {
            const QString text = translator->txt(captions, key, QString(), {});
            QVERIFY2(!text.isEmpty(), qPrintable(key));
            QCOMPARE(translator->translate(captions + CTranslator::TXT_PART + key, QString(), code),
                     text);
            different.insert(text);
        }
        QCOMPARE(different.size(), keys.size());
        QTEST(translator->txt(captions, QStringLiteral("SPEED"), QString(), {}), "speedText");
        QCOMPARE(takeLog(), QStringList());
    }

private:
    QString path(const char *name) const
    {
        return m_directory->filePath(QString::fromLatin1(name));
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(tst_CTranslator)
#include "tst_CTranslator.moc"
