// SPDX-License-Identifier: Apache-2.0
#include "host/check/ElementRules.h"

#include <videooverlay/elements/CVideoOverlayElement.h>

#include <QStringList>

#include <algorithm>

namespace Velmar::Host {

using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::ElementParam;
using Kind = ElementFault::Kind;

namespace {

constexpr double Rounding = 0.05; // [cells]; pictures of the screen are rounded to pixels
// A value without a width of its own: "-1234.56 inch/min".
constexpr int ValueWidth = 17;

QString textOf(const ElementParam &record, const char *key)
{
    return record.value(QString::fromLatin1(key)).toString();
}

int numberOf(const ElementParam &record, const char *key)
{
    return record.value(QString::fromLatin1(key)).toInt();
}

bool isOn(const ElementParam &record, const char *key)
{
    return record.value(QString::fromLatin1(key)).toBool();
}

CVideoOverlayElement::Type typeOf(const ElementParam &record)
{
    return CVideoOverlayElement::Type(numberOf(record, "type"));
}

/// The lines of @p text as the library breaks them: at blanks, never within a word.
QSizeF brokenAt(int room, const QString &text)
{
    int width = 0;
    int lines = 0;
    const QStringList paragraphs = text.split(QLatin1Char('\n'));
    for (const QString &paragraph : paragraphs) {
        const QStringList words = paragraph.split(QLatin1Char(' '));
        int line = words.constFirst().size();
        for (int i = 1; i < words.size(); ++i) {
            if (line + 1 + words.at(i).size() <= room) {
                line += 1 + words.at(i).size();
                continue;
            }
            width = std::max(width, std::min(line, room));
            ++lines;
            line = words.at(i).size();
        }
        width = std::max(width, line);
        ++lines;
    }
    return QSizeF(width, lines);
}

int longestWord(const QString &text)
{
    int longest = 0;
    const QStringList paragraphs = text.split(QLatin1Char('\n'));
    for (const QString &paragraph : paragraphs) {
        const QStringList words = paragraph.split(QLatin1Char(' '));
        for (const QString &word : words)
            longest = std::max(longest, word.size());
    }
    return longest;
}

/// Empty when nothing is known.
QSizeF sizeOf(const CheckedElement &element, int room)
{
    const ElementParam &record = element.record;
    if (!element.size.isEmpty())
        return element.size;
    const auto valueSize = [&](int widthUnlessGiven) {
        const int given = numberOf(record, "max_width");
        const int caption = isOn(record, "captionEnabled") ? element.caption.size() + 2 : 0;
        return QSizeF(caption + (given > 0 ? given : widthUnlessGiven),
                      std::max(1, numberOf(record, "max_height")));
    };
    switch (typeOf(record)) {
    case CVideoOverlayElement::SystemText:
        return valueSize(ValueWidth);
    case CVideoOverlayElement::InspText:
    case CVideoOverlayElement::InspStaticText:
    case CVideoOverlayElement::FreeText:
        return valueSize(1);
    case CVideoOverlayElement::StaticText:
        if (!element.text.isEmpty())
            return brokenAt(room, element.text);
        return textOf(record, "columnBound").isEmpty() ? QSizeF() : QSizeF(1, 1);
    default:
        return {};
    }
}

class Check
{
public:
    Check(const ElementRules &rules, const QVector<CheckedElement> &elements)
        : m_rules(rules)
        , m_elements(elements)
    {
    }

    QVector<ElementFault> run()
    {
        for (m_index = 0; m_index < m_elements.size(); ++m_index) {
            checkBinding(m_elements.at(m_index).record);
            checkWords(m_elements.at(m_index).record);
            checkPlace(m_elements.at(m_index));
        }
        return m_faults;
    }

private:
    struct Box
    {
        int element;
        QRectF cells;
    };

    void report(Kind kind, const QString &key) { m_faults.append({kind, m_index, -1, key, {}}); }
    void report(Kind kind, const QRectF &cells, int other = -1)
    {
        m_faults.append({kind, m_index, other, {}, cells});
    }

