// SPDX-License-Identifier: Apache-2.0
#include "host/session/OverlaySession.h"

#include "host/display/GridFit.h"
#include "host/feed/SystemValues.h"
#include "host/platform/CatalogStore.h"
#include "host/platform/LogRouter.h"
#include "host/profiles/ProfileAccess.h"
#include "host/session/DemoLayout.h"
#include "host/session/PictureFile.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/elements/CVideoOverlayImage.h>
#include <videooverlay/elements/CVideoOverlayText.h>
#include <videooverlay/elements/ElementParam.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/osd/COsdBuilder.h>
#include <videooverlay/osd/COsdDomainDatasource.h>
#include <videooverlay/osd/COsdDomainDatasourceFactory.h>
#include <videooverlay/osd/COsdStaticTextDatasource.h>

#include <platform/appstate/AppState.h>
#include <platform/logging/CLogger.h>
#include <platform/shared/GlobalLocaleData.h>
#include <platform/translation/CTranslator.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Velmar::Host {

using namespace VideoOverlay;

namespace {

constexpr int GridColumns = 54;
constexpr int WatermarkRow = 24;
constexpr int WatermarkRows = 2;
constexpr qint64 MsPerSecond = 1000;

CVideoOverlayElement::Type typeOf(const ElementParam &record)
{
    return record.value(QStringLiteral("type")).value<CVideoOverlayElement::Type>();
}

bool fail(QString *error, const QString &text)
{
    if (error)
        *error = text;
    return false;
}

} // namespace

OverlaySession::OverlaySession(QSize imageSize, QObject *parent)
    : QObject(parent)
    , m_scene(std::make_shared<OverlayScene>(imageSize))
    , m_systemValues(CATManagement::CatalogStore::instance())
{
    m_capabilities.setBackend(&m_scene->capabilities());
    m_control.setBackend(m_scene.get());
    m_manager = std::make_unique<CVideoOverlayManager>(m_control, m_capabilities);
    m_manager->registerElementAccessor(&m_feed);
    // The grid does not log what it had to lower.
    connect(m_manager->getSettings(), &VideoOverlaySettings::settingsError, this,
            [](const QString &error) {
                Logging::CLogger::logMessage(Logging::LogLevel::Warning, QStringLiteral("Host"),
                                             error);
            });
    fitGrid(*m_manager->getSettings()); // before there are elements to be laid out anew
    m_scene->start();
    m_manager->onSettingsChanged(); // the display took no margins before it was up
    // The demonstration's boxes bring their own alpha; the library's 44 would wash them out.
    ElementParam general = ElementParam::createGeneralSettingsDefault();
    general.insert(QStringLiteral("globalTransparency"), 0);
    m_manager->setGeneralSettings(general);
    // Before any datasource follows these: a box is shown first and gets its text then.
    connect(AppState::instance(), &AppState::activeInspectionChanged, this,
            &OverlaySession::onInspectionChanged);
    connect(AppState::instance(), &AppState::observationCreated, this,
            &OverlaySession::onObservationCreated);
}

OverlaySession::~OverlaySession()
{
    m_project.close();
    if (m_profiles) {
        disconnect(m_profiles.get(), nullptr, nullptr, nullptr);
        disconnect(COsdBuilder::instance(), nullptr, this, nullptr);
    }
    m_profiles.reset();
    m_manager.reset();
    // A view may still hold the scene; the elements have left it.
    m_control.setBackend(nullptr);
    m_capabilities.setBackend(nullptr);
}

std::shared_ptr<OverlayScene> OverlaySession::scene() const
{
    return m_scene;
}

const VideoOverlaySettings &OverlaySession::settings() const
{
    return *m_manager->getSettings();
}

CVideoOverlayManager &OverlaySession::manager() const
{
    return *m_manager;
}

ValueFeed &OverlaySession::feed()
{
    return m_feed;
}

ScreenSnipDatasourceFactory &OverlaySession::screenSnips()
{
    return m_screenSnips;
}

void OverlaySession::setClock(Clock clock)
{
    m_clock = clock;
}

void OverlaySession::resize(QSize imageSize)
{
    m_scene->capabilities().setImageSize(imageSize);
    fitGrid(*m_manager->getSettings());
    const QList<CVideoOverlayElement *> elements = m_manager->getElementList();
    for (CVideoOverlayElement *element : elements) {
        // An element takes over a new font by itself, but does not break its lines anew.
        if (auto *text = qobject_cast<CVideoOverlayText *>(element))
            text->typeset();
    }
    for (const PlacedPicture &placed : qAsConst(m_placedPictures)) {
        if (placed.image)
            scaleTo(*placed.image, placed.height);
    }
    placeWatermark();
    m_scene->flush();
}

