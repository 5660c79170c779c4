// SPDX-License-Identifier: Apache-2.0
#include "host/OverlaySession.h"

#include "host/display/GridFit.h"

#include <videooverlay/elements/CVideoOverlayImage.h>
#include <videooverlay/elements/CVideoOverlayText.h>

#include <QColor>
#include <QRectF>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Velmar::Host {

using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::CVideoOverlayImage;
using VideoOverlay::CVideoOverlayText;
using VideoOverlay::VideoOverlaySettings;

namespace {

const QLatin1String videoTimeName("VIDEO_TIME_COUNTER");

/// How a value of the run is written. The width keeps the box from jumping while digits come and
/// go, and makes the boxes of a column end at the same cell.
struct ValueFormat
{
    const char *name;
    const char *caption;
    const char *unit; ///< UTF-8
    int decimals;
    int width; ///< [characters] of the whole text
};

constexpr ValueFormat formats[] = {
    {"SECTION_DISTANCE_COUNTER", "Distance", " m", 2, 19},
    {"SPEED", "Speed", " m/min", 1, 19},
    {"VIDEO_TIME_COUNTER", "Video", "", 0, 16},
    {"TOTAL_DISTANCE_COUNTER", "Total", " m", 2, 16},
    {"CAMERA_PAN", "Pan", "\u00B0", 0, 18},
    {"CAMERA_TILT", "Tilt", "\u00B0", 0, 18},
    {"CAMERA_PRESSURE", "Camera", " mbar", 0, 18},
    {"CAMERA_TEMPERATURE", "Camera", " \u00B0C", 1, 18},
    {"CRAWLER_PITCH", "Pitch", "\u00B0", 1, 19},
    {"CRAWLER_ROLL", "Roll", "\u00B0", 1, 19},
    {"CRAWLER_PRESSURE", "Crawler", " mbar", 0, 19},
    {"CRAWLER_TEMPERATURE", "Crawler", " \u00B0C", 1, 19},
    {"OBJECT_TEMPERATURE", "Wall", " \u00B0C", 1, 18},
};

const ValueFormat *formatOf(const QString &name)
{
    for (const ValueFormat &format : formats) {
        if (name == QLatin1String(format.name))
            return &format;
    }
    return nullptr;
}

QString decimal(double value, int decimals)
{
    const QString text = QString::number(value, 'f', decimals);
    // A value that rounds to nothing has no sign worth showing.
    return text.toDouble() == 0.0 ? QString::number(0.0, 'f', decimals) : text;
}

/// Hours, minutes and seconds; the hours go on counting beyond a day.
QString elapsedText(qint64 timeMs)
{
    const qint64 seconds = timeMs / 1000;
    const auto two
        = [](qint64 number) { return QString::number(number).rightJustified(2, QLatin1Char('0')); };
    return QStringLiteral("%1:%2:%3")
        .arg(two(seconds / 3600), two(seconds / 60 % 60), two(seconds % 60));
}

QString valueText(const ValueFormat &format, const QVariant &value)
{
    const QString caption = QString::fromLatin1(format.caption) + QStringLiteral(": ");
    const QString number = value.type() == QVariant::Double
        ? decimal(value.toDouble(), format.decimals)
        : value.toString();
    const QString body = number + QString::fromUtf8(format.unit);
    return caption + body.rightJustified(format.width - caption.size());
}

} // namespace

OverlaySession::OverlaySession(QSize imageSize, QObject *parent)
    : QObject(parent)
    , m_scene(std::make_shared<OverlayScene>(imageSize))
{
    m_capabilities.setBackend(&m_scene->capabilities());
    m_control.setBackend(m_scene.get());
    m_settings = std::make_unique<VideoOverlaySettings>(m_capabilities);
    fitGrid(*m_settings);
    m_scene->start();
    m_control.setPaintMargins(m_settings->marginRect());
}

OverlaySession::~OverlaySession()
{
    // A view may still hold the scene; the elements leave it one by one as they are destroyed.
    m_control.setBackend(nullptr);
    m_capabilities.setBackend(nullptr);
}

std::shared_ptr<OverlayScene> OverlaySession::scene() const
{
    return m_scene;
}

const VideoOverlaySettings &OverlaySession::settings() const
{
    return *m_settings;
}

void OverlaySession::addTexts()
{
    const QColor white(Qt::white);
    const QColor blue(QStringLiteral("#0000FF"));
    addText(QStringLiteral("Section 4711-4712   DN 300 concrete   downstream"), 0, 0, blue, white);
    addValue(QStringLiteral("SECTION_DISTANCE_COUNTER"), 1, 0);
    addValue(QStringLiteral("SPEED"), 2, 0);
    addValue(QStringLiteral("VIDEO_TIME_COUNTER"), 1, 37);
    addValue(QStringLiteral("TOTAL_DISTANCE_COUNTER"), 2, 37);
    addValue(QStringLiteral("CAMERA_PAN"), 22, 0);
    addValue(QStringLiteral("CAMERA_TILT"), 23, 0);
    addValue(QStringLiteral("CAMERA_PRESSURE"), 24, 0);
    addValue(QStringLiteral("CAMERA_TEMPERATURE"), 25, 0);
    addValue(QStringLiteral("CRAWLER_PITCH"), 22, 20);
    addValue(QStringLiteral("CRAWLER_ROLL"), 23, 20);
    addValue(QStringLiteral("CRAWLER_PRESSURE"), 24, 20);
    addValue(QStringLiteral("CRAWLER_TEMPERATURE"), 25, 20);
    addValue(QStringLiteral("OBJECT_TEMPERATURE"), 26, 0);
    m_scene->flush();
}

