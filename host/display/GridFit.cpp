// SPDX-License-Identifier: Apache-2.0
#include "host/display/GridFit.h"

#include <videooverlay/display/VideoOverlaySettings.h>

#include <QFont>
#include <QRectF>

#include <algorithm>
#include <cmath>

namespace Velmar::Host {

namespace {

constexpr int designPixelSize = 35;
constexpr double designWidth = 1920.0;
constexpr double designHeight = 1080.0;

} // namespace

bool fitGrid(VideoOverlay::VideoOverlaySettings &settings)
{
    const QRectF picture(0.0, 0.0, settings.width(), settings.height());
    const double scale = std::min(picture.width() / designWidth, picture.height() / designHeight);
    const QFont before = settings.font();
    QFont font = before;
    // Hinting makes letters of some sizes wider than their share, so look instead of computing.
    // Rows of an even height first: boxes then end where the video's colour samples do.
    for (const bool evenRows : {true, false}) {
        for (int size = qRound(designPixelSize * scale); size >= 1; --size) {
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
