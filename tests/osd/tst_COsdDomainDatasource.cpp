// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdDomainDatasource.h"

#include "host/platform/LocaleSettings.h"
#include "platform/templates/CListItem.h"
#include "tests/osd/TestCatalog.h"
#include "tests/osd/TestRecord.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/CVideoOverlayText.h"

#include <QLocale>
#include <QTest>

#include <memory>

using Velmar::Database::CDomainObjectPointer;
using Velmar::Shared::LocaleSettings;
using Velmar::Templates::CListItem;
using Velmar::Test::ColumnSpec;
using Velmar::Test::methodsOf;
using Velmar::Test::propertiesOf;
using Velmar::Test::TestRecord;
using Velmar::Test::TestTemplates;
using Velmar::VideoOverlay::COsdDomainDatasource;
using Velmar::VideoOverlay::COsdTextDatasource;
using Velmar::VideoOverlay::CVideoOverlayText;
using Velmar::VideoOverlay::ElementParam;
using Velmar::VideoOverlay::TemplateCaptionResolver;
using Kind = Velmar::Database::DomainRecord::Kind;
using Type = Velmar::Templates::CTemplateColumn::Type;

Q_DECLARE_METATYPE(Type)

namespace {

const QString insTable = QStringLiteral("SECINSP");
const QString obsTable = QStringLiteral("SECOBS");
const QString category = QStringLiteral("VideoOverlayLibrary: ");

QString error(const QString &message)
{
    return QStringLiteral("1 ") + category + message;
}

QString warning(const QString &message)
{
    return QStringLiteral("2 ") + category + message;
}

QString trace(const QString &message)
{
    return QStringLiteral("4 ") + category + message;
}

/// A project with one section, its inspection and one observation, and a job.
struct Records
{
    Records()
    {
        project->values.insert(QStringLiteral("PRJ_Name"), QStringLiteral("Elm Road"));
        section->values.insert(QStringLiteral("OBJ_Key"), QStringLiteral("S-17"));
        project->values.insert(QStringLiteral("PRJ_Client"), QStringLiteral("Ash"));
        section->values.insert(QStringLiteral("XYZ_Key"), QStringLiteral("odd"));
        section->values.insert(QStringLiteral("JOBX_Key"), QStringLiteral("no job"));
        section->values.insert(QString(), QStringLiteral("nameless"));
        job->values.insert(QStringLiteral("JOB_Number"), QStringLiteral("J-4"));
        job->values.insert(QStringLiteral("JOB_Site_FK.JOB_City"), QStringLiteral("dotted"));
        inspection->references.insert(QStringLiteral("INS_Job_FK"), job);
        inspection->values.insert(QStringLiteral("INS_Inspector"), QStringLiteral("Ada"));
        inspection->values.insert(QStringLiteral("V_INS_Customer"), QStringLiteral("City"));
        observation->values.insert(QStringLiteral("OBS_OpCode"), QStringLiteral("BAB"));
        observation->values.insert(QStringLiteral("OBS_Observation"), QStringLiteral("Crack"));
    }

    /// A record that refers to itself would never end.
    void forgetReferences() const
    {
        for (const Pointer &record : {project, job, section, inspection, observation})
            record->references.clear();
    }

    using Pointer = QSharedPointer<TestRecord>;
    Pointer project = Pointer::create(Kind::Project);
    Pointer job = Pointer::create(Kind::Job, project);
    Pointer section = Pointer::create(Kind::Section, project);
    Pointer inspection = Pointer::create(Kind::Inspection, section);
    Pointer observation = Pointer::create(Kind::Observation, inspection);
};

ElementParam recordOf(const QString &table, const QString &column)
{
    ElementParam param = ElementParam::createInspTextDefault();
    param.insert(QStringLiteral("TDIR_Key"), table);
    param.insert(QStringLiteral("columnBound"), column);
    param.insert(QStringLiteral("captionEnabled"), false);
    return param;
}

} // namespace

