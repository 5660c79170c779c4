// SPDX-License-Identifier: Apache-2.0
#include "host/screens/ProjectController.h"

#include "host/platform/CatalogStore.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "host/screens/LiveOverlay.h"
#include "host/screens/Messages.h"
#include "host/screens/UiTexts.h"
#include "platform/database/CDomainObjectHelper.h"
#include "platform/shared/GlobalLocaleData.h"
#include "platform/templates/CListItem.h"
#include "platform/translation/CTranslator.h"

#include <QDate>
#include <QDir>
#include <QRegularExpression>

namespace Velmar::Host {

using CATManagement::CatalogStore;
using Database::CDomainObjectHelper;
using Database::InspectionDatabase;
using Shared::LocaleSettings;
using Translation::CTranslator;
using Translation::TranslationStore;
using Kind = InspectionDatabase::Kind;

namespace {

const QString suffix = QStringLiteral(".xqproject");

QString textOf(const Database::CDomainObjectPointer &record, const QString &column)
{
    return record ? record->readValue(column).toString() : QString();
}

QVariantMap entry(const QString &firstKey, const QString &first, const QString &secondKey,
                  const QString &second)
{
    return {{firstKey, first}, {secondKey, second}};
}

} // namespace

ProjectController::ProjectController(QString directory, LiveOverlay &overlay, Messages &messages,
                                     const UiTexts &texts, QObject *parent)
    : QObject(parent)
    , m_directory(std::move(directory))
    , m_messages(messages)
    , m_texts(texts)
    , m_session(overlay.project())
{
    connect(CTranslator::instance(), &CTranslator::currentLocaleChanged, this,
            &ProjectController::languageChanged);
    connect(Shared::GlobalLocaleData::instance(), &Shared::GlobalLocaleData::localeChanged, this,
            &ProjectController::unitsChanged);
}

ProjectController::~ProjectController() = default;

bool ProjectController::fail(const QString &reason)
{
    m_messages.error(reason);
    return false;
}

QVariantList ProjectController::files() const
{
    QVariantList list;
    const QDir directory(m_directory);
    const QStringList names = directory.entryList({QLatin1Char('*') + suffix}, QDir::Files);
    for (const QString &name : names)
        list.append(entry(QStringLiteral("name"), name.chopped(suffix.size()),
                          QStringLiteral("path"), directory.absoluteFilePath(name)));
    return list;
}

QString ProjectController::path() const
{
    const InspectionDatabase *database = m_session.database();
    return database ? database->path() : QString();
}

QString ProjectController::projectName() const
{
    return textOf(m_session.project(), QStringLiteral("PRJ_Name"));
}

QVariantList ProjectController::inspections() const
{
    QVariantList list;
    for (const RecordPointer &inspection : m_inspections) {
        const Database::CDomainObjectPointer object = inspection->parentObject();
        list.append(entry(QStringLiteral("name"), textOf(object, QStringLiteral("OBJ_Key")),
                          QStringLiteral("detail"),
                          QStringList {textOf(object, QStringLiteral("OBJ_Street")),
                                       textOf(inspection, QStringLiteral("INS_Date"))}
                              .filter(QRegularExpression(QStringLiteral(".")))
                              .join(QStringLiteral(", "))));
    }
    return list;
}

QString ProjectController::inspectionName() const
{
    return m_inspectionIndex < 0
        ? QString()
        : textOf(m_inspections.at(m_inspectionIndex)->parentObject(), QStringLiteral("OBJ_Key"));
}

QString ProjectController::catalogId() const
{
    return m_session.project() ? CDomainObjectHelper::catalogIdFromObject(m_session.project())
                               : QString();
}

QVariantList ProjectController::observationCodes() const
{
    QVariantList list;
    const QVector<Templates::CListItem> items = CatalogStore::instance().choices(
        catalogId(), QStringLiteral("SECOBS"), QStringLiteral("OBS_Observation"),
        m_session.inspectedTable());
    for (const Templates::CListItem &item : items)
        list.append(entry(QStringLiteral("code"), item.internalValue(), QStringLiteral("caption"),
                          item.caption()));
    return list;
}

QVariantList ProjectController::catalogs() const
{
    QVariantList list;
    const CatalogStore &store = CatalogStore::instance();
    const QStringList ids = store.catalogIds();
    for (const QString &id : ids)
        list.append(entry(QStringLiteral("id"), id, QStringLiteral("name"), store.catalogName(id)));
    return list;
}

void ProjectController::provideDemo(const QString &demoFile)
{
    if (!files().isEmpty() || !QDir().mkpath(m_directory))
        return;
    const QString path = QDir(m_directory).filePath(QStringLiteral("Demo") + suffix);
    const QString catalog = language() == QLatin1String("de") ? QStringLiteral("EN13508-2-DEU-DE")
                                                              : QString(); // the file's own
    if (!m_session.createDemo(path, demoFile, catalog)) {
        fail(m_session.errorText());
        return;
    }
    Q_EMIT filesChanged();
    if (open(path))
        startInspection(0);
}

bool ProjectController::open(const QString &path)
{
    if (!m_session.open(path))
        return fail(m_session.errorText());
    m_inspections = m_session.inspections();
    m_inspectionIndex = -1;
    Q_EMIT projectChanged();
    Q_EMIT inspectionChanged();
    if (!m_session.hasTemplate())
        m_messages.error(m_texts.text(QStringLiteral("errorNoCatalog")).arg(catalogId()));
    else
        m_messages.dismiss();
    return true;
}

bool ProjectController::fill(InspectionDatabase &database, const QString &name,
                             const QString &section, const QString &catalogId) const
{
    return database.transaction([&] {
        const RecordPointer project = database.add(
            Kind::Project, {},
            {{QStringLiteral("PRJ_Name"), name}, {Database::catalogIdColumn, catalogId}});
        const RecordPointer object = project
            ? database.add(Kind::Section, project, {{QStringLiteral("OBJ_Key"), section}})
            : RecordPointer();
        const RecordPointer inspection = object
            ? database.add(Kind::Inspection, object,
                           {{QStringLiteral("INS_Number"), QStringLiteral("1")},
                            {QStringLiteral("INS_Date"), QDate::currentDate()},
                            {QStringLiteral("INS_Time"), QTime::currentTime()}})
            : RecordPointer();
        return !inspection.isNull();
    });
}

bool ProjectController::create(const QString &name, const QString &section,
                               const QString &catalogId)
{
    static const QRegularExpression unusable(QStringLiteral("[/\\\\:*?\"<>|\\x00-\\x1f]"));
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || section.trimmed().isEmpty() || trimmed.contains(unusable)
        || trimmed.startsWith(QLatin1Char('.')))
        return fail(m_texts.text(QStringLiteral("errorProjectName")));
    if (!QDir().mkpath(m_directory))
        return fail(m_texts.text(QStringLiteral("errorNoFolder")).arg(m_directory));
    const QString path = QDir(m_directory).filePath(trimmed + suffix);
    {
        InspectionDatabase database;
        if (!database.create(path,
                             [&] { return fill(database, trimmed, section.trimmed(), catalogId); }))
            return fail(database.errorText());
    }
    Q_EMIT filesChanged();
    return open(path) && startInspection(0);
}

