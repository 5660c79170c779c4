// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/SelfTest_p.h"

#include "videooverlay/units/UnitsProvider.h"

namespace Velmar::VideoOverlay {

int matchingCases(UnitsProvider &converter, std::initializer_list<SelfTestCase> cases)
{
    int matching = 0;
    for (const SelfTestCase &each : cases) {
        const QString expected = QString::number(each.expected, 'f', 2);
        if (converter.convert(each.text, each.from, each.to) == expected)
            ++matching;
    }
    return matching;
}

} // namespace Velmar::VideoOverlay
