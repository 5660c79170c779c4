// SPDX-License-Identifier: Apache-2.0
#include "host/check/InstalledRules.h"

#include "host/feed/SystemValues.h"
#include "host/platform/CatalogStore.h"

#include <platform/templates/CCatalogTemplate.h>
#include <platform/templates/CProgramView.h>
#include <platform/templates/CTemplateColumn.h>

namespace Velmar::Host {

CatalogColumns CatalogColumns::installed()
{
    CatalogColumns columns;
    const auto &store = CATManagement::CatalogStore::instance();
    const QStringList ids = store.catalogIds();
    for (const QString &id : ids) {
        const auto catalog = store.installedTemplate(id);
        for (int i = 0; catalog && i < catalog->programViewCount(); ++i) {
            const Templates::CProgramView *view = catalog->programView(i);
            for (int j = 0; view && j < view->columnCount(); ++j) {
                const Templates::CTemplateColumn *column = view->column(j);
                QString &longest = columns.m_captions[column->key()][column->tableKey()];
                if (column->caption().size() > longest.size())
                    longest = column->caption();
            }
        }
    }
    return columns;
}

bool CatalogColumns::contains(const QString &table, const QString &column) const
{
    const auto known = m_captions.constFind(column);
    return known != m_captions.cend() && (table.isEmpty() || known->contains(table));
}

QString CatalogColumns::longestCaption(const QString &table, const QString &column) const
{
    return m_captions.value(column).value(table);
}

ElementRules installedRules(const CatalogColumns &columns)
{
    ElementRules rules;
    rules.knowsValue = [](const QString &name) { return SystemValues::find(name) != nullptr; };
    rules.takesUnit = [](const QString &name, const QString &unit) {
        const SystemValue *value = SystemValues::find(name);
        return value && SystemValues::takesUnit(*value, unit);
    };
    rules.knowsColumn = [columns](const QString &table, const QString &column) {
        return columns.contains(table, column);
    };
    return rules;
}

} // namespace Velmar::Host
