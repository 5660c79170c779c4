// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/Options.h"

namespace Velmar::Host {

/// Reports what is wrong with profile files, one line each. Returns the exit status: FailureStatus
/// when anything is.
int runCheck(const Options &options);

} // namespace Velmar::Host
