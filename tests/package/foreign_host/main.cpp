// SPDX-License-Identifier: Apache-2.0
#include <platform/directories/CApplicationDirectories.h>
#include <videooverlay/units/SpeedUnitsConverter.h>

#include <cstdio>

int main()
{
    std::printf("%s\n", qPrintable(Velmar::CApplicationDirectories::readonlyConfigDirectory()));
    // The library writes a line into the platform's log.
    Velmar::VideoOverlay::SpeedUnitsConverter().convertToBase(1.0, QStringLiteral("furlong"));
    return 0;
}
