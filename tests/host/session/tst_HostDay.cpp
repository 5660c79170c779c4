// SPDX-License-Identifier: Apache-2.0
#include "host/platform/CatalogStore.h"
#include "host/platform/Directories.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "host/session/OverlaySession.h"
#include "platform/appstate/AppState.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"

#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/models/VideoOverlayElementListModel.h"
#include "videooverlay/models/VideoOverlayProfilesModel.h"
#include "videooverlay/osd/COsdDomainDatasource.h"
#include "videooverlay/profiles/COsdSettings.h"

#include <QDir>
#include <QtTest>

using namespace Velmar;
using namespace Velmar::Host;
using namespace Velmar::VideoOverlay;

namespace {

const QString defaultProfile = QStringLiteral("Halvo push camera system - default");
const QString fullProfile = QStringLiteral("Sewer inspection");

/// The texts on the display, from top to bottom and from left to right.
QStringList shown(const OverlaySession &session)
{
    session.scene()->flush();
    QMap<QPair<int, int>, QString> texts;
    const QList<CVideoOverlayElement *> elements = session.manager().getElementList();
    for (const OverlayItem &item : session.scene()->snapshot()->items) {
        for (CVideoOverlayElement *element : elements) {
            const auto *text = qobject_cast<CVideoOverlayText *>(element);
            if (text && text->id() == item.id)
                texts.insert({text->row(), text->column()}, text->text());
        }
    }
    return texts.values();
}

CVideoOverlayElement *elementOf(const OverlaySession &session, const QString &column)
{
    const QList<CVideoOverlayElement *> elements = session.manager().getElementList();
    for (CVideoOverlayElement *element : elements) {
        if (element->enabled()
            && element->getParamObject().value(ElementParam::NAME_COLUMNBOUND) == column)
            return element;
    }
    return nullptr;
}

/// An inspection text that shows @p column alone.
QByteArray inspectionText(const QByteArray &column, const QByteArray &table, int row)
{
    return "<INSPTEXT><COL_Bound_Column>" + column + "</COL_Bound_Column><TDIR_Key>" + table
        + "</TDIR_Key><SOURCE>DB</SOURCE><COL>0</COL><ROW>" + QByteArray::number(row)
        + "</ROW><FGCOLOR>#ffffffff</FGCOLOR><BGCOLOR>#ff000000</BGCOLOR><VISIBLE>true</VISIBLE>"
          "<SHOWCAPTION>false</SHOWCAPTION></INSPTEXT>";
}

int rowOf(const VideoOverlayProfilesModel &profiles, const QString &caption)
{
    for (int row = 0; row < profiles.rowCount(); ++row) {
        if (profiles.data(profiles.index(row)).value<Profile *>()->caption() == caption)
            return row;
    }
    return -1;
}

} // namespace

/// What a host goes through in a day, in one process, on the shipped profiles, catalogs and
/// demonstration project.
class tst_HostDay : public Velmar::Test::LoggedTest
{
    Q_OBJECT

public:
    tst_HostDay() { allow(QStringLiteral("2 VideoOverlayLibrary: Invalid project.")); }

protected:
    void prepare() override
    {
        const QDir data(QStringLiteral(DATA_DIRECTORY));
        m_folders = std::make_unique<Test::ProfileFolders>();
        Directories::setReadonlyConfigDirectory(data.path());
        CATManagement::CatalogStore::instance().setDirectory(
            data.filePath(QStringLiteral("catalogs")));
        Shared::LocaleSettings::reset();
        Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("en_GB")));
        Translation::TranslationStore::instance().setDirectory(
            data.filePath(QStringLiteral("translations")));
        Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("en_GB")));
        const QDir shipped(data.filePath(QStringLiteral("profiles")));
        for (const QString &file : shipped.entryList({QStringLiteral("*.xml")}, QDir::Files))
            QVERIFY(
                QFile::copy(shipped.filePath(file), QDir(m_folders->profiles()).filePath(file)));
    }

    /// A profile of texts that come and go, without a timeout. Returns its name.
    QString textsProfile()
    {
        const QString name = QStringLiteral("Texts");
        m_folders->writeProfile(
            name + QLatin1String(".xml"),
            Test::ProfileFolders::profileXml("name=\"Texts\"",
                                             inspectionText("OBJ_Key", "SECTION", 0)
                                                 + inspectionText("OBS_OpCode", "SECOBS", 1)));
        return name;
    }

    QString demoProject(const QString &name, const QString &catalog = QString())
    {
        const QString path = QDir(m_folders->settings()).filePath(name);
        ProjectSession project;
        if (!project.createDemo(path, QStringLiteral(DATA_DIRECTORY "/demo/project/demo.json"),
                                catalog))
            qFatal("%s", qPrintable(project.errorText()));
        return path;
    }

    static QString textOf(const OverlaySession &session, const QString &column)
    {
        const auto *text = qobject_cast<CVideoOverlayText *>(elementOf(session, column));
        return text ? text->text() : QString();
    }

