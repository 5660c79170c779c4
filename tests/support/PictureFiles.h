// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSize>
#include <QString>

namespace Velmar::Test {

/// Writes a PNG file whose header claims @p size (8 bit, RGBA) and which holds no pixels.
bool writePngHeader(const QString &path, const QSize &size);

/// Writes a black picture of @p size in the portable pixmap format; @p colored with three bytes per
/// pixel, otherwise with one. The file takes no room on the disk, whatever its size.
bool writeBlackPixmap(const QString &path, const QSize &size, bool colored);

} // namespace Velmar::Test
