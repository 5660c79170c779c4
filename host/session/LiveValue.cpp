// SPDX-License-Identifier: Apache-2.0
#include "host/session/LiveValue.h"

#include "host/feed/SystemValues.h"
#include "host/session/OverlaySession.h"

namespace Velmar::Host {

bool showLiveValue(OverlaySession &session, const QString &name, const QVariant &value,
                   QString *error)
{
    if (name != SystemValues::screenSnip().name) {
        session.feed().setValue(name, value);
        return true;
    }
    const QString path = value.toString();
    if (path.isEmpty()) {
        session.screenSnips().setPicture(QImage());
        return true;
    }
    if (session.screenSnips().showFile(path))
        return true;
    *error = QStringLiteral("%1: cannot be read as a picture").arg(path);
    return false;
}

} // namespace Velmar::Host
