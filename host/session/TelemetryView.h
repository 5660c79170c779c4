// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/feed/TelemetryFile.h"
#include "host/piperun/PipeRunRenderer.h"

#include <functional>

namespace Velmar::Host {

enum class AfterRun {
    Stay,  ///< where the run ended
    Again, ///< from its start
};

/// Where the camera of a drawn run is according to the readings, so that a joint passes where the
/// counter says; null without readings of the distance. Callable on any thread: it has a copy.
std::function<PipeRunRenderer::View(qint64 timeNs)> telemetryView(const TelemetryFile &telemetry,
                                                                  AfterRun after);

} // namespace Velmar::Host
