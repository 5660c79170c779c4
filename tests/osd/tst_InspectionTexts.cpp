// SPDX-License-Identifier: Apache-2.0
#include "host/platform/AppStateControl.h"
#include "host/platform/CatalogStore.h"
#include "host/platform/InspectionDatabase.h"
#include "host/platform/LocaleSettings.h"
#include "tests/osd/BuilderWorld.h"
#include "tests/support/LoggedTest.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/osd/COsdBuilder.h"
#include "videooverlay/osd/COsdDomainDatasource.h"
#include "videooverlay/osd/COsdDomainDatasourceFactory.h"

#include <QDate>
#include <QLocale>
#include <QTest>
#include <QTime>

#include <memory>

using namespace Velmar::VideoOverlay;
using Velmar::AppStateControl;
using Velmar::CATManagement::CatalogStore;
using Velmar::Database::CDomainObjectPointer;
using Velmar::Database::InspectionDatabase;
using Velmar::Shared::LocaleSettings;
using Velmar::Test::BuilderWorld;
using Velmar::Test::inspectionKeys;
using Velmar::Test::inspectionRecord;
using Velmar::Test::recordOfType;
using Kind = InspectionDatabase::Kind;

namespace {

const QString english = QStringLiteral("EN13508-2-ENG-GB");
const QString german = QStringLiteral("EN13508-2-DEU-DE");

QVariant text(const char *value)
{
    return QString::fromUtf8(value);
}

} // namespace

