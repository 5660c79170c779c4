// SPDX-License-Identifier: Apache-2.0
#include "host/screens/OverlayWarnings.h"

#include "host/check/InstalledRules.h"
#include "host/check/ProfileCheck.h"
#include "host/platform/CatalogStore.h"
#include "host/platform/Directories.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "host/screens/LiveOverlay.h"
#include "host/screens/UiTexts.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using namespace Velmar;
using namespace Velmar::Host;
using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::ElementParam;

namespace {

QString nameOf(const CVideoOverlayElement &element)
{
    return QString::number(element.row()) + QLatin1Char('/') + QString::number(element.column());
}

QByteArray text(const char *kind, const QByteArray &values)
{
    return QByteArray("<") + kind + "><VISIBLE>true</VISIBLE>" + values + "</" + kind + ">\n";
}

} // namespace

/// The screens warn of what the check of files finds, before any value has come.
class tst_OverlayWarnings : public Test::LoggedTest
{
    Q_OBJECT

public:
    tst_OverlayWarnings() { allow(QStringLiteral("2 VideoOverlayLibrary: Invalid project.")); }

protected:
    void prepare() override;

private Q_SLOTS:
    void sameAsTheCheck_data();
    void sameAsTheCheck();
    void sizeOfWhatIsSeen();
    void switchedOff();

private:
    std::unique_ptr<LiveOverlay> load(const QByteArray &profile);

    std::unique_ptr<QTemporaryDir> m_root;
};

void tst_OverlayWarnings::prepare()
{
    m_root = std::make_unique<QTemporaryDir>();
    const QDir data(QStringLiteral(XQ_DATA_DIRECTORY));
    Directories::setSettingsDirectory(m_root->filePath(QStringLiteral("settings")));
    Directories::setReadonlyConfigDirectory(data.path());
    CATManagement::CatalogStore::instance().setDirectory(data.filePath(QStringLiteral("catalogs")));
    Translation::TranslationStore::instance().setDirectory(
        data.filePath(QStringLiteral("translations")));
    Translation::TranslationStore::instance().setLocale(QLocale(QLocale::English));
    Shared::LocaleSettings::reset();
}

std::unique_ptr<LiveOverlay> tst_OverlayWarnings::load(const QByteArray &profile)
{
    const QString name = QStringLiteral("Checked");
    if (!QDir().mkpath(m_root->filePath(QStringLiteral("settings/osd"))))
        return nullptr;
    Test::ProfileFolders::write(m_root->filePath(QStringLiteral("settings/osd/Checked.xml")),
                                profile);
    auto overlay = std::make_unique<LiveOverlay>(QSize(1280, 720));
    overlay->profiles().setProfileByName(name);
    return overlay;
}

