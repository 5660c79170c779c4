// SPDX-License-Identifier: Apache-2.0
#include "host/check/ProfileCheck.h"

#include "host/check/MarkupTree.h"

#include <QColor>
#include <QFileInfo>
#include <QImageReader>
#include <QRect>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Velmar::Host {

namespace {

enum class Coding {
    Text,
    Integer,
    Number,
    Switch,
    Color,
    Unit,
    List,
};

struct Tag
{
    const char *name;
    Coding coding;
};

struct Kind
{
    const char *name;
    std::vector<Tag> tags;
};

const std::vector<Kind> &kinds()
{
    static const std::vector<Tag> inspectionText {
        {"COL_Bound_Column", Coding::Text}, {"TDIR_Key", Coding::Text},
        {"CAPTION", Coding::Text},          {"ROW", Coding::Integer},
        {"COL", Coding::Integer},           {"BGCOLOR", Coding::Color},
        {"FGCOLOR", Coding::Color},         {"VISIBLE", Coding::Switch},
        {"SOURCE", Coding::Text},           {"WIDTH", Coding::Integer},
        {"HEIGHT", Coding::Integer},        {"TIMEOUT", Coding::Integer},
        {"SHOWCAPTION", Coding::Switch},
    };
    static const std::vector<Kind> all {
        {"STATICTEXT",
         {{"STATIC_ID", Coding::Integer},
          {"CANDELETE", Coding::Switch},
          {"TEXT", Coding::Text},
          {"ROW", Coding::Integer},
          {"COL", Coding::Integer},
          {"BGCOLOR", Coding::Color},
          {"FGCOLOR", Coding::Color},
          {"VISIBLE", Coding::Switch},
          {"COL_Bound_Column", Coding::Text},
          {"CAPTION", Coding::Text}}},
        {"SYSTEMTEXT",
         {{"COL_Bound_Column", Coding::Text},
          {"CAPTION", Coding::Text},
          {"ROW", Coding::Integer},
          {"COL", Coding::Integer},
          {"BGCOLOR", Coding::Color},
          {"FGCOLOR", Coding::Color},
          {"VISIBLE", Coding::Switch},
          {"SOURCE", Coding::Text},
          {"SHOWCAPTION", Coding::Switch},
          {"UNIT", Coding::Unit},
          {"WIDTH", Coding::Integer},
          {"HEIGHT", Coding::Integer},
          {"ALIGN", Coding::Text}}},
        {"INSPTEXT", inspectionText},
        {"INSPSTATICTEXT", inspectionText},
        {"IMAGE",
         {{"ROW", Coding::Integer},
          {"COL", Coding::Integer},
          {"VISIBLE", Coding::Switch},
          {"PATH", Coding::Text},
          {"SCALE", Coding::Number},
          {"SCREENSNIP", Coding::Switch},
          {"CAPTION", Coding::Text}}},
        {"FREETEXT",
         {{"ROW", Coding::Integer},
          {"COL", Coding::Integer},
          {"BGCOLOR", Coding::Color},
          {"FGCOLOR", Coding::Color},
          {"VISIBLE", Coding::Switch},
          {"WIDTH", Coding::Integer},
          {"HEIGHT", Coding::Integer},
          {"TIMEOUT", Coding::Integer},
          {"DEFAULT_LINE_NUMBER", Coding::Integer},
          {"FAVORITES", Coding::List}}},
        {"GENERAL",
         {{"GLOBAL_TRANSPARENCY", Coding::Integer},
          {"ANALOG_VIDEO", Coding::Switch},
          {"KX70II_STATE", Coding::Switch},
          {"KX70II_RowPercent", Coding::Integer},
          {"KX70II_ColPercent", Coding::Integer},
          {"KX70II_Units", Coding::Text}}},
    };
    return all;
}

const Kind *kindOf(const QString &name)
{
    const auto &all = kinds();
    const auto found = std::find_if(all.cbegin(), all.cend(), [&](const Kind &kind) {
        return name == QLatin1String(kind.name);
    });
    return found == all.cend() ? nullptr : &*found;
}

// Units have numbers in profiles, from 1 on.
constexpr int LastUnit = 17;
constexpr int MostFavouriteLines = 14;
constexpr double MostCells = 1000000; ///< far beyond every grid
// A value without a width of its own: "-1234.56 inch/min".
constexpr int ValueWidth = 17;

QString textOf(const MarkupNode &element, const char *tag)
{
    const MarkupNode *child = element.child(QString::fromLatin1(tag));
    return child ? child->text : QString();
}

int numberOf(const MarkupNode &element, const char *tag)
{
    return textOf(element, tag).toInt();
}

bool isOn(const QString &text)
{
    return !text.isEmpty() && text != QLatin1String("0")
        && text.compare(QLatin1String("false"), Qt::CaseInsensitive) != 0;
}

class Check
{
public:
    explicit Check(const ProfileCheckContext &context)
        : m_context(context)
    {
    }

