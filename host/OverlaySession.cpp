// SPDX-License-Identifier: Apache-2.0
#include "host/OverlaySession.h"

#include "host/DemoLayout.h"
#include "host/display/GridFit.h"
#include "host/feed/SystemValues.h"
#include "host/platform/CatalogStore.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/elements/CVideoOverlayImage.h>
#include <videooverlay/elements/CVideoOverlayText.h>
#include <videooverlay/elements/ElementParam.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/osd/COsdStaticTextDatasource.h>

#include <QImageReader>

#include <algorithm>
#include <cmath>
#include <limits>

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

/// Asked beforehand, so that what is no picture leaves nothing behind.
bool isPicture(const QString &path)
{
    return QImageReader(path).canRead();
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
    fitGrid(*m_manager->getSettings()); // before there are elements to be laid out anew
    m_scene->start();
    m_manager->onSettingsChanged(); // the display took no margins before it was up
    // The demonstration's boxes bring their own alpha; the library's 44 would wash them out.
    ElementParam general = ElementParam::createGeneralSettingsDefault();
    general.insert(QStringLiteral("globalTransparency"), 0);
    m_manager->setGeneralSettings(general);
}

OverlaySession::~OverlaySession()
{
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

bool OverlaySession::addPicture(const QString &path, int row, int column, int height)
{
    if (!isPicture(path))
        return false;
    ElementParam record;
    record.insert(QStringLiteral("type"), int(CVideoOverlayElement::FreePicture));
    record.insert(QStringLiteral("row"), row);
    record.insert(QStringLiteral("col"), column);
    record.insert(QStringLiteral("imagePath"), path);
    record.insert(QStringLiteral("enabled"), true);
    record.insert(QStringLiteral("scale"), 1.0);
    auto *image = qobject_cast<CVideoOverlayImage *>(create(record));
    m_manager->getElementListModel()->reset();
    if (!image || image->imageSrcHeight() == 0) {
        m_manager->deleteElementFromModel(image);
        return false;
    }
    scaleTo(*image, height);
    m_manager->resetChanges();
    m_scene->flush();
    return true;
}

bool OverlaySession::setWatermark(const QString &path)
{
    if (!isPicture(path))
        return false;
    m_manager->createWatermark(path);
    // The display got it; the manager keeps it to itself.
    auto *image = qobject_cast<CVideoOverlayImage *>(
        m_scene->elementOfType(CVideoOverlayElement::Watermark));
    if (!image || image->imageSrcHeight() == 0) {
        m_manager->hideWatermark();
        return false;
    }
    scaleTo(*image, WatermarkRows);
    const int cells = int(std::ceil(image->width() / m_manager->colWidth()));
    image->setRow(WatermarkRow);
    image->setColumn(std::max(0, GridColumns - cells));
    m_scene->flush();
    return true;
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
        if (!m_feed.isShown(name))
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
    showTimes(timeMs);
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
    const bool fromVideo = name == ElementParam::NAME_VIDEO_TIME_COUNTER;
    const bool fromStart
        = m_start.isValid() && (name == ElementParam::NAME_DATE || name == ElementParam::NAME_TIME);
    const SystemValue *value = SystemValues::find(name);
    if (fromVideo || fromStart || !value)
        return; // this video's own times, not those of another recording
    QString error;
    m_feed.setValue(name, SystemValues::read(*value, reading.value, &error));
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