bool OverlaySession::openProfiles(const QString &profile, QString *error)
{
    auto &catalogs = CATManagement::CatalogStore::instance();
    COsdBuilder *builder = COsdBuilder::initialize(catalogs, *m_manager);
    m_inspectionTexts
        = std::make_unique<COsdDomainDatasourceFactory>(COsdDomainDatasource::captionResolver);
    // The host's own first: system texts, too, carry "DB" as their source by default.
    builder->registerFactory(&m_systemValues);
    builder->registerFactory(&m_screenSnips);
    builder->registerFactory(&m_pictures);
    builder->registerFactory(m_inspectionTexts.get());

    m_profiles = readProfiles(*m_manager);
    m_manager->setProfilesModel(m_profiles.get());
    connect(m_profiles.get(), &VideoOverlayProfilesModel::currentProfileChanged, builder,
            &COsdBuilder::load);
    // First, because it sets the baseline: whoever hears of the load asks what was changed since.
    connect(builder, &COsdBuilder::profileLoaded, this, &OverlaySession::onProfileLoaded);
    connect(builder, &COsdBuilder::profileLoaded, m_manager.get(),
            &CVideoOverlayManager::profileLoaded);
    connect(builder, &COsdBuilder::profileLoaded, m_profiles.get(),
            &VideoOverlayProfilesModel::profileLoaded);
    // Domain texts do not look again by themselves. After the library's own reactions.
    connect(AppState::instance(), &AppState::templateLoadCompleted, this,
            &OverlaySession::announceInspectionAgain);
    connect(Shared::GlobalLocaleData::instance(), &Shared::GlobalLocaleData::localeChanged, this,
            &OverlaySession::announceInspectionAgain);
    connect(Translation::CTranslator::instance(), &Translation::CTranslator::currentLocaleChanged,
            this, &OverlaySession::announceInspectionAgain);

    return selectProfile(*m_profiles, profile, error);
}

VideoOverlayProfilesModel *OverlaySession::profiles() const
{
    return m_profiles.get();
}

ProjectSession &OverlaySession::project()
{
    return m_project;
}

void OverlaySession::setObservationsFromRun(bool create)
{
    m_observationsFromRun = create;
}

void OverlaySession::onProfileLoaded()
{
    m_expiries.clear();
    const QList<CVideoOverlayElement *> elements = m_manager->getElementList();
    for (CVideoOverlayElement *element : elements) {
        // A caption without a value says nothing. The first value shows it.
        if (element->type() == CVideoOverlayElement::SystemText)
            element->setVisible(false);
        element->setTimeoutDisabled(m_clock == Clock::Video);
    }
    m_feed.replay();
    m_manager->resetChanges();
    m_project.announceInspectionAgain();
    m_scene->flush();
}

void OverlaySession::onInspectionChanged(const Database::CDomainObjectPointer &inspection)
{
    if (m_isAnnouncingAgain)
        return;
    VideoOverlayElementListModel &list = *m_manager->getElementListModel();
    list.hideStartUpInspElements(); // what is there yet belongs to the inspection before
    if (inspection)
        list.showSecInspElements();
    else // nothing may keep a record of a database that is about to close
        COsdDomainDatasource::rememberDomainObject({});
}

void OverlaySession::onObservationCreated()
{
    m_manager->getElementListModel()->hideNotPermanentElements();
    m_expiries.clear(); // what is shown now has its whole time before it
    m_manager->getElementListModel()->showObservationElements();
}

void OverlaySession::announceInspectionAgain()
{
    m_isAnnouncingAgain = true;
    m_project.announceInspectionAgain();
    m_isAnnouncingAgain = false;
}

void OverlaySession::load(const QList<ElementParam> &records)
{
    m_manager->removeElements();
    for (const ElementParam &record : records)
        create(record);
    m_manager->getElementListModel()->reset();
    m_feed.replay();
    m_manager->resetChanges();
    m_scene->flush();
}

void OverlaySession::addTexts()
{
    load(demoLayout([this](const QString &name) { return m_systemValues.caption(name); }));
}