    QVector<ProfileFinding> run(const QByteArray &document)
    {
        const MarkupTree tree = MarkupTree::read(document);
        if (!tree.error.isEmpty())
            report(tree.errorPlace, tree.error);
        else if (const MarkupNode *profile = profileOf(tree.root))
            checkElements(*profile);
        std::stable_sort(m_findings.begin(), m_findings.end(),
                         [](const ProfileFinding &a, const ProfileFinding &b) {
                             return std::make_pair(a.line, a.column)
                                 < std::make_pair(b.line, b.column);
                         });
        return m_findings;
    }

private:
    /// What an element covers of the grid, and what it is called in a finding.
    struct Box
    {
        QRect cells;
        QString name;
    };

    void report(TextPlace place, const QString &reason)
    {
        m_findings.append({place.line, place.column, reason});
    }

    static int countProfiles(const MarkupNode &node, const MarkupNode **found)
    {
        int count = node.name == QLatin1String("PROFILE") ? 1 : 0;
        if (count)
            *found = &node;
        for (const MarkupNode &child : node.children)
            count += countProfiles(child, found);
        return count;
    }

    const MarkupNode *profileOf(const MarkupNode &root)
    {
        const MarkupNode *found = nullptr;
        const int count = countProfiles(root, &found);
        if (count == 1)
            return found;
        report(root.place, QStringLiteral("%1 elements PROFILE instead of one").arg(count));
        return nullptr;
    }

    void checkElements(const MarkupNode &profile)
    {
        for (const MarkupNode &element : profile.children) {
            const Kind *kind = kindOf(element.name);
            if (!kind) {
                report(element.place, QStringLiteral("unknown element %1").arg(element.name));
                continue;
            }
            checkTags(element, *kind);
            if (element.name != QLatin1String("GENERAL")) {
                checkBinding(element);
                checkPlace(element);
            }
        }
    }

    void checkTags(const MarkupNode &element, const Kind &kind)
    {
        QStringList seen;
        for (const MarkupNode &child : element.children) {
            const auto tag
                = std::find_if(kind.tags.cbegin(), kind.tags.cend(), [&](const Tag &tag) {
                      return child.name == QLatin1String(tag.name);
                  });
            if (tag == kind.tags.cend())
                report(child.place,
                       QStringLiteral("unknown element %1 in %2").arg(child.name, element.name));
            else if (seen.contains(child.name))
                report(child.place,
                       QStringLiteral("%1 again: only the first counts").arg(child.name));
            else
                checkCoding(child, tag->coding);
            seen.append(child.name);
        }
    }

    void checkCoding(const MarkupNode &tag, Coding coding)
    {
        const auto unreadable = [&](const char *what) {
            report(tag.place,
                   QStringLiteral("%1: \"%2\" is no %3")
                       .arg(tag.name, tag.text, QString::fromLatin1(what)));
        };
        bool ok = true;
        switch (coding) {
        case Coding::Text:
            return;
        case Coding::Integer:
            tag.text.toInt(&ok);
            if (!ok)
                unreadable("whole number");
            return;
        case Coding::Number:
            if (!std::isfinite(tag.text.toDouble(&ok)) || !ok)
                unreadable("number");
            return;
        case Coding::Switch:
            if (tag.text != QLatin1String("true") && tag.text != QLatin1String("false"))
                unreadable("switch (true or false)");
            return;
        case Coding::Color:
            if (!QColor(tag.text).isValid())
                unreadable("colour");
            return;
        case Coding::Unit:
            if (!tag.text.isEmpty()
                && (tag.text.toInt(&ok) < 1 || tag.text.toInt() > LastUnit || !ok))
                unreadable("unit number from 1 to 17");
            return;
        case Coding::List:
            checkFavourites(tag);
            return;
        }
    }

    void checkFavourites(const MarkupNode &favourites)
    {
        for (const MarkupNode &text : favourites.children) {
            for (const MarkupNode &line : text.children) {
                bool ok = false;
                const int number = line.name.midRef(4).toInt(&ok);
                if (!line.name.startsWith(QLatin1String("LINE")) || !ok || number < 1
                    || number > MostFavouriteLines)
                    report(line.place,
                           QStringLiteral("unknown element %1 in a favourite").arg(line.name));
            }
        }
    }

