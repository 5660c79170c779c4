// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace Velmar::Host {

/// Every value that a text can show, with its units, and what the live input looks like.
QString valuesText();

/// Lists the values. Returns the program's exit status.
int runValues();

} // namespace Velmar::Host