private Q_SLOTS:
    void oneDay();
    void inspectionTextsComeAndGo();
    void textsEndWithTheInspection();
    void formatsAlone();
    void languageAlone();
    void unitsAlone();
    void observationsOfTheDemonstration();
    void freeTextOfEveryOrigin();
    void templateComesLate();
    void loadingIsNoEdit();
    void loadingIsNoEditForWhoeverHearsOfIt();
    void everyLoadIsTold();
    void recordsAreReleasedWithoutTexts();
    void timeoutsFollowTheVideo();
    void editsSurviveTheProcess();
    void unknownProfileIsNamed();

private:
    std::unique_ptr<Test::ProfileFolders> m_folders;
};

void tst_HostDay::oneDay()
{
    const QString english = demoProject(QStringLiteral("english.xqproject"));
    const QString german
        = demoProject(QStringLiteral("german.xqproject"), QStringLiteral("EN13508-2-DEU-DE"));
    {
        // Start-up: the profile that the shipped settings name, and nothing to show yet.
        OverlaySession session(QSize(1920, 1080));
        QString error;
        QVERIFY2(session.openProfiles(QString(), &error), qPrintable(error));
        VideoOverlayProfilesModel &profiles = *session.profiles();
        QCOMPARE(profiles.currentProfile()->caption(), defaultProfile);
        QVERIFY(COsdSettings::getDefaultProfile().endsWith(defaultProfile + QLatin1String(".xml")));
        QCOMPARE(shown(session), QStringList());
        QVERIFY(!profiles.isCurrentProfileChanged());

        // A live value shows its text.
        session.feed().setValue(ElementParam::NAME_SECTION_DISTANCE_COUNTER, 3.34);
        const QString distance = QStringLiteral("     3.34 m");
        QCOMPARE(shown(session), QStringList {distance});

        // Project and inspection.
        QVERIFY(session.project().open(english));
        const QString project = QStringLiteral("Mill Lane catchment");
        QCOMPARE(
            shown(session),
            (QStringList {project, QStringLiteral("Section:  "), distance})); // keeps its place
        QVERIFY(session.project().startInspection(session.project().inspections().at(0)));
        const QString section = QStringLiteral("Section: 4711-4712");
        QCOMPARE(shown(session), (QStringList {project, section, distance}));

        // An observation, until it expires: its code, and in words what that stands for.
        ProjectSession::Observation crack;
        crack.code = QStringLiteral("BAB");
        crack.remark = QStringLiteral("2 mm");
        QVERIFY(session.project().createObservation(crack));
        QCOMPARE(shown(session),
                 (QStringList {project, section, QStringLiteral("BAB"),
                               QStringLiteral("Crack / 2 mm"), distance}));
        elementOf(session, QStringLiteral("OBS_OpCode"))->expireTimer();
        elementOf(session, QStringLiteral("OBS_Observation"))->expireTimer();
        QCOMPARE(shown(session), (QStringList {project, section, distance}));

        // Another profile in the middle of an inspection: its texts have the values at once.
        QVERIFY(profiles.setCurrentProfileByIndex(rowOf(profiles, fullProfile)));
        QCOMPARE(COsdSettings::getDefaultProfile(),
                 QDir(QStringLiteral(DATA_DIRECTORY))
                     .relativeFilePath(profiles.currentProfile()->path()));
        QStringList full = shown(session);
        QVERIFY(full.contains(QStringLiteral("Material: Concrete")));
        QVERIFY(full.contains(QStringLiteral("Inspector: R. Hale")));
        QVERIFY(full.contains(QStringLiteral("       3.34 m")));
        session.feed().setValue(ElementParam::NAME_CAMERA_TILT, 12.0);
        QVERIFY(shown(session).contains(QStringLiteral("Camera Tilt:     12 \u00B0")));

        // Another locale: dates and numbers follow, captions belong to the project's catalog.
        QVERIFY(full.contains(QStringLiteral("Start date: 09/03/2026")));
        Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
        Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("de_DE")));
        full = shown(session);
        QVERIFY(full.contains(QStringLiteral("Start date: 09.03.26")));
        QVERIFY(full.contains(QStringLiteral("       3,34 m")));

        // Another project with another catalog: another template, other captions.
        QVERIFY(session.project().open(german));
        QVERIFY(session.project().startInspection(session.project().inspections().at(0)));
        full = shown(session);
        QVERIFY(full.contains(QStringLiteral("Haltung: 4711-4712")));
        QVERIFY(full.contains(QStringLiteral("Kameraneigung:     12 \u00B0")));
        QVERIFY(!full.contains(section));

        // Edit, save, edit again and revert.
        QVERIFY(!profiles.isCurrentProfileChanged());
        elementOf(session, ElementParam::NAME_CAMERA_TILT)->setRow(12);
        QVERIFY(profiles.isCurrentProfileChanged());
        profiles.saveCurrentProfile();
        QVERIFY(!profiles.isCurrentProfileChanged());
        elementOf(session, ElementParam::NAME_CAMERA_TILT)->setRow(13);
        profiles.revertCurrentProfile();
        QCOMPARE(elementOf(session, ElementParam::NAME_CAMERA_TILT)->row(), 12);
        QVERIFY(shown(session).contains(QStringLiteral("Kameraneigung:     12 \u00B0")));

        // A read-only profile is not written: a copy of it is.
        QVERIFY(profiles.setCurrentProfileByIndex(rowOf(profiles, defaultProfile)));
        const QString readOnlyPath = profiles.currentProfile()->path();
        const QByteArray before = Test::ProfileFolders::read(readOnlyPath);
        elementOf(session, ElementParam::NAME_SECTION_DISTANCE_COUNTER)->setRow(20);
        profiles.saveCurrentProfile(QStringLiteral("Mine"));
        QCOMPARE(Test::ProfileFolders::read(readOnlyPath), before);
        QCOMPARE(profiles.currentProfile()->caption(), defaultProfile);
        QVERIFY(rowOf(profiles, QStringLiteral("Mine")) >= 0);

        // A simple project has no records: nothing of the inspection stays on the display.
        QVERIFY(session.project().openSimple(m_folders->settings()));
        QVERIFY(!shown(session).contains(QStringLiteral("Haltung: 4711-4712")));
        QVERIFY(!COsdDomainDatasource::currentInspection());

        // The end of the work: only what is live stays.
        session.project().close();
        QCOMPARE(shown(session), QStringList {QStringLiteral("     3,34 m")});
        takeLog();
    }
    // Shutdown, with a profile on the display, leaves nothing behind.
    QVERIFY(!COsdDomainDatasource::currentInspection());
    const QStringList log = takeLog();
    QVERIFY2(log.isEmpty(), qPrintable(log.join(QLatin1Char('\n'))));
}