    void checkBinding(const MarkupNode &element)
    {
        const MarkupNode *bound = element.child(QStringLiteral("COL_Bound_Column"));
        const QString name = bound ? bound->text : QString();
        if (element.name == QLatin1String("SYSTEMTEXT")) {
            if (m_context.knowsValue && !m_context.knowsValue(name))
                report(bound ? bound->place : element.place,
                       QStringLiteral("no system value is called \"%1\"").arg(name));
        } else if (element.name.startsWith(QLatin1String("INSP"))) {
            const QString table = textOf(element, "TDIR_Key");
            const QString column = name.section(QLatin1Char('.'), -1);
            if (m_context.knowsColumn && !m_context.knowsColumn(table, column))
                report(bound ? bound->place : element.place,
                       QStringLiteral("no catalog has a column \"%1\" in a table \"%2\"")
                           .arg(column, table));
        }
    }

    void checkPlace(const MarkupNode &element)
    {
        const QRect grid(0, 0, m_context.columns, m_context.rows);
        const QPoint corner(numberOf(element, "COL"), numberOf(element, "ROW"));
        const QRect cells(corner, sizeOf(element, corner.x()));
        if (!grid.contains(corner)) {
            report(element.place,
                   QStringLiteral("%1 at row %2, column %3 is outside the grid of %4 rows and %5 "
                                  "columns")
                       .arg(element.name, QString::number(corner.y()), QString::number(corner.x()),
                            QString::number(m_context.rows), QString::number(m_context.columns)));
        } else if (!cells.isEmpty() && !grid.contains(cells)) {
            report(element.place,
                   QStringLiteral("%1 leaves the grid: it reaches row %2, column %3")
                       .arg(element.name, QString::number(cells.bottom()),
                            QString::number(cells.right())));
        }
        if (!cells.isEmpty() && isOn(textOf(element, "VISIBLE")))
            checkOverlap(element, cells);
    }

    void checkOverlap(const MarkupNode &element, const QRect &cells)
    {
        for (const Box &box : qAsConst(m_boxes)) {
            if (box.cells.intersects(cells))
                report(element.place, QStringLiteral("%1 overlaps %2").arg(element.name, box.name));
        }
        m_boxes.append({cells,
                        QStringLiteral("%1 of line %2")
                            .arg(element.name, QString::number(element.place.line))});
    }

    /// [cells]; empty when it is not known.
    QSize sizeOf(const MarkupNode &element, int column)
    {
        if (element.name == QLatin1String("IMAGE"))
            return pictureSize(element);
        if (element.name == QLatin1String("STATICTEXT"))
            return staticSize(element, column);
        int width = numberOf(element, "WIDTH");
        if (element.name == QLatin1String("SYSTEMTEXT") && width <= 0)
            width = ValueWidth;
        if (width <= 0)
            return QSize();
        if (isOn(textOf(element, "SHOWCAPTION")) && m_context.captionOf
            && element.name == QLatin1String("SYSTEMTEXT"))
            width += m_context.captionOf(textOf(element, "COL_Bound_Column")).size() + 2;
        return QSize(width, std::max(1, numberOf(element, "HEIGHT")));
    }

    QSize staticSize(const MarkupNode &element, int column) const
    {
        const QString text = textOf(element, "TEXT");
        if (text.isEmpty())
            return QSize();
        const int room = std::max(1, m_context.columns - column);
        QSize size;
        const QStringList paragraphs = text.split(QLatin1Char('\n'));
        for (const QString &paragraph : paragraphs) {
            size.rwidth() = std::max(size.width(), std::min(paragraph.size(), room));
            size.rheight()
                = std::max(size.height(), 0) + std::max(1, (paragraph.size() + room - 1) / room);
        }
        return size;
    }

    QSize pictureSize(const MarkupNode &element)
    {
        const MarkupNode *path = element.child(QStringLiteral("PATH"));
        if (isOn(textOf(element, "SCREENSNIP")))
            return QSize(); // comes with the running program
        const QString file = path ? path->text : QString();
        const TextPlace place = path ? path->place : element.place;
        if (!QFileInfo::exists(file)) {
            report(place, QStringLiteral("there is no picture \"%1\"").arg(file));
            return QSize();
        }
        const QSize pixels = QImageReader(file).size();
        if (pixels.isEmpty()) {
            report(place, QStringLiteral("\"%1\" cannot be read as a picture").arg(file));
            return QSize();
        }
        if (m_context.cell.isEmpty())
            return QSize();
        const double scale = textOf(element, "SCALE").toDouble();
        const auto cells = [scale](int length, double cell) {
            const double count = std::ceil(length * scale / cell);
            return count > 0 ? int(std::min(count, MostCells)) : 0; // a scale may be any number
        };
        return QSize(cells(pixels.width(), m_context.cell.width()),
                     cells(pixels.height(), m_context.cell.height()));
    }

    const ProfileCheckContext &m_context;
    QVector<ProfileFinding> m_findings;
    QVector<Box> m_boxes;
};

} // namespace

QVector<ProfileFinding> checkProfile(const QByteArray &document, const ProfileCheckContext &context)
{
    return Check(context).run(document);
}

} // namespace Velmar::Host
