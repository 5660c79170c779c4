// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <videooverlay/elements/ElementParam.h>

#include <QList>
#include <QString>

#include <functional>

namespace Velmar::Host {

/// The records of the demonstration's elements. @p caption tells what will stand before a value:
/// the boxes of a block end at the same cell in every language.
QList<VideoOverlay::ElementParam>
demoLayout(const std::function<QString(const QString &name)> &caption);

} // namespace Velmar::Host
