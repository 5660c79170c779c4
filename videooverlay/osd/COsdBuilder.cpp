// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdBuilder.h"

#include "platform/appstate/AppState.h"
#include "platform/templates/CCatalogTemplate.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/elements/ElementType_p.h"
#include "videooverlay/models/VideoOverlayElementListModel.h"
#include "videooverlay/models/VideoOverlayProfilesModel.h"
#include "videooverlay/osd/CAbstractOsdDatasourceFactory.h"
#include "videooverlay/osd/COsdDomainDatasource.h"
#include "videooverlay/osd/COsdDomainStaticTextDatasource.h"
#include "videooverlay/osd/COsdStaticTextDatasource.h"
#include "videooverlay/osd/COsdValueDatasource.h"
#include "videooverlay/osd/InspectionColumns_p.h"
#include "videooverlay/osd/StandInRecord_p.h"
#include "videooverlay/profiles/COsdSettings.h"

#include <QPair>
#include <QQmlEngine>
#include <QScopeGuard>
#include <QStringList>

#include <algorithm>

namespace Velmar::VideoOverlay {

namespace {

using Type = CVideoOverlayElement::Type;

const QString idKey = QStringLiteral("id");
const QString typeKey = QStringLiteral("type");
const QString tableKey = QStringLiteral("TDIR_Key");

/// Those of an earlier overlay would say that an element which is not shown this time was deleted.
void forgetIds(QList<ElementParam> &records)
{
    for (ElementParam &record : records) {
        if (!isGeneral(record))
            record.remove(idKey);
    }
}

} // namespace

class COsdBuilder::Newest
{
public:
    explicit Newest(const COsdBuilder &builder)
        : m_builder(builder)
        , m_load(builder.m_loads)
        , m_look(builder.m_looks)
    {
    }

    bool isLoad() const { return m_load == m_builder.m_loads; } ///< no other load has begun
    bool isLook() const { return isLoad() && m_look == m_builder.m_looks; }

    /// @p element as it was made last; null when a display or whoever keeps account of the elements
    /// began another load in the meantime, or deleted it.
    template <typename Element>
    Element *alive(CVideoOverlayManager &manager, Element *element) const
    {
        const bool isThere = isLoad()
            && (manager.getElement(manager.elementsCount() - 1) == element
                || manager.getElementList().contains(element));
        return isThere ? element : nullptr;
    }

private:
    const COsdBuilder &m_builder;
    const quint64 m_load;
    const quint64 m_look;
};

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
    if (!m_manager) {
        log(LogLevel::Error, QStringLiteral("OSD builder is not initialized"));
        return;
    }
    if (isOutdated(profile))
        return;
    const QPointer<Profile> loaded(profile);
    if (!build(*m_manager, profile))
        return;
    Q_EMIT profileLoaded();
    log(LogLevel::Info,
        QStringLiteral("OSD profile loaded: '") + (loaded ? loaded->name() : QString())
            + QLatin1Char('\''));
}

/// Whether another profile has become current since this one was announced: whoever heard of it
/// earlier selected that, and it is loaded by now or will be.
bool COsdBuilder::isOutdated(const Profile *profile) const
{
    // A load that a handler asks for in the middle of another comes from nobody's announcement.
    const auto *announcer
        = m_isLoading ? nullptr : qobject_cast<VideoOverlayProfilesModel *>(sender());
    if (announcer)
        return !announcer->isCurrent(profile);
    const VideoOverlayProfilesModel *const profiles = m_manager->getProfilesModel();
    return profiles && profiles->isAnnouncing(profile) && !profiles->isCurrent(profile);
}