class tst_COsdDomainDatasource : public Velmar::Test::LoggedTest
{
    Q_OBJECT
public:
    ~tst_COsdDomainDatasource() override { m_records.forgetReferences(); }

private Q_SLOTS:
    void metaObject()
    {
        const QMetaObject &meta = COsdDomainDatasource::staticMetaObject;
        QCOMPARE(meta.superClass(), &COsdTextDatasource::staticMetaObject);
        QCOMPARE(propertiesOf(meta), QStringList());
        const QString slot
            = QStringLiteral("slot calculateValue(Velmar::Database::CDomainObjectPointer)");
        QCOMPARE(methodsOf(meta), QStringList(slot));
    }

    void allowedProgramViews()
    {
        const QSet<QString> expected {QStringLiteral("detail_s_inspection"),
                                      QStringLiteral("detail_s"), QStringLiteral("detail_p"),
                                      QStringLiteral("grid_so")};
        QCOMPARE(COsdDomainDatasource::allowedProgramViews(), expected);
        QCOMPARE(&COsdDomainDatasource::allowedProgramViews(),
                 &COsdDomainDatasource::allowedProgramViews());
    }

    void construction()
    {
        ElementParam param = recordOf(insTable, QStringLiteral("INS_Inspector"));
        param.insert(QStringLiteral("enabled"), true);
        param.insert(QStringLiteral("columnCaption"), QStringLiteral("Who"));
        CVideoOverlayText element;
        element.setId(9);
        auto *const datasource = new COsdDomainDatasource(m_resolver, &element, param);

        QCOMPARE(datasource->parent(), &element);
        QVERIFY(element.enabled());
        QCOMPARE(element.caption(), QStringLiteral("Who"));
        QCOMPARE(element.text(), QStringLiteral(" "));
        QVERIFY(!element.visible()); // inspection texts are shown by the list model
        QCOMPARE(param.value(QStringLiteral("id")).toInt(), 9);
        QCOMPARE(datasource->getColumnName(), QStringLiteral("INS_Inspector"));
        QCOMPARE(datasource->getColumnTableName(), insTable);
        QCOMPARE(takeLog(), QStringList());

        element.setCaptionVisible(true);
        QCOMPARE(element.text(), QStringLiteral("Who:  "));
    }

    void showsTheSharedRecordAtOnce()
    {
        COsdDomainDatasource::rememberDomainObject(m_records.inspection);
        m_templates.load({textColumn(insTable, QStringLiteral("INS_Inspector"))});
        takeLog();

        show(insTable, QStringLiteral("INS_Inspector"));

        QCOMPARE(m_element->text(), QStringLiteral("Ada"));
    }

    void aNullObjectClearsTheSharedRecord()
    {
        m_templates.load({textColumn(insTable, QStringLiteral("INS_Inspector"))});
        COsdDomainDatasource *const datasource = show(insTable, QStringLiteral("INS_Inspector"));
        datasource->calculateValue(m_records.inspection);
        QCOMPARE(COsdDomainDatasource::currentInspection(),
                 CDomainObjectPointer(m_records.inspection));
        takeLog();

        datasource->calculateValue({});

        QCOMPARE(m_element->text(), QStringLiteral(" "));
        QVERIFY(!COsdDomainDatasource::currentInspection());
        QCOMPARE(takeLog(), QStringList());
        CVideoOverlayText other;
        ElementParam param = recordOf(insTable, QStringLiteral("INS_Inspector"));
        new COsdDomainDatasource(m_resolver, &other, param);
        QCOMPARE(other.text(), QStringLiteral(" "));
    }