bool OverlaySession::addPicture(const QString &path, int row, int column, int height,
                                QString *error)
{
    if (const QString problem = pictureProblem(path); !problem.isEmpty())
        return fail(error, problem);
    ElementParam record;
    record.insert(QStringLiteral("type"), int(CVideoOverlayElement::FreePicture));
    record.insert(QStringLiteral("row"), row);
    record.insert(QStringLiteral("col"), column);
    record.insert(QStringLiteral("imagePath"), path);
    record.insert(QStringLiteral("enabled"), true);
    record.insert(QStringLiteral("scale"), 1.0);
    const Logging::HeldLog log;
    auto *image = qobject_cast<CVideoOverlayImage *>(create(record));
    m_manager->getElementListModel()->reset();
    if (!image || image->imageSrcHeight() == 0) {
        m_manager->deleteElementFromModel(image);
        return fail(error, pictureProblem(path, log.errors()));
    }
    scaleTo(*image, height);
    m_placedPictures.append({image, height});
    m_manager->resetChanges();
    m_scene->flush();
    return true;
}

bool OverlaySession::setWatermark(const QString &path, QString *error)
{
    if (const QString problem = pictureProblem(path); !problem.isEmpty())
        return fail(error, problem);
    m_manager->createWatermark(path);
    // The display got it; the manager keeps it to itself.
    auto *image = qobject_cast<CVideoOverlayImage *>(
        m_scene->elementOfType(CVideoOverlayElement::Watermark));
    if (!image || image->imageSrcHeight() == 0) {
        m_manager->hideWatermark();
        return fail(error, pictureProblem(path, {}));
    }
    placeWatermark();
    m_scene->flush();
    return true;
}

void OverlaySession::placeWatermark()
{
    auto *image = qobject_cast<CVideoOverlayImage *>(
        m_scene->elementOfType(CVideoOverlayElement::Watermark));
    if (!image || !image->visible())
        return;
    scaleTo(*image, WatermarkRows);
    const int cells = int(std::ceil(image->width() / m_manager->colWidth()));
    image->setRow(WatermarkRow);
    image->setColumn(std::max(0, GridColumns - cells));
    // It follows no grid by itself, and on another one all of these may be as they were.
    m_manager->hideWatermark();
    m_manager->showWatermark();
}

void OverlaySession::setTelemetry(TelemetryFile telemetry)
{
    m_telemetry = std::move(telemetry);
    m_nextReading = 0;
    m_timeMs = -1;
}

void OverlaySession::setStart(const QDateTime &start)
{
    m_start = start;
}

QStringList OverlaySession::unshownNames() const
{
    QStringList unshown;
    const QStringList names = m_telemetry.names();
    for (const QString &name : names) {
        if (!m_feed.isShown(name) && !ObservationColumns::isOne(name))
            unshown.append(name);
    }
    return unshown;
}

void OverlaySession::advanceTo(qint64 timeMs)
{
    const QVector<TelemetryFile::Reading> &readings = m_telemetry.readings();
    if (timeMs < m_timeMs)
        m_nextReading = 0; // from the start again: what came last by then wins
    m_timeMs = timeMs;
    while (m_nextReading < readings.size() && readings.at(m_nextReading).timeMs <= timeMs)
        show(readings.at(m_nextReading++));
    observe(timeMs);
    showTimes(timeMs);
    if (m_clock == Clock::Video)
        expire(timeMs);
    m_scene->flush();
}

qint64 OverlaySession::nextChangeMs() const
{
    const QVector<TelemetryFile::Reading> &readings = m_telemetry.readings();
    qint64 next = std::numeric_limits<qint64>::max();
    if (m_nextReading < readings.size())
        next = readings.at(m_nextReading).timeMs;
    const auto nextSecond = [this](qint64 offsetMs) { // the texts show whole seconds
        const qint64 now = m_timeMs + offsetMs;
        return m_timeMs < 0 ? 0 : (now / MsPerSecond + 1) * MsPerSecond - offsetMs;
    };
    if (m_feed.isShown(ElementParam::NAME_VIDEO_TIME_COUNTER))
        next = std::min(next, nextSecond(0));
    if (m_start.isValid()
        && (m_feed.isShown(ElementParam::NAME_DATE) || m_feed.isShown(ElementParam::NAME_TIME)))
        next = std::min(next, nextSecond(m_start.time().msec()));
    for (const qint64 expiryMs : m_expiries)
        next = std::min(next, expiryMs);
    return next;
}

