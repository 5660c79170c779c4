// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

namespace Velmar::VideoOverlay {
class VideoOverlayProfilesModel;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

// The library tells nobody whether it could read its directory or store what to start with: a
// directory that cannot be read is an empty one to it. So the host looks itself.

/// The names of the profile files in @p directory, sorted. False, and a text in @p error, when it
/// cannot be read to its end.
bool listProfileFiles(const QString &directory, QStringList *names, QString *error);

/// Whether @p profiles has a row for every profile file of its directory. False, and a text in
/// @p error, when it could not read the directory.
bool holdsAllProfiles(const VideoOverlay::VideoOverlayProfilesModel &profiles, QString *error);

/// Whether the profile at @p path is stored as the one to start with.
bool isStartProfile(const QString &path);

} // namespace Velmar::Host