    void sourceByPrefix_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("ofInspection");
        QTest::addColumn<QString>("ofObservation");
        const QString none = QStringLiteral("<not source>");
        const auto row = [](const char *table, const char *column, const QString &inspection,
                            const QString &observation) {
            QTest::newRow(column) << QString::fromLatin1(table) << QString::fromLatin1(column)
                                  << inspection << observation;
        };
        const auto same = [&row](const char *table, const char *column, const char *value) {
            row(table, column, QString::fromLatin1(value), QString::fromLatin1(value));
        };
        same("PROJECT", "PRJ_Name", "Elm Road");
        same("JOB", "JOB_Number", "J-4");
        same("JOB", "INS_Job_FK.JOB_Number", "J-4");
        same("JOB", "INS_Job_FK.JOB_Site_FK.JOB_City", "dotted");
        same("SECINSP", "INS_Inspector", "Ada");
        same("SECINSP", "V_INS_Customer", "City");
        same("SECTION", "OBJ_Key", "S-17");
        same("PROJECT", "PRJ_Client", "Ash");
        same("SECTION", "XYZ_Key", "odd");
        same("SECTION", "JOBX_Key", "no job");
        row("SECOBS", "OBS_OpCode", none, QStringLiteral("BAB"));
    }

    void sourceByPrefix()
    {
        QFETCH(QString, table);
        QFETCH(QString, column);
        QFETCH(QString, ofInspection);
        QFETCH(QString, ofObservation);
        m_templates.load({textColumn(table, column)});
        COsdDomainDatasource *const datasource = show(table, column);
        takeLog();

        datasource->calculateValue(m_records.inspection);

        QCOMPARE(m_element->text(), ofInspection);
        QStringList expected;
        if (ofInspection == QLatin1String("<not source>"))
            expected.append(warning(QStringLiteral("Domain object not found for ") + column));
        expected.append(trace(
            QStringLiteral("Valid value for  %1 = [%2] Caption of %1").arg(column, ofInspection)));
        QCOMPARE(takeLog(), expected);

        datasource->calculateValue(m_records.observation);

        QCOMPARE(m_element->text(), ofObservation);
        QCOMPARE(COsdDomainDatasource::currentInspection(),
                 CDomainObjectPointer(m_records.observation));
        QCOMPARE(takeLog(),
                 QStringList({trace(QStringLiteral("Valid value for  %1 = [%2] Caption of %1")
                                        .arg(column, ofObservation))}));
    }

    void aSingleJobNameIsReadWhole()
    {
        // Only a path loses its first name.
        show(QStringLiteral("JOB"), QStringLiteral("JOB_Number"));
        COsdDomainDatasource::rememberDomainObject(m_records.inspection);
        QString column;
        QCOMPARE(m_datasource->findParentSource({QStringLiteral("JOB_Number")}, column),
                 CDomainObjectPointer(m_records.job));
        QCOMPARE(column, QStringLiteral("JOB_Number"));
        const QStringList path {QStringLiteral("A"), QStringLiteral("B"),
                                QStringLiteral("JOB_Number")};
        QCOMPARE(m_datasource->findParentSource(path, column), CDomainObjectPointer(m_records.job));
        QCOMPARE(column, QStringLiteral("B.JOB_Number"));
    }

    void leadingNamesAreForeignKeys()
    {
        const auto crew = QSharedPointer<TestRecord>::create(Kind::Job);
        const auto depot = QSharedPointer<TestRecord>::create(Kind::Job);
        depot->values.insert(QStringLiteral("INS_Town"), QStringLiteral("Ulm"));
        crew->references.insert(QStringLiteral("CRW_Depot_FK"), depot);
        m_records.inspection->references.insert(QStringLiteral("INS_Crew_FK"), crew);
        const QString column = QStringLiteral("INS_Crew_FK.CRW_Depot_FK.INS_Town");
        m_templates.load({textColumn(insTable, column)});
        show(insTable, column);

        m_datasource->calculateValue(m_records.inspection);
        QCOMPARE(m_element->text(), QStringLiteral("Ulm"));

        crew->references.clear();
        takeLog();
        m_datasource->calculateValue(m_records.inspection);
        QCOMPARE(m_element->text(), QStringLiteral("<not source>"));
        QCOMPARE(takeLog().first(),
                 warning(QStringLiteral("Domain object not found for ") + column));
    }

    void theNameAfterTheLastDotCounts()
    {
        show(insTable, QStringLiteral("OBJ_Self_FK."));
        m_records.section->references.insert(QStringLiteral("OBJ_Self_FK"), m_records.section);
        m_datasource->calculateValue(m_records.inspection);
        QCOMPARE(m_element->text(), QStringLiteral("nameless"));
        takeLog();
    }

    void aPathMayEndInAList()
    {
        const QString column = QStringLiteral("OBJ_Node_FK.OBJ_Shape");
        const auto node = QSharedPointer<TestRecord>::create(Kind::Node);
        node->values.insert(QStringLiteral("OBJ_Shape"), QStringLiteral("A"));
        m_records.section->references.insert(QStringLiteral("OBJ_Node_FK"), node);
        m_templates.load({{QStringLiteral("NODE"),
                           column,
                           QString(),
                           Type::List,
                           {CListItem(QStringLiteral("A"), QStringLiteral("Circular"))}}});
        show(QStringLiteral("NODE"), column);
        m_datasource->calculateValue(m_records.inspection);
        QCOMPARE(m_element->text(), QStringLiteral("Circular"));
        takeLog();
    }

    void aMissingLevelIsReported_data()
    {
        QTest::addColumn<QString>("column");
        for (const char *column : {"PRJ_Name", "OBJ_Key", "INS_Inspector", "JOB_Number"})
            QTest::newRow(column) << QString::fromLatin1(column);
    }

    void aMissingLevelIsReported()
    {
        QFETCH(QString, column);
        show(QStringLiteral("T"), column);
        QString read;
        COsdDomainDatasource::rememberDomainObject(m_records.project); // above every inspection

        QVERIFY(!m_datasource->findParentSource({column}, read));
        QCOMPARE(takeLog(),
                 QStringList({warning(QStringLiteral("Domain object not found for ") + column)}));
        QCOMPARE(m_datasource->readValueFromSourceObject({column}).toString(),
                 QStringLiteral("<not source>"));
        takeLog();
    }

    void anInspectionWithoutJob()
    {
        m_records.inspection->references.clear();
        m_templates.load({textColumn(QStringLiteral("JOB"), QStringLiteral("JOB_Number"))});
        show(QStringLiteral("JOB"), QStringLiteral("JOB_Number"));
        m_datasource->calculateValue(m_records.inspection);
        QCOMPARE(m_element->text(), QStringLiteral("<not source>"));
        takeLog();
    }

    void anEmptyPath()
    {
        show(insTable, QString());
        QString column = QStringLiteral("before");
        COsdDomainDatasource::rememberDomainObject(m_records.inspection);
        m_datasource->findParentSource({}, column);
        QCOMPARE(column, QString());
        takeLog();
    }

    void validateValue_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("line");
        QTest::newRow("text") << QVariant(QStringLiteral("abc"))
                              << trace(QStringLiteral("Valid value for  INS_A = [abc] Cap"));
        QTest::newRow("number") << QVariant(7)
                                << trace(QStringLiteral("Valid value for  INS_A = [7] Cap"));
        QTest::newRow("blank") << QVariant(QStringLiteral(" "))
                               << trace(QStringLiteral("Valid value for  INS_A = [ ] Cap"));
        QTest::newRow("empty") << QVariant(QStringLiteral(""))
                               << trace(QStringLiteral("Empty value for  INS_A = [] Cap"));
        QTest::newRow("database null") << QVariant(QVariant::String)
                                       << trace(QStringLiteral("Empty value for  INS_A = [] Cap"));
        QTest::newRow("invalid") << QVariant()
                                 << warning(QStringLiteral(
                                        "invalid value for  INS_A in SECINSP (Cap)"));
    }

    void validateValue()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, line);
        show(insTable, QStringLiteral("INS_A"));
        m_element->setCaption(QStringLiteral("Cap"));
        takeLog();

        QCOMPARE(m_datasource->validateValue(value), value);

        QCOMPARE(takeLog(), QStringList(line));
    }

    void anInvalidValueIsAnEmptyText()
    {
        m_templates.load({textColumn(insTable, QStringLiteral("INS_A"))});
        show(insTable, QStringLiteral("INS_A"));
        takeLog();
        m_datasource->calculateValue(m_records.inspection);
        QCOMPARE(m_element->text(), QString());
        QCOMPARE(takeLog(),
                 QStringList({warning(
                     QStringLiteral("invalid value for  INS_A in SECINSP (Caption of INS_A)"))}));
    }

    void format_data()
    {
        QTest::addColumn<Type>("type");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("line"); // beside the one about the value
        const auto row = [](const char *name, Type type, const char *value, const char *shown,
                            const QString &line = QString()) {
            QTest::newRow(name) << type << QVariant(QString::fromUtf8(value))
                                << QString::fromUtf8(shown) << line;
        };
        row("text", Type::Text, "2024-03-05", "2024-03-05");
        row("number as text", Type::Number, "1234.5", "1234.5");
        QTest::newRow("number") << Type::Number << QVariant(1234.5) << QStringLiteral("1234.5")
                                << QString();
        row("date", Type::Date, "2024-03-05", "05.03.2024");
        row("date of a date and time", Type::Date, "2024-03-05T23:59:58", "05.03.2024");
        row("date of a date and time of UTC", Type::Date, "2024-03-05T23:59:58Z", "05.03.2024");
        row("date of a skipped hour", Type::Date, "2024-03-31T02:30:00", "31.03.2024");
        row("no date", Type::Date, "5 March", "5 March",
            error(QStringLiteral("Wrong QDate conversion from 5 March")));
        row("a date with more behind it", Type::Date, "2024-03-05, noon", "2024-03-05, noon",
            error(QStringLiteral("Wrong QDate conversion from 2024-03-05, noon")));
        row("no such day", Type::Date, "2024-02-30", "2024-02-30",
            error(QStringLiteral("Wrong QDate conversion from 2024-02-30")));
        row("a time is no date", Type::Date, "12:34:56", "12:34:56",
            error(QStringLiteral("Wrong QDate conversion from 12:34:56")));
        row("empty date", Type::Date, "", "",
            error(QStringLiteral("Wrong QDate conversion from ")));
        row("time", Type::Time, "07:08:09", "07-08-09");
        row("time without seconds", Type::Time, "07:08", "07-08-00");
        row("time with milliseconds", Type::Time, "07:08:09.123", "07-08-09");
        row("time of a date and time", Type::Time, "2024-03-05T07:08:09", "07-08-09");
        row("time of a date", Type::Time, "2024-03-05", "00-00-00");
        row("no time", Type::Time, "noon", "noon",
            error(QStringLiteral("Wrong QTime conversion from noon")));
        row("no such hour", Type::Time, "25:00:00", "25:00:00",
            error(QStringLiteral("Wrong QTime conversion from 25:00:00")));
        row("empty time", Type::Time, "", "",
            error(QStringLiteral("Wrong QTime conversion from ")));
        row("no type", Type::Invalid, "2024-03-05", "2024-03-05",
            error(QStringLiteral("Template column type invalid for V_INS_X")));
    }

    void format()
    {
        QFETCH(Type, type);
        QFETCH(QVariant, value);
        QFETCH(QString, shown);
        QFETCH(QString, line);
        LocaleSettings::setLocale(QLocale(QLocale::German, QLocale::Germany));
        LocaleSettings::setDateFormat(QStringLiteral("dd.MM.yyyy"));
        LocaleSettings::setTimeFormat(QStringLiteral("hh-mm-ss"));
        m_templates.load({{insTable, QStringLiteral("V_INS_X"), QString(), type, {}}});
        show(insTable, QStringLiteral("V_INS_X"));
        m_records.inspection->values.insert(QStringLiteral("V_INS_X"), value);
        takeLog();

        m_datasource->calculateValue(m_records.inspection);

        QCOMPARE(m_element->text(), shown);
        QStringList log = takeLog();
        QVERIFY(log.takeFirst().contains(QLatin1String(" value for  V_INS_X = [")));
        QCOMPARE(log, line.isEmpty() ? QStringList() : QStringList(line));
    }

    void aDateIsWrittenAsTheUserWritesIt()
    {
        m_templates.load({{insTable, QStringLiteral("INS_D"), QString(), Type::Date, {}}});
        show(insTable, QStringLiteral("INS_D"));
        m_records.inspection->values.insert(QStringLiteral("INS_D"), QStringLiteral("2024-12-31"));
        LocaleSettings::setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
        m_datasource->calculateValue(m_records.inspection);
        QCOMPARE(m_element->text(), QStringLiteral("12/31/24"));
        LocaleSettings::setLocale(QLocale(QLocale::German, QLocale::Germany));
        // Not by itself: the host announces the inspection again.
        QCOMPARE(m_element->text(), QStringLiteral("12/31/24"));
        m_datasource->calculateValue(m_records.inspection);
        QCOMPARE(m_element->text(), QStringLiteral("31.12.24"));
    }

    void listColumn_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("shown");
        QTest::newRow("item") << QVariant(QStringLiteral("A")) << QStringLiteral("Circular");
        QTest::newRow("number in the database") << QVariant(3) << QStringLiteral("Egg");
        QTest::newRow("digits in the database")
            << QVariant(QStringLiteral("3")) << QStringLiteral("Egg");
        QTest::newRow("other digits of the same number")
            << QVariant(QStringLiteral("03")) << QStringLiteral("03");
        QTest::newRow("other case") << QVariant(QStringLiteral("a")) << QStringLiteral("a");
        QTest::newRow("unknown") << QVariant(QStringLiteral("Z")) << QStringLiteral("Z");
        QTest::newRow("item without caption")
            << QVariant(QStringLiteral("E")) << QStringLiteral("E");
        QTest::newRow("first of two") << QVariant(QStringLiteral("D")) << QStringLiteral("One");
        QTest::newRow("empty") << QVariant(QStringLiteral("")) << QString();
    }

    void listColumn()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, shown);
        loadShapes();
        show(insTable, QStringLiteral("INS_Shape"));
        m_records.inspection->values.insert(QStringLiteral("INS_Shape"), value);
        takeLog();

        m_datasource->calculateValue(m_records.inspection);

        QCOMPARE(m_element->text(), shown);
        QCOMPARE(takeLog().size(), 1); // the one about the value
    }

    void noValueIsNoItem()
    {
        m_templates.load({{insTable,
                           QStringLiteral("INS_Shape"),
                           QString(),
                           Type::List,
                           {CListItem(QString(), QStringLiteral("Unknown"))}}});
        show(insTable, QStringLiteral("INS_Shape"));
        const QVariant databaseNull(QVariant::String);
        for (const QVariant &value : {QVariant(QStringLiteral("")), databaseNull}) {
            m_records.inspection->values.insert(QStringLiteral("INS_Shape"), value);
            m_datasource->calculateValue(m_records.inspection);
            QCOMPARE(m_element->text(), QStringLiteral("Unknown"));
            m_datasource->calculateValue({});
        }

        m_records.inspection->values.clear();
        m_datasource->calculateValue(m_records.inspection);
        QCOMPARE(m_element->text(), QString());
        takeLog();
    }

    void aListColumnWithoutList()
    {
        m_templates.load({{insTable, QStringLiteral("INS_Shape"), QString(), Type::List, {}}});
        show(insTable, QStringLiteral("INS_Shape"));
        m_records.inspection->values.insert(QStringLiteral("INS_Shape"), QStringLiteral("A"));
        takeLog();

        m_datasource->calculateValue(m_records.inspection);

        QCOMPARE(m_element->text(), QStringLiteral("A"));
        QCOMPARE(
            takeLog().mid(1),
            QStringList({warning(QStringLiteral("No details list found for column INS_Shape"))}));
    }

    void listDetailsOfAnyColumn()
    {
        loadShapes();
        const auto catalog = m_resolver->catalogTemplate();
        show(insTable, QStringLiteral("INS_Shape"));
        QCOMPARE(m_datasource->getListDetailsCaption(*catalog, QStringLiteral("A")),
                 QStringLiteral("Circular"));
        QCOMPARE(m_datasource->fetchColumnDatasource(*catalog, QStringLiteral("A")),
                 QStringLiteral("Circular"));
        QCOMPARE(takeLog(), QStringList());
        // Items alone do not make a list.
        show(insTable, QStringLiteral("INS_Choice"));
        QCOMPARE(m_datasource->fetchColumnDatasource(*catalog, QStringLiteral("A")), QString());
        QCOMPARE(m_datasource->getListDetailsCaption(*catalog, QStringLiteral("A")),
                 QStringLiteral("Circular"));

        show(insTable, QStringLiteral("INS_Text"));
        takeLog();
        QCOMPARE(m_datasource->fetchColumnDatasource(*catalog, QStringLiteral("A")), QString());
        QCOMPARE(takeLog(), QStringList());
        QCOMPARE(m_datasource->getListDetailsCaption(*catalog, QStringLiteral("A")), QString());
        QCOMPARE(
            takeLog(),
            QStringList({warning(QStringLiteral("No details list found for column INS_Text"))}));
    }

    void withoutTemplateTheTextIsRaw()
    {
        show(insTable, QStringLiteral("INS_Inspector"));

        m_datasource->calculateValue(m_records.inspection);

        QCOMPARE(m_element->text(), QStringLiteral("Ada"));
        QCOMPARE(takeLog(),
                 QStringList({trace(QStringLiteral("Valid value for  INS_Inspector = [Ada] ")),
                              error(QStringLiteral("CatalogTemplate not available!"))}));
        QVERIFY(!m_datasource->getCatalogTemplate());
        QCOMPARE(takeLog(), QStringList({error(QStringLiteral("CatalogTemplate not available!"))}));
    }

    void withoutResolver()
    {
        COsdDomainDatasource::captionResolver.clear();
        CVideoOverlayText element;
        ElementParam param = recordOf(insTable, QStringLiteral("INS_Inspector"));
        auto *const datasource = new COsdDomainDatasource({}, &element, param);
        datasource->calculateValue(m_records.inspection);
        QCOMPARE(element.text(), QStringLiteral("Ada"));
        takeLog();
        QVERIFY(!datasource->getTemplateColumn(insTable, QStringLiteral("INS_A")));
        QCOMPARE(
            takeLog(),
            QStringList({error(QStringLiteral("TemplateColumn not found for INS_A in SECINSP"))}));
    }

    void withoutColumnTheTextIsRaw()
    {
        m_templates.load({textColumn(insTable, QStringLiteral("INS_Other"))});
        show(insTable, QStringLiteral("INS_Inspector"));
        takeLog();

        m_datasource->calculateValue(m_records.inspection);

        QCOMPARE(m_element->text(), QStringLiteral("Ada"));
        QCOMPARE(
            takeLog(),
            QStringList(
                {trace(QStringLiteral("Valid value for  INS_Inspector = [Ada] ")),
                 warning(QStringLiteral("Cannot find caption for INS_Inspector in SECINSP")),
                 error(QStringLiteral("TemplateColumn not found for INS_Inspector in SECINSP"))}));
    }

    void templateColumn()
    {
        m_templates.load({textColumn(insTable, QStringLiteral("INS_Other"))});
        show(insTable, QStringLiteral("INS_Other"));
        const auto *const column
            = m_datasource->getTemplateColumn(insTable, QStringLiteral("INS_Other"));
        QVERIFY(column);
        QCOMPARE(column->key(), QStringLiteral("INS_Other"));
        QCOMPARE(m_datasource->getCatalogTemplate(), m_resolver->catalogTemplate());
        QCOMPARE(takeLog(), QStringList());
    }

    void memo_data()
    {
        QTest::addColumn<QString>("column");
        QTest::addColumn<QVariant>("memo");
        QTest::addColumn<QString>("shown");
        const QString observation = QStringLiteral("OBS_Observation");
        QTest::newRow("memo") << observation << QVariant(QStringLiteral("left side"))
                              << QStringLiteral("Crack / left side");
        QTest::newRow("empty memo")
            << observation << QVariant(QStringLiteral("")) << QStringLiteral("Crack");
        QTest::newRow("null memo")
            << observation << QVariant(QVariant::String) << QStringLiteral("Crack");
        QTest::newRow("no memo") << observation << QVariant() << QStringLiteral("Crack");
        QTest::newRow("another column")
            << QStringLiteral("OBS_OpCode") << QVariant(QStringLiteral("left side"))
            << QStringLiteral("BAB");
        QTest::newRow("at the end of a path")
            << QStringLiteral("OBS_Self_FK.OBS_Observation")
            << QVariant(QStringLiteral("left side")) << QStringLiteral("Crack / left side");
        QTest::newRow("on the way only")
            << QStringLiteral("OBS_Observation.OBS_OpCode") << QVariant(QStringLiteral("left side"))
            << QStringLiteral("BAB");
    }

    void memo()
    {
        QFETCH(QString, column);
        QFETCH(QVariant, memo);
        QFETCH(QString, shown);
        m_records.observation->values.insert(QStringLiteral("OBS_Memo"), memo);
        for (const char *key : {"OBS_Self_FK", "OBS_Observation"})
            m_records.observation->references.insert(QString::fromLatin1(key),
                                                     m_records.observation);
        m_templates.load({textColumn(obsTable, column)});
        show(obsTable, column);

        m_datasource->calculateValue(m_records.observation);

        QCOMPARE(m_element->text(), shown);
    }

    void noObservationNoMemo()
    {
        m_records.inspection->values.insert(QStringLiteral("OBS_Memo"), QStringLiteral("stray"));
        show(obsTable, QStringLiteral("OBS_Observation"));
        m_datasource->calculateValue(m_records.inspection);
        QCOMPARE(m_element->text(), QStringLiteral("<not source>"));
        takeLog();
    }

    void aMemoFollowsTheCaptionOfAListItem()
    {
        m_records.observation->values.insert(QStringLiteral("OBS_Memo"), QStringLiteral("deep"));
        m_templates.load({{obsTable,
                           QStringLiteral("OBS_Observation"),
                           QString(),
                           Type::List,
                           {CListItem(QStringLiteral("Crack"), QStringLiteral("Riss"))}}});
        show(obsTable, QStringLiteral("OBS_Observation"));
        m_datasource->calculateValue(m_records.observation);
        QCOMPARE(m_element->text(), QStringLiteral("Riss / deep"));
    }

    void captionFollowsTheTemplate()
    {
        show(insTable, QStringLiteral("INS_Inspector"));
        m_element->setCaptionVisible(true);
        m_templates.load({textColumn(insTable, QStringLiteral("INS_Inspector"))});
        QCOMPARE(m_element->text(), QStringLiteral("Caption of INS_Inspector:  "));
        takeLog();
    }

    void theSharedRecordItselfMayBeHandedOver()
    {
        COsdDomainDatasource::rememberDomainObject(m_records.inspection);
        m_templates.load({textColumn(insTable, QStringLiteral("INS_Inspector"))});
        show(insTable, QStringLiteral("INS_Inspector"));
        m_datasource->calculateValue(COsdDomainDatasource::currentInspection());
        QCOMPARE(m_element->text(), QStringLiteral("Ada"));
    }

