// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/inspection/ProjectSession.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace Velmar::Host {

class LiveOverlay;
class Messages;
class UiTexts;

/// Project, inspection and observations, and the operator's language and units.
class ProjectController : public QObject
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(QVariantList files READ files NOTIFY filesChanged)
    Q_PROPERTY(QString path READ path NOTIFY projectChanged)
    Q_PROPERTY(QString projectName READ projectName NOTIFY projectChanged)
    Q_PROPERTY(QVariantList inspections READ inspections NOTIFY projectChanged)
    Q_PROPERTY(int inspectionIndex READ inspectionIndex NOTIFY inspectionChanged)
    Q_PROPERTY(QString inspectionName READ inspectionName NOTIFY inspectionChanged)
    Q_PROPERTY(QVariantList observationCodes READ observationCodes NOTIFY inspectionChanged)
    Q_PROPERTY(QVariantList catalogs READ catalogs CONSTANT)
    Q_PROPERTY(QString language READ language WRITE setLanguage NOTIFY languageChanged)
    Q_PROPERTY(bool imperial READ isImperial WRITE setImperial NOTIFY unitsChanged)
    // clang-format on

public:
    /// None of the references is owned; all must outlive this object. Project files are in
    /// @p directory, which is made with the first of them.
    ProjectController(QString directory, LiveOverlay &overlay, Messages &messages,
                      const UiTexts &texts, QObject *parent = nullptr);
    ~ProjectController() override;

    QVariantList files() const; ///< maps of "name" and "path"
    QString path() const;       ///< of the open project; empty: none
    QString projectName() const;
    QVariantList inspections() const;                         ///< maps of "name" and "detail"
    int inspectionIndex() const { return m_inspectionIndex; } ///< -1: none
    QString inspectionName() const;
    /// Of the project's catalog, for what is inspected: maps of "code" and "caption".
    QVariantList observationCodes() const;
    QVariantList catalogs() const; ///< "id" and "name"

    QString language() const; ///< two letters of ISO 639
    void setLanguage(const QString &language);
    bool isImperial() const;
    void setImperial(bool imperial);

    /// Makes a project of the demonstration when there is none at all, and opens it.
    void provideDemo(const QString &demoFile);

    /// These return false, with a message, when they fail.
    Q_INVOKABLE bool open(const QString &path);
    /// A project with one section and one inspection of it, which is started.
    Q_INVOKABLE bool create(const QString &name, const QString &section, const QString &catalogId);
    Q_INVOKABLE bool startInspection(int index);
    Q_INVOKABLE bool addObservation(const QString &code, double distanceM, const QString &remark);

Q_SIGNALS:
    void filesChanged();
    void projectChanged();
    void inspectionChanged();
    void languageChanged();
    void unitsChanged();

private:
    using RecordPointer = ProjectSession::RecordPointer;

    bool fail(const QString &reason);
    QString catalogId() const;
    bool fill(Database::InspectionDatabase &database, const QString &name, const QString &section,
              const QString &catalogId) const;

    QString m_directory;
    Messages &m_messages;
    const UiTexts &m_texts;
    ProjectSession &m_session;
    QVector<RecordPointer> m_inspections;
    int m_inspectionIndex = -1;
};

} // namespace Velmar::Host
