// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/osd/COsdElementDatasource.h"

#include <QFileInfo>

namespace Velmar::VideoOverlay {

class CVideoOverlayImage;

/// A picture from a file. The file is copied into the host's settings directory, under its own
/// name, so that a profile stays valid when the file goes away.
class XQVIDEOOVERLAY_EXPORT COsdImageDatasource : public COsdElementDatasource
{
    Q_OBJECT
public:
    /// Writes the path of the copy into the record of @p image, but not into @p param. The
    /// element's caption is the file's name. A missing file and a failed copy are logged; the
    /// element is there all the same.
    COsdImageDatasource(CVideoOverlayImage *image, ElementParam &param);
    ~COsdImageDatasource() override;

    /// Copies @p source into the settings directory and returns the copy; a file that is there
    /// already is returned as it is. Replaces an earlier copy of that name, which stays whole when
    /// the new one cannot be made: then no file comes back, and there is a line in the log.
    static QFileInfo storeFile(const QFileInfo &source);
};

} // namespace Velmar::VideoOverlay