protected:
    void prepare() override
    {
        qputenv("TZ", "Europe/Berlin"); // where an hour of March is skipped
        LocaleSettings::reset();
        LocaleSettings::setLocale(QLocale::c());
        m_records.forgetReferences();
        m_records = Records();
        m_resolver = QSharedPointer<TemplateCaptionResolver>::create(m_templates);
        COsdDomainDatasource::captionResolver = m_resolver;
        COsdDomainDatasource::rememberDomainObject({});
        m_element.reset();
        m_datasource = nullptr;
    }

private:
    static ColumnSpec textColumn(const QString &table, const QString &name)
    {
        return {table, name, QStringLiteral("Caption of ") + name, Type::Text, {}};
    }

    void loadShapes()
    {
        m_templates.load({{insTable,
                           QStringLiteral("INS_Shape"),
                           QString(),
                           Type::List,
                           {CListItem(QStringLiteral("A"), QStringLiteral("Circular")),
                            CListItem(QStringLiteral("3"), QStringLiteral("Egg")),
                            CListItem(QStringLiteral("D"), QStringLiteral("One")),
                            CListItem(QStringLiteral("D"), QStringLiteral("Two")),
                            CListItem(QStringLiteral("E"), QString())}},
                          {insTable, QStringLiteral("INS_Text"), QString(), Type::Text, {}},
                          {insTable,
                           QStringLiteral("INS_Choice"),
                           QString(),
                           Type::Text,
                           {CListItem(QStringLiteral("A"), QStringLiteral("Circular"))}}});
    }

    /// A new element bound to this column, without a visible caption.
    COsdDomainDatasource *show(const QString &table, const QString &column)
    {
        m_element = std::make_unique<CVideoOverlayText>();
        ElementParam param = recordOf(table, column);
        m_datasource = new COsdDomainDatasource(m_resolver, m_element.get(), param);
        return m_datasource;
    }

    Records m_records;
    TestTemplates m_templates;
    QSharedPointer<TemplateCaptionResolver> m_resolver;
    std::unique_ptr<CVideoOverlayText> m_element;
    COsdDomainDatasource *m_datasource = nullptr; ///< a child of the element
};

QTEST_MAIN(tst_COsdDomainDatasource)
#include "tst_COsdDomainDatasource.moc"
