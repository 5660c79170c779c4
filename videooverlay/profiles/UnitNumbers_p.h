// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>

namespace Velmar::VideoOverlay {

/// One unit of a system text: the number under which profile files store it and the text that is
/// shown. Both are UTF-8.
struct UnitNumber
{
    const char *number;
    const char *text;
};

/// Read both ways: number to text by the reader, text to number by the writer.
constexpr std::array<UnitNumber, 17> unitNumbers {{
    {"1", "m/s"},
    {"2", "ft/s"},
    {"3", "inch/s"},
    {"4", "m/min"},
    {"5", "ft/min"},
    {"6", "inch/min"},
    {"7", "hour"},
    {"8", "\xC2\xB0"}, // degree sign
    {"9", "%"},
    {"10", "mbar"},
    {"11", "atm"},
    {"12", "Pa"},
    {"13", "m"},
    {"14", "ft"},
    {"15", "inch"},
    {"16",
     "\xC2\xB0"
     "C"},
    {"17",
     "\xC2\xB0"
     "F"},
}};

} // namespace Velmar::VideoOverlay
