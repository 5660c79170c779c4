// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/check/ElementRules.h"

#include <QHash>
#include <QString>
#include <QStringList>

namespace Velmar::Host {

/// The columns of all installed catalogs.
class CatalogColumns
{
public:
    /// Reads every catalog, without telling anybody of it.
    static CatalogColumns installed();

    /// Whether a catalog has that column in that table; in any, for an empty table.
    bool contains(const QString &table, const QString &column) const;
    /// The longest that a catalog gives it; empty for a column that none has.
    QString longestCaption(const QString &table, const QString &column) const;

private:
    QHash<QString, QHash<QString, QString>> m_captions; ///< longest, by column and table
};

/// The rules with the answers of this installation: its system values and its catalogs.
ElementRules installedRules(const CatalogColumns &columns);

} // namespace Velmar::Host
