// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/InspectionDatabase.h"

#include <QString>
#include <QTime>
#include <QVector>

#include <memory>

namespace Velmar::Host {

/// What the operator works on: a project, an inspection in it, and its observations. Tells
/// AppState in the order that the overlay relies on; see open() and close(). One at a time, GUI
/// thread only. What fails returns false or null and leaves its reason in errorText().
class ProjectSession
{
public:
    using RecordPointer = Database::InspectionDatabase::RecordPointer;

    struct Observation
    {
        QString code;          ///< of the catalog's list
        QString text;          ///< in place of the caption that the catalog has for the code
        double distance = 0.0; ///< [m] from the start of the section
        QString remark;        ///< may be empty
        QTime time = QTime::currentTime();
    };

    ProjectSession();
    ~ProjectSession(); ///< closes

    /// Opens a project file and leaves the one before. Announced in this order: inspection null
    /// (if one was active), project, template. Only then the database before is closed. When the
    /// file cannot be opened, everything stays as it was. Without the project's catalog the
    /// project is opened all the same: hasTemplate() tells.
    bool open(const QString &path);

    /// Opens a folder of pictures and videos as a project without inspections.
    bool openSimple(const QString &folder);

    /// Announces inspection null (if one was active), then project null, then closes the database.
    void close();

    /// Makes a project file of the demonstration. Nothing stays behind when that fails.
    /// @p catalogId replaces the demonstration's catalog, unless it is empty.
    bool createDemo(const QString &path, const QString &demoFile,
                    const QString &catalogId = QString());

    bool isOpen() const { return m_database != nullptr; }
    bool isSimple() const { return m_isSimple; }
    bool hasTemplate() const { return m_hasTemplate; }
    RecordPointer project() const { return m_project; }       ///< null while closed
    RecordPointer inspection() const { return m_inspection; } ///< null unless one is active
    /// The table that the inspected object stands in, "SECTION" or "NODE"; empty unless one is.
    QString inspectedTable() const;
    QString errorText() const { return m_errorText; }

    /// Those of the project's sections, then of its nodes; none while closed.
    QVector<RecordPointer> inspections();
    Database::InspectionDatabase *database() { return m_database.get(); } ///< null while closed

    /// Makes a record of inspections() the active one and announces it.
    bool startInspection(const RecordPointer &inspection);
    void endInspection(); ///< announces null if one was active

    /// The texts do not look again by themselves after a profile, a template or a locale was
    /// loaded. Nothing without an active inspection.
    void announceInspectionAgain();

    /// Stores an observation of the active inspection, then announces it; null when it failed.
    RecordPointer createObservation(const Observation &observation);

private:
    Q_DISABLE_COPY(ProjectSession)
    using DatabasePointer = std::unique_ptr<Database::InspectionDatabase>;

    bool fail(const QString &reason);
    void enter(DatabasePointer database, const RecordPointer &project, bool isSimple);

    DatabasePointer m_database;
    RecordPointer m_project;
    RecordPointer m_inspection;
    bool m_isSimple = false;
    bool m_hasTemplate = false;
    QString m_errorText;
};

} // namespace Velmar::Host
