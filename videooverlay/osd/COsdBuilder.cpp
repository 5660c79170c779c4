// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdBuilder.h"

#include "platform/appstate/AppState.h"
#include "platform/templates/CCatalogTemplate.h"
#include "platform/templates/CProgramView.h"
#include "platform/templates/CTemplateColumn.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/elements/ElementType_p.h"
#include "videooverlay/models/VideoOverlayElementListModel.h"
#include "videooverlay/osd/CAbstractOsdDatasourceFactory.h"
#include "videooverlay/osd/COsdDomainDatasource.h"
#include "videooverlay/osd/COsdDomainStaticTextDatasource.h"
#include "videooverlay/osd/COsdStaticTextDatasource.h"
#include "videooverlay/osd/COsdValueDatasource.h"
#include "videooverlay/osd/InspectionColumns_p.h"
#include "videooverlay/osd/StandInRecord_p.h"
#include "videooverlay/profiles/COsdSettings.h"

#include <QQmlEngine>
#include <QScopeGuard>
#include <QStringList>

#include <algorithm>

namespace Velmar::VideoOverlay {

namespace {

using Type = CVideoOverlayElement::Type;

const QString typeKey = QStringLiteral("type");
const QString tableKey = QStringLiteral("TDIR_Key");

} // namespace

COsdBuilder::COsdBuilder()
{
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership); // nobody else destroys it
}

COsdBuilder::~COsdBuilder() = default;

COsdBuilder *COsdBuilder::instance()
{
    static COsdBuilder builder;
    return &builder;
}

COsdBuilder *COsdBuilder::initialize(CATManagement::CTemplateManager &templates,
                                     CVideoOverlayManager &manager)
{
    COsdBuilder *const builder = instance();
    builder->m_captionResolver = QSharedPointer<TemplateCaptionResolver>::create(templates);
    builder->m_manager = &manager;
    COsdDomainDatasource::captionResolver = builder->m_captionResolver;
    connect(builder->m_captionResolver.data(), &TemplateCaptionResolver::templateReady, builder,
            &COsdBuilder::templateChanged);
    connect(AppState::instance(), &AppState::activeProjectChanged, builder,
            &COsdBuilder::hideInspTextsForSimpleProjectOrNoActiveProject);
    return builder;
}

QString COsdBuilder::getDefaultProfilePath()
{
    const QString path = COsdSettings::getDefaultProfile();
    if (path.isEmpty()) {
        // "form": kept so, log readers look for it
        log(LogLevel::Error,
            QStringLiteral("Cannot read OSD default profile path form OsdSettings.xml"));
        return QString();
    }
    log(LogLevel::Info, QStringLiteral("OSD profile selected to load: ") + path);
    return path;
}

QString COsdBuilder::generateOsdColumnsKey(const QString &tdirKey, const QString &column, int type)
{
    return tdirKey + QLatin1Char('.') + column + QLatin1Char('.') + QString::number(type);
}

void COsdBuilder::registerFactory(CAbstractOsdDatasourceFactory *factory)
{
    m_factories.append(factory);
    if (factory)
        factory->m_builder = this;
}

void COsdBuilder::forgetFactory(CAbstractOsdDatasourceFactory *factory)
{
    // Not taken out of the list: it may be destroyed while the list is walked.
    std::replace(m_factories.begin(), m_factories.end(), factory,
                 static_cast<CAbstractOsdDatasourceFactory *>(nullptr));
}

void COsdBuilder::load(Profile *profile)
{
    const QPointer<CVideoOverlayManager> manager(m_manager);
    if (!manager) {
        log(LogLevel::Error, QStringLiteral("OSD builder is not initialized"));
        return;
    }
    const QPointer<Profile> loaded(profile);
    manager->getElementListModel()->setFreeText(nullptr);
    manager->removeElements();
    // Handlers of what was removed may have ended either of them.
    if (!loaded || !manager)
        return;
    createElements(*manager, loaded->elements());
    loadInspectionTexts();
    hideInspTextsForSimpleProjectOrNoActiveProject();
    if (manager)
        manager->getElementListModel()->reset();
    Q_EMIT profileLoaded();
    log(LogLevel::Info,
        QStringLiteral("OSD profile loaded: '") + (loaded ? loaded->name() : QString())
            + QLatin1Char('\''));
}