/// Texts of the inspection never show themselves.
void tst_HostDay::inspectionTextsComeAndGo()
{
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(textsProfile(), &error), qPrintable(error));
    QVERIFY(session.project().open(demoProject(QStringLiteral("project"))));
    QCOMPARE(shown(session), QStringList());
    const QStringList section(QStringLiteral("4711-4712"));
    QVERIFY(session.project().startInspection(session.project().inspections().at(0)));
    QCOMPARE(shown(session), section);

    // An observation takes the place of what stood there before.
    ProjectSession::Observation crack;
    crack.code = QStringLiteral("BAB");
    QVERIFY(session.project().createObservation(crack));
    const QStringList observation(QStringLiteral("BAB"));
    QCOMPARE(shown(session), observation);
    Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
    QCOMPARE(shown(session), observation); // what was taken away does not come back with it

    // The texts of a profile that is loaded in the middle of an inspection.
    session.profiles()->revertCurrentProfile();
    QCOMPARE(shown(session), section);
    takeLog();
}

/// What they show belongs to it: to the next one, it would be wrong.
void tst_HostDay::textsEndWithTheInspection()
{
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(textsProfile(), &error), qPrintable(error));
    QVERIFY(session.project().open(demoProject(QStringLiteral("project"))));
    ProjectSession::Observation crack;
    crack.code = QStringLiteral("BAB");
    QVERIFY(session.project().startInspection(session.project().inspections().at(0)));
    QVERIFY(session.project().createObservation(crack));
    QCOMPARE(shown(session), QStringList(QStringLiteral("BAB")));
    QVERIFY(session.project().startInspection(session.project().inspections().at(1)));
    QCOMPARE(shown(session), QStringList(QStringLiteral("4713")));
    session.project().endInspection();
    QCOMPARE(shown(session), QStringList());

    QVERIFY(session.project().startInspection(session.project().inspections().at(0)));
    QVERIFY(session.project().createObservation(crack));
    session.project().close();
    QCOMPARE(shown(session), QStringList());
    takeLog();
}

