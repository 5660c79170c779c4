// SPDX-License-Identifier: Apache-2.0
#include "host/qml/LockedProfiles.h"

#include "host/profiles/ProfilesLock.h"
#include "host/qml/Messages.h"
#include "host/qml/UiTexts.h"

namespace Velmar::Host {

bool whileProfilesAreLocked(Messages &messages, const UiTexts &texts,
                            const std::function<bool()> &work)
{
    constexpr int waitMs = 1000; // the screens stand still meanwhile
    QString error;
    ProfilesLock lock;
    if (lock.take(&error, waitMs))
        return work();
    messages.error(texts.text(QStringLiteral("errorProfilesLocked")));
    return false;
}

} // namespace Velmar::Host
