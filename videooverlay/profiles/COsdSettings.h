// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/xqvideooverlay_export.h"

#include <QString>

namespace Velmar::VideoOverlay {

/// The small file that says with which profile to start. Nothing else is stored there.
class XQVIDEOOVERLAY_EXPORT COsdSettings
{
public:
    static QString xmlSettingsPath(); ///< the file, in the host's settings directory
    static QString xmlConfigPath();   ///< the template that is installed with the system

    /// Copies the template when there is no file yet. True when it was copied.
    static bool copySettingsFile();

    /// The stored path, relative to the host's read-only configuration directory. Empty when none
    /// is stored or the file cannot be read; the latter is logged. Copies the template first.
    static QString getDefaultProfile();

    /// Stores @p path. When that fails it is logged, and the file stays as it was. The settings
    /// directory is not created.
    static void setDefaultProfile(const QString &path);

    COsdSettings() = delete;
};

} // namespace Velmar::VideoOverlay
