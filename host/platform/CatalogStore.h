// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/catmanagement/CCatalogTemplateRegistry.h"
#include "platform/catmanagement/CTemplateManager.h"
#include "platform/platform_export.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>
#include <vector>

namespace Velmar::CATManagement {

/// The catalogs of the reference platform: "*.json" files of one directory, "catalogs" in the
/// read-only configuration directory unless set. Registry and template cache in one.
/// GUI thread only.
class VELMAR_PLATFORM_EXPORT CatalogStore : public CCatalogTemplateRegistry, public CTemplateManager
{
public:
    static CatalogStore &instance(); ///< never destroyed
    ~CatalogStore() override;

    /// Reads the catalogs anew and forgets what was loaded.
    void setDirectory(const QString &path);

    QStringList catalogIds();

    const CCatalogDescriptor *catalogByUniqueId(const Base::GUID &uniqueId) const override;
    QSharedPointer<Templates::CCatalogTemplate>
    getTemplateFromCache(const Base::GUID &uniqueId) const override;

    /// Loads a catalog's template into the cache and announces it through AppState. False, and the
    /// reason in the log, when that failed.
    bool loadTemplate(const Base::GUID &uniqueId);

private:
    CatalogStore();
};

} // namespace Velmar::CATManagement
