// SPDX-License-Identifier: Apache-2.0
#include "host/platform/Directories.h"
#include "host/platform/TranslationStore.h"
#include "host/screens/UiTexts.h"
#include "tests/support/LoggedTest.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

using namespace Velmar;
using Host::UiTexts;
using Translation::TranslationStore;

class tst_UiTexts : public Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void complete_data();
    void complete();
    void whatTheScreensUse();
    void switchesWhileRunning();
    void fallsBackToEnglish();

private:
    static QJsonObject textsOf(const QString &code);
};

void tst_UiTexts::initTestCase()
{
    Directories::setReadonlyConfigDirectory(QStringLiteral(XQ_DATA_DIRECTORY));
}

QJsonObject tst_UiTexts::textsOf(const QString &code)
{
    QFile file(QStringLiteral(XQ_DATA_DIRECTORY "/translations/%1.json").arg(code));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll())
        .object()
        .value(QStringLiteral("texts"))
        .toObject()
        .value(UiTexts::context())
        .toObject();
}

void tst_UiTexts::complete_data()
{
    QTest::addColumn<QString>("code");
    QTest::newRow("English") << QStringLiteral("ENG");
    QTest::newRow("German") << QStringLiteral("DEU");
}

void tst_UiTexts::complete()
{
    QFETCH(QString, code);
    const QJsonObject texts = textsOf(code);
    const QJsonObject english = textsOf(QStringLiteral("ENG"));
    QStringList keys = texts.keys();
    QStringList names = UiTexts::names();
    keys.sort();
    names.sort();
    QCOMPARE(keys, names);
    static const QRegularExpression place(QStringLiteral("%[0-9]"));
    for (const QString &name : names) {
        const QString text = texts.value(name).toString();
        QVERIFY2(!text.trimmed().isEmpty(), qPrintable(name));
        QCOMPARE(text.count(place), english.value(name).toString().count(place));
    }
}

void tst_UiTexts::whatTheScreensUse()
{
    static const QRegularExpression use(QStringLiteral("\\btexts\\.([A-Za-z0-9]+)"));
    const QStringList names = UiTexts::names();
    QSet<QString> used;
    const QDir directory(QStringLiteral(SCREENS_DIRECTORY));
    const QStringList files = directory.entryList({QStringLiteral("*.qml")}, QDir::Files);
    QVERIFY(files.size() > 10);
    for (const QString &name : files) {
        QFile file(directory.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString source = QString::fromUtf8(file.readAll());
        auto matches = use.globalMatch(source);
        while (matches.hasNext()) {
            const QString text = matches.next().captured(1);
            QVERIFY2(names.contains(text), qPrintable(name + QLatin1Char(' ') + text));
            used.insert(text);
        }
    }
    QVERIFY(used.size() > 50);
}

void tst_UiTexts::switchesWhileRunning()
{
    TranslationStore::instance().setLocale(QLocale(QLocale::English));
    UiTexts texts;
    QSignalSpy changed(&texts, &UiTexts::valueChanged);
    QCOMPARE(texts.text(QStringLiteral("stop")), QStringLiteral("Stop"));
    TranslationStore::instance().setLocale(QLocale(QLocale::German));
    QCOMPARE(texts.text(QStringLiteral("stop")), QStringLiteral("Stopp"));
    TranslationStore::instance().setLocale(QLocale(QLocale::English));
    QCOMPARE(texts.text(QStringLiteral("stop")), QStringLiteral("Stop"));
}

void tst_UiTexts::fallsBackToEnglish()
{
    TranslationStore::instance().setLocale(QLocale(QLocale::French));
    const UiTexts texts;
    QCOMPARE(texts.text(QStringLiteral("stop")), QStringLiteral("Stop"));
    TranslationStore::instance().setLocale(QLocale::c());
}

QTEST_GUILESS_MAIN(tst_UiTexts)
#include "tst_UiTexts.moc"
