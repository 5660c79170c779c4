// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::Host {

/// The exit status of a command that could not do its work, and of one that was called wrongly.
constexpr int FailureStatus = 1;
constexpr int UsageStatus = 2;

/// @p text with its line feeds and other control characters written out: "\n", "\x1b".
QString oneLine(const QString &text);

void report(const QString &line); ///< to the standard output
/// One line to the standard error stream. Returns FailureStatus.
int reportError(const QString &text);
void reportWarning(const QString &text);

} // namespace Velmar::Host