void tst_HostDay::formatsAlone()
{
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(fullProfile, &error), qPrintable(error));
    QVERIFY(session.project().open(demoProject(QStringLiteral("project"))));
    QVERIFY(session.project().startInspection(session.project().inspections().at(0)));
    QVERIFY(shown(session).contains(QStringLiteral("Start date: 09/03/2026")));
    Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("de_DE")));
    QVERIFY(shown(session).contains(QStringLiteral("Start date: 09.03.26")));
    takeLog();
}

/// Here it changes no text; on a platform that takes its formats from the language it would.
void tst_HostDay::languageAlone()
{
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(fullProfile, &error), qPrintable(error));
    QVERIFY(session.project().open(demoProject(QStringLiteral("project"))));
    QVERIFY(session.project().startInspection(session.project().inspections().at(0)));
    QSignalSpy inspection(AppState::instance(), &AppState::activeInspectionChanged);
    Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("de_DE")));
    QCOMPARE(inspection.count(), 1);
    QCOMPARE(inspection.at(0).at(0).value<Database::CDomainObjectPointer>(),
             Database::CDomainObjectPointer(session.project().inspection()));
    takeLog();
}

/// Code and caption, each once, for every observation that the demonstration brings: those of its
/// run, those of its project, and in the words of the catalog.
void tst_HostDay::observationsOfTheDemonstration()
{
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(QStringLiteral("Lean"), &error), qPrintable(error));
    QVERIFY(session.project().open(demoProject(QStringLiteral("english"))));
    QVERIFY(session.project().startInspection(session.project().inspections().at(0)));
    TelemetryFile run;
    QVERIFY2(run.load(QStringLiteral(DATA_DIRECTORY "/demo/telemetry.csv"), &error),
             qPrintable(error));
    session.setTelemetry(run);
    session.setObservationsFromRun(true);
    session.advanceTo(23000); // the first connection
    QVERIFY(shown(session).contains(QStringLiteral("BCA")));
    QVERIFY(shown(session).contains(QStringLiteral("Connection / 10 o'clock, 150 mm, open")));
    takeLog();

    const QString german
        = demoProject(QStringLiteral("german"), QStringLiteral("EN13508-2-DEU-DE"));
    QVERIFY(session.project().open(german));
    const auto inspections = session.project().inspections();
    QCOMPARE(inspections.size(), 2);
    QCOMPARE(session.project().inspectedTable(), QString());
    for (const ProjectSession::RecordPointer &inspection : inspections) {
        QVERIFY(session.project().startInspection(inspection));
        const bool isManhole = session.project().inspectedTable() == QLatin1String("NODE");
        QCOMPARE(isManhole, inspection == inspections.last());
        const auto stored = session.project().database()->children(
            inspection, Database::InspectionDatabase::Kind::Observation);
        QVERIFY(!stored.isEmpty());
        for (const ProjectSession::RecordPointer &observation : stored) {
            ProjectSession::Observation again; // as if it were made now
            again.code = observation->readValue(QStringLiteral("OBS_OpCode")).toString();
            again.text = observation->readValue(QStringLiteral("OBS_Observation")).toString();
            // Sections have codes that begin with B, manholes such with D.
            QCOMPARE(again.code.at(0), isManhole ? QLatin1Char('D') : QLatin1Char('B'));
            QVERIFY(session.project().createObservation(again));
            const QStringList texts = shown(session);
            QCOMPARE(texts.count(again.code), 1);
            if (isManhole)
                QVERIFY(texts.contains(QStringLiteral("Wurzeln")));
        }
    }
    takeLog();
}