bool ProjectController::startInspection(int index)
{
    if (index < 0 || index >= m_inspections.size())
        return false;
    if (!m_session.startInspection(m_inspections.at(index)))
        return fail(m_session.errorText());
    m_inspectionIndex = index;
    Q_EMIT inspectionChanged();
    return true;
}

bool ProjectController::addObservation(const QString &code, double distanceM, const QString &remark)
{
    ProjectSession::Observation observation;
    observation.code = code;
    observation.distance = distanceM;
    observation.remark = remark.trimmed();
    if (!m_session.createObservation(observation))
        return fail(m_session.errorText());
    m_messages.dismiss();
    return true;
}

QString ProjectController::language() const
{
    return CTranslator::instance()->locale().language() == QLocale::German ? QStringLiteral("de")
                                                                           : QStringLiteral("en");
}

void ProjectController::setLanguage(const QString &language)
{
    TranslationStore::instance().setLocale(QLocale(language));
    // Dates with the day first and 24 hours, as the narrow boxes of the overlay want them.
    LocaleSettings::setLocale(language == QLatin1String("de")
                                  ? QLocale(QLocale::German, QLocale::Germany)
                                  : QLocale(QLocale::English, QLocale::UnitedKingdom));
}

bool ProjectController::isImperial() const
{
    return LocaleSettings::unit(LocaleSettings::Quantity::Distance) == QLatin1String("ft");
}

void ProjectController::setImperial(bool imperial)
{
    LocaleSettings::setUnitSystem(imperial ? LocaleSettings::UnitSystem::Imperial
                                           : LocaleSettings::UnitSystem::Metric);
}

} // namespace Velmar::Host
