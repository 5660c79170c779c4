// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::VideoOverlay {

/// Replaces the content of the file at @p path by @p text, in the system's text codec, such that
/// whoever reads it, now or after a power cut, finds the old or the new content whole. A new file
/// beside it takes its name; permissions stay, a symbolic link stays and its target is replaced.
/// Where no file can be made beside it, it is overwritten in place, and put back when that fails.
/// False when nothing was changed: it may not be written, or the disk is full.
bool replaceFile(const QString &path, const QString &text);

} // namespace Velmar::VideoOverlay
