// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/AppStateControl.h"
#include "platform/catmanagement/CTemplateManager.h"
#include "platform/templates/CCatalogTemplate.h"
#include "platform/templates/CProgramView.h"
#include "platform/templates/CTemplateColumn.h"

#include <QHash>
#include <QVector>

#include <memory>
#include <vector>

namespace Velmar::Test {

/// One column of a template that a test makes up.
struct ColumnSpec
{
    QString table;
    QString name;
    QString caption = {};
    Templates::CTemplateColumn::Type type = Templates::CTemplateColumn::Type::Text;
    QVector<Templates::CListItem> items = {}; ///< empty: the column has no list
    bool osd = true;
    QString view = QStringLiteral("detail_s");
};

class TestColumn : public Templates::CTemplateColumn
{
public:
    explicit TestColumn(const ColumnSpec &spec)
        : m_spec(spec)
    {
    }
    QString key() const override { return m_spec.name; }
    QString tableKey() const override { return m_spec.table; }
    QString caption() const override { return m_spec.caption; }
    Type type() const override { return m_spec.type; }
    bool isOsd() const override { return m_spec.osd; }
    const QVector<Templates::CListItem> *items() const
    {
        return m_spec.items.isEmpty() ? nullptr : &m_spec.items;
    }

private:
    ColumnSpec m_spec;
};

class TestView : public Templates::CProgramView
{
public:
    explicit TestView(const QString &key)
        : m_key(key)
    {
    }
    void add(const ColumnSpec &spec) { m_columns.push_back(std::make_unique<TestColumn>(spec)); }
    /// One more than there are: the last is null.
    int columnCount() const override { return int(m_columns.size()) + 1; }
    const Templates::CTemplateColumn *column(int index) const override
    {
        return index < int(m_columns.size()) ? m_columns[size_t(index)].get() : nullptr;
    }
    QString key() const override { return m_key; }

private:
    QString m_key;
    std::vector<std::unique_ptr<TestColumn>> m_columns;
};

/// A template of any columns. Its first view is null, as a template's view may be, and so is the
/// last column of each view.
class TestCatalog : public Templates::CCatalogTemplate
{
public:
    explicit TestCatalog(const QVector<ColumnSpec> &columns)
    {
        m_views.push_back(nullptr);
        for (const ColumnSpec &column : columns)
            viewNamed(column.view).add(column);
    }

    int programViewCount() const override { return int(m_views.size()); }
    const Templates::CProgramView *programView(int index) const override
    {
        return m_views[size_t(index)].get();
    }
    const QVector<Templates::CListItem> *
    itemList(const Templates::CTemplateColumn &column) const override
    {
        return static_cast<const TestColumn &>(column).items();
    }

private:
    TestView &viewNamed(const QString &key)
    {
        for (const auto &view : m_views) {
            if (view && view->key() == key)
                return *view;
        }
        m_views.push_back(std::make_unique<TestView>(key));
        return *m_views.back();
    }

    std::vector<std::unique_ptr<TestView>> m_views;
};

/// A template cache that holds what a test puts in.
class TestTemplates : public CATManagement::CTemplateManager
{
public:
    QSharedPointer<Templates::CCatalogTemplate>
    getTemplateFromCache(const Base::GUID &uniqueId) const override
    {
        return m_templates.value(uniqueId);
    }

    /// Caches a template of these columns and announces it.
    void load(const QVector<ColumnSpec> &columns)
    {
        const QString id = QStringLiteral("template");
        m_templates.insert(id, QSharedPointer<TestCatalog>::create(columns));
        AppStateControl::announceTemplate(id);
    }

private:
    QHash<QString, QSharedPointer<Templates::CCatalogTemplate>> m_templates;
};

} // namespace Velmar::Test
