// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QString>

namespace Velmar::Host {

/// Writes @p picture as PNG. A file that is there already stays until the new one is complete on
/// the disk. False, and a text in @p error, when that fails.
bool savePng(const QImage &picture, const QString &path, QString *error);

} // namespace Velmar::Host
