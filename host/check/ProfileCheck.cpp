// SPDX-License-Identifier: Apache-2.0
#include "host/check/ProfileCheck.h"

#include "host/check/MarkupTree.h"
#include "host/check/ProfileTags.h"

#include <QColor>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Velmar::Host {

using VideoOverlay::ElementParam;
using Coding = ProfileTag::Coding;
using Fault = ElementFault::Kind;

namespace {

constexpr int MostFavouriteLines = 14;
constexpr double MostCells = 1000000; ///< far beyond every grid

/// A text that is read as it says; "no" and "off" would be read as true.
bool isSwitch(const QString &text)
{
    static const QStringList words {QString(),
                                    QStringLiteral("0"),
                                    QStringLiteral("1"),
                                    QStringLiteral("true"),
                                    QStringLiteral("on"),
                                    QStringLiteral("false"),
                                    QStringLiteral("yes")};
    return words.contains(text, Qt::CaseInsensitive);
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
            checkProfile(*profile);
        std::stable_sort(m_findings.begin(), m_findings.end(),
                         [](const ProfileFinding &a, const ProfileFinding &b) {
                             return std::make_pair(a.line, a.column)
                                 < std::make_pair(b.line, b.column);
                         });
        return m_findings;
    }

private:
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

    void checkProfile(const MarkupNode &profile)
    {
        for (const MarkupNode &element : profile.children) {
            const ProfileKind *kind = ProfileKind::find(element.name);
            if (!kind) {
                report(element.place, QStringLiteral("unknown element %1").arg(element.name));
                continue;
            }
            checkTags(element, *kind);
            if (element.name != QLatin1String("GENERAL"))
                take(element, *kind);
        }
        const QVector<ElementFault> faults = m_context.rules.check(m_elements);
        for (const ElementFault &fault : faults)
            report(fault);
    }

