// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/captions/CaptionResolver.h"

namespace Velmar::VideoOverlay {

CaptionResolver::CaptionResolver(QObject *parent)
    : QObject(parent)
{
}

CaptionResolver::~CaptionResolver() = default;

} // namespace Velmar::VideoOverlay
