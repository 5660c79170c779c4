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

/// Straight-alpha result of text over an area of one colour. A pixel that the text does not touch
/// keeps @p untouched, so that colours survive to the bit.
BlendTable blendTable(QRgb text, QRgb background, QRgb untouched)
{
    const auto channel = [](int text, int textAlpha, int back, int backShare, int sum) {
        return (text * textAlpha * 255 + back * backShare + sum / 2) / sum;
    };
    BlendTable table;
    table[0] = untouched;
    for (int alpha = 1; alpha < 256; ++alpha) {
        const int backShare = qAlpha(background) * (255 - alpha);
        const int sum = alpha * 255 + backShare;
        table[size_t(alpha)] = qRgba(
            channel(qRed(text), alpha, qRed(background), backShare, sum),
            channel(qGreen(text), alpha, qGreen(background), backShare, sum),
            channel(qBlue(text), alpha, qBlue(background), backShare, sum), (sum + 127) / 255);
    }
    return table;
}

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
        kept.table = blendTable(text, box, qAlpha(box) == 0 ? ground : box);
        kept.text = text;
        kept.box = box;
        kept.valid = true;
    }
    return kept.table;
}

void drawLines(QPainter &painter, const QVector<Line> &lines, const QFont &font,
               const QColor &color, int alignment)
{
    painter.setFont(font);
    painter.setBrush(color);
    painter.setPen(color);
    for (const Line &line : lines)
        painter.drawText(line.bounds.translated(1, -1), alignment | Qt::AlignVCenter, line.text);
}

void drawBoxes(QPainter &painter, const QVector<Line> &lines, const QColor &color)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    for (const Line &line : lines)
        painter.drawRect(line.box);
}

/// Makes text over a box of the pixels from @p first up to @p last. Most of them hold no text,
/// which eight at a time are found out quickly.
void finishBox(QRgb *pixels, int first, int last, const BlendTable &table)
{
    constexpr int step = 8;
    int x = first;
    for (; x + step <= last; x += step) {
        QRgb any = 0;
        for (int i = 0; i < step; ++i)
            any |= pixels[x + i];
        if (any == 0) {
            std::fill_n(pixels + x, step, table[0]);
            continue;
        }
        for (int i = 0; i < step; ++i)
            pixels[x + i] = table[size_t(qAlpha(pixels[x + i]))];
    }
    for (; x < last; ++x)
        pixels[x] = table[size_t(qAlpha(pixels[x]))];
}

/// The same where there is no box: the text's own colour, as far as it covers the pixel.
void finishGround(QRgb *pixels, int first, int last, QRgb text)
{
    for (int x = first; x < last; ++x) {
        const QRgb alpha = pixels[x] & 0xff000000;
        pixels[x] = alpha == 0 ? ground : (alpha | (text & 0x00ffffff));
    }
}

/// Turns @p image, which holds premultiplied text, into the finished straight-alpha picture:
/// @p inside holds within the boxes. A null @p inside leaves the boxes alone.
void finish(QImage &image, const QVector<Line> &lines, const BlendTable *inside, QRgb text)
{
    QVector<QRect> boxOfRow(image.height());
    for (const Line &line : lines) {
        const QRect box = line.box & image.rect();
        for (int y = box.top(); y <= box.bottom(); ++y)
            boxOfRow[y] = box;
    }
    const int width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        auto *pixels = reinterpret_cast<QRgb *>(image.scanLine(y));
        const QRect box = boxOfRow.at(y);
        const int begin = box.isEmpty() ? 0 : box.left();
        const int end = box.isEmpty() ? 0 : box.right() + 1;
        finishGround(pixels, 0, begin, text);
        if (inside)
            finishBox(pixels, begin, end, *inside);
        finishGround(pixels, end, width, text);
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

    // The painter writes premultiplied bytes for text, whatever an ARGB32 image says it holds. So
    // paint on a premultiplied view of the same memory, and make straight alpha of it afterwards.
    const bool straightAlpha = image.format() == QImage::Format_ARGB32;
    const bool opaqueBoxes = m_backgroundColor.alpha() == 255;
    image.fill(straightAlpha ? QColor(0, 0, 0, 0) : QColor::fromRgba(ground));
    QImage view = straightAlpha ? QImage(image.bits(), image.width(), image.height(),
                                         image.bytesPerLine(), QImage::Format_ARGB32_Premultiplied)
                                : QImage();
    QPainter painter;
    if (!painter.begin(straightAlpha ? &view : &image)) {
        image = QImage();
        return;
    }
    if (!straightAlpha || opaqueBoxes)
        drawBoxes(painter, lines, m_backgroundColor);
    drawLines(painter, lines, m_font, m_textColor, m_alignment);
    painter.end();
    if (!straightAlpha)
        return;

    const QRgb text = m_textColor.rgba();
    finish(image, lines, opaqueBoxes ? nullptr : &boxTable(text, m_backgroundColor.rgba()), text);
}

} // namespace Velmar::VideoOverlay
