// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

namespace Velmar::Host {

class Messages;
class UiTexts;

/// Does @p work while no other program changes profiles, and returns its result. False, with a
/// message, when another one is at it for too long.
bool whileProfilesAreLocked(Messages &messages, const UiTexts &texts,
                            const std::function<bool()> &work);

} // namespace Velmar::Host
