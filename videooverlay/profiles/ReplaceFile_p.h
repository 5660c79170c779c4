// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::VideoOverlay {

/// Replaces the content of the file at @p path by @p text, in the system's text codec, such that
/// whoever reads it, now or after a power cut, finds the old or the new content whole: a new file
/// beside it takes its name. Mode, owner and group stay, a symbolic link stays and its target is
/// replaced. What only a plain opening for writing can do is done so: where no file can be made
/// beside it, where that may not take over owner or name, and for what is no regular file, it is
/// overwritten in place, and put back when that fails. False when nothing was changed: it may not
/// be written, or the disk is full.
bool replaceFile(const QString &path, const QString &text);

enum class Existing {
    Keep,    ///< a file that is there already, or comes meanwhile, stays
    Replace, ///< the copy takes the name, also that of a symbolic link
};

/// Copies the regular file @p source to @p target, whole or, with false, not at all. The copy may
/// be read by whom the source may, has the same owner, if the process may give it away, and may be
/// written by its owner.
bool copyFile(const QString &source, const QString &target, Existing existing);

/// Gives the file @p source the name @p target, unless there is such a file. False when nothing was
/// changed. Between file systems it is copied, and the old one removed when the copy is whole.
bool moveFile(const QString &source, const QString &target);

} // namespace Velmar::VideoOverlay
