// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/base/GUID.h"
#include "platform/platform_export.h"

namespace Velmar::CATManagement {

class CCatalogDescriptor;

/// The catalogs that are installed.
class VELMAR_PLATFORM_EXPORT CCatalogTemplateRegistry
{
public:
    virtual ~CCatalogTemplateRegistry();

    /// Null when no such catalog is installed. Valid until the catalogs are read anew.
    virtual const CCatalogDescriptor *catalogByUniqueId(const Base::GUID &uniqueId) const = 0;

protected:
    CCatalogTemplateRegistry() = default;
    Q_DISABLE_COPY(CCatalogTemplateRegistry)
};

} // namespace Velmar::CATManagement
