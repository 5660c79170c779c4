// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

namespace Velmar::VideoOverlay {
class CVideoOverlayElement;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

/// Writes one property as a screen would, of all @p elements whose kind keeps it in a profile.
/// False, and a text in @p error, when none of them does or @p text is no value of it: what is said
/// to be done must be there when the profile is loaded again. Some may have been changed then.
bool setElementProperty(const QList<VideoOverlay::CVideoOverlayElement *> &elements,
                        const QString &property, const QString &text, QString *error);

} // namespace Velmar::Host