void COsdBuilder::createElements(CVideoOverlayManager &manager, QList<ElementParam> &records)
{
    manager.setGeneralSettings(ElementParam::createGeneralSettingsDefault());
    // In place, because each record receives the id of its element. By index: a handler may load
    // a template, which adds records.
    for (int i = 0; i < records.size(); ++i) {
        ElementParam &record = records[i];
        try {
            createElement(manager, record);
        } catch (...) {
            // The element stays, like one that no factory serves: the profile keeps its record.
            log(LogLevel::Error,
                QStringLiteral("OSD builder: a factory failed for '")
                    + record.value(typeKey).toString() + QLatin1Char('\''));
        }
    }
}

void COsdBuilder::createElement(CVideoOverlayManager &manager, ElementParam &record)
{
    switch (typeOf(record)) {
    case Type::FreePicture:
        serve(manager, *manager.createImage(), record);
        return;
    case Type::InspText:
    case Type::InspStaticText:
        serve(manager, *manager.createText(), record);
        return;
    case Type::SystemText:
        serve(manager, *manager.createText(record), record);
        return;
    case Type::FreeText:
        createFreeText(manager, record);
        return;
    case Type::Invalid:
        if (isGeneral(record)) {
            manager.setGeneralSettings(record);
            return;
        }
        break;
    default:
        break;
    }
    createStaticText(manager, record);
}

void COsdBuilder::serve(CVideoOverlayManager &manager, CVideoOverlayElement &element,
                        ElementParam &record)
{
    // By its id, because a factory may delete the element, or the host the manager.
    const QPointer<CVideoOverlayManager> guarded(&manager);
    const int id = element.id();
    const auto standIn = qScopeGuard([&] {
        auto *const served = guarded ? guarded->getElement(guarded->rowIndexByID(id)) : nullptr;
        if (served && served->getParamObject().isEmpty())
            new StandInRecord(*served, record); // a child of the element
    });
    constructDatasource(&element, record);
}

void COsdBuilder::createFreeText(CVideoOverlayManager &manager, ElementParam &record)
{
    CVideoOverlayText *const text = manager.createText(record);
    new COsdValueDatasource(m_captionResolver, text, record); // a child of the element
    QStringList favorites = record.value(QStringLiteral("favorites")).toStringList();
    manager.setFavorites(favorites, record.value(QStringLiteral("maxLineNumber")).toInt());
    manager.getElementListModel()->setFreeText(text);
}

void COsdBuilder::createStaticText(CVideoOverlayManager &manager, ElementParam &record)
{
    CVideoOverlayText *const text = manager.createText(record);
    const QString column = record.value(ElementParam::NAME_COLUMNBOUND).toString();
    if (column.startsWith(QLatin1String("PRJ_")))
        new COsdDomainStaticTextDatasource(text, record); // children of the element
    else
        new COsdStaticTextDatasource(text, record);
}

COsdElementDatasource *COsdBuilder::constructDatasource(CVideoOverlayElement *element,
                                                        ElementParam &record)
{
    // By index: a factory may register or destroy another.
    for (int i = 0; i < m_factories.size(); ++i) {
        CAbstractOsdDatasourceFactory *const factory = m_factories.at(i);
        COsdElementDatasource *const datasource
            = factory ? factory->getDatasource(element, record) : nullptr;
        if (datasource)
            return datasource;
    }
    log(LogLevel::Error,
        QStringLiteral("OSD builder cannot find datasource for '")
            + record.value(typeKey).toString() + QLatin1Char('\''));
    return nullptr;
}

void COsdBuilder::loadInspectionTexts()
{
    const auto catalogTemplate = m_captionResolver ? m_captionResolver->catalogTemplate()
                                                   : QSharedPointer<Templates::CCatalogTemplate>();
    if (!catalogTemplate || !m_manager)
        return;
    QSet<QString> keys = getAllOsdColumnsForTemplate(*catalogTemplate);
    const QPointer<Profile> profile(m_manager->currentProfile());
    if (!profile)
        return;
    QHash<QString, const ElementParam *> existing;
    createLookupHashFromExistingColumns(profile, existing);
    overridingWithNewColumns(keys, existing, profile);
    if (profile) // a handler of what was added may have ended it
        removeUnusedElements(profile, existing, keys);
}

void COsdBuilder::templateChanged()
{
    loadInspectionTexts();
    hideInspTextsForSimpleProjectOrNoActiveProject();
    if (m_manager && m_manager->currentProfile())
        m_manager->getElementListModel()->reset();
}

void COsdBuilder::hideInspTextsForSimpleProjectOrNoActiveProject()
{
    if (!m_manager)
        return;
    const AppState *const state = AppState::instance();
    m_manager->temporaryHideInspTexts(!state->getActiveProject() || state->isSimpleProjectActive());
}