/// A free text is what was said last; an observation takes its place, also in the next profile.
void tst_HostDay::freeTextOfEveryOrigin()
{
    const QString notes = QStringLiteral("Pictures and notes");
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(notes, &error), qPrintable(error));
    VideoOverlayProfilesModel &profiles = *session.profiles();
    const QString text = QStringLiteral("root intrusion");
    QVERIFY(!shown(session).contains(text));
    session.feed().setValue(ElementParam::NAME_OSD_FREE_TEXT_BOX, text);
    QVERIFY(shown(session).contains(text));
    QVERIFY(!profiles.isCurrentProfileChanged());
    QVERIFY(profiles.setCurrentProfileByIndex(rowOf(profiles, fullProfile))); // it has none
    QVERIFY(profiles.setCurrentProfileByIndex(rowOf(profiles, notes)));
    QVERIFY(shown(session).contains(text));

    QVERIFY(session.project().open(demoProject(QStringLiteral("project"))));
    QVERIFY(session.project().startInspection(session.project().inspections().at(0)));
    ProjectSession::Observation crack;
    crack.code = QStringLiteral("BAB");
    QVERIFY(session.project().createObservation(crack));
    QVERIFY(!shown(session).contains(text));
    profiles.revertCurrentProfile();
    QVERIFY(!shown(session).contains(text));
    session.feed().setValue(ElementParam::NAME_OSD_FREE_TEXT_BOX, text);
    QVERIFY(shown(session).contains(text));
    session.feed().setValue(ElementParam::NAME_OSD_FREE_TEXT_BOX, QString::fromLatin1(""));
    QVERIFY(!shown(session).contains(text));
    takeLog();
}

