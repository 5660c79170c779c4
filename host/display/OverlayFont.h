// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

QT_BEGIN_NAMESPACE
class QFont;
QT_END_NAMESPACE

namespace Velmar::Host {

/// What is wrong with the font that the machine has for @p wanted, and which package brings the
/// right one; empty when nothing is. Without it, texts would be of other letters, or of boxes, and
/// the grid of another width, in a recording that cannot be made again.
QString overlayFontProblem(const QFont &wanted);

} // namespace Velmar::Host