QSet<QString>
COsdBuilder::getAllOsdColumnsForTemplate(const Templates::CCatalogTemplate &catalogTemplate)
{
    QSet<QString> keys;
    const auto collect = [&keys](const Templates::CTemplateColumn &column) {
        const QString name = column.key();
        if (!column.isOsd() || !isDisplayName(name))
            return;
        const QString table = column.tableKey();
        if (!isOfferedUnder(table, name)) {
            log(LogLevel::Debug,
                QStringLiteral("Not allowed table name <") + table + QStringLiteral("> or <") + name
                    + QStringLiteral("> column's prefix!"));
            return;
        }
        keys.insert(generateOsdColumnsKey(table, name, Type::InspText));
        // What belongs to an observation appears and expires; it never stands still.
        if (!isObservationTable(table))
            keys.insert(generateOsdColumnsKey(table, name, Type::InspStaticText));
    };
    for (int i = 0; i < catalogTemplate.programViewCount(); ++i) {
        const Templates::CProgramView *const view = catalogTemplate.programView(i);
        if (!view || !COsdDomainDatasource::allowedProgramViews().contains(view->key()))
            continue;
        for (int j = 0; j < view->columnCount(); ++j) {
            if (const Templates::CTemplateColumn *const column = view->column(j))
                collect(*column);
        }
    }
    return keys;
}

void COsdBuilder::createLookupHashFromExistingColumns(
    Profile *profile, QHash<QString, const ElementParam *> &existing)
{
    for (const ElementParam &record : profile->elements()) {
        const QString key = inspectionKeyOf(record);
        if (!key.isNull())
            existing.insert(key, &record);
    }
}

void COsdBuilder::overridingWithNewColumns(QSet<QString> &keys,
                                           const QHash<QString, const ElementParam *> &existing,
                                           Profile *profile)
{
    // Sorted: the order within a set differs from run to run, and it ends up in the file.
    QStringList missing;
    for (const QString &key : keys) {
        if (!existing.contains(key))
            missing.append(key);
    }
    missing.sort();
    const QPointer<Profile> guarded(profile);
    for (const QString &key : missing) {
        if (!guarded || !m_manager)
            return; // a handler of what was added so far ended it
        log(LogLevel::Debug,
            QStringLiteral("insp. text ") + key
                + QStringLiteral(" missing in profile xml will be added."));
        addInspectionText(key, *profile);
    }
}

void COsdBuilder::addInspectionText(const QString &key, Profile &profile)
{
    // The column itself may hold dots: only the first and the last part are taken off.
    const QString type = key.section(QLatin1Char('.'), -1);
    const bool isText = type.toInt() == Type::InspText;
    ElementParam record = isText ? ElementParam::createInspTextDefault()
                                 : ElementParam::createInspStaticTextDefault();
    record.insert(ElementParam::NAME_COLUMNBOUND, key.section(QLatin1Char('.'), 1, -2));
    record.insert(tableKey, key.section(QLatin1Char('.'), 0, 0));
    profile.elements().prepend(record);

    const QPointer<Profile> guarded(&profile);
    QPointer<CVideoOverlayText> element;
    try {
        element = m_manager->createText();
        serve(*m_manager, *element, profile.elements().first());
    } catch (...) {
        log(LogLevel::Error,
            QStringLiteral("OSD builder: a factory failed for '") + type + QLatin1Char('\''));
        if (guarded)
            eraseRecords(guarded->elements(), {key});
        if (element && m_manager)
            m_manager->deleteElementFromModel(element);
    }
}

void COsdBuilder::removeUnusedElements(Profile *profile,
                                       const QHash<QString, const ElementParam *> &existing,
                                       QSet<QString> &keys)
{
    if (!m_manager)
        return;
    QSet<QString> removed;
    QList<QPointer<CVideoOverlayElement>> unused;
    // Collected first: an element takes its record along when it is deleted.
    const QList<CVideoOverlayElement *> elements = m_manager->getElementList();
    for (CVideoOverlayElement *element : elements) {
        const QString key = inspectionKeyOf(element->getParamObject());
        if (!existing.contains(key) || keys.contains(key))
            continue;
        removed.insert(key);
        unused.append(element);
    }
    const QPointer<Profile> guarded(profile);
    for (const QPointer<CVideoOverlayElement> &element : unused) {
        if (!element || !m_manager)
            continue;
        const ElementParam record = element->getParamObject();
        log(LogLevel::Debug,
            QStringLiteral("Deleting unused element ")
                + record.value(ElementParam::NAME_COLUMNBOUND).toString() + QLatin1Char(' ')
                + record.value(tableKey).toString());
        m_manager->deleteElementFromModel(element);
    }
    if (guarded)
        eraseRecords(guarded->elements(), removed);
}

} // namespace Velmar::VideoOverlay
