// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/captions/CaptionResolver.h"

namespace Velmar::VideoOverlay {

CaptionResolver::CaptionResolver(QObject *parent)
    : QObject(parent)
{
    // The meta-type system knows the alias by this name only then; a queued call needs it.
    qRegisterMetaType<Velmar::Base::GUID>("Velmar::Base::GUID");
    qRegisterMetaType<QSharedPointer<Velmar::Templates::CCatalogTemplate>>();
}

CaptionResolver::~CaptionResolver() = default;

} // namespace Velmar::VideoOverlay