CVideoOverlayElement *OverlaySession::create(ElementParam record)
{
    switch (typeOf(record)) {
    case CVideoOverlayElement::SystemText: {
        CVideoOverlayText *text = m_manager->createText(record);
        giveDatasource(text, record);
        // A caption without a value says nothing. The first value shows it.
        text->setVisible(false);
        return text;
    }
    case CVideoOverlayElement::FreePicture: {
        CVideoOverlayImage *image = m_manager->createImage();
        giveDatasource(image, record);
        return image;
    }
    case CVideoOverlayElement::StaticText: {
        CVideoOverlayText *text = m_manager->createText();
        new COsdStaticTextDatasource(text, record); // a child of its element
        return text;
    }
    default:
        return nullptr;
    }
}

bool OverlaySession::giveDatasource(CVideoOverlayElement *element, ElementParam &record)
{
    const std::initializer_list<CAbstractOsdDatasourceFactory *> factories {
        &m_systemValues, &m_screenSnips, &m_pictures};
    return std::any_of(factories.begin(), factories.end(),
                       [&](CAbstractOsdDatasourceFactory *factory) {
                           return factory->getDatasource(element, record) != nullptr;
                       });
}

void OverlaySession::scaleTo(CVideoOverlayImage &image, int height)
{
    image.setScaleFactor(height * m_manager->rowHeight() / image.imageSrcHeight());
}

void OverlaySession::show(const TelemetryFile::Reading &reading)
{
    const QString name = m_telemetry.names().at(reading.column);
    if (ObservationColumns::isOne(name)) {
        if (m_observationMs != reading.timeMs)
            observe(reading.timeMs);
        m_observationMs = reading.timeMs;
        m_observation.add(name, reading.value.toString());
        return;
    }
    const bool fromVideo = name == ElementParam::NAME_VIDEO_TIME_COUNTER;
    const bool fromStart
        = m_start.isValid() && (name == ElementParam::NAME_DATE || name == ElementParam::NAME_TIME);
    const SystemValue *value = SystemValues::find(name);
    if (fromVideo || fromStart || !value)
        return; // this video's own times, not those of another recording
    QString error;
    m_feed.setValue(name, SystemValues::read(*value, reading.value, &error));
}

/// Creates the observation that was read so far, unless its time has been here before.
void OverlaySession::observe(qint64 timeMs)
{
    std::optional<ProjectSession::Observation> observation = m_observation.take();
    if (!observation || m_observationMs <= m_observedUntilMs)
        return;
    m_observedUntilMs = std::min(timeMs, m_observationMs);
    if (!m_observationsFromRun)
        return;
    observation->distance
        = m_telemetry.interpolated(ElementParam::NAME_SECTION_DISTANCE_COUNTER, m_observationMs);
    if (m_start.isValid())
        observation->time = m_start.addMSecs(m_observationMs).time();
    const bool created = m_project.repeatObservation(*observation) != nullptr;
    if (m_clock == Clock::Video)
        expire(m_observationMs); // counts from its own time, even when that is long past
    if (!created)
        Logging::CLogger::logMessage(Logging::LogLevel::Warning, QStringLiteral("Host"),
                                     m_project.errorText());
}

/// Hides what has been shown for as long as its timeout says, in the time of the video.
void OverlaySession::expire(qint64 timeMs)
{
    const QList<CVideoOverlayElement *> elements = m_manager->getElementList();
    for (CVideoOverlayElement *element : elements) {
        if (element->timeout() < 1 || !element->visible()) {
            m_expiries.remove(element);
            continue;
        }
        const auto known = m_expiries.constFind(element);
        if (known == m_expiries.cend()) {
            m_expiries.insert(element, timeMs + element->timeout() * MsPerSecond);
        } else if (*known <= timeMs) {
            m_expiries.remove(element);
            element->setVisible(false);
        }
    }
}

void OverlaySession::showTimes(qint64 timeMs)
{
    m_feed.setValue(ElementParam::NAME_VIDEO_TIME_COUNTER, QVariant::fromValue(timeMs));
    if (!m_start.isValid())
        return;
    const QVariant now = QVariant::fromValue(m_start.toMSecsSinceEpoch() + timeMs);
    m_feed.setValue(ElementParam::NAME_DATE, now);
    m_feed.setValue(ElementParam::NAME_TIME, now);
}

} // namespace Velmar::Host
