// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/Options.h"

namespace Velmar::Host {

/// Lists, selects, clones, renames and removes profiles. Returns the exit status.
int runProfiles(const Options &options);

} // namespace Velmar::Host
