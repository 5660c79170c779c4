// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArrayList>

/// Runs a program to its end without input and output, and returns the CPU time that it used [s];
/// negative when it cannot be run or fails.
double cpuSecondsOf(const QByteArrayList &command);
