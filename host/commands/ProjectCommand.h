// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/Options.h"

namespace Velmar::Host {

/// Lists the inspections of a project, which it makes before when asked to. Returns the exit
/// status.
int runProject(const Options &options);

} // namespace Velmar::Host
