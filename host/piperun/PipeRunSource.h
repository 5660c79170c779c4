// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/piperun/PipeRunRenderer.h"

#include <gst/gst.h>

#include <functional>

namespace Velmar::Host {

/// Makes the element "xqosdpiperun" known: a source of raw I420 video of a run through a pipe. It
/// is not live, so it delivers as fast as it is asked; its property "seed" selects the pipe. Call
/// it after gst_init(), as often as wanted; false when the registry refuses.
bool registerPipeRunSource();

/// Where along the pipe [m] the camera is at a time of the stream [ns], looking straight ahead.
/// @p source is an "xqosdpiperun"; @p distanceAt is called on its streaming thread. Without any, or
/// with an empty function, the camera drives at 0.12 m/s.
void setDistanceFunction(GstElement *source, std::function<double(qint64 streamTimeNs)> distanceAt);

/// The same for a camera that also pans and tilts. The view's time is set by the source.
void setViewFunction(GstElement *source,
                     std::function<PipeRunRenderer::View(qint64 streamTimeNs)> viewAt);

} // namespace Velmar::Host
