// SPDX-License-Identifier: Apache-2.0
#include "host/display/GridFit.h"

#include <videooverlay/display/VideoOverlaySettings.h>

#include <QFont>
#include <QRectF>

#include <cmath>

namespace Velmar::Host {

namespace {

constexpr int rows = 27;
constexpr int mostBelowLetters = 2; ///< [px] by which a row is lower than its letters' size

} // namespace

bool fitGrid(VideoOverlay::VideoOverlaySettings &settings)
{
    const QRectF picture(0.0, 0.0, settings.width(), settings.height());
    const int largest = int(picture.height() / rows) + mostBelowLetters;
    const QFont before = settings.font();
    QFont font = before;
    // The picture's shape decides whether its width or its height is the limit, and hinting makes
    // letters of some sizes wider than their share: so look instead of computing.
    // Rows of an even height first: boxes then end where the video's colour samples do.
    for (const bool evenRows : {true, false}) {
        for (int size = largest; size >= 1; --size) {
            font.setPixelSize(size);
            if (!settings.setFont(font))
                break;
            const bool suits = !evenRows || std::fmod(settings.rowHeight(), 2.0) == 0.0;
            if (suits && settings.rowHeight() >= 1.0 && picture.contains(settings.marginRect()))
                return true;
        }
    }
    settings.setFont(before);
    return false;
}

} // namespace Velmar::Host
