// SPDX-License-Identifier: Apache-2.0
#include "platform/shared/GlobalLocaleData.h"

namespace Velmar::Shared {

GlobalLocaleData::GlobalLocaleData() = default;

GlobalLocaleData *GlobalLocaleData::instance()
{
    // Never destroyed: what is connected to it may outlive every static object.
    static auto *data = new GlobalLocaleData;
    return data;
}

} // namespace Velmar::Shared
