// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::VideoOverlay {

/// Whether the file at @p path can be read as a profile. Logs nothing.
bool isProfileFile(const QString &path);

/// Keeps the content of the file at @p path beside it, as "NAME.xml.damaged", which is no name of a
/// profile; where another one is kept already, as "NAME.xml.damaged.2" and so on. False when it
/// cannot be kept; the file at @p path is then as it was.
bool keepDamagedFile(const QString &path);

} // namespace Velmar::VideoOverlay