    void checkTags(const MarkupNode &element, const ProfileKind &kind)
    {
        QStringList seen;
        for (const MarkupNode &child : element.children) {
            const ProfileTag *tag = kind.tag(child.name);
            if (!tag)
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
        case Coding::Unit: // any text may be one; the rules know which
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
            if (!isSwitch(tag.text))
                unreadable("switch (true or false)");
            return;
        case Coding::Color:
            if (!QColor(tag.text).isValid())
                unreadable("colour");
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
                const int number = line.name.midRef(4).toInt();
                if (number < 1 || number > MostFavouriteLines
                    || line.name != QStringLiteral("LINE%1").arg(number))
                    report(line.place,
                           QStringLiteral("unknown element %1 in a favourite").arg(line.name));
            }
        }
    }

    /// Notes an element for the rules.
    void take(const MarkupNode &element, const ProfileKind &kind)
    {
        CheckedElement checked;
        checked.record = kind.record(element);
        checked.text = checked.record.value(QStringLiteral("text")).toString();
        if (m_context.captionOf)
            checked.caption = m_context.captionOf(
                checked.record.value(QStringLiteral("TDIR_Key")).toString(),
                checked.record.value(ElementParam::NAME_COLUMNBOUND).toString());
        if (element.name == QLatin1String("IMAGE"))
            checked.size = pictureSize(element, checked.record);
        m_elements.append(checked);
        m_nodes.append(&element);
    }

    QSizeF pictureSize(const MarkupNode &element, const ElementParam &record)
    {
        if (record.value(QStringLiteral("screenSnip")).toBool())
            return {}; // comes with the running program
        const MarkupNode *path = element.child(QStringLiteral("PATH"));
        const QString named = path ? path->text : QString();
        const TextPlace place = path ? path->place : element.place;
        const QString file = QDir::isRelativePath(named) && !named.isEmpty()
            ? QDir(m_context.directory).filePath(named)
            : named;
        const bool leadsNowhere = QDir::isRelativePath(named) && m_context.directory.isEmpty();
        if (leadsNowhere || !QFileInfo(file).isFile()) {
            report(place, QStringLiteral("there is no picture \"%1\"").arg(named));
            return {};
        }
        const QSize pixels = QImageReader(file).size();
        if (pixels.isEmpty()) {
            report(place, QStringLiteral("\"%1\" cannot be read as a picture").arg(named));
            return {};
        }
        if (m_context.cell.isEmpty())
            return {};
        const double scale = record.value(QStringLiteral("scale")).toDouble();
        const auto cells = [scale](int length, double cell) {
            const double count = length * scale / cell;
            return count > 0 ? std::min(count, MostCells) : 0.0; // a scale may be any number
        };
        return QSizeF(cells(pixels.width(), m_context.cell.width()),
                      cells(pixels.height(), m_context.cell.height()));
    }

    void report(const ElementFault &fault)
    {
        const MarkupNode &element = *m_nodes.at(fault.element);
        const ProfileKind &kind = *ProfileKind::find(element.name);
        const MarkupNode *tag = element.child(QString::fromLatin1(kind.tagOf(fault.key)));
        report(tag ? tag->place : element.place,
               reasonOf(fault, element.name, tag ? tag->text : QString()));
    }

    QString reasonOf(const ElementFault &fault, const QString &name, const QString &text) const
    {
        switch (fault.kind) {
        case Fault::UnknownValue:
        case Fault::UnknownColumn:
        case Fault::UnknownUnit:
        case Fault::UnknownAlignment:
        case Fault::UnknownSource:
            return reasonOfValue(fault, text);
        case Fault::OutsideGrid:
            return QStringLiteral("%1 at row %2, column %3 is outside the grid of %4 rows and %5 "
                                  "columns")
                .arg(name, QString::number(fault.cells.top()), QString::number(fault.cells.left()),
                     QString::number(m_context.rules.rows),
                     QString::number(m_context.rules.columns));
        case Fault::CutOff:
            return QStringLiteral("%1 is cut off: it has a word for more than the %2 columns that "
                                  "are left")
                .arg(name, QString::number(m_context.rules.columns - fault.cells.left()));
        case Fault::LeavesGrid:
            return QStringLiteral("%1 leaves the grid: it reaches row %2, column %3")
                .arg(name, QString::number(std::ceil(fault.cells.bottom()) - 1),
                     QString::number(std::ceil(fault.cells.right()) - 1));
        case Fault::Overlap: {
            const MarkupNode &other = *m_nodes.at(fault.other);
            return QStringLiteral("%1 overlaps %2 of line %3")
                .arg(name, other.name, QString::number(other.place.line));
        }
        }
        return {};
    }

    QString reasonOfValue(const ElementFault &fault, const QString &text) const
    {
        const ElementParam &record = m_elements.at(fault.element).record;
        const QString bound = record.value(ElementParam::NAME_COLUMNBOUND).toString();
        if (fault.kind == Fault::UnknownValue)
            return QStringLiteral("no system value is called \"%1\"").arg(bound);
        if (fault.kind == Fault::UnknownColumn) {
            const QString column = bound.section(QLatin1Char('.'), -1);
            const bool isStatic = m_nodes.at(fault.element)->name == QLatin1String("STATICTEXT");
            return isStatic ? QStringLiteral("no catalog has a column \"%1\"").arg(column)
                            : QStringLiteral("no catalog has a column \"%1\" in a table \"%2\"")
                                  .arg(column, record.value(QStringLiteral("TDIR_Key")).toString());
        }
        if (fault.kind == Fault::UnknownAlignment)
            return QStringLiteral("ALIGN: \"%1\" is none of LEFT, RIGHT and CENTER").arg(text);
        if (fault.kind == Fault::UnknownSource)
            return QStringLiteral("SOURCE: \"%1\" is not DB, and there is no other source")
                .arg(text);
        const QString unit = record.value(QStringLiteral("unit")).toString();
        return QStringLiteral("UNIT: \"%1\"%2 is no unit of %3")
            .arg(text, unit == text ? QString() : QStringLiteral(" (%1)").arg(unit), bound);
    }

    const ProfileCheckContext &m_context;
    QVector<ProfileFinding> m_findings;
    QVector<CheckedElement> m_elements;
    QVector<const MarkupNode *> m_nodes; ///< of those
};

} // namespace

QVector<ProfileFinding> checkProfile(const QByteArray &document, const ProfileCheckContext &context)
{
    return Check(context).run(document);
}

} // namespace Velmar::Host