/// A unit that the user chooses is followed by what names none itself, at once; and it is the
/// user's, so it is no edit of the profile and never in its file.
void tst_HostDay::unitsAlone()
{
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(QStringLiteral("Lean"), &error), qPrintable(error));
    VideoOverlayProfilesModel &profiles = *session.profiles();
    const QString path = profiles.currentProfile()->path();
    const auto units = [&path] {
        return Test::ProfileFolders::read(path).count("<UNIT></UNIT>")
            + Test::ProfileFolders::read(path).count("<UNIT/>");
    };
    const int before = units();
    QVERIFY(before > 0);
    session.feed().setValue(ElementParam::NAME_SPEED, 7.73);
    QCOMPARE(shown(session), QStringList(QStringLiteral("   7.73 m/min")));
    for (int times = 0; times < 2; ++times) {
        Shared::LocaleSettings::setUnitSystem(Shared::LocaleSettings::UnitSystem::Imperial);
        QCOMPARE(shown(session), QStringList(QStringLiteral(" 25.36 ft/min")));
        QVERIFY(!profiles.isCurrentProfileChanged());
        profiles.saveCurrentProfile(); // as for any other reason
        QCOMPARE(units(), before);
        Shared::LocaleSettings::setUnitSystem(Shared::LocaleSettings::UnitSystem::Metric);
        QCOMPARE(shown(session), QStringList(QStringLiteral("   7.73 m/min")));
        QVERIFY(!profiles.isCurrentProfileChanged());
        profiles.revertCurrentProfile();
        QCOMPARE(shown(session), QStringList(QStringLiteral("   7.73 m/min")));
    }
    takeLog();
}

/// A catalog that is installed while an inspection runs.
void tst_HostDay::templateComesLate()
{
    CATManagement::CatalogStore &catalogs = CATManagement::CatalogStore::instance();
    const QString installed = QStringLiteral(DATA_DIRECTORY "/catalogs");
    const QString project = demoProject(QStringLiteral("project"));
    catalogs.setDirectory(m_folders->settings()); // there are none
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(fullProfile, &error), qPrintable(error));
    QVERIFY(session.project().open(project));
    QVERIFY(!session.project().hasTemplate());
    QVERIFY(session.project().startInspection(session.project().inspections().at(0)));
    QCOMPARE(textOf(session, QStringLiteral("OBJ_Material")), QStringLiteral(": CO"));

    catalogs.setDirectory(installed);
    QVERIFY(catalogs.loadTemplate(QStringLiteral("EN13508-2-ENG-GB")));
    QVERIFY(shown(session).contains(QStringLiteral("Material: Concrete")));
    takeLog();
}

/// Whatever a profile leaves open is filled in by loading it, and no change of the operator's.
void tst_HostDay::loadingIsNoEdit()
{
    m_folders->writeProfile(
        QStringLiteral("Foreign.xml"),
        Test::ProfileFolders::profileXml(
            "name=\"Foreign\"",
            "<SYSTEMTEXT><COL_Bound_Column>VALUE_OF_ANOTHER_HOST</COL_Bound_Column>"
            "<SOURCE>CAN</SOURCE><COL>3</COL><ROW>4</ROW><VISIBLE>true</VISIBLE></SYSTEMTEXT>"));
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(QStringLiteral("Foreign"), &error), qPrintable(error));
    QVERIFY(!session.profiles()->isCurrentProfileChanged());
    QCOMPARE(session.manager().elementsCount(), 1);
    session.manager().getElement(0)->setRow(5);
    QVERIFY(session.profiles()->isCurrentProfileChanged());
    takeLog();
}

