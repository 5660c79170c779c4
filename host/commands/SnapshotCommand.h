// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/Options.h"

namespace Velmar::Host {

/// "xqosd snapshot": writes one picture, and returns the program's exit status.
int runSnapshot(const Options &options);

} // namespace Velmar::Host
