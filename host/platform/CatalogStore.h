// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/catmanagement/CCatalogTemplateRegistry.h"
#include "platform/catmanagement/CTemplateManager.h"
#include "platform/platform_export.h"

#include <QHash>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>
#include <vector>

namespace Velmar::Templates {
class CatalogTemplate;
class CListItem;
} // namespace Velmar::Templates

namespace Velmar::CATManagement {

class CatalogDescriptor;

/// The catalogs of the reference platform: "*.json" files of one directory, "catalogs" in the
/// read-only configuration directory unless set. Registry and template cache in one. The files are
/// read at the first question; whatever is wrong with one of them is a line of the log and leaves
/// the others alone. GUI thread only.
class VELMAR_PLATFORM_EXPORT CatalogStore : public CCatalogTemplateRegistry, public CTemplateManager
{
public:
    static CatalogStore &instance(); ///< never destroyed
    ~CatalogStore() override;

    /// Reads the catalogs anew and forgets what was loaded. Templates that somebody still holds
    /// stay usable; descriptors do not. An empty path selects the installed catalogs.
    void setDirectory(const QString &path);

    QStringList catalogIds() const; ///< in the order of the file names
    /// For people, in the catalog's language; empty for a catalog that is not installed.
    QString catalogName(const Base::GUID &uniqueId) const;

    const CCatalogDescriptor *catalogByUniqueId(const Base::GUID &uniqueId) const override;
    QSharedPointer<Templates::CCatalogTemplate>
    getTemplateFromCache(const Base::GUID &uniqueId) const override;

    /// What may be chosen in a column for what stands in the table @p forTable, such as the codes
    /// of an observation in a "NODE". None for a template that is not loaded.
    QVector<Templates::CListItem> choices(const Base::GUID &uniqueId, const QString &tableKey,
                                          const QString &column, const QString &forTable) const;

    /// Loads a catalog's template into the cache, unless it is there, and announces it through
    /// AppState in either case. False, with the reasons in the log, when it could not be loaded:
    /// then nothing is announced.
    bool loadTemplate(const Base::GUID &uniqueId);

private:
    struct Catalog
    {
        QString path;
        std::unique_ptr<CatalogDescriptor> descriptor; ///< never null
    };

    CatalogStore();

    const std::vector<Catalog> &catalogs() const;
    const Catalog *find(const Base::GUID &uniqueId) const;
    void readCatalogs() const;
    void readCatalog(const QString &path) const;
    QSharedPointer<Templates::CatalogTemplate> readTemplate(const Base::GUID &uniqueId) const;

    QString m_directory; ///< empty: the installed one
    // Filled at the first question, which may be a const one.
    mutable bool m_read = false;
    mutable std::vector<Catalog> m_catalogs;
    QHash<Base::GUID, QSharedPointer<Templates::CatalogTemplate>> m_templates;
};

} // namespace Velmar::CATManagement
