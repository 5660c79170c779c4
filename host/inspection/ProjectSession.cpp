// SPDX-License-Identifier: Apache-2.0
#include "host/inspection/ProjectSession.h"

#include "host/inspection/ProjectFile.h"
#include "host/platform/AppStateControl.h"
#include "host/platform/CatalogStore.h"
#include "platform/database/CDomainObjectHelper.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

namespace Velmar::Host {

using Database::CDomainObjectHelper;
using Database::CDomainObjectPointer;
using Database::InspectionDatabase;
using Kind = InspectionDatabase::Kind;

ProjectSession::ProjectSession() = default;

ProjectSession::~ProjectSession()
{
    close();
}

bool ProjectSession::fail(const QString &reason)
{
    m_errorText = reason;
    return false;
}

bool ProjectSession::open(const QString &path)
{
    m_errorText.clear();
    auto database = std::make_unique<InspectionDatabase>();
    if (!database->open(path))
        return fail(database->errorText());
    const QVector<RecordPointer> projects = database->projects();
    if (projects.isEmpty())
        return fail(database->errorText().isEmpty()
                        ? QStringLiteral("Project database \"%1\" holds no project").arg(path)
                        : database->errorText());
    enter(std::move(database), projects.constFirst(), false);
    return true;
}

bool ProjectSession::openSimple(const QString &folder)
{
    m_errorText.clear();
    if (!QFileInfo(folder).isDir())
        return fail(QStringLiteral("Cannot open simple project \"%1\": there is no such folder")
                        .arg(folder));
    // A project record is needed all the same: without one, no project would be open.
    auto database = std::make_unique<InspectionDatabase>();
    const QString name = QDir(QDir(folder).absolutePath()).dirName();
    if (!database->create(QStringLiteral(":memory:")))
        return fail(database->errorText());
    const RecordPointer project
        = database->add(Kind::Project, {}, {{QStringLiteral("PRJ_Name"), name}});
    if (!project)
        return fail(database->errorText());
    enter(std::move(database), project, true);
    return true;
}

void ProjectSession::enter(DatabasePointer database, const RecordPointer &project, bool isSimple)
{
    using ProjectKind = AppStateControl::ProjectKind;
    endInspection();
    const DatabasePointer before = std::exchange(m_database, std::move(database));
    m_project = project;
    m_isSimple = isSimple;
    m_hasTemplate = false;
    AppStateControl::setActiveProject(project, isSimple ? ProjectKind::Simple : ProjectKind::Full);
    const QString catalogId = CDomainObjectHelper::catalogIdFromObject(project);
    if (!catalogId.isEmpty())
        m_hasTemplate = CATManagement::CatalogStore::instance().loadTemplate(catalogId);
}

void ProjectSession::close()
{
    m_errorText.clear();
    if (!m_database)
        return;
    endInspection();
    const DatabasePointer before = std::move(m_database); // closed when all were told
    m_project.reset();
    m_isSimple = false;
    m_hasTemplate = false;
    AppStateControl::setActiveProject({});
}

bool ProjectSession::createDemo(const QString &path, const QString &demoFile,
                                const QString &catalogId)
{
    m_errorText.clear();
    InspectionDatabase database;
    if (!database.create(path))
        return fail(database.errorText());
    ProjectFile file(database);
    if (file.load(demoFile, catalogId))
        return true;
    database.close();
    QFile::remove(path);
    return fail(file.errorText());
}

QVector<ProjectSession::RecordPointer> ProjectSession::inspections()
{
    QVector<RecordPointer> result;
    if (!m_database)
        return result;
    for (const Kind kind : {Kind::Section, Kind::Node}) {
        for (const RecordPointer &object : m_database->children(m_project, kind))
            result += m_database->children(object, Kind::Inspection);
    }
    return result;
}

QString ProjectSession::inspectedTable() const
{
    const auto object = m_inspection
        ? m_inspection->parentObject().dynamicCast<Database::DomainRecord>()
        : QSharedPointer<Database::DomainRecord>();
    if (!object)
        return {};
    return object->kind() == Kind::Node ? QStringLiteral("NODE") : QStringLiteral("SECTION");
}

bool ProjectSession::startInspection(const RecordPointer &inspection)
{
    m_errorText.clear();
    if (!m_database)
        return fail(QStringLiteral("Cannot start the inspection: no project is open"));
    if (!inspection || inspection->kind() != Kind::Inspection || !m_database->contains(inspection))
        return fail(QStringLiteral("Cannot start the inspection: there is no such inspection"));
    m_inspection = inspection;
    AppStateControl::setActiveInspection(inspection);
    return true;
}

void ProjectSession::endInspection()
{
    if (!m_inspection)
        return;
    m_inspection.reset();
    AppStateControl::setActiveInspection({});
}

void ProjectSession::announceInspectionAgain()
{
    if (m_inspection)
        AppStateControl::setActiveInspection(m_inspection);
}

ProjectSession::RecordPointer ProjectSession::createObservation(const Observation &observation)
{
    m_errorText.clear();
    if (!m_inspection) {
        fail(QStringLiteral("Cannot store the observation: no inspection is active"));
        return {};
    }
    // The code once more: the column is a list, which shows the caption of its item.
    const QString text = observation.text.isEmpty() ? observation.code : observation.text;
    const RecordPointer record
        = m_database->add(Kind::Observation, m_inspection,
                          {{QStringLiteral("OBS_OpCode"), observation.code},
                           {QStringLiteral("OBS_Observation"), text},
                           {QStringLiteral("OBS_Memo"), observation.remark},
                           {QStringLiteral("OBS_Distance"), observation.distance},
                           {QStringLiteral("OBS_Time"), observation.time}});
    if (record)
        AppStateControl::announceObservation(record);
    else
        fail(m_database->errorText());
    return record;
}

} // namespace Velmar::Host
