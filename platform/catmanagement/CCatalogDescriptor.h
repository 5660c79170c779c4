// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/base/GUID.h"
#include "platform/platform_export.h"

#include <QString>

namespace Velmar::CATManagement {

/// What is known of a catalog without loading its template. Lives as long as the registry.
class VELMAR_PLATFORM_EXPORT CCatalogDescriptor
{
public:
    virtual ~CCatalogDescriptor();

    /// The catalog's identifier; never empty.
    virtual Base::GUID uniqueId() const = 0;
    virtual QString languageCode() const = 0; ///< ISO 639-2, upper case: "DEU"; French may be "FRE"
    virtual QString countryCode() const = 0;  ///< ISO 3166, upper case: "CH"

protected:
    CCatalogDescriptor() = default;
    Q_DISABLE_COPY(CCatalogDescriptor)
};

} // namespace Velmar::CATManagement