/// Screens hear of a load from the manager or from the list of profiles, and ask at once.
void tst_HostDay::loadingIsNoEditForWhoeverHearsOfIt()
{
    // No general settings, and so no transparency either; general settings without one; nothing of
    // what else a profile may name.
    const QList<QPair<QString, QByteArray>> files {
        {QStringLiteral("Bare"), QByteArray()},
        {QStringLiteral("General"), QByteArrayLiteral("<GENERAL/>")},
        {QStringLiteral("Texts"),
         QByteArrayLiteral("<STATICTEXT/><SYSTEMTEXT/><FREETEXT/><INSPTEXT/><INSPSTATICTEXT/>")},
        {QStringLiteral("Pictures"),
         QByteArrayLiteral("<IMAGE/><IMAGE><SCREENSNIP>true</SCREENSNIP></IMAGE>")}};
    for (const auto &[name, children] : files)
        m_folders->writeProfile(
            name + QLatin1String(".xml"),
            Test::ProfileFolders::profileXml("name=\"" + name.toUtf8() + '"', children));
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(defaultProfile, &error), qPrintable(error));
    VideoOverlayProfilesModel &profiles = *session.profiles();
    QStringList changed;
    int heard = 0;
    const auto ask = [&] {
        ++heard;
        if (profiles.isCurrentProfileChanged())
            changed.append(profiles.currentProfile()->caption());
    };
    connect(&session.manager(), &CVideoOverlayManager::profileLoaded, this, ask);
    connect(&profiles, &VideoOverlayProfilesModel::profileLoaded, this, ask);
    for (const auto &file : files) {
        QVERIFY(profiles.setCurrentProfileByIndex(rowOf(profiles, file.first)));
        QVERIFY(!profiles.isCurrentProfileChanged());
        profiles.revertCurrentProfile();
        QVERIFY(!profiles.isCurrentProfileChanged());
    }
    QCOMPARE(heard, 4 * files.size());
    QCOMPARE(changed, QStringList());
    takeLog();
}

/// Screens follow the signal of the manager or of the list of profiles.
void tst_HostDay::everyLoadIsTold()
{
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(defaultProfile, &error), qPrintable(error));
    QSignalSpy manager(&session.manager(), &CVideoOverlayManager::profileLoaded);
    QSignalSpy profiles(session.profiles(), &VideoOverlayProfilesModel::profileLoaded);
    QVERIFY(session.profiles()->setCurrentProfileByIndex(rowOf(*session.profiles(), fullProfile)));
    QCOMPARE(manager.count(), 1);
    QCOMPARE(profiles.count(), 1);
    session.profiles()->revertCurrentProfile();
    QCOMPARE(manager.count(), 2);
    QCOMPARE(profiles.count(), 2);
    takeLog();
}

/// A text of the inspection lets its record go by itself; what is loaded now may have none.
void tst_HostDay::recordsAreReleasedWithoutTexts()
{
    const QString project = demoProject(QStringLiteral("project"));
    m_folders->writeProfile(QStringLiteral("Bare.xml"),
                            Test::ProfileFolders::profileXml("name=\"Bare\""));
    // With a catalog, every profile gets the texts of its columns.
    CATManagement::CatalogStore::instance().setDirectory(m_folders->settings());
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY2(session.openProfiles(fullProfile, &error), qPrintable(error));
    VideoOverlayProfilesModel &profiles = *session.profiles();
    QVERIFY(session.project().open(project));
    QVERIFY(session.project().startInspection(session.project().inspections().at(0)));
    QVERIFY(COsdDomainDatasource::currentInspection());
    QVERIFY(profiles.setCurrentProfileByIndex(rowOf(profiles, QStringLiteral("Bare"))));
    session.project().close();
    QVERIFY(!COsdDomainDatasource::currentInspection());
    QVERIFY(profiles.setCurrentProfileByIndex(rowOf(profiles, fullProfile)));
    QCOMPARE(textOf(session, QStringLiteral("OBJ_Key")), QStringLiteral(":  "));
    takeLog();
}

