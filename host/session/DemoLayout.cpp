// SPDX-License-Identifier: Apache-2.0
#include "host/session/DemoLayout.h"

#include <videooverlay/elements/CVideoOverlayElement.h>

#include <QColor>
#include <QVariant>
#include <QVector>

#include <algorithm>

namespace Velmar::Host {

using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::ElementParam;

namespace {

constexpr int GridColumns = 54;

struct Entry
{
    QString name;
    int width; ///< [characters] of the widest value with its unit
};

/// Values one below the other; their boxes are equally wide.
struct Block
{
    enum class Edge { Left, Right };

    Edge edge;
    int row; ///< of the first
    QVector<Entry> entries;
};

const QVector<Block> &blocks()
{
    static const QVector<Block> all {
        {Block::Edge::Left,
         1,
         {{ElementParam::NAME_SECTION_DISTANCE_COUNTER, 10},
          {ElementParam::NAME_TOTAL_DISTANCE_COUNTER, 10},
          {ElementParam::NAME_SPEED, 12},
          {ElementParam::NAME_VIDEO_TIME_COUNTER, 9}}},
        {Block::Edge::Right,
         18,
         {{ElementParam::NAME_CRAWLER_PITCH, 7},
          {ElementParam::NAME_CRAWLER_ROLL, 7},
          {ElementParam::NAME_CRAWLER_PRESSURE, 9},
          {ElementParam::NAME_CRAWLER_TEMPERATURE, 8}}},
        {Block::Edge::Left,
         22,
         {{ElementParam::NAME_CAMERA_PAN, 7},
          {ElementParam::NAME_CAMERA_TILT, 7},
          {ElementParam::NAME_CAMERA_PRESSURE, 9},
          {ElementParam::NAME_CAMERA_TEMPERATURE, 8},
          {ElementParam::NAME_OBJECT_TEMPERATURE, 8}}},
    };
    return all;
}

ElementParam textRecord(CVideoOverlayElement::Type type, int row, int column)
{
    ElementParam record;
    record.insert(QStringLiteral("type"), int(type));
    record.insert(QStringLiteral("row"), row);
    record.insert(QStringLiteral("col"), column);
    record.insert(QStringLiteral("enabled"), true);
    return record;
}

ElementParam heading()
{
    ElementParam record = textRecord(CVideoOverlayElement::StaticText, 0, 0);
    record.insert(QStringLiteral("backgroundColor"), QColor(QStringLiteral("#0000FF")));
    record.insert(QStringLiteral("textColor"), QColor(Qt::white));
    record.insert(QStringLiteral("text"),
                  QStringLiteral("Section 4711-4712   DN 300 concrete   downstream"));
    return record;
}

ElementParam valueRecord(const QString &name, int row, int column, int width)
{
    ElementParam record = textRecord(CVideoOverlayElement::SystemText, row, column);
    record.insert(ElementParam::NAME_COLUMNBOUND, name);
    record.insert(QStringLiteral("captionEnabled"), true);
    record.insert(QStringLiteral("backgroundColor"), QColor(0, 0, 0, 150));
    record.insert(QStringLiteral("textColor"), QColor(QStringLiteral("#FFE066")));
    record.insert(QStringLiteral("max_width"), width);
    return record;
}

} // namespace

QList<ElementParam> demoLayout(const std::function<QString(const QString &name)> &caption)
{
    QList<ElementParam> records {heading()};
    for (const Block &block : blocks()) {
        const auto captionPart = [&caption](const Entry &entry) {
            return caption(entry.name).size() + 2; // ": "
        };
        int width = 0;
        for (const Entry &entry : block.entries)
            width = std::max(width, captionPart(entry) + entry.width);
        // A cell is left at the right edge: letters of some sizes are wider than their share.
        const int column
            = block.edge == Block::Edge::Left ? 0 : std::max(0, GridColumns - 1 - width);
        int row = block.row;
        for (const Entry &entry : block.entries)
            records.append(valueRecord(entry.name, row++, column, width - captionPart(entry)));
    }
    return records;
}

} // namespace Velmar::Host