bool OverlaySession::addPicture(const QString &path, int row, int column, int height)
{
    auto image = std::make_unique<CVideoOverlayImage>();
    image->setType(CVideoOverlayElement::FreePicture);
    if (!loadPicture(*image, path, height))
        return false;
    image->setRow(row);
    image->setColumn(column);
    adopt(*image);
    m_elements.push_back(std::move(image));
    m_scene->flush();
    return true;
}

bool OverlaySession::setWatermark(const QString &path)
{
    auto image = std::make_unique<CVideoOverlayImage>();
    image->setType(CVideoOverlayElement::Watermark);
    if (!loadPicture(*image, path, 2))
        return false;
    const int cells = int(std::ceil(image->width() / m_settings->colWidth()));
    image->setRow(24);
    image->setColumn(std::max(0, 54 - cells));
    adopt(*image);
    m_elements.push_back(std::move(image));
    m_scene->flush();
    return true;
}

void OverlaySession::setTelemetry(TelemetryFile telemetry)
{
    m_telemetry = std::move(telemetry);
    m_nextReading = 0;
    m_timeMs = -1;
}

QStringList OverlaySession::unshownNames() const
{
    QStringList unshown;
    const QStringList names = m_telemetry.names();
    for (const QString &name : names) {
        if (!m_values.contains(name))
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
    show(videoTimeName, elapsedText(timeMs));
    m_scene->flush();
}

qint64 OverlaySession::nextChangeMs() const
{
    const QVector<TelemetryFile::Reading> &readings = m_telemetry.readings();
    qint64 next = std::numeric_limits<qint64>::max();
    if (m_nextReading < readings.size())
        next = readings.at(m_nextReading).timeMs;
    if (m_values.contains(videoTimeName)) // shows whole seconds
        next = std::min(next, m_timeMs < 0 ? 0 : (m_timeMs / 1000 + 1) * 1000);
    return next;
}

void OverlaySession::addText(const QString &text, int row, int column, QColor background,
                             QColor color)
{
    auto element = std::make_unique<CVideoOverlayText>();
    element->setType(CVideoOverlayElement::StaticText);
    element->setSettings(m_settings.get());
    element->setTransparency(0);
    element->setBackgroundColor(background);
    element->setTextColor(color);
    element->setRow(row);
    element->setColumn(column);
    adopt(*element);
    element->setText(text);
    element->setEnabled(true);
    m_elements.push_back(std::move(element));
}

void OverlaySession::addValue(const QString &name, int row, int column)
{
    const QColor yellow(QStringLiteral("#FFE066"));
    addText(QString(), row, column, QColor(0, 0, 0, 150), yellow);
    auto *element = static_cast<CVideoOverlayText *>(m_elements.back().get());
    element->setType(CVideoOverlayElement::SystemText);
    m_values.insert(name, element);
}

void OverlaySession::adopt(CVideoOverlayElement &element)
{
    element.setId(++m_lastId);
    element.setEnabled(true);
    place(element);
    const auto changed = [this, element = &element] {
        place(*element);
        m_control.displayElement(*element);
    };
    for (const auto signal :
         {&CVideoOverlayElement::rowChanged, &CVideoOverlayElement::columnChanged,
          &CVideoOverlayElement::visibleChanged, &CVideoOverlayElement::widthChanged,
          &CVideoOverlayElement::heightChanged, &CVideoOverlayElement::transparencyChanged})
        connect(&element, signal, this, changed);
    if (auto *text = qobject_cast<CVideoOverlayText *>(&element)) {
        connect(text, &CVideoOverlayText::textChanged, this, changed);
        connect(text, &CVideoOverlayText::textColorChanged, this, changed);
        connect(text, &CVideoOverlayText::backgroundColorChanged, this, changed);
        connect(text, &CVideoOverlayText::alignmentChanged, this, changed);
        connect(text, &CVideoOverlayText::fontChanged, this, changed);
    }
    m_control.displayElement(element);
}

void OverlaySession::place(CVideoOverlayElement &element)
{
    element.setPosition(m_settings->leftMargin() + element.column() * m_settings->colWidth(),
                        m_settings->topMargin() + element.row() * m_settings->rowHeight());
}

bool OverlaySession::loadPicture(CVideoOverlayImage &image, const QString &path, int height)
{
    image.setImageSrc(path);
    if (image.imageSrcHeight() == 0)
        return false;
    image.setScaleFactor(height * m_settings->rowHeight() / image.imageSrcHeight());
    return true;
}

void OverlaySession::show(const TelemetryFile::Reading &reading)
{
    const QString name = m_telemetry.names().at(reading.column);
    if (name != videoTimeName) // the video's own time, not that of another recording
        show(name, reading.value);
}

void OverlaySession::show(const QString &name, const QVariant &value)
{
    CVideoOverlayText *element = m_values.value(name);
    const ValueFormat *format = formatOf(name);
    if (element && format)
        element->setText(valueText(*format, value));
}

} // namespace Velmar::Host
