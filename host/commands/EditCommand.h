// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/Options.h"

namespace Velmar::Host {

/// Changes elements of a profile and saves it. Returns the exit status.
int runEdit(const Options &options);

} // namespace Velmar::Host
