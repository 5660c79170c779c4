// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/display/CAbstractVideoOverlayCapabilitiesBackend.h"

namespace Velmar::Test {

/// A display of 1920 x 1080 pixels that allows the default grid, unless a test says otherwise.
/// Changes nothing and announces nothing by itself.
class FakeCapabilitiesBackend : public VideoOverlay::CAbstractVideoOverlayCapabilitiesBackend
{
    Q_OBJECT
public:
    FakeCapabilitiesBackend() = default;
    FakeCapabilitiesBackend(int columns, int rows, int width, int height);

    int maximumColumnCount() override;
    int maximumRowCount() override;
    int imageWidth() override;
    int imageHeight() override;

    int columns = 54;
    int rows = 27;
    int width = 1920;  ///< [px]
    int height = 1080; ///< [px]
};

} // namespace Velmar::Test
