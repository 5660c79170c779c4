// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>

/// What must hold whatever the input is. Ends the program when it does not; the fuzzer then keeps
/// the input.
inline void require(bool condition)
{
    if (!condition)
        std::abort();
}