/// False when it was ended on the way, or there is nothing to build.
bool COsdBuilder::build(CVideoOverlayManager &manager, Profile *profile)
{
    const QPointer<CVideoOverlayManager> guarded(&manager);
    const QPointer<Profile> loaded(profile);
    ++m_loads;
    const Newest newest(*this);
    const auto isOver = [&] { return !newest.isLoad() || !guarded || !loaded; };
    m_isLoading = true;
    m_textsFollow = true;
    m_isLooking = false;
    m_builtIn = guarded;
    m_built = nullptr;
    const auto end = qScopeGuard([&] {
        if (newest.isLoad())
            m_isLoading = m_textsFollow = false;
    });

    if (profile)
        forgetIds(profile->elements());
    manager.getElementListModel()->setFreeText(nullptr);
    manager.removeElements();
    if (isOver())
        return false;
    createElements(manager, loaded->elements(), isOver);
    if (isOver())
        return false;
    m_textsFollow = false;
    loadInspectionTexts();
    if (isOver())
        return false;
    hideInspTextsForSimpleProjectOrNoActiveProject();
    if (isOver())
        return false;
    manager.getElementListModel()->reset();
    if (isOver())
        return false;
    m_built = loaded;
    // Whether or not the host passes the signal on.
    if (VideoOverlayProfilesModel *profiles = manager.getProfilesModel())
        profiles->onLoaded();
    return true;
}

void COsdBuilder::createElements(CVideoOverlayManager &manager, QList<ElementParam> &records)
{
    const QPointer<CVideoOverlayManager> guarded(&manager);
    const Newest newest(*this);
    createElements(manager, records, [&] { return !guarded || !newest.isLoad(); });
}

void COsdBuilder::createElements(CVideoOverlayManager &manager, QList<ElementParam> &records,
                                 const std::function<bool()> &isOver)
{
    manager.setGeneralSettings(ElementParam::createGeneralSettingsDefault());
    for (int i = 0; !isOver() && i < records.size(); ++i) {
        // A copy: whatever a handler does to the list, the record in hand stays. The list gets it
        // back, because it receives the id of its element.
        ElementParam record = records.at(i);
        try {
            createElement(manager, record);
        } catch (...) {
            // The element stays, like one that no factory serves: the profile keeps its record.
            log(LogLevel::Error,
                QStringLiteral("OSD builder: a factory failed for '")
                    + record.value(typeKey).toString() + QLatin1Char('\''));
        }
        if (!isOver() && i < records.size())
            records[i] = record;
    }
}

