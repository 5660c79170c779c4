// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QObject>

namespace Velmar::Shared {

/// Announces that what CLocaleSupport answers has changed. Lives in the GUI thread.
class VELMAR_PLATFORM_EXPORT GlobalLocaleData : public QObject
{
    Q_OBJECT
public:
    /// Never null, and never destroyed while the library is in use.
    static GlobalLocaleData *instance();

Q_SIGNALS:
    /// The user's locale, units or formats changed; CLocaleSupport already answers with the new.
    void localeChanged();

private:
    GlobalLocaleData();
};

} // namespace Velmar::Shared
