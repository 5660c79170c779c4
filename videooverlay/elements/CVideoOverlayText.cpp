// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/CVideoOverlayText.h"

#include "videooverlay/display/VideoOverlaySettings.h"

#include <QMutexLocker>
#include <QPainter>
#include <QVector>

#include <algorithm>
#include <array>

namespace Velmar::VideoOverlay {

namespace {

/// What lies outside the boxes of a finished text: fully transparent, and green where a display
/// that ignores alpha would show it.
constexpr QRgb ground = 0x0000ff00;

/// One line of text in its place on the picture.
struct Line
{
    QString text;
    QRect bounds;
    QRect box;
};

/// What a text pixel of every coverage becomes over one kind of background, 0 to 255.
using BlendTable = std::array<QRgb, 256>;

/// Straight-alpha result of @p color, seen with @p alpha (not 0), over @p background.
QRgb over(QRgb color, int alpha, QRgb background)
{
    const int backShare = qAlpha(background) * (255 - alpha);
    const int sum = alpha * 255 + backShare;
    const auto channel = [&](int front, int back) {
        return (front * alpha * 255 + back * backShare + sum / 2) / sum;
    };
    return qRgba(channel(qRed(color), qRed(background)), channel(qGreen(color), qGreen(background)),
                 channel(qBlue(color), qBlue(background)), (sum + 127) / 255);
}

/// Text over an area of one colour. A pixel that the text does not touch keeps @p untouched, so
/// that colours survive to the bit.
BlendTable blendTable(QRgb text, QRgb background, QRgb untouched)
{
    BlendTable table;
    table[0] = untouched;
    for (int alpha = 1; alpha < 256; ++alpha)
        table[size_t(alpha)] = over(text, alpha, background);
    return table;
}

void drawText(QPainter &painter, const Line &line, const QColor &color, int alignment)
{
    painter.setBrush(color);
    painter.setPen(color);
    painter.drawText(line.bounds.translated(1, -1), alignment | Qt::AlignVCenter, line.text);
}

void drawBox(QPainter &painter, const Line &line, const QColor &color)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRect(line.box);
}

/// Letters of earlier lines that reach into a later line's box, which lies over them.
struct Covered
{
    QRect area;
    QVector<QRgb> pixels; ///< row by row; 0 where no letter is
};

/// Takes what stands in @p area out of the picture. Empty, as nearly always, when nothing does.
Covered takeOut(uchar *bits, int bytesPerLine, const QRect &area)
{
    Covered covered;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(bits + y * bytesPerLine);
        for (int x = area.left(); x <= area.right(); ++x) {
            if (row[x] == 0)
                continue;
            if (covered.pixels.isEmpty()) {
                covered.area = area;
                covered.pixels.resize(area.width() * area.height());
            }
            covered.pixels[(y - area.top()) * area.width() + x - area.left()] = row[x];
            row[x] = 0;
        }
    }
    return covered;
}

/// Calls @p visit with every pixel that was taken out and the picture's pixel in its place.
template <class Visitor>
void forEachPixel(QVector<Covered> &all, uchar *bits, int bytesPerLine, Visitor visit)
{
    for (Covered &covered : all) {
        const QRect &area = covered.area;
        for (int i = 0; i < covered.pixels.size(); ++i) {
            if (covered.pixels.at(i) == 0)
                continue;
            const int y = area.top() + i / area.width();
            auto *row = reinterpret_cast<QRgb *>(bits + y * bytesPerLine);
            visit(covered.pixels[i], row[area.left() + i % area.width()]);
        }
    }
}

/// Replaces the alpha-only reading of @p pixels from @p first up to @p last by table entries.
void applyTable(QRgb *pixels, int first, int last, const BlendTable &table)
{
    for (int x = first; x < last; ++x)
        pixels[x] = table[size_t(qAlpha(pixels[x]))];
}

/// Turns @p image, which holds premultiplied text, into the finished straight-alpha picture:
/// @p inside holds within the boxes, @p outside elsewhere. A null @p inside leaves the boxes alone.
void finish(QImage &image, const QVector<Line> &lines, const BlendTable *inside,
            const BlendTable &outside)
{
    QVector<QRect> boxOfRow(image.height());
    for (const Line &line : lines) {
        const QRect box = line.box & image.rect();
        for (int y = box.top(); y <= box.bottom(); ++y)
            boxOfRow[y] = box;
    }
    for (int y = 0; y < image.height(); ++y) {
        auto *pixels = reinterpret_cast<QRgb *>(image.scanLine(y));
        const QRect box = boxOfRow.at(y);
        const int begin = box.isEmpty() ? 0 : box.left();
        const int end = box.isEmpty() ? 0 : box.right() + 1;
        applyTable(pixels, 0, begin, outside);
        if (inside)
            applyTable(pixels, begin, end, *inside);
        applyTable(pixels, end, image.width(), outside);
    }
}

bool canBePainted(const QImage &image)
{
    return !image.isNull() && image.format() != QImage::Format_Indexed8 && !image.paintingActive();
}

} // namespace