/// The installed catalogs, a database, and what the builder and its datasources make of them.
class tst_InspectionTexts : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyOfferedColumnBecomesAText()
    {
        Profile profile;
        m_world->load(profile);
        QVERIFY(CatalogStore::instance().loadTemplate(english));

        const QStringList keys = inspectionKeys(profile);
        QCOMPARE(keys.size(), m_world->manager->elementsCount());
        QCOMPARE(QSet<QString>(keys.begin(), keys.end()).size(), keys.size());
        const char *const offered[]
            = {"PROJECT.PRJ_Name.3",      "PROJECT.PRJ_Name.6",        "JOB.JOB_Number.3",
               "JOB.JOB_Operator.6",      "SECTION.OBJ_Material.3",    "NODE.OBJ_Key.6",
               "SECINSP.INS_Inspector.3", "SECINSP.V_INS_DateOfEnd.6", "SECOBS.OBS_Observation.3",
               "SECOBS.OBS_OpCode.3"};
        for (const char *key : offered)
            QVERIFY2(keys.contains(QString::fromLatin1(key)), key);
        const char *const withheld[]
            = {"SECOBS.OBS_OpCode.6",   "SECOBS.OBS_Memo.3",        "PROJECT.PRJ_CatalogId.3",
               "SECINSP.INS_Job_FK.3",  "SECINSP.INS_Object_REF.3", "SECTION.OBJ_FromNode_FK.3",
               "SECOBS.OBS_Distance.3", "SECTION.OBJ_Year.3"};
        for (const char *key : withheld)
            QVERIFY2(!keys.contains(QString::fromLatin1(key)), key);

        // Another language is another template of the same columns.
        QVERIFY(CatalogStore::instance().loadTemplate(german));
        QCOMPARE(inspectionKeys(profile), keys);
        takeLog();
    }

    void values_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("inGerman");
        const auto row
            = [](const char *table, const char *column, const char *shown, const char *inGerman) {
                  QTest::newRow(column) << QString::fromLatin1(table) << QString::fromLatin1(column)
                                        << QString::fromUtf8(shown) << QString::fromUtf8(inGerman);
              };
        row("PROJECT", "PRJ_Name", "Project: Elm Road", "Projekt: Elm Road");
        row("JOB", "JOB_Number", "Job number: J-4", "Auftragsnummer: J-4");
        row("SECTION", "OBJ_Key", "Section: S-17", "Haltung: S-17");
        row("SECTION", "OBJ_Material", "Material: Concrete", "Material: Beton");
        row("SECTION", "OBJ_Size", "Size [mm]: 300", "Nennweite [mm]: 300");
        row("SECTION", "OBJ_Length", "Length [m]: 41.5", "Länge [m]: 41.5");
        row("SECINSP", "INS_Inspector", "Inspector: Ada", "Inspekteur: Ada");
        row("SECINSP", "INS_Weather", "Weather: Snow or thaw", "Wetter: Schnee oder Tauwetter");
        row("SECINSP", "INS_Date", "Date of inspection: 05.03.2026",
            "Inspektionsdatum: 05.03.2026");
        row("SECINSP", "V_INS_DateOfStart", "Start date: 05.03.2026", "Anfangsdatum: 05.03.2026");
        row("SECINSP", "V_INS_TimeOfStart", "Start time: 08-05-30", "Anfangszeit: 08-05-30");
        row("SECINSP", "V_INS_Contractor", "Contractor: Pipe & Sons", "Auftragnehmer: Pipe & Sons");
    }

    void values()
    {
        QFETCH(QString, table);
        QFETCH(QString, column);
        QFETCH(QString, shown);
        QFETCH(QString, inGerman);
        QVERIFY(CatalogStore::instance().loadTemplate(english));
        Profile profile;
        m_world->load(profile);
        CVideoOverlayText *const element = textOf(table, column);
        QVERIFY(element);

        AppStateControl::setActiveProject(m_project);
        AppStateControl::setActiveInspection(m_inspection);
        QCOMPARE(element->text(), shown);

        // An observation must not change what belongs to its inspection.
        AppStateControl::announceObservation(m_observation);
        QCOMPARE(element->text(), shown);
        AppStateControl::setActiveInspection(m_inspection);
        QCOMPARE(element->text(), shown);

        // The caption follows the template at once, a list value with the next announcement.
        QVERIFY(CatalogStore::instance().loadTemplate(german));
        AppStateControl::setActiveInspection(m_inspection);
        QCOMPARE(element->text(), inGerman);

        AppStateControl::setActiveInspection({});
        QCOMPARE(element->text(), element->caption() + QStringLiteral(":  "));
        takeLog();
    }

    void observations()
    {
        QVERIFY(CatalogStore::instance().loadTemplate(english));
        Profile profile;
        m_world->load(profile);
        CVideoOverlayText *const observed
            = textOf(QStringLiteral("SECOBS"), QStringLiteral("OBS_Observation"));
        CVideoOverlayText *const code
            = textOf(QStringLiteral("SECOBS"), QStringLiteral("OBS_OpCode"));
        CVideoOverlayText *const inspector
            = textOf(QStringLiteral("SECINSP"), QStringLiteral("INS_Inspector"));
        for (CVideoOverlayText *element : {observed, code, inspector}) {
            QVERIFY(element);
            element->setEnabled(true);
        }
        AppStateControl::setActiveInspection(m_inspection);
        QCOMPARE(observed->text(), QStringLiteral("Observation:  "));
        m_world->model().showSecInspElements();
        QVERIFY(inspector->visible());
        QVERIFY(!observed->visible());

        AppStateControl::announceObservation(m_observation);
        m_world->model().hideNotPermanentElements();
        m_world->model().showObservationElements();

        QCOMPARE(observed->text(), QStringLiteral("Observation: Crack / at the joint"));
        QCOMPARE(code->text(), QStringLiteral("Code: BAB"));
        QVERIFY(observed->visible());
        QVERIFY(!inspector->visible());
        takeLog();
    }

    void aWayThroughTheDatabase()
    {
        Profile profile;
        profile.elements() = {
            inspectionRecord(QStringLiteral("NODE"), QStringLiteral("OBJ_FromNode_FK.OBJ_Key"), 3),
            inspectionRecord(QStringLiteral("JOB"), QStringLiteral("INS_Job_FK.JOB_Number"), 3)};
        for (ElementParam &record : profile.elements())
            record.insert(QStringLiteral("captionEnabled"), false);
        m_world->load(profile);
        AppStateControl::setActiveInspection(m_inspection);
        QCOMPARE(textAt(0)->text(), QStringLiteral("N-1"));
        QCOMPARE(textAt(1)->text(), QStringLiteral("J-4"));
        takeLog();
    }

    void valuesReadAnewWhenTheInspectionIsAnnounced()
    {
        QVERIFY(CatalogStore::instance().loadTemplate(english));
        Profile profile;
        m_world->load(profile);
        CVideoOverlayText *const inspector
            = textOf(QStringLiteral("SECINSP"), QStringLiteral("INS_Inspector"));
        AppStateControl::setActiveInspection(m_inspection);
        QVERIFY(m_database->setValues(
            m_inspection, {{QStringLiteral("INS_Inspector"), QStringLiteral("Grace")}}));
        QCOMPARE(inspector->text(), QStringLiteral("Inspector: Ada"));
        AppStateControl::setActiveInspection(m_inspection);
        QCOMPARE(inspector->text(), QStringLiteral("Inspector: Grace"));
        takeLog();
    }

    void theNextProfileHasTheValuesAtOnce()
    {
        QVERIFY(CatalogStore::instance().loadTemplate(english));
        AppStateControl::setActiveInspection(m_inspection);
        Profile first;
        m_world->load(first);
        AppStateControl::setActiveInspection(m_inspection);
        Profile second;
        m_world->load(second);
        QCOMPARE(textOf(QStringLiteral("SECINSP"), QStringLiteral("INS_Inspector"))->text(),
                 QStringLiteral("Inspector: Ada"));
        takeLog();
    }

    void projectTexts()
    {
        ElementParam record = recordOfType(0);
        record.insert(QStringLiteral("columnBound"), QStringLiteral("PRJ_Name"));
        record.insert(QStringLiteral("caption"), QStringLiteral("no project"));
        record.insert(QStringLiteral("enabled"), true);
        Profile profile;
        profile.elements() = {record};
        m_world->load(profile);
        QCOMPARE(textAt(0)->text(), QStringLiteral("no project"));
        AppStateControl::setActiveProject(m_project);
        QCOMPARE(textAt(0)->text(), QStringLiteral("Elm Road"));
        m_database->close();
        AppStateControl::setActiveProject(m_project); // announced although its record is gone
        QCOMPARE(textAt(0)->text(), QStringLiteral("no project"));
        AppStateControl::setActiveProject({});
        QCOMPARE(textAt(0)->text(), QStringLiteral("no project"));
        takeLog();
    }

    void aClosedDatabase()
    {
        QVERIFY(CatalogStore::instance().loadTemplate(english));
        Profile profile;
        m_world->load(profile);
        AppStateControl::setActiveInspection(m_inspection);
        m_database->close();
        takeLog();
        AppStateControl::setActiveInspection(m_inspection);
        CVideoOverlayText *const inspector
            = textOf(QStringLiteral("SECINSP"), QStringLiteral("INS_Inspector"));
        QVERIFY(!inspector->text().contains(QStringLiteral("Ada")));
        AppStateControl::setActiveInspection({});
        QCOMPARE(inspector->text(), QStringLiteral("Inspector:  "));
        takeLog();
    }

