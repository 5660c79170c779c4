// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QString>

namespace Velmar {

/// Where the host keeps its files. Both paths are absolute and may be asked for at any time.
class VELMAR_PLATFORM_EXPORT CApplicationDirectories
{
public:
    /// Writable: what the operator changes (settings, profiles, copied pictures).
    static QString settingsDirectory();

    /// Installed with the system and never written: templates and shipped profiles.
    static QString readonlyConfigDirectory();

    CApplicationDirectories() = delete;
};

} // namespace Velmar
