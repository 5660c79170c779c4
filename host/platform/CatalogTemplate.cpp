// SPDX-License-Identifier: Apache-2.0
#include "host/platform/CatalogTemplate.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Velmar::Templates {

CatalogTemplate::Column::Column(QString tableKey, QString key, QString caption, Type type, bool osd,
                                QString listName)
    : m_tableKey(std::move(tableKey))
    , m_key(std::move(key))
    , m_caption(std::move(caption))
    , m_type(type)
    , m_osd(osd)
    , m_listName(std::move(listName))
{
}

CatalogTemplate::View::View(QString key, QVector<const Column *> columns)
    : m_key(std::move(key))
    , m_columns(std::move(columns))
{
}

const CTemplateColumn *CatalogTemplate::View::column(int index) const
{
    return m_columns.value(index, nullptr);
}

CatalogTemplate::CatalogTemplate(Columns columns, Views views, Lists lists, ItemTables itemTables)
    : m_columns(std::move(columns))
    , m_views(std::move(views))
    , m_lists(std::move(lists))
    , m_itemTables(std::move(itemTables))
{
}

QVector<CListItem> CatalogTemplate::choices(const QString &tableKey, const QString &key,
                                            const QString &forTable) const
{
    const auto column
        = std::find_if(m_columns.cbegin(), m_columns.cend(), [&](const auto &candidate) {
              return candidate->tableKey() == tableKey && candidate->key() == key;
          });
    if (column == m_columns.cend())
        return {};
    const QString list = (*column)->listName();
    const QHash<QString, QString> tables = m_itemTables.value(list);
    const QVector<CListItem> all = m_lists.value(list);
    QVector<CListItem> offered;
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(offered), [&](const CListItem &item) {
        const QString only = tables.value(item.internalValue());
        return only.isEmpty() || only == forTable;
    });
    return offered;
}

int CatalogTemplate::programViewCount() const
{
    return int(m_views.size());
}

const CProgramView *CatalogTemplate::programView(int index) const
{
    return index >= 0 && index < programViewCount() ? m_views[size_t(index)].get() : nullptr;
}

const QVector<CListItem> *CatalogTemplate::itemList(const CTemplateColumn &column) const
{
    // By name, so that a column kept from an earlier reading of the catalog finds its list too.
    const auto *ours = dynamic_cast<const Column *>(&column);
    const auto list = ours ? m_lists.constFind(ours->listName()) : m_lists.constEnd();
    return list == m_lists.constEnd() ? nullptr : &list.value();
}

} // namespace Velmar::Templates