protected:
    void prepare() override
    {
        LocaleSettings::reset();
        LocaleSettings::setLocale(QLocale::c());
        LocaleSettings::setDateFormat(QStringLiteral("dd.MM.yyyy"));
        LocaleSettings::setTimeFormat(QStringLiteral("hh-mm-ss"));
        CatalogStore::instance().setDirectory(QFINDTESTDATA("../../data/catalogs"));
        m_world.reset();
        m_world = std::make_unique<BuilderWorld>(&CatalogStore::instance());
        m_factory
            = std::make_unique<COsdDomainDatasourceFactory>(COsdDomainDatasource::captionResolver);
        m_world->builder->registerFactory(m_factory.get());
        makeRecords();
    }

private:
    void makeRecords()
    {
        m_database = std::make_unique<InspectionDatabase>();
        QVERIFY2(m_database->create(QStringLiteral(":memory:")),
                 qPrintable(m_database->errorText()));
        m_project = m_database->add(Kind::Project, {},
                                    {{QStringLiteral("PRJ_Name"), text("Elm Road")},
                                     {QStringLiteral("PRJ_Client"), text("Town of Ash")},
                                     {QStringLiteral("PRJ_CatalogId"), english}});
        const CDomainObjectPointer job
            = m_database->add(Kind::Job, m_project,
                              {{QStringLiteral("JOB_Number"), text("J-4")},
                               {QStringLiteral("JOB_Contractor"), text("Pipe & Sons")}});
        const CDomainObjectPointer node
            = m_database->add(Kind::Node, m_project, {{QStringLiteral("OBJ_Key"), text("N-1")}});
        const CDomainObjectPointer section
            = m_database->add(Kind::Section, m_project,
                              {{QStringLiteral("OBJ_Key"), text("S-17")},
                               {QStringLiteral("OBJ_Material"), text("CO")},
                               {QStringLiteral("OBJ_Size"), 300},
                               {QStringLiteral("OBJ_Length"), 41.5},
                               {QStringLiteral("OBJ_FromNode_FK"), QVariant::fromValue(node)}});
        m_inspection = m_database->add(Kind::Inspection, section,
                                       {{QStringLiteral("INS_Inspector"), text("Ada")},
                                        {QStringLiteral("INS_Weather"), text("03")},
                                        {QStringLiteral("INS_Date"), QDate(2026, 3, 5)},
                                        {QStringLiteral("INS_Time"), QTime(8, 5, 30)},
                                        {QStringLiteral("INS_Job_FK"), QVariant::fromValue(job)}});
        m_observation = m_database->add(Kind::Observation, m_inspection,
                                        {{QStringLiteral("OBS_OpCode"), text("BAB")},
                                         {QStringLiteral("OBS_Observation"), text("BAB")},
                                         {QStringLiteral("OBS_Memo"), text("at the joint")}});
        QVERIFY2(m_observation, qPrintable(m_database->errorText()));
    }

    CVideoOverlayText *textAt(int row) const
    {
        return qobject_cast<CVideoOverlayText *>(m_world->manager->getElement(row));
    }

    /// The inspection text bound to this column; null when there is none.
    CVideoOverlayText *textOf(const QString &table, const QString &column) const
    {
        for (CVideoOverlayElement *element : m_world->manager->getElementList()) {
            const ElementParam record = element->getParamObject();
            if (element->type() == CVideoOverlayElement::InspText
                && record.value(QStringLiteral("TDIR_Key")).toString() == table
                && record.value(QStringLiteral("columnBound")).toString() == column)
                return qobject_cast<CVideoOverlayText *>(element);
        }
        return nullptr;
    }

    std::unique_ptr<BuilderWorld> m_world;
    std::unique_ptr<COsdDomainDatasourceFactory> m_factory;
    std::unique_ptr<InspectionDatabase> m_database;
    CDomainObjectPointer m_project;
    CDomainObjectPointer m_inspection;
    CDomainObjectPointer m_observation;
};

QTEST_MAIN(tst_InspectionTexts)
#include "tst_InspectionTexts.moc"
