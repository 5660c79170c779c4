// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/templates/CCatalogTemplate.h"
#include "platform/templates/CProgramView.h"
#include "platform/templates/CTemplateColumn.h"

#include <QHash>

#include <memory>
#include <vector>

namespace Velmar::Templates {

/// A catalog template in memory. It owns all that it hands out and never changes.
class CatalogTemplate final : public CCatalogTemplate
{
public:
    class Column final : public CTemplateColumn
    {
    public:
        Column(QString tableKey, QString key, QString caption, Type type, bool osd,
               QString listName);

        QString key() const override { return m_key; }
        QString tableKey() const override { return m_tableKey; }
        QString caption() const override { return m_caption; }
        Type type() const override { return m_type; }
        bool isOsd() const override { return m_osd; }
        QString listName() const { return m_listName; } ///< empty unless it is a list

    private:
        QString m_tableKey;
        QString m_key;
        QString m_caption;
        Type m_type;
        bool m_osd;
        QString m_listName;
    };

    class View final : public CProgramView
    {
    public:
        /// @p columns are the template's.
        View(QString key, QVector<const Column *> columns);

        QString key() const override { return m_key; }
        int columnCount() const override { return m_columns.size(); }
        const CTemplateColumn *column(int index) const override;

    private:
        QString m_key;
        QVector<const Column *> m_columns;
    };

    using Columns = std::vector<std::unique_ptr<const Column>>;
    using Views = std::vector<std::unique_ptr<const View>>;
    using Lists = QHash<QString, QVector<CListItem>>; ///< by name
    /// The one table for whose records an item may be chosen; by list, then by internal value.
    using ItemTables = QHash<QString, QHash<QString, QString>>;

    CatalogTemplate(Columns columns, Views views, Lists lists, ItemTables itemTables);

    /// What may be chosen in a column for what stands in the table @p forTable; none without such a
    /// column or for one that is no list.
    QVector<CListItem> choices(const QString &tableKey, const QString &key,
                               const QString &forTable) const;

    int programViewCount() const override;
    const CProgramView *programView(int index) const override;
    const QVector<CListItem> *itemList(const CTemplateColumn &column) const override;

private:
    Columns m_columns;
    Views m_views;
    const Lists m_lists; ///< const, because pointers into it are handed out
    ItemTables m_itemTables;
};

} // namespace Velmar::Templates
