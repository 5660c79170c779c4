// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/display/OverlaySnapshot.h"

#include <gst/gst.h>

#include <memory>

namespace Velmar::Host {

/// Makes the pipeline element "xqosdburn" known to this process: it burns an overlay into I420 and
/// NV12 frames in place, or attaches it as overlay composition where the next element can take
/// that. Needs an initialised GStreamer. False where it cannot be registered.
bool registerBurnElement();

/// Gives @p element, an "xqosdburn", the overlay that it shows; null: none. Callable at any time.
/// The source is asked on the streaming thread, once for each frame.
void setOverlaySource(GstElement *element, std::shared_ptr<OverlaySource> source);

} // namespace Velmar::Host
