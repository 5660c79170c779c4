// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <cstring>

namespace Velmar::Test {

/// How many virtual operations QObject has, both destructors counted: where those of a class that
/// derives from it begin.
constexpr int qObjectSlots = 12;

/// Where a virtual operation stands in its class's table. A pointer to a virtual member holds its
/// offset in the table; on x86 its lowest bit is set.
template <typename MemberFunction> int slotOf(MemberFunction function)
{
    std::uintptr_t offset = 0;
    std::memcpy(&offset, &function, sizeof(offset));
    return int((offset & ~std::uintptr_t(1)) / sizeof(void *));
}

} // namespace Velmar::Test
