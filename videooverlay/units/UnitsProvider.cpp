// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/UnitsProvider.h"

namespace Velmar::VideoOverlay {

UnitsProvider::~UnitsProvider() = default;

QString UnitsProvider::getSuffix(QString unit)
{
    return unit;
}

} // namespace Velmar::VideoOverlay
