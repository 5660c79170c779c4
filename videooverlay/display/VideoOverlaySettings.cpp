// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/display/VideoOverlaySettings.h"

#include "videooverlay/Log_p.h"
#include "videooverlay/display/CVideoOverlayCapabilities.h"

#include <QFontMetricsF>
#include <QImage>
#include <QMutexLocker>
#include <QQmlEngine>

namespace Velmar::VideoOverlay {

namespace {

QFont overlayFont()
{
    const QString family = QStringLiteral("DejaVu Sans Mono");
    if (QFont::substitute(family) != family)
        log(LogLevel::Warning, QStringLiteral("Cannot find font familly %1. ").arg(family));
    QFont font(family);
    font.setPixelSize(35);
    font.setFixedPitch(true); // also what makes a missing family fall back to a fixed-pitch one
    font.setLetterSpacing(QFont::PercentageSpacing, 122);
    return font;
}

bool isBetween(int value, int lowest, int highest)
{
    return value >= lowest && value <= highest;
}

} // namespace

VideoOverlaySettings::VideoOverlaySettings(CVideoOverlayCapabilities &capabilities, QObject *parent)
    : QObject(parent)
    , m_capabilities(capabilities)
    , m_font(overlayFont())
{
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
    applyVideoSettings();
    calculateSettings();
    connect(&m_capabilities, &CVideoOverlayCapabilities::capabilitiesChanged, this,
            &VideoOverlaySettings::onCapabilitiesChanged);
}

VideoOverlaySettings::~VideoOverlaySettings() = default;

QFont VideoOverlaySettings::font() const
{
    QMutexLocker lock(&m_mutex);
    return m_font;
}

double VideoOverlaySettings::leftMargin() const
{
    QMutexLocker lock(&m_mutex);
    return m_leftMargin;
}

double VideoOverlaySettings::topMargin() const
{
    QMutexLocker lock(&m_mutex);
    return m_topMargin;
}

double VideoOverlaySettings::colWidth() const
{
    QMutexLocker lock(&m_mutex);
    return m_colWidth;
}

double VideoOverlaySettings::rowHeight() const
{
    QMutexLocker lock(&m_mutex);
    return m_rowHeight;
}

int VideoOverlaySettings::width() const
{
    QMutexLocker lock(&m_mutex);
    return m_width;
}

int VideoOverlaySettings::height() const
{
    QMutexLocker lock(&m_mutex);
    return m_height;
}

QRectF VideoOverlaySettings::marginRect() const
{
    QMutexLocker lock(&m_mutex);
    return QRectF(m_leftMargin, m_topMargin, m_columns * m_colWidth, m_rows * m_rowHeight);
}

bool VideoOverlaySettings::setGrid(int rows, int columns)
{
    // One of the two is enough, and both are stored: a host sets a count it knows to be right
    // together with one that the display will only allow later.
    if (!isBetween(rows, 1, m_capabilities.maximumRowCount())
        && !isBetween(columns, 1, m_capabilities.maximumColumnCount()))
        return false;
    {
        QMutexLocker lock(&m_mutex);
        m_rows = rows;
        m_columns = columns;
    }
    calculateSettings();
    return true;
}

bool VideoOverlaySettings::setResolution(int width, int height)
{
    if (!isBetween(width, 1, m_capabilities.imageWidth())
        && !isBetween(height, 1, m_capabilities.imageHeight()))
        return false;
    {
        QMutexLocker lock(&m_mutex);
        m_width = width;
        m_height = height;
    }
    calculateSettings();
    return true;
}

bool VideoOverlaySettings::setFont(const QFont &font)
{
    if (!font.fixedPitch())
        return false;
    {
        QMutexLocker lock(&m_mutex);
        if (font == m_font)
            return true;
        m_font = font;
    }
    calculateSettings();
    return true;
}

void VideoOverlaySettings::applyVideoSettings()
{
    const int width = m_capabilities.imageWidth();
    const int height = m_capabilities.imageHeight();
    QMutexLocker lock(&m_mutex);
    m_width = width;
    m_height = height;
}

void VideoOverlaySettings::calculateSettings()
{
    {
        QMutexLocker lock(&m_mutex);
        // Metrics of the font as it comes out on such a picture; null while its size is 0 or
        // absurd, and then the last cell size is better than none.
        QImage picture(m_width, m_height, QImage::Format_ARGB32);
        if (!picture.isNull()) {
            const QFontMetricsF metrics(m_font, &picture);
            m_colWidth = metrics.horizontalAdvance(QStringLiteral("X"));
            m_rowHeight = metrics.height() - 2.0;
            m_leftMargin = (m_width - m_colWidth * m_columns) * 0.5;
            m_topMargin = (m_height - m_rowHeight * m_rows) * 0.5;
        }
    }
    Q_EMIT settingsChanged();
}

void VideoOverlaySettings::onCapabilitiesChanged()
{
    applyVideoSettings();
    if (lower(m_columns, m_capabilities.maximumColumnCount()))
        Q_EMIT settingsError(QStringLiteral("VideoOverlaySettings::onCapabilitiesChanged() error: "
                                            "lowering column count to current possible maximum."));
    if (lower(m_rows, m_capabilities.maximumRowCount()))
        Q_EMIT settingsError(QStringLiteral("VideoOverlaySettings::onCapabilitiesChanged() error: "
                                            "lowering row count to current possible maximum."));
    calculateSettings();
}

bool VideoOverlaySettings::lower(int &count, int maximum)
{
    QMutexLocker lock(&m_mutex);
    if (count <= maximum)
        return false;
    count = maximum;
    return true;
}

} // namespace Velmar::VideoOverlay
