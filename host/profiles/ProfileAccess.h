// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <memory>

namespace Velmar::VideoOverlay {
class CVideoOverlayManager;
class Profile;
class VideoOverlayProfilesModel;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

// The library goes on whatever it finds in files, and its reasons name none. These say which file
// it was, and where.

/// Reads the profile directory. @p manager must outlive the model.
std::unique_ptr<VideoOverlay::VideoOverlayProfilesModel>
readProfiles(VideoOverlay::CVideoOverlayManager &manager);

/// Logs which profiles could not be read, but for @p known, of which that is told otherwise.
void warnOfDamage(const VideoOverlay::VideoOverlayProfilesModel &profiles,
                  const VideoOverlay::Profile *known = nullptr);

/// Makes the stored profile current, or else the default one.
void selectStartupProfile(VideoOverlay::VideoOverlayProfilesModel &profiles);

/// Makes the profile called @p name, or with that path, current, or the stored one for an empty
/// text. False, and a text in @p error, when there is none or it cannot be read; the stored one is
/// taken as far as it can be read.
bool selectProfile(VideoOverlay::VideoOverlayProfilesModel &profiles, const QString &name,
                   QString *error);

} // namespace Velmar::Host