    void checkBinding(const ElementParam &record)
    {
        const QString name = textOf(record, "columnBound");
        const QString column = name.section(QLatin1Char('.'), -1); // of a path of names, the last
        const QString table = textOf(record, "TDIR_Key");
        switch (typeOf(record)) {
        case CVideoOverlayElement::SystemText:
            if (m_rules.knowsValue && !m_rules.knowsValue(name))
                report(Kind::UnknownValue, ElementParam::NAME_COLUMNBOUND);
            else if (m_rules.takesUnit && !m_rules.takesUnit(name, textOf(record, "unit")))
                report(Kind::UnknownUnit, QStringLiteral("unit"));
            return;
        case CVideoOverlayElement::StaticText:
            if (!name.isEmpty() && m_rules.knowsColumn && !m_rules.knowsColumn(QString(), column))
                report(Kind::UnknownColumn, ElementParam::NAME_COLUMNBOUND);
            return;
        case CVideoOverlayElement::InspText:
        case CVideoOverlayElement::InspStaticText:
            if (m_rules.knowsColumn && (table.isEmpty() || !m_rules.knowsColumn(table, column)))
                report(Kind::UnknownColumn, ElementParam::NAME_COLUMNBOUND);
            return;
        default:
            return;
        }
    }

    /// Words of which there are only a few.
    void checkWords(const ElementParam &record)
    {
        const CVideoOverlayElement::Type type = typeOf(record);
        const bool isInspection = type == CVideoOverlayElement::InspText
            || type == CVideoOverlayElement::InspStaticText;
        const QString align = textOf(record, "align");
        if (type == CVideoOverlayElement::SystemText && !align.isEmpty()
            && align != QLatin1String("LEFT") && align != QLatin1String("RIGHT")
            && align != QLatin1String("CENTER"))
            report(Kind::UnknownAlignment, QStringLiteral("align"));
        const QString source = textOf(record, "textDatasource");
        // A live value comes from the host whatever stands here; an inspection text without a
        // source has no value at all.
        if ((isInspection || (type == CVideoOverlayElement::SystemText && !source.isEmpty()))
            && source != QLatin1String("DB"))
            report(Kind::UnknownSource, QStringLiteral("textDatasource"));
    }

    void checkPlace(const CheckedElement &element)
    {
        const QRectF grid(0, 0, m_rules.columns, m_rules.rows);
        const QPoint corner(numberOf(element.record, "col"), numberOf(element.record, "row"));
        const bool isInside = QRect(0, 0, m_rules.columns, m_rules.rows).contains(corner);
        const int room = std::max(1, m_rules.columns - std::max(0, corner.x()));
        const QRectF cells(corner, sizeOf(element, room));
        if (!isInside)
            report(Kind::OutsideGrid, cells);
        else if (longestWord(element.text) > room)
            report(Kind::CutOff, cells);
        else if (!cells.isEmpty()
                 && !grid.adjusted(-Rounding, -Rounding, Rounding, Rounding).contains(cells))
            report(Kind::LeavesGrid, cells);
        if (!cells.isEmpty() && isOn(element.record, "enabled"))
            checkOverlap(cells);
    }

    void checkOverlap(const QRectF &cells)
    {
        for (const Box &box : qAsConst(m_boxes)) {
            const QRectF common = box.cells & cells;
            if (common.width() > Rounding && common.height() > Rounding)
                report(Kind::Overlap, cells, box.element);
        }
        m_boxes.append({m_index, cells});
    }

    const ElementRules &m_rules;
    const QVector<CheckedElement> &m_elements;
    int m_index = 0;
    QVector<ElementFault> m_faults;
    QVector<Box> m_boxes; ///< of what was looked at and is switched on
};

} // namespace

QVector<ElementFault> ElementRules::check(const QVector<CheckedElement> &elements) const
{
    return Check(*this, elements).run();
}

} // namespace Velmar::Host