void tst_HostDay::timeoutsFollowTheVideo()
{
    OverlaySession session(QSize(1920, 1080));
    session.setClock(OverlaySession::Clock::Video);
    session.setObservationsFromRun(true);
    const QString path = QDir(m_folders->settings()).filePath(QStringLiteral("run.csv"));
    Test::ProfileFolders::write(
        path,
        "t_ms,SECTION_DISTANCE_COUNTER,OBS_OpCode,OBS_Observation,OBS_Memo\n"
        "0,0,,,\n"
        "2000,1.5,BAB,first,\n"
        "5000,2.5,BCA,second,open\n"
        "60000,3,,,\n");
    TelemetryFile run;
    QString error;
    QVERIFY2(run.load(path, &error), qPrintable(error));
    session.setTelemetry(run);
    QVERIFY2(session.openProfiles(QStringLiteral("Lean"), &error), qPrintable(error));
    QVERIFY(session.project().open(demoProject(QStringLiteral("project"))));
    const auto inspection = session.project().inspections().at(0);
    QVERIFY(session.project().startInspection(inspection));
    const int before = session.project()
                           .database()
                           ->children(inspection, Database::DomainRecord::Kind::Observation)
                           .size();
    const auto observation = [&](qint64 timeMs) {
        session.advanceTo(timeMs);
        const CVideoOverlayElement *text = elementOf(session, QStringLiteral("OBS_Observation"));
        return text->visible() ? static_cast<const CVideoOverlayText *>(text)->text() : QString();
    };

    QCOMPARE(observation(0), QString());
    QCOMPARE(session.nextChangeMs(), qint64(1000)); // the video's time
    QCOMPARE(observation(2000), QStringLiteral("first"));
    QCOMPARE(observation(4999), QStringLiteral("first"));
    QCOMPARE(observation(5000), QStringLiteral("second / open")); // and eight seconds from here
    QCOMPARE(observation(12999), QStringLiteral("second / open"));
    QCOMPARE(session.nextChangeMs(), qint64(13000));
    QCOMPARE(observation(13000), QString());
    QCOMPARE(observation(1000), QString()); // backwards: what was observed stays observed
    QCOMPARE(observation(6000), QString());
    const auto records = session.project().database()->children(
        inspection, Database::DomainRecord::Kind::Observation);
    QCOMPARE(records.size(), before + 2);
    QCOMPARE(records.last()->readValue(QStringLiteral("OBS_Distance")).toDouble(), 2.5);
    takeLog();
}

void tst_HostDay::editsSurviveTheProcess()
{
    QString error;
    {
        OverlaySession session(QSize(1280, 720));
        QVERIFY2(session.openProfiles(defaultProfile, &error), qPrintable(error));
        Profile *copy = session.profiles()->clone(session.profiles()->currentProfile(),
                                                  QStringLiteral("Edited"));
        QVERIFY(copy);
        QVERIFY(session.profiles()->setCurrentProfile(copy));
        auto *distance = qobject_cast<CVideoOverlayText *>(
            elementOf(session, ElementParam::NAME_SECTION_DISTANCE_COUNTER));
        distance->setRow(2);
        distance->setTextColor(Qt::red);
        QVariant added
            = session.manager().getElementListModel()->createStaticText(QStringLiteral("Added"));
        auto *text = qobject_cast<CVideoOverlayText *>(added.value<QObject *>());
        text->setTextColor(Qt::white);
        text->setBackgroundColor(Qt::blue);
        text->setRow(10);
        text->setEnabled(true);
        session.profiles()->saveCurrentProfile();
    }
    OverlaySession session(QSize(1280, 720));
    QVERIFY2(session.openProfiles(QStringLiteral("Edited"), &error), qPrintable(error));
    auto *distance = qobject_cast<CVideoOverlayText *>(
        elementOf(session, ElementParam::NAME_SECTION_DISTANCE_COUNTER));
    QCOMPARE(distance->row(), 2);
    QCOMPARE(distance->textColor(), QColor(Qt::red));
    QCOMPARE(shown(session), QStringList {QStringLiteral("Added")});
    takeLog();
}

void tst_HostDay::unknownProfileIsNamed()
{
    OverlaySession session(QSize(1280, 720));
    QString error;
    QVERIFY(!session.openProfiles(QStringLiteral("None"), &error));
    QCOMPARE(error,
             QStringLiteral("There is no profile \"None\"; there are: Halvo push camera system - "
                            "default, Lean, Pictures and notes, Sewer inspection"));
    takeLog();
}

QTEST_MAIN(tst_HostDay)
#include "tst_HostDay.moc"
