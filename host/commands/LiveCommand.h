// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/Options.h"

namespace Velmar::Host {

/// Shows the touch screens until the operator closes them, or writes pictures of them. Returns the
/// program's exit status.
int runLive(const Options &options);

} // namespace Velmar::Host
