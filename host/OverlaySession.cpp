// SPDX-License-Identifier: Apache-2.0
#include "host/OverlaySession.h"

#include "host/display/GridFit.h"

#include <videooverlay/elements/CVideoOverlayImage.h>
#include <videooverlay/elements/CVideoOverlayText.h>

#include <QColor>
#include <QRectF>

#include <cmath>
#include <limits>

namespace Velmar::Host {

using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::CVideoOverlayImage;
using VideoOverlay::CVideoOverlayText;
using VideoOverlay::VideoOverlaySettings;

namespace {

/// How a value of the run is written. The width keeps the box from jumping while digits come and
/// go.
struct ValueFormat
{
    const char *name;
    const char *caption;
    const char *unit;
    int decimals;
    int width; ///< [characters] of value and unit
};

constexpr ValueFormat formats[] = {
    {"SECTION_DISTANCE_COUNTER", "Distance", "m", 2, 9},
    {"TOTAL_DISTANCE_COUNTER", "Total", "m", 2, 9},
    {"SPEED", "Speed", "m/min", 1, 10},
    {"VIDEO_TIME_COUNTER", "Video", "", 0, 8},
    {"CAMERA_PAN", "Pan", "°", 0, 5},
    {"CAMERA_TILT", "Tilt", "°", 0, 5},
    {"CAMERA_PRESSURE", "Camera", "mbar", 0, 9},
    {"CAMERA_TEMPERATURE", "Camera", "°C", 1, 7},
    {"CRAWLER_PITCH", "Pitch", "°", 1, 6},
    {"CRAWLER_ROLL", "Roll", "°", 1, 6},
    {"CRAWLER_PRESSURE", "Crawler", "mbar", 0, 9},
    {"CRAWLER_TEMPERATURE", "Crawler", "°C", 1, 7},
    {"OBJECT_TEMPERATURE", "Wall", "°C", 1, 7},
};

const ValueFormat *formatOf(const QString &name)
{
    for (const ValueFormat &format : formats) {
        if (name == QLatin1String(format.name))
            return &format;
    }
    return nullptr;
}

QString number(double value, int decimals)
{
    const QString text = QString::number(value, 'f', decimals);
    // A value that rounds to nothing has no sign worth showing.
    return text.toDouble() == 0.0 ? QString::number(0.0, 'f', decimals) : text;
}

QString valueText(const ValueFormat &format, const QVariant &value)
{
    QString body = value.type() == QVariant::Double ? number(value.toDouble(), format.decimals)
                                                    : value.toString();
    const QString unit = QString::fromUtf8(format.unit);
    if (unit == QLatin1String("°"))
        body += unit;
    else if (!unit.isEmpty())
        body += QLatin1Char(' ') + unit;
    return QString::fromUtf8(format.caption) + QStringLiteral(": ")
        + body.rightJustified(format.width);
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
    addValue(QStringLiteral("VIDEO_TIME_COUNTER"), 1, 38);
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

void OverlaySession::advanceTo(qint64 timeMs)
{
    const QVector<TelemetryFile::Reading> &readings = m_telemetry.readings();
    if (timeMs < m_timeMs)
        m_nextReading = 0; // from the start again: what came last by then wins
    m_timeMs = timeMs;
    while (m_nextReading < readings.size() && readings.at(m_nextReading).timeMs <= timeMs)
        show(readings.at(m_nextReading++));
    m_scene->flush();
}

qint64 OverlaySession::nextChangeMs() const
{
    const QVector<TelemetryFile::Reading> &readings = m_telemetry.readings();
    return m_nextReading < readings.size() ? readings.at(m_nextReading).timeMs
                                           : std::numeric_limits<qint64>::max();
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
    CVideoOverlayText *element = m_values.value(name);
    const ValueFormat *format = formatOf(name);
    if (element && format)
        element->setText(valueText(*format, reading.value));
}

} // namespace Velmar::Host
