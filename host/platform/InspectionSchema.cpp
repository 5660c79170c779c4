// SPDX-License-Identifier: Apache-2.0
#include "host/platform/InspectionSchema.h"

#include <QHash>

#include <algorithm>

namespace Velmar::Database {

namespace {

using Kind = DomainRecord::Kind;
using Type = InspectionSchema::Type;
using Access = InspectionSchema::Access;
using Column = InspectionSchema::Column;
using Table = InspectionSchema::Table;

Column column(const char *name, Type type = Type::Text, Access access = Access::ReadWrite)
{
    return {QString::fromLatin1(name), type, access, {}};
}

Column reference(const char *name, const QVector<Kind> &kinds, Access access = Access::ReadWrite)
{
    return {QString::fromLatin1(name), Type::Reference, access, kinds};
}

/// A parent is chosen when a record is made and never changes.
Column parent(const char *name, Kind kind)
{
    return reference(name, {kind}, Access::ReadOnly);
}

Table projectTable()
{
    const QString name = QStringLiteral("PROJECT");
    return {name,
            name,
            {column("PRJ_Name"), column("PRJ_Number"), column("PRJ_Client"), column("PRJ_City"),
             column("PRJ_CatalogId")},
            {}};
}

Table jobTable()
{
    const QString name = QStringLiteral("JOB");
    return {name,
            name,
            {column("JOB_Number"), column("JOB_Name"), column("JOB_Operator"),
             column("JOB_Contractor"), parent("JOB_Project_FK", Kind::Project)},
            {QStringLiteral("JOB_Project_FK")}};
}

Table sectionTable()
{
    const QString name = QStringLiteral("SECTION");
    return {name,
            name,
            {column("OBJ_Key"), column("OBJ_Street"), column("OBJ_City"), column("OBJ_Material"),
             column("OBJ_Shape"), column("OBJ_Size", Type::Integer),
             column("OBJ_Length", Type::Number), column("OBJ_Usage"),
             reference("OBJ_FromNode_FK", {Kind::Node}), reference("OBJ_ToNode_FK", {Kind::Node}),
             column("OBJ_Year", Type::Integer), parent("OBJ_Project_FK", Kind::Project)},
            {QStringLiteral("OBJ_Project_FK")}};
}

Table nodeTable()
{
    const QString name = QStringLiteral("NODE");
    return {name,
            name,
            {column("OBJ_Key"), column("OBJ_Street"), column("OBJ_Depth", Type::Number),
             column("OBJ_Type"), parent("OBJ_Project_FK", Kind::Project)},
            {QStringLiteral("OBJ_Project_FK")}};
}

Table inspectionTable()
{
    return {QStringLiteral("SECINSP"),
            QStringLiteral("V_SECINSP"),
            {column("INS_Number"),
             column("INS_Inspector"),
             column("INS_Date", Type::Date),
             column("INS_Time", Type::Time),
             column("INS_EndDate", Type::Date),
             column("INS_EndTime", Type::Time),
             column("INS_Direction"),
             column("INS_Method"),
             column("INS_Weather"),
             reference("INS_Job_FK", {Kind::Job}),
             column("INS_Remark"),
             reference("INS_Object_REF", {Kind::Section, Kind::Node}, Access::ReadOnly),
             parent("INS_Section_FK", Kind::Section),
             parent("INS_Node_FK", Kind::Node),
             column("V_INS_Customer", Type::Text, Access::ReadOnly),
             column("V_INS_Contractor", Type::Text, Access::ReadOnly),
             column("V_INS_DateOfStart", Type::Date, Access::ReadOnly),
             column("V_INS_TimeOfStart", Type::Time, Access::ReadOnly),
             column("V_INS_DateOfEnd", Type::Date, Access::ReadOnly),
             column("V_INS_TimeOfEnd", Type::Time, Access::ReadOnly)},
            {QStringLiteral("INS_Section_FK"), QStringLiteral("INS_Node_FK")}};
}

Table observationTable()
{
    const QString name = QStringLiteral("SECOBS");
    return {name,
            name,
            {column("OBS_Observation"), column("OBS_OpCode"), column("OBS_Memo"),
             column("OBS_Distance", Type::Number), column("OBS_Quantification", Type::Number),
             column("OBS_ClockFrom", Type::Integer), column("OBS_ClockTo", Type::Integer),
             column("OBS_Time", Type::Time), parent("OBS_Inspection_FK", Kind::Inspection)},
            {QStringLiteral("OBS_Inspection_FK")}};
}

} // namespace

const Column *Table::column(const QString &columnName) const
{
    const auto found = std::find_if(columns.cbegin(), columns.cend(),
                                    [&](const Column &c) { return c.name == columnName; });
    return found == columns.cend() ? nullptr : &*found;
}

const Table &InspectionSchema::table(Kind kind)
{
    static const QVector<Table> tables {projectTable(), jobTable(),        sectionTable(),
                                        nodeTable(),    inspectionTable(), observationTable()};
    return tables.at(static_cast<int>(kind));
}

const QVector<QStringList> &InspectionSchema::migrations()
{
    // AUTOINCREMENT: a number is never given twice, so that the handle of a deleted record cannot
    // come back to life as another record.
    static const QVector<QStringList> steps {
        {
            QStringLiteral(R"(CREATE TABLE PROJECT (
                Id INTEGER PRIMARY KEY AUTOINCREMENT,
                PRJ_Name TEXT, PRJ_Number TEXT, PRJ_Client TEXT, PRJ_City TEXT,
                PRJ_CatalogId TEXT))"),
            QStringLiteral(R"(CREATE TABLE JOB (
                Id INTEGER PRIMARY KEY AUTOINCREMENT,
                JOB_Project_FK INTEGER NOT NULL REFERENCES PROJECT(Id) ON DELETE CASCADE,
                JOB_Number TEXT, JOB_Name TEXT, JOB_Operator TEXT, JOB_Contractor TEXT))"),
            QStringLiteral(R"(CREATE TABLE NODE (
                Id INTEGER PRIMARY KEY AUTOINCREMENT,
                OBJ_Project_FK INTEGER NOT NULL REFERENCES PROJECT(Id) ON DELETE CASCADE,
                OBJ_Key TEXT, OBJ_Street TEXT, OBJ_Depth REAL, OBJ_Type TEXT))"),
            QStringLiteral(R"(CREATE TABLE SECTION (
                Id INTEGER PRIMARY KEY AUTOINCREMENT,
                OBJ_Project_FK INTEGER NOT NULL REFERENCES PROJECT(Id) ON DELETE CASCADE,
                OBJ_Key TEXT, OBJ_Street TEXT, OBJ_City TEXT, OBJ_Material TEXT, OBJ_Shape TEXT,
                OBJ_Size INTEGER, OBJ_Length REAL, OBJ_Usage TEXT,
                OBJ_FromNode_FK INTEGER REFERENCES NODE(Id) ON DELETE SET NULL,
                OBJ_ToNode_FK INTEGER REFERENCES NODE(Id) ON DELETE SET NULL,
                OBJ_Year INTEGER))"),
            QStringLiteral(R"(CREATE TABLE SECINSP (
                Id INTEGER PRIMARY KEY AUTOINCREMENT,
                INS_Section_FK INTEGER REFERENCES SECTION(Id) ON DELETE CASCADE,
                INS_Node_FK INTEGER REFERENCES NODE(Id) ON DELETE CASCADE,
                INS_Number TEXT, INS_Inspector TEXT, INS_Date TEXT, INS_Time TEXT,
                INS_EndDate TEXT, INS_EndTime TEXT, INS_Direction TEXT, INS_Method TEXT,
                INS_Weather TEXT, INS_Remark TEXT,
                INS_Job_FK INTEGER REFERENCES JOB(Id) ON DELETE SET NULL,
                CHECK ((INS_Section_FK IS NULL) <> (INS_Node_FK IS NULL))))"),
            QStringLiteral(R"(CREATE TABLE SECOBS (
                Id INTEGER PRIMARY KEY AUTOINCREMENT,
                OBS_Inspection_FK INTEGER NOT NULL REFERENCES SECINSP(Id) ON DELETE CASCADE,
                OBS_Observation TEXT, OBS_OpCode TEXT, OBS_Memo TEXT, OBS_Distance REAL,
                OBS_Quantification REAL, OBS_ClockFrom INTEGER, OBS_ClockTo INTEGER,
                OBS_Time TEXT))"),
            QStringLiteral("CREATE INDEX JOB_OfProject ON JOB(JOB_Project_FK)"),
            QStringLiteral("CREATE INDEX NODE_OfProject ON NODE(OBJ_Project_FK)"),
            QStringLiteral("CREATE INDEX SECTION_OfProject ON SECTION(OBJ_Project_FK)"),
            QStringLiteral("CREATE INDEX SECTION_FromNode ON SECTION(OBJ_FromNode_FK)"),
            QStringLiteral("CREATE INDEX SECTION_ToNode ON SECTION(OBJ_ToNode_FK)"),
            QStringLiteral("CREATE INDEX SECINSP_OfSection ON SECINSP(INS_Section_FK)"),
            QStringLiteral("CREATE INDEX SECINSP_OfNode ON SECINSP(INS_Node_FK)"),
            QStringLiteral("CREATE INDEX SECINSP_OfJob ON SECINSP(INS_Job_FK)"),
            QStringLiteral("CREATE INDEX SECOBS_OfInspection ON SECOBS(OBS_Inspection_FK)"),
            QStringLiteral(R"(CREATE VIEW V_SECINSP AS
                SELECT i.*, coalesce(i.INS_Section_FK, i.INS_Node_FK) AS INS_Object_REF,
                    p.PRJ_Client AS V_INS_Customer, j.JOB_Contractor AS V_INS_Contractor,
                    i.INS_Date AS V_INS_DateOfStart, i.INS_Time AS V_INS_TimeOfStart,
                    i.INS_EndDate AS V_INS_DateOfEnd, i.INS_EndTime AS V_INS_TimeOfEnd
                FROM SECINSP i
                LEFT JOIN SECTION s ON s.Id = i.INS_Section_FK
                LEFT JOIN NODE n ON n.Id = i.INS_Node_FK
                LEFT JOIN PROJECT p ON p.Id = coalesce(s.OBJ_Project_FK, n.OBJ_Project_FK)
                LEFT JOIN JOB j ON j.Id = i.INS_Job_FK)"),
        },
    };
    return steps;
}

} // namespace Velmar::Database
