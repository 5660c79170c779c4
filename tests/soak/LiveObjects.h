// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QMap>

namespace Velmar::Soak {

/// Every QObject of the process, found through the hooks that Qt has for tools such as this.
namespace LiveObjects {

/// Counts what is made from now on. False when this Qt has no such hooks.
bool watch();

int count();
/// Timers that run in this thread.
int timerCount();
/// How many there are of each class, for a report. Those of other threads must stand still.
QMap<QByteArray, int> byClass();

} // namespace LiveObjects

} // namespace Velmar::Soak
