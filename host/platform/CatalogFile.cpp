// SPDX-License-Identifier: Apache-2.0
#include "host/platform/CatalogFile.h"

#include "host/platform/CatalogTemplate.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>

#include <utility>

namespace Velmar::CATManagement {

namespace {

using Templates::CatalogTemplate;
using Templates::CListItem;
using Type = Templates::CTemplateColumn::Type;

constexpr int maximumSize = 16 * 1024 * 1024; // [bytes]
constexpr int maximumProblems = 20;

Type typeByName(const QString &name)
{
    static const QHash<QString, Type> types {
        {QStringLiteral("text"), Type::Text}, {QStringLiteral("number"), Type::Number},
        {QStringLiteral("date"), Type::Date}, {QStringLiteral("time"), Type::Time},
        {QStringLiteral("list"), Type::List},
    };
    return types.value(name, Type::Invalid);
}

QString quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

} // namespace

/// Takes the three parts of a template over, lists before the columns that name them and columns
/// before the views that show them. It goes on after a fault, so that one reading finds them all.
class CatalogFile::TemplateReader
{
public:
    explicit TemplateReader(CatalogFile &file)
        : m_file(file)
    {
        for (const JsonNode &list : objects(file.m_root, QStringLiteral("lists")))
            readList(list);
        for (const JsonNode &table : objects(file.m_root, QStringLiteral("tables")))
            readTable(table);
        checkItemTables();
        for (const JsonNode &view : objects(file.m_root, QStringLiteral("programViews")))
            readView(view);
    }

    /// What was read; call it once.
    QSharedPointer<CatalogTemplate> take()
    {
        return QSharedPointer<CatalogTemplate>::create(std::move(m_columns), std::move(m_views),
                                                       std::move(m_lists), std::move(m_itemTables));
    }

private:
    QVector<JsonNode> array(const JsonNode &object, const QString &member)
    {
        const JsonNode node = object.member(member);
        if (node.value().isUndefined())
            m_file.report(object, quoted(member) + QStringLiteral(" is missing"));
        else if (!node.value().isArray())
            m_file.report(node, quoted(member) + QStringLiteral(" is not an array"));
        return node.elements();
    }

    QVector<JsonNode> objects(const JsonNode &object, const QString &member)
    {
        QVector<JsonNode> sound;
        for (const JsonNode &element : array(object, member)) {
            if (element.value().isObject())
                sound.append(element);
            else
                m_file.report(element,
                              QStringLiteral("an entry of \"%1\" is not an object").arg(member));
        }
        return sound;
    }

    /// A text that names @p object and that nothing else in @p taken has; else empty, and reported.
    QString uniqueText(const JsonNode &object, const QString &member, QSet<QString> *taken)
    {
        const QString name = m_file.text(object, member);
        if (name.isEmpty())
            return {};
        if (taken->contains(name)) {
            m_file.report(object.member(member),
                          QStringLiteral("%1 %2 occurs twice").arg(quoted(member), quoted(name)));
            return {};
        }
        taken->insert(name);
        return name;
    }

    void readList(const JsonNode &list)
    {
        const QString name = uniqueText(list, QStringLiteral("name"), &m_listNames);
        QVector<CListItem> items;
        QSet<QString> values;
        for (const JsonNode &item : objects(list, QStringLiteral("items"))) {
            const QString value = uniqueText(item, QStringLiteral("internalValue"), &values);
            items.append(CListItem(value, m_file.text(item, QStringLiteral("caption"))));
            const JsonNode table = item.member(QStringLiteral("table"));
            if (table.value().isUndefined())
                continue;
            m_itemTables[name].insert(value, m_file.text(item, QStringLiteral("table")));
            m_itemTableNodes.append(table);
        }
        m_lists.insert(name, items);
    }

    /// Lists are read before the tables are known.
    void checkItemTables()
    {
        for (const JsonNode &node : qAsConst(m_itemTableNodes)) {
            const QString table = node.value().toString();
            if (!table.isEmpty() && !m_tableKeys.contains(table))
                m_file.report(node, QStringLiteral("unknown table ") + quoted(table));
        }
    }

    void readTable(const JsonNode &table)
    {
        const QString key = uniqueText(table, QStringLiteral("key"), &m_tableKeys);
        QSet<QString> columnKeys;
        for (const JsonNode &column : objects(table, QStringLiteral("columns")))
            readColumn(key, column, &columnKeys);
    }

    void readColumn(const QString &tableKey, const JsonNode &column, QSet<QString> *columnKeys)
    {
        const QString key = uniqueText(column, QStringLiteral("key"), columnKeys);
        const QString caption = m_file.text(column, QStringLiteral("caption"));
        const Type type = readType(column);
        const QString listName = readListName(column, type);
        const bool osd = readOsd(column);
        m_columns.push_back(
            std::make_unique<CatalogTemplate::Column>(tableKey, key, caption, type, osd, listName));
        m_columnsByName.insert(tableKey + QLatin1Char('.') + key, m_columns.back().get());
    }

    Type readType(const JsonNode &column)
    {
        const QString name = m_file.text(column, QStringLiteral("type"));
        const Type type = typeByName(name);
        if (type == Type::Invalid && !name.isEmpty())
            m_file.report(column.member(QStringLiteral("type")),
                          QStringLiteral("unknown type ") + quoted(name));
        return type;
    }