void tst_OverlayWarnings::sameAsTheCheck_data()
{
    QTest::addColumn<QByteArray>("elements");
    QTest::addColumn<QStringList>("warnings");

    const QByteArray speed = "<COL_Bound_Column>SPEED</COL_Bound_Column>";
    const QByteArray street
        = "<COL_Bound_Column>OBJ_Street</COL_Bound_Column><TDIR_Key>SECTION</TDIR_Key>";
    const QByteArray place = "<ROW>3</ROW><COL>4</COL>";
    QTest::newRow("all is well") << text("SYSTEMTEXT", speed + place) + text("INSPTEXT", street)
                                 << QStringList();
    QTest::newRow("a unit of another quantity")
        << text("SYSTEMTEXT", speed + place + "<UNIT>16</UNIT>")
        << QStringList(QStringLiteral("“3/4” cannot be shown in “°C”"));
    QTest::newRow("a precision") << text("SYSTEMTEXT",
                                         "<COL_Bound_Column>SECTION_DISTANCE_COUNTER"
                                         "</COL_Bound_Column><UNIT>m[.x]</UNIT>")
                                 << QStringList();
    QTest::newRow("an alignment") << text("SYSTEMTEXT", speed + place + "<ALIGN>MIDDLE</ALIGN>")
                                  << QStringList(QStringLiteral("“3/4”: “MIDDLE” is not known"));
    QTest::newRow("a source") << text("SYSTEMTEXT", speed + place + "<SOURCE>FILE</SOURCE>")
                              << QStringList(QStringLiteral("“3/4”: “FILE” is not known"));
    QTest::newRow("a column") << text("STATICTEXT",
                                      place + "<COL_Bound_Column>PRJ_Nmae</COL_Bound_Column>")
                              << QStringList(QStringLiteral("“3/4”: “PRJ_Nmae” is not known"));
    QTest::newRow("texts that are not there yet")
        << text("INSPTEXT", street + place) + text("INSPSTATICTEXT", street + place)
        << QStringList(QStringLiteral("“3/4” and “3/4” overlap"));
    QTest::newRow("a value that has not come")
        << text("SYSTEMTEXT", speed + "<ROW>3</ROW><COL>0</COL><WIDTH>12</WIDTH>")
            + text("STATICTEXT", "<ROW>3</ROW><COL>11</COL><TEXT>x</TEXT>")
        << QStringList(QStringLiteral("“3/11” and “3/0” overlap"));
    QTest::newRow("beside the grid") << text("SYSTEMTEXT", speed + "<ROW>27</ROW>")
                                     << QStringList(QStringLiteral("“27/0” leaves the grid"));
    QTest::newRow("over the edge") << text("SYSTEMTEXT", speed + "<ROW>1</ROW><COL>50</COL>")
                                   << QStringList(QStringLiteral("“1/50” leaves the grid"));
    QTest::newRow("a long word") << text("STATICTEXT",
                                         "<ROW>1</ROW><COL>50</COL><TEXT>12345</TEXT>")
                                 << QStringList(QStringLiteral("The text of “1/50” is cut off"));
}

void tst_OverlayWarnings::sameAsTheCheck()
{
    QFETCH(QByteArray, elements);
    QFETCH(QStringList, warnings);
    const QByteArray profile
        = Test::ProfileFolders::profileXml("readonly=\"false\" name=\"Checked\"", elements);

    const auto overlay = load(profile);
    QVERIFY(overlay);
    const UiTexts texts;
    OverlayWarnings live(overlay->manager(), texts, nameOf);
    QStringList found;
    const QVariantList all = live.find();
    for (const QVariant &warning : all)
        found.append(warning.toMap().value(QStringLiteral("text")).toString());
    QCOMPARE(found, warnings);

    ProfileCheckContext context;
    context.rules = installedRules(CatalogColumns::installed());
    QCOMPARE(checkProfile(profile, context).size(), warnings.size());
    takeLog(); // a source that nobody serves
}

/// The caption and the value as they are now, not what they might become.
void tst_OverlayWarnings::sizeOfWhatIsSeen()
{
    const auto overlay = load(Test::ProfileFolders::profileXml(
        "readonly=\"false\" name=\"Checked\"",
        text("SYSTEMTEXT", "<COL_Bound_Column>SPEED</COL_Bound_Column><ROW>3</ROW>")
            + text("STATICTEXT", "<ROW>3</ROW><COL>12</COL><TEXT>x</TEXT>")));
    QVERIFY(overlay);
    const UiTexts texts;
    OverlayWarnings live(overlay->manager(), texts, nameOf);
    QCOMPARE(live.find().size(), 1); // a speed may have 17 letters
    overlay->setValue(ElementParam::NAME_SPEED, 7.5);
    QCOMPARE(live.find().size(), 0); // this one has 10
    takeLog();
}

void tst_OverlayWarnings::switchedOff()
{
    const auto overlay = load(Test::ProfileFolders::profileXml(
        "readonly=\"false\" name=\"Checked\"",
        "<SYSTEMTEXT><COL_Bound_Column>SPEED</COL_Bound_Column><UNIT>16</UNIT><ROW>30</ROW>"
        "</SYSTEMTEXT>"));
    QVERIFY(overlay);
    const UiTexts texts;
    OverlayWarnings live(overlay->manager(), texts, nameOf);
    QCOMPARE(live.find().size(), 0);
    overlay->manager().getElement(0)->setEnabled(true);
    QCOMPARE(live.find().size(), 2);
    takeLog();
}

QTEST_MAIN(tst_OverlayWarnings)
#include "tst_OverlayWarnings.moc"
