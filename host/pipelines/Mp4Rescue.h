// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::Host {

/// Lets the MP4 file at @p path play as far as it goes when it was broken off while its end was
/// written. A file is written in fragments, of which the first has the list of frames that a player
/// begins with. In the end mp4mux takes that list out of force and declares everything so far to be
/// one block of data, and only then writes the list of the whole file: on a disk that has no room
/// for it the file would be lost. True when the file was such a one and plays again.
bool restoreFirstList(const QString &path);

} // namespace Velmar::Host
