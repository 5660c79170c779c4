// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/CVideoOverlayText.h"

#include "videooverlay/Log_p.h"
#include "videooverlay/ToInt_p.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/elements/PictureBound_p.h"

#include <QMutexLocker>
#include <QPainter>
#include <QVector>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

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
        kept.table[0] = qAlpha(box) == 0 ? ground : box;
        for (int alpha = 1; alpha < 256; ++alpha)
            kept.table[size_t(alpha)] = over(text, alpha, box);
        kept.text = text;
        kept.box = box;
        kept.valid = true;
    }
    return kept.table;
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

/// Puts boxes and letters together in straight alpha. Letters come painted premultiplied, and only
/// their coverage is used.
class Composer
{
public:
    Composer(QImage &image, QRgb text, QRgb box)
        : m_image(image)
        , m_text(text)
        , m_box(box)
    {
    }

    /// The letters of the only @p line stand in the picture itself; lays its box under them.
    void layOnlyLine(const Line &line)
    {
        const BlendTable &onBox = boxTable(m_text, m_box);
        const QRect box = line.box & m_image.rect();
        for (int y = 0; y < m_image.height(); ++y) {
            const bool inBox = y >= box.top() && y <= box.bottom();
            const int begin = inBox ? box.left() : 0;
            const int end = inBox ? box.left() + box.width() : 0;
            QRgb *pixels = row(m_image, y);
            finishGround(pixels, 0, begin);
            finishBox(pixels, begin, end, onBox);
            finishGround(pixels, end, m_image.width());
        }
    }

    /// Lays @p line, its box first, over what is there, and wipes its @p letters.
    void layLine(QImage &letters, const Line &line)
    {
        const QRect box = line.box & m_image.rect();
        for (int y = box.top(); qAlpha(m_box) > 0 && y <= box.bottom(); ++y) {
            QRgb *pixels = row(m_image, y);
            for (int x = box.left(); x <= box.right(); ++x)
                pixels[x] = pixels[x] == ground ? m_box : over(m_box, qAlpha(m_box), pixels[x]);
        }
        const BlendTable &onBox = boxTable(m_text, m_box);
        // High letters reach into the rows around.
        const int top = std::max(0, line.bounds.top() - line.bounds.height());
        const int bottom
            = std::min(m_image.height() - 1, line.bounds.bottom() + line.bounds.height());
        for (int y = top; y <= bottom; ++y) {
            QRgb *from = row(letters, y);
            QRgb *to = row(m_image, y);
            for (int x = 0; x < m_image.width(); ++x) {
                const int alpha = qAlpha(std::exchange(from[x], 0));
                if (alpha == 0)
                    continue;
                to[x] = to[x] == m_box ? onBox[size_t(alpha)] : over(m_text, alpha, to[x]);
            }
        }
    }

    /// Boxes and letters stand in the picture already; makes straight alpha of what lies beside the
    /// opaque boxes of @p lines.
    void finishBeside(const QVector<Line> &lines)
    {
        QVector<QRect> boxOfRow(m_image.height());
        for (const Line &line : lines) {
            const QRect box = line.box & m_image.rect();
            for (int y = box.top(); y <= box.bottom(); ++y)
                boxOfRow[y] = box;
        }
        for (int y = 0; y < m_image.height(); ++y) {
            const QRect box = boxOfRow.at(y);
            QRgb *pixels = row(m_image, y);
            finishGround(pixels, 0, box.isEmpty() ? 0 : box.left());
            finishGround(pixels, box.isEmpty() ? 0 : box.left() + box.width(), m_image.width());
        }
    }

private:
    static QRgb *row(QImage &image, int y) { return reinterpret_cast<QRgb *>(image.scanLine(y)); }

    /// Most pixels hold no letter, which eight at a time are found out quickly.
    static void finishBox(QRgb *pixels, int begin, int end, const BlendTable &onBox)
    {
        constexpr int step = 8;
        int x = begin;
        for (; x + step <= end; x += step) {
            QRgb any = 0;
            for (int i = 0; i < step; ++i)
                any |= pixels[x + i];
            if (any == 0) {
                std::fill_n(pixels + x, step, onBox[0]);
                continue;
            }
            for (int i = 0; i < step; ++i)
                pixels[x + i] = onBox[size_t(qAlpha(pixels[x + i]))];
        }
        for (; x < end; ++x)
            pixels[x] = onBox[size_t(qAlpha(pixels[x]))];
    }

    /// Where there is no box: the letters' own colour, as far as they cover the pixel.
    void finishGround(QRgb *pixels, int begin, int end) const
    {
        for (int x = begin; x < end; ++x) {
            const QRgb alpha = pixels[x] & 0xff000000;
            pixels[x] = alpha == 0 ? ground : (alpha | (m_text & 0x00ffffff));
        }
    }

