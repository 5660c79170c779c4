// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/InspectionDatabase.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace Velmar::Host {

/// Brings a project from its JSON text into a database: "project", then "jobs", "nodes",
/// "sections" and "inspections" with their "observations", each an object of column and value.
/// Jobs are referred to by JOB_Number, nodes and sections by OBJ_Key.
class ProjectFile
{
public:
    explicit ProjectFile(Database::InspectionDatabase &database); ///< not owned

    /// All of the file or, with false and errorText(), nothing. @p catalogId replaces the
    /// project's, unless it is empty.
    bool load(const QString &path, const QString &catalogId = QString());

    QString errorText() const { return m_errorText; }

private:
    using Kind = Database::InspectionDatabase::Kind;
    using RecordPointer = Database::InspectionDatabase::RecordPointer;

    bool fail(const QString &reason);
    bool addAll(const QJsonObject &file, const QString &catalogId);
    bool addList(Kind kind, const QJsonArray &list, const QString &keyColumn);
    bool addInspection(QJsonObject entry);
    RecordPointer add(Kind kind, const RecordPointer &parent, const QJsonObject &entry);

    Database::InspectionDatabase &m_database;
    RecordPointer m_project;
    QHash<QString, RecordPointer> m_named; ///< by kind of reference and key
    QString m_errorText;
};

} // namespace Velmar::Host