CVideoOverlayText::CVideoOverlayText(QObject *parent)
    : CVideoOverlayElement(parent)
{
    connect(this, &CVideoOverlayElement::rowChanged, this, &CVideoOverlayText::rowChanged);
    connect(this, &CVideoOverlayElement::columnChanged, this, &CVideoOverlayText::columnChanged);
    connect(this, &CVideoOverlayElement::visibleChanged, this, &CVideoOverlayText::visibleChanged);
    connect(this, &CVideoOverlayElement::idChanged, this, &CVideoOverlayText::idChanged);
    connect(this, &CVideoOverlayElement::settingsChanged, this,
            &CVideoOverlayText::onSettingsChanged);
}

CVideoOverlayText::~CVideoOverlayText() = default;

QString CVideoOverlayText::unit()
{
    QMutexLocker lock(&m_mutex);
    return m_unit;
}

void CVideoOverlayText::setUnit(const QString &unit)
{
    QMutexLocker lock(&m_mutex);
    if (m_unit == unit)
        return;
    m_unit = unit;
    Q_EMIT unitChanged();
}

void CVideoOverlayText::renderInto(QImage &image) const
{
    renderText(image);
}

RenderedElement CVideoOverlayText::getElement() const
{
    QMutexLocker lock(&m_mutex);
    const RenderedElement base = CVideoOverlayElement::getElement();
    QImage image(pixelSize(), QImage::Format_ARGB32);
    renderText(image);
    return RenderedElement(base.id(), base.type(), base.x(), base.y(), base.visible(), image);
}

ElementParam CVideoOverlayText::getAllProperties() const
{
    return CVideoOverlayElement::getAllProperties();
}

ElementParam CVideoOverlayText::getChangedProperties() const
{
    QMutexLocker lock(&m_mutex);
    ElementParam changed = CVideoOverlayElement::getChangedProperties();
    const ElementParam stored = getParamObject();
    const auto compareColor = [&](const QString &key, const QColor &live) {
        if (stored.value(key).value<QColor>() != live)
            changed.insert(key, live);
    };
    const auto compareText = [&](const QString &key, const QString &live) {
        if (stored.value(key).toString() != live)
            changed.insert(key, live);
    };
    compareColor(QStringLiteral("backgroundColor"), m_backgroundColor);
    compareColor(QStringLiteral("textColor"), m_textColor);
    // The text of a bound element comes from its datasource; it is no edit.
    if (stored.value(ElementParam::NAME_COLUMNBOUND).toString().isEmpty())
        compareText(QStringLiteral("text"), m_text);
    compareText(QStringLiteral("unit"), m_unit);
    return changed;
}

QString CVideoOverlayText::text() const
{
    QMutexLocker lock(&m_mutex);
    return m_text;
}

void CVideoOverlayText::setText(const QString &text)
{
    QMutexLocker lock(&m_mutex);
    if (m_text == text)
        return;
    m_text = text;
    typeset();
    Q_EMIT textChanged();
}

QColor CVideoOverlayText::textColor() const
{
    QMutexLocker lock(&m_mutex);
    return m_textColor;
}

QColor CVideoOverlayText::backgroundColor() const
{
    QMutexLocker lock(&m_mutex);
    return m_backgroundColor;
}

QFont CVideoOverlayText::font() const
{
    QMutexLocker lock(&m_mutex);
    return m_font;
}

int CVideoOverlayText::alignment() const
{
    QMutexLocker lock(&m_mutex);
    return m_alignment;
}

void CVideoOverlayText::setAlignment(const QString &alignment)
{
    QMutexLocker lock(&m_mutex);
    if (alignment == QLatin1String("RIGHT"))
        m_alignment = Qt::AlignRight;
    else if (alignment == QLatin1String("CENTER"))
        m_alignment = Qt::AlignCenter;
    else
        m_alignment = Qt::AlignLeft;
    Q_EMIT alignmentChanged();
}

void CVideoOverlayText::setBackgroundColor(QColor newColor)
{
    QMutexLocker lock(&m_mutex);
    if (m_backgroundColor == newColor)
        return;
    m_backgroundColor = newColor;
    Q_EMIT backgroundColorChanged(newColor);
}

void CVideoOverlayText::setTextColor(QColor newColor)
{
    QMutexLocker lock(&m_mutex);
    if (m_textColor == newColor)
        return;
    m_textColor = newColor;
    Q_EMIT textColorChanged(newColor);
}

void CVideoOverlayText::onSettingsChanged()
{
    VideoOverlaySettings *grid = settings();
    if (!grid)
        return;
    connect(grid, &VideoOverlaySettings::settingsChanged, this,
            &CVideoOverlayText::updateFontsFromSettings, Qt::UniqueConnection);
    updateFontsFromSettings();
}

void CVideoOverlayText::updateFontsFromSettings()
{
    QMutexLocker lock(&m_mutex);
    const VideoOverlaySettings *grid = settings();
    if (!grid)
        return;
    m_font = grid->font();
    m_fontMetrics = QFontMetrics(m_font);
    Q_EMIT fontChanged();
}

