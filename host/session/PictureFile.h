// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::Host {

/// Why the file at @p path cannot be shown; empty when it looks like a picture. Asked beforehand,
/// so that what is none leaves nothing behind.
QString pictureProblem(const QString &path);

/// Why a picture has nothing to show although it looked like one: @p complaints are what the
/// library logged while it took the file.
QString pictureProblem(const QString &path, const QStringList &complaints);

} // namespace Velmar::Host
