// SPDX-License-Identifier: Apache-2.0
#include "host/session/TelemetryView.h"

namespace Velmar::Host {

namespace {

constexpr qint64 NsPerMs = 1000000;

} // namespace

std::function<PipeRunRenderer::View(qint64)> telemetryView(const TelemetryFile &telemetry,
                                                           AfterRun after)
{
    const QString distance = QStringLiteral("SECTION_DISTANCE_COUNTER");
    if (!telemetry.names().contains(distance))
        return {};
    const qint64 runMs = after == AfterRun::Again ? telemetry.durationMs() : 0;
    return [telemetry, runMs, distance, pan = QStringLiteral("CAMERA_PAN"),
            tilt = QStringLiteral("CAMERA_TILT")](qint64 timeNs) {
        const qint64 timeMs = runMs > 0 ? timeNs / NsPerMs % runMs : timeNs / NsPerMs;
        PipeRunRenderer::View view;
        view.distanceM = telemetry.interpolated(distance, timeMs);
        view.panDeg = telemetry.interpolated(pan, timeMs);
        view.tiltDeg = telemetry.interpolated(tilt, timeMs);
        return view;
    };
}

} // namespace Velmar::Host
