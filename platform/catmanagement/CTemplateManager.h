// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/base/GUID.h"
#include "platform/platform_export.h"

#include <QSharedPointer>

namespace Velmar::Templates {
class CCatalogTemplate;
}

namespace Velmar::CATManagement {

/// Hands out the catalog templates that the host has loaded. For the GUI thread.
class VELMAR_PLATFORM_EXPORT CTemplateManager
{
public:
    virtual ~CTemplateManager();

    /// The loaded template of a catalog; null when it is not loaded. Loads nothing.
    virtual QSharedPointer<Templates::CCatalogTemplate>
    getTemplateFromCache(const Base::GUID &uniqueId) const = 0;

protected:
    CTemplateManager() = default;
    Q_DISABLE_COPY(CTemplateManager)
};

} // namespace Velmar::CATManagement