    QImage &m_image;
    QRgb m_text;
    QRgb m_box;
};

/// True for text of Latin letters, digits and signs alone, in which no character depends on its
/// place in the line, as tabulators and combining marks do.
bool isPlain(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) {
        const ushort code = c.unicode();
        return (code >= 0x20 && code < 0x7f) || (code >= 0xa0 && code <= 0xff && code != 0xad);
    });
}

/// What a text can be elided to: widths are counted in parts of a pixel there, so that one that
/// lies far off would come out as any other.
int elisionWidth(double width)
{
    constexpr double limit = std::numeric_limits<int>::max() / 64;
    return toInt(std::clamp(width, -1.0, limit)); // there is no less room than none
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
    const EditLock lock(this);
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
    QImage image = newPicture();
    renderText(image);
    return RenderedElement(base.id(), base.type(), base.x(), base.y(), base.visible(), image);
}

QImage CVideoOverlayText::newPicture() const
{
    const QSize size = pixelSize();
    const bool wasTooLarge = m_isTooLarge;
    m_isTooLarge = !m_text.isEmpty() && isBeyondBound(size.width(), size.height(), sizeof(QRgb));
    if (m_isTooLarge && !wasTooLarge)
        log(LogLevel::Error,
            QStringLiteral("ID %1 text too large for a picture: %2 x %3 pixels")
                .arg(id())
                .arg(size.width())
                .arg(size.height()));
    return m_isTooLarge || m_text.isEmpty() ? QImage() : QImage(size, QImage::Format_ARGB32);
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
    const EditLock lock(this);
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
    const EditLock lock(this);
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
    const EditLock lock(this);
    if (m_backgroundColor == newColor)
        return;
    m_backgroundColor = newColor;
    Q_EMIT backgroundColorChanged(newColor);
}

void CVideoOverlayText::setTextColor(QColor newColor)
{
    const EditLock lock(this);
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
    // A grid that was left has been disconnected by then. Remembered, because a unique connection
    // looks through those of all elements: loading would grow with the square of the profile.
    if (!m_gridConnection)
        m_gridConnection = connect(grid, &VideoOverlaySettings::settingsChanged, this,
                                   &CVideoOverlayText::updateFontsFromSettings);
    updateFontsFromSettings();
}

void CVideoOverlayText::updateFontsFromSettings()
{
    const EditLock lock(this);
    const VideoOverlaySettings *grid = settings();
    if (!grid)
        return;
    m_font = grid->font();
    m_fontMetrics = QFontMetrics(m_font);
    Q_EMIT fontChanged();
}

void CVideoOverlayText::typeset()
{
    const EditLock lock(this);
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
        // Not as an int: the grid may have more columns than an int can count the pixels of.
        const double available = std::trunc(margins.left() + margins.width() - x()) + 1;
        // Measuring is what costs here, and mostly one line is far from full. Measured in parts it
        // is a few pixels wider than as a whole, nowhere near the height of a line for each blank.
        if (isPlain(paragraph)) {
            const int whole = width(paragraph);
            const double slack = m_fontMetrics.height() * (paragraph.count(QLatin1Char(' ')) + 1.0);
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
            if (double(lineWidth) + blankWidth + width(word) < available) {
                line += blank + word;
            } else {
                const QString elided
                    = m_fontMetrics.elidedText(line, Qt::ElideRight, elisionWidth(available));
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
        const int y = toInt(i * rowHeight);
        const QRect bounds = m_fontMetrics.boundingRect(QRect(0, y, 0, 0), 0, text);
        lines.append(
            {text, bounds, QRect(bounds.left(), bounds.top(), bounds.width(), toInt(rowHeight))});
    }

    if (lines.isEmpty()) {
        image.fill(QColor::fromRgba(ground));
        return;
    }

    // The painter writes premultiplied bytes for text, whatever an ARGB32 image says it holds. Over
    // opaque boxes that is the same thing, and only what lies beside them needs a second look. Over
    // others the letters are painted apart, and put together in straight alpha.
    const bool straightAlpha = image.format() == QImage::Format_ARGB32;
    const bool painterLaysBoxes = !straightAlpha || m_backgroundColor.alpha() == 255;
    const bool apart = !painterLaysBoxes && lines.size() > 1; // a line's box may cover letters
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
    Composer composer(image, m_textColor.rgba(), m_backgroundColor.rgba());
    for (const Line &line : qAsConst(lines)) {
        if (painterLaysBoxes)
            drawBox(painter, line, m_backgroundColor);
        drawLetters(painter, line, m_textColor, m_alignment);
        if (apart)
            composer.layLine(canvas, line);
    }
    painter.end();
    if (!straightAlpha || apart)
        return;
    if (painterLaysBoxes)
        composer.finishBeside(lines);
    else
        composer.layOnlyLine(lines.first());
}

} // namespace Velmar::VideoOverlay
