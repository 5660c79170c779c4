// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/osd/COsdElementDatasource.h"

#include <QImage>

namespace Velmar::VideoOverlay {

class CVideoOverlayImage;

/// A picture that is pushed in while the program runs: a snapshot of the screen. The host makes it
/// and calls update().
class XQVIDEOOVERLAY_EXPORT COsdScreenSnipDatasource : public COsdElementDatasource
{
    Q_OBJECT
public:
    /// Takes scale, visibility and caption from @p param; becomes a child of @p image.
    COsdScreenSnipDatasource(CVideoOverlayImage *image, ElementParam &param);
    ~COsdScreenSnipDatasource() override;

    void update(QImage picture); ///< keeps a copy of the pixels
};

} // namespace Velmar::VideoOverlay
