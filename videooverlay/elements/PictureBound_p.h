// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

namespace Velmar::VideoOverlay {

/// Whether a picture of this size [px] takes more memory than no device should be asked for:
/// 512 MiB. Far above what a display shows, so that only mistakes and damaged files get there.
inline bool isBeyondBound(qint64 width, qint64 height, qint64 bytesPerPixel)
{
    constexpr qint64 mostBytes = qint64(512) * 1024 * 1024;
    return height > 0 && width * bytesPerPixel > mostBytes / height;
}

} // namespace Velmar::VideoOverlay
