// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/Options.h"

namespace Velmar::Host {

/// "xqosd record": runs until the recording ends, and returns the program's exit status.
int runRecord(const Options &options);

} // namespace Velmar::Host