    QString readListName(const JsonNode &column, Type type)
    {
        const QString member = QStringLiteral("list");
        if (type == Type::Invalid)
            return {}; // reported already
        if (type != Type::List) {
            if (!column.member(member).value().isUndefined())
                m_file.report(column.member(member),
                              QStringLiteral("only a column of type \"list\" has a list"));
            return {};
        }
        const QString name = m_file.text(column, member);
        if (!name.isEmpty() && !m_listNames.contains(name))
            m_file.report(column.member(member), QStringLiteral("unknown list ") + quoted(name));
        return name;
    }

    bool readOsd(const JsonNode &column)
    {
        const JsonNode osd = column.member(QStringLiteral("osd"));
        if (!osd.value().isUndefined() && !osd.value().isBool())
            m_file.report(osd, QStringLiteral("\"osd\" is neither true nor false"));
        return osd.value().toBool();
    }

    void readView(const JsonNode &view)
    {
        const QString key = uniqueText(view, QStringLiteral("key"), &m_viewKeys);
        QVector<const CatalogTemplate::Column *> columns;
        QSet<QString> names;
        for (const JsonNode &entry : array(view, QStringLiteral("columns"))) {
            const QString name = entry.value().toString();
            const CatalogTemplate::Column *column = m_columnsByName.value(name);
            if (!entry.value().isString())
                m_file.report(entry, QStringLiteral("an entry of \"columns\" is not a text"));
            else if (!column)
                m_file.report(entry, QStringLiteral("unknown column ") + quoted(name));
            else if (names.contains(name))
                m_file.report(entry, QStringLiteral("column %1 occurs twice").arg(quoted(name)));
            else
                columns.append(column);
            names.insert(name);
        }
        m_views.push_back(std::make_unique<CatalogTemplate::View>(key, columns));
    }

    CatalogFile &m_file;
    QSet<QString> m_listNames;
    QSet<QString> m_tableKeys;
    QSet<QString> m_viewKeys;
    CatalogTemplate::Lists m_lists;
    CatalogTemplate::ItemTables m_itemTables;
    QVector<JsonNode> m_itemTableNodes; ///< of all lists
    CatalogTemplate::Columns m_columns;
    QHash<QString, const CatalogTemplate::Column *> m_columnsByName; ///< "table.column"
    CatalogTemplate::Views m_views;
};

CatalogFile::CatalogFile(const QString &path)
    : m_path(path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        report(QString(), file.errorString());
        return;
    }
    m_json = file.read(maximumSize + 1);
    if (m_json.size() > maximumSize) {
        report(QString(), QStringLiteral("larger than 16 MiB"));
        return;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(m_json, &error);
    if (error.error != QJsonParseError::NoError)
        report(JsonNode::position(m_json, error.offset), error.errorString());
    else if (!document.isObject())
        report(JsonNode::position(m_json, 0), QStringLiteral("a catalog is an object"));
    else
        m_root = JsonNode(document.object());
}

std::unique_ptr<CatalogDescriptor> CatalogFile::descriptor()
{
    if (!m_root.value().isObject())
        return nullptr;
    const int before = m_faultCount;
    const QString uniqueId = text(m_root, QStringLiteral("uniqueId"));
    const QString name = text(m_root, QStringLiteral("name"));
    const QString language = code(m_root, QStringLiteral("languageCode"), 3);
    const QString country = code(m_root, QStringLiteral("countryCode"), 2);
    if (m_faultCount > before)
        return nullptr;
    return std::make_unique<CatalogDescriptor>(uniqueId, name, language, country);
}

QSharedPointer<Templates::CatalogTemplate> CatalogFile::catalogTemplate()
{
    if (!m_root.value().isObject())
        return {};
    const int before = m_faultCount;
    TemplateReader reader(*this);
    if (m_faultCount > before)
        return {};
    return reader.take();
}

void CatalogFile::report(const JsonNode &at, const QString &reason)
{
    ++m_faultCount;
    // Each place is found by reading from the start of the text: not for thousands of faults.
    if (m_faultCount <= maximumProblems)
        report(JsonNode::position(m_json, at.offsetIn(m_json)), reason);
    else if (m_faultCount == maximumProblems + 1)
        report(QString(), QStringLiteral("more problems are not listed"));
}

void CatalogFile::report(const QString &place, const QString &reason)
{
    const QString where = place.isEmpty() ? m_path : m_path + QLatin1Char(':') + place;
    m_problems.append(where + QStringLiteral(": ") + reason);
}

QString CatalogFile::text(const JsonNode &object, const QString &member)
{
    const JsonNode node = object.member(member);
    if (node.value().isUndefined())
        report(object, quoted(member) + QStringLiteral(" is missing"));
    else if (!node.value().isString())
        report(node, quoted(member) + QStringLiteral(" is not a text"));
    else if (node.value().toString().isEmpty())
        report(node, quoted(member) + QStringLiteral(" is empty"));
    return node.value().toString();
}

QString CatalogFile::code(const JsonNode &object, const QString &member, int length)
{
    const QString letters = text(object, member);
    const QRegularExpression wanted(QStringLiteral("\\A[A-Z]{%1}\\z").arg(length));
    if (!letters.isEmpty() && !wanted.match(letters).hasMatch())
        report(object.member(member),
               QStringLiteral("%1 is not made of %2 letters from A to Z")
                   .arg(quoted(member), QString::number(length)));
    return letters;
}

} // namespace Velmar::CATManagement
