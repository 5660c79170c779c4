// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QVariant>

namespace Velmar::Host {

class OverlaySession;

/// Shows a value of the live input where it belongs: in the texts of its name, or in the screen
/// snips. False, and the reason in @p error, for a picture that cannot be read.
bool showLiveValue(OverlaySession &session, const QString &name, const QVariant &value,
                   QString *error);

} // namespace Velmar::Host