void CVideoOverlayText::typeset()
{
    QMutexLocker lock(&m_mutex);
    const VideoOverlaySettings *grid = settings();
    const QString blank = QStringLiteral(" ");
    const auto width
        = [this](const QString &text) { return m_fontMetrics.horizontalAdvance(text); };

    m_lines.clear();
    int widest = 0;
    const auto append = [&](const QString &line, int lineWidth) {
        m_lines.append(line);
        widest = std::max(widest, lineWidth);
    };
    const QStringList paragraphs = m_text.split(QLatin1Char('\n'));
    for (const QString &paragraph : paragraphs) {
        if (!grid || !paragraph.contains(QLatin1Char(' '))) {
            append(paragraph, width(paragraph));
            continue;
        }
        const QRectF margins = grid->marginRect();
        const int available = int(margins.left() + margins.width() - x()) + 1;
        // As text, not as a character: only so does a blank include the font's letter spacing. And
        // the parts are measured one by one, because the joined line can be a pixel narrower.
        const int blankWidth = width(blank);
        const QStringList words = paragraph.split(QLatin1Char(' '));
        QString line = words.first();
        int lineWidth = width(line);
        for (int i = 1; i < words.size(); ++i) {
            const QString &word = words.at(i);
            if (lineWidth + blankWidth + width(word) < available) {
                line += blank + word;
            } else {
                const QString elided = m_fontMetrics.elidedText(line, Qt::ElideRight, available);
                append(elided, width(elided));
                line = word;
            }
            lineWidth = width(line);
        }
        append(line, lineWidth);
    }
    setWidth(widest);
    setHeight(m_lines.size() * (grid ? grid->rowHeight() : 0.0));
}

void CVideoOverlayText::renderText(QImage &image) const
{
    QMutexLocker lock(&m_mutex);
    if (m_text.isEmpty() || !canBePainted(image)) {
        image = QImage();
        return;
    }

    const VideoOverlaySettings *grid = settings();
    const double rowHeight = grid ? grid->rowHeight() : 0.0;
    QVector<Line> lines;
    lines.reserve(m_lines.size());
    for (int i = 0; i < m_lines.size(); ++i) {
        const QString &text = m_lines.at(i);
        if (text.isEmpty())
            continue;
        const int y = int(i * rowHeight);
        const QRect bounds = m_fontMetrics.boundingRect(QRect(0, y, 0, 0), 0, text);
        lines.append(
            {text, bounds, QRect(bounds.left(), bounds.top(), bounds.width(), int(rowHeight))});
    }

    // The painter writes premultiplied bytes for text, whatever an ARGB32 image says it holds. So
    // paint on a premultiplied view of the same memory, and make straight alpha of it afterwards.
    const bool straightAlpha = image.format() == QImage::Format_ARGB32;
    // Over opaque boxes both readings are one; over others only the letters' coverage is painted.
    const bool paintBoxes = !straightAlpha || m_backgroundColor.alpha() == 255;
    image.fill(straightAlpha ? QColor(0, 0, 0, 0) : QColor::fromRgba(ground));
    uchar *bits = image.bits();
    const int bytesPerLine = image.bytesPerLine();
    QImage view = straightAlpha ? QImage(bits, image.width(), image.height(), bytesPerLine,
                                         QImage::Format_ARGB32_Premultiplied)
                                : QImage();
    QPainter painter;
    if (!painter.begin(straightAlpha ? &view : &image)) {
        image = QImage();
        return;
    }
    painter.setFont(m_font);
    QVector<Covered> underBoxes;
    for (int i = 0; i < lines.size(); ++i) {
        const Line &line = lines.at(i);
        if (paintBoxes) {
            drawBox(painter, line, m_backgroundColor);
        } else if (i > 0) {
            const Covered covered = takeOut(bits, bytesPerLine, line.box & image.rect());
            if (!covered.pixels.isEmpty())
                underBoxes.append(covered);
        }
        drawText(painter, line, m_textColor, m_alignment);
    }
    painter.end();
    if (!straightAlpha)
        return;

    const QRgb text = m_textColor.rgba();
    const BlendTable outside = blendTable(text, 0, ground);
    if (paintBoxes) {
        finish(image, lines, nullptr, outside);
        return;
    }
    const QRgb box = m_backgroundColor.rgba();
    const BlendTable inside = blendTable(text, box, qAlpha(box) == 0 ? ground : box);
    forEachPixel(underBoxes, bits, bytesPerLine, [&](QRgb &below, QRgb above) {
        below = over(text, qAlpha(below), 0);
        if (qAlpha(box) > 0)
            below = over(box, qAlpha(box), below);
        if (qAlpha(above) > 0)
            below = over(text, qAlpha(above), below);
    });
    finish(image, lines, &inside, outside);
    forEachPixel(underBoxes, bits, bytesPerLine, [](QRgb result, QRgb &pixel) { pixel = result; });
}

} // namespace Velmar::VideoOverlay
