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

/// Straight-alpha result of @p color, seen with @p alpha (not 0), over @p below.
QRgb over(QRgb color, int alpha, QRgb below)
{
    const int share = qAlpha(below) * (255 - alpha);
    const int sum = alpha * 255 + share;
    const auto channel
        = [=](int front, int back) { return (front * alpha * 255 + back * share + sum / 2) / sum; };
    return qRgba(channel(qRed(color), qRed(below)), channel(qGreen(color), qGreen(below)),
                 channel(qBlue(color), qBlue(below)), (sum + 127) / 255);
}

/// What becomes of a box's pixel under text of every coverage, 0 to 255.
using BlendTable = std::array<QRgb, 256>;

/// The table for text on a box. The elements of a display mostly share their colours, so the last
/// one is kept: its divisions cost as much as a third of painting the text.
const BlendTable &boxTable(QRgb text, QRgb box)
{
    struct Kept
    {
        bool valid = false;
        QRgb text = 0;
        QRgb box = 0;
        BlendTable table;
    };
    thread_local Kept kept;
    if (!kept.valid || kept.text != text || kept.box != box) {
        kept.table[0] = box;
        for (int alpha = 1; alpha < 256; ++alpha)
            kept.table[size_t(alpha)] = over(text, alpha, box);
        kept.text = text;
        kept.box = box;
        kept.valid = true;
    }
    return kept.table;
}

QRgb *row(QImage &image, int y)
{
    return reinterpret_cast<QRgb *>(image.scanLine(y));
}

/// The letters' own colour where there is no box, as far as they cover the pixel.
QRgb onGround(QRgb letters, QRgb text)
{
    const QRgb alpha = letters & 0xff000000;
    return alpha == 0 ? ground : (alpha | (text & 0x00ffffff));
}

void drawBox(QPainter &painter, const Line &line, const QColor &color)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRect(line.box);
}

void drawLetters(QPainter &painter, const Line &line, const QColor &color, int alignment)
{
    painter.setBrush(color);
    painter.setPen(color);
    painter.drawText(line.bounds.translated(1, -1), alignment | Qt::AlignVCenter, line.text);
}

/// Makes straight alpha of letters that were painted premultiplied beside opaque boxes.
void finishOutside(QImage &image, const QVector<Line> &lines, QRgb text)
{
    QVector<QRect> boxOfRow(image.height());
    for (const Line &line : lines) {
        const QRect box = line.box & image.rect();
        for (int y = box.top(); y <= box.bottom(); ++y)
            boxOfRow[y] = box;
    }
    for (int y = 0; y < image.height(); ++y) {
        QRgb *pixels = row(image, y);
        const QRect box = boxOfRow.at(y);
        const int begin = box.isEmpty() ? 0 : box.left();
        const int end = box.isEmpty() ? 0 : box.right() + 1;
        for (int x = 0; x < begin; ++x)
            pixels[x] = onGround(pixels[x], text);
        for (int x = end; x < image.width(); ++x)
            pixels[x] = onGround(pixels[x], text);
    }
}

/// Lays a box of @p color over what is there: the ground, and here and there the foot of a letter
/// of the line above.
void layBox(QImage &image, const QRect &box, QRgb color)
{
    if (qAlpha(color) == 0)
        return;
    for (int y = box.top(); y <= box.bottom(); ++y) {
        QRgb *const begin = row(image, y) + box.left();
        std::transform(begin, begin + box.width(), begin, [color](QRgb below) {
            return below == ground ? color : over(color, qAlpha(color), below);
        });
    }
}

/// Lays @p letters, painted premultiplied, over what is there, and wipes them.
void layLetters(QImage &image, QImage &letters, QRgb text, QRgb box)
{
    constexpr int step = 8; // most pixels hold no letter: eight at a time are found out quickly
    const BlendTable &onBox = boxTable(text, box);
    const auto lay = [&](QRgb &letter, QRgb &pixel) {
        const int alpha = qAlpha(letter);
        if (alpha == 0)
            return;
        if (pixel == box)
            pixel = onBox[size_t(alpha)];
        else if (pixel == ground)
            pixel = onGround(letter, text);
        else
            pixel = over(text, alpha, pixel);
        letter = 0;
    };
    const int width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        QRgb *const from = row(letters, y);
        QRgb *const to = row(image, y);
        int x = 0;
        for (; x + step <= width; x += step) {
            QRgb any = 0;
            for (int i = 0; i < step; ++i)
                any |= from[x + i];
            for (int i = 0; any != 0 && i < step; ++i)
                lay(from[x + i], to[x + i]);
        }
        for (; x < width; ++x)
            lay(from[x], to[x]);
    }
}

/// True for text of Latin letters, digits and signs alone, in which no character depends on its
/// place in the line, as tabulators and combining marks do.
bool isPlain(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) {
        const ushort code = c.unicode();
        return (code >= 0x20 && code < 0x7f) || (code >= 0xa0 && code <= 0xff && code != 0xad);
    });
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
        // Measuring is what costs here, and mostly one line is far from full. Measured in parts it
        // is a few pixels wider than as a whole, nowhere near the height of a line for each blank.
        if (isPlain(paragraph)) {
            const int whole = width(paragraph);
            const int slack = m_fontMetrics.height() * (paragraph.count(QLatin1Char(' ')) + 1);
            if (whole + slack < available) {
                append(paragraph, whole);
                continue;
            }
        }
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

    // The painter writes premultiplied bytes for text, whatever an ARGB32 image says it holds. Over
    // opaque boxes that is the same thing, and only what lies beside them needs a second look. Over
    // others the letters are painted apart, and put together in straight alpha.
    const bool straightAlpha = image.format() == QImage::Format_ARGB32;
    const bool apart = straightAlpha && m_backgroundColor.alpha() < 255;
    image.fill(straightAlpha && !apart ? QColor(0, 0, 0, 0) : QColor::fromRgba(ground));
    QImage canvas;
    if (apart) {
        canvas = QImage(image.size(), QImage::Format_ARGB32_Premultiplied);
        canvas.fill(0);
    } else if (straightAlpha) {
        canvas = QImage(image.bits(), image.width(), image.height(), image.bytesPerLine(),
                        QImage::Format_ARGB32_Premultiplied);
    }
    QPainter painter;
    if (!painter.begin(straightAlpha ? &canvas : &image)) {
        image = QImage();
        return;
    }
    painter.setFont(m_font);
    const QRgb text = m_textColor.rgba();
    for (const Line &line : qAsConst(lines)) {
        if (!apart)
            drawBox(painter, line, m_backgroundColor);
        drawLetters(painter, line, m_textColor, m_alignment);
        if (apart) {
            layBox(image, line.box & image.rect(), m_backgroundColor.rgba());
            layLetters(image, canvas, text, m_backgroundColor.rgba());
        }
    }
    painter.end();
    if (straightAlpha && !apart)
        finishOutside(image, lines, text);
}

} // namespace Velmar::VideoOverlay
