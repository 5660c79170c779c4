// SPDX-License-Identifier: Apache-2.0
#include "host/inspection/ProjectFile.h"

#include "host/platform/SmallFile.h"

#include <QJsonDocument>

namespace Velmar::Host {

using Database::CDomainObjectPointer;

namespace {

const QString jobName = QStringLiteral("job %1");
const QString nodeName = QStringLiteral("node %1");
const QString sectionName = QStringLiteral("section %1");

/// What a reference column refers to; empty for all other columns.
QString referredName(const QString &column)
{
    if (column == QLatin1String("INS_Job_FK"))
        return jobName;
    return column.endsWith(QLatin1String("Node_FK")) ? nodeName : QString();
}

} // namespace

ProjectFile::ProjectFile(Database::InspectionDatabase &database)
    : m_database(database)
{
}

bool ProjectFile::fail(const QString &reason)
{
    if (m_errorText.isEmpty()) // the first reason is the one that helps
        m_errorText = reason;
    return false;
}

bool ProjectFile::load(const QString &path, const QString &catalogId)
{
    m_errorText.clear();
    m_named.clear();
    const QString what = QStringLiteral("Cannot read project file \"%1\": ").arg(path);
    QString unreadable;
    const QByteArray bytes = readSmallFile(path, &unreadable);
    if (!unreadable.isEmpty())
        return fail(what + unreadable);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError)
        return fail(what
                    + QStringLiteral("%1 at byte %2").arg(error.errorString()).arg(error.offset));
    if (!document.object().value(QLatin1String("project")).isObject())
        return fail(what + QStringLiteral("it has no \"project\""));
    const QJsonObject content = document.object();
    if (m_database.transaction([&] { return addAll(content, catalogId); }))
        return true;
    m_errorText = what + (m_errorText.isEmpty() ? m_database.errorText() : m_errorText);
    return false;
}

bool ProjectFile::addAll(const QJsonObject &file, const QString &catalogId)
{
    const auto list = [&](const char *name) { return file.value(QLatin1String(name)).toArray(); };
    QJsonObject project = file.value(QLatin1String("project")).toObject();
    if (!catalogId.isEmpty())
        project.insert(Database::catalogIdColumn, catalogId);
    m_project = add(Kind::Project, {}, project);
    const QString key = QStringLiteral("OBJ_Key");
    if (!m_project || !addList(Kind::Job, list("jobs"), QStringLiteral("JOB_Number"))
        || !addList(Kind::Node, list("nodes"), key)
        || !addList(Kind::Section, list("sections"), key))
        return false;
    for (const QJsonValue &entry : list("inspections")) {
        if (!addInspection(entry.toObject()))
            return false;
    }
    return true;
}

bool ProjectFile::addList(Kind kind, const QJsonArray &list, const QString &keyColumn)
{
    const QString name = kind == Kind::Job ? jobName : kind == Kind::Node ? nodeName : sectionName;
    for (const QJsonValue &value : list) {
        const RecordPointer record = add(kind, m_project, value.toObject());
        if (!record)
            return false;
        m_named.insert(name.arg(value.toObject().value(keyColumn).toString()), record);
    }
    return true;
}

bool ProjectFile::addInspection(QJsonObject entry)
{
    const QString object = entry.take(QLatin1String("object")).toString();
    const QJsonArray observations = entry.take(QLatin1String("observations")).toArray();
    const RecordPointer parent
        = m_named.value(sectionName.arg(object), m_named.value(nodeName.arg(object)));
    if (!parent)
        return fail(QStringLiteral("there is no section or node \"%1\"").arg(object));
    const RecordPointer inspection = add(Kind::Inspection, parent, entry);
    if (!inspection)
        return false;
    for (const QJsonValue &observation : observations) {
        if (!add(Kind::Observation, inspection, observation.toObject()))
            return false;
    }
    return true;
}

ProjectFile::RecordPointer ProjectFile::add(Kind kind, const RecordPointer &parent,
                                            const QJsonObject &entry)
{
    Database::InspectionDatabase::Values values = entry.toVariantMap();
    for (auto it = values.begin(); it != values.end(); ++it) {
        const QString name = referredName(it.key());
        if (name.isEmpty())
            continue;
        const QString key = it.value().toString();
        const CDomainObjectPointer target = m_named.value(name.arg(key));
        if (!target) {
            fail(QStringLiteral("%1 refers to \"%2\", which is not there").arg(it.key(), key));
            return {};
        }
        it.value() = QVariant::fromValue(target);
    }
    const RecordPointer record = m_database.add(kind, parent, values);
    if (!record)
        fail(m_database.errorText());
    return record;
}

} // namespace Velmar::Host
