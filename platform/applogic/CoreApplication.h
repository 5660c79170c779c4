// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QtGlobal>

namespace Velmar::CATManagement {
class CCatalogTemplateRegistry;
}

namespace Velmar::AppLogic {

/// The host application's core.
class VELMAR_PLATFORM_EXPORT CoreApplication
{
public:
    /// Never null, and never destroyed while the library is in use.
    static CoreApplication *instance();

    /// Never null; what it lists may change.
    CATManagement::CCatalogTemplateRegistry *catalogTemplateRegistry() const;

private:
    CoreApplication();
    ~CoreApplication();
    Q_DISABLE_COPY(CoreApplication)
};

} // namespace Velmar::AppLogic
