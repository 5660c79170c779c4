// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QString>

namespace Velmar {

/// How the reference host decides where its files are. Set before anything asks, from one thread.
class VELMAR_PLATFORM_EXPORT Directories
{
public:
    /// The standard place for settings of this user, unless set.
    static void setSettingsDirectory(const QString &path);

    /// The installed data, unless set.
    static void setReadonlyConfigDirectory(const QString &path);

    Directories() = delete;
};

} // namespace Velmar