void COsdBuilder::createElement(CVideoOverlayManager &manager, ElementParam &record)
{
    const Newest newest(*this);
    switch (typeOf(record)) {
    case Type::FreePicture:
        serve(manager, newest.alive(manager, manager.createImage()), record);
        return;
    case Type::InspText:
    case Type::InspStaticText:
        serve(manager, newest.alive(manager, manager.createText()), record);
        return;
    case Type::SystemText:
        serve(manager, newest.alive(manager, manager.createText(record)), record);
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

void COsdBuilder::serve(CVideoOverlayManager &manager, CVideoOverlayElement *element,
                        ElementParam &record)
{
    if (!element)
        return;
    // By its id, because a factory may delete the element, or the host the manager.
    const QPointer<CVideoOverlayManager> guarded(&manager);
    const int id = element->id();
    const auto standIn = qScopeGuard([&] {
        auto *const served = guarded ? guarded->getElement(guarded->rowIndexByID(id)) : nullptr;
        if (served && served->getParamObject().isEmpty())
            new StandInRecord(*served, record); // a child of the element
    });
    constructDatasource(element, record);
}

void COsdBuilder::createFreeText(CVideoOverlayManager &manager, ElementParam &record)
{
    const Newest newest(*this);
    CVideoOverlayText *const made = newest.alive(manager, manager.createText(record));
    if (!made)
        return;
    const QPointer<CVideoOverlayText> text(made);
    new COsdValueDatasource(m_captionResolver, made, record); // a child of the element
    if (!newest.isLoad())
        return;
    QStringList favorites = record.value(QStringLiteral("favorites")).toStringList();
    manager.setFavorites(favorites, record.value(QStringLiteral("maxLineNumber")).toInt());
    if (text && newest.isLoad())
        manager.getElementListModel()->setFreeText(text);
}

void COsdBuilder::createStaticText(CVideoOverlayManager &manager, ElementParam &record)
{
    const Newest newest(*this);
    CVideoOverlayText *const text = newest.alive(manager, manager.createText(record));
    if (!text)
        return;
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
    // The load on its way looks at the template when its own elements are there.
    if (m_textsFollow)
        return;
    ++m_looks; // ends the one on its way
    if (m_isLooking)
        return; // which then looks again
    const Newest newest(*this);
    m_isLooking = true;
    const auto end = qScopeGuard([&] {
        if (newest.isLoad())
            m_isLooking = false;
    });
    for (quint64 look = 0; newest.isLoad() && look != m_looks;) {
        look = m_looks;
        followTemplate();
    }
}

void COsdBuilder::followTemplate()
{
    const auto catalogTemplate = m_captionResolver ? m_captionResolver->catalogTemplate()
                                                   : QSharedPointer<Templates::CCatalogTemplate>();
    if (!catalogTemplate || !m_manager)
        return;
    const Newest newest(*this);
    QSet<QString> keys = getAllOsdColumnsForTemplate(*catalogTemplate);
    const QPointer<Profile> profile(m_manager->currentProfile());
    if (!profile)
        return;
    QHash<QString, const ElementParam *> existing;
    createLookupHashFromExistingColumns(profile, existing);
    overridingWithNewColumns(keys, existing, profile);
    if (profile && newest.isLook()) // a handler of what was added may have ended it
        removeUnusedElements(profile, existing, keys);
}

void COsdBuilder::templateChanged()
{
    const Newest newest(*this);
    if (m_textsFollow)
        return;
    loadInspectionTexts();
    if (!newest.isLoad())
        return; // which did all of this
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
    return inspectionKeysOf(catalogTemplate);
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
    const Newest newest(*this);
    for (const QString &key : missing) {
        if (!guarded || !m_manager || !newest.isLook())
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

    const Newest newest(*this);
    const QPointer<Profile> guarded(&profile);
    QPointer<CVideoOverlayText> element;
    try {
        element = newest.alive(*m_manager, m_manager->createText());
        serve(*m_manager, element, record); // a copy, see createElements()
    } catch (...) {
        log(LogLevel::Error,
            QStringLiteral("OSD builder: a factory failed for '") + type + QLatin1Char('\''));
        if (guarded && newest.isLoad())
            eraseRecords(guarded->elements(), {key});
        if (element && m_manager)
            m_manager->deleteElementFromModel(element);
        return;
    }
    if (!guarded || !newest.isLoad())
        return;
    if (ElementParam *added = recordWithoutId(guarded->elements(), key))
        *added = record;
}

void COsdBuilder::removeUnusedElements(Profile *profile,
                                       const QHash<QString, const ElementParam *> &existing,
                                       QSet<QString> &keys)
{
    if (!m_manager)
        return;
    QList<QPair<QPointer<CVideoOverlayElement>, QString>> unused;
    // Collected first: an element takes its record along when it is deleted.
    const QList<CVideoOverlayElement *> elements = m_manager->getElementList();
    for (CVideoOverlayElement *element : elements) {
        const QString key = inspectionKeyOf(element->getParamObject());
        if (existing.contains(key) && !keys.contains(key))
            unused.append({element, key});
    }
    QSet<QString> removed;
    const QPointer<Profile> guarded(profile);
    const Newest newest(*this);
    for (const auto &[element, key] : qAsConst(unused)) {
        if (!newest.isLook() || !m_manager)
            break;
        removed.insert(key);
        if (!element)
            continue;
        const ElementParam record = element->getParamObject();
        log(LogLevel::Debug,
            QStringLiteral("Deleting unused element ")
                + record.value(ElementParam::NAME_COLUMNBOUND).toString() + QLatin1Char(' ')
                + record.value(tableKey).toString());
        m_manager->deleteElementFromModel(element);
    }
    // Also when a newer template ended it, which may offer them again.
    if (guarded && newest.isLoad())
        eraseRecords(guarded->elements(), removed);
}

} // namespace Velmar::VideoOverlay
