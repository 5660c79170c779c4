// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/commands/Options.h"
#include "host/pipelines/FrameGate.h"
#include "host/session/OverlaySession.h"

#include <functional>
#include <memory>

namespace Velmar::Host {

/// Makes the overlay that the options ask for, for whatever picture size the video turns out to
/// have.
class OverlayMaker
{
public:
    /// Reads all files and lays the overlay out for @p expectedSize. False, and a text in @p error,
    /// when one of them cannot be used.
    bool load(const Options &options, QSize expectedSize, QString *error);

    /// The overlay at @p timeNs on a picture of @p size.
    FrameGate::Answer at(qint64 timeNs, QSize size);

    /// Where the camera of a drawn run is according to the readings, so that a joint passes where
    /// the counter says; null without readings of the distance. Callable on any thread.
    std::function<PipeRunRenderer::View(qint64 timeNs)> cameraView() const;

    /// Shows a value that came now. It stays until a reading or another value of that name comes.
    void setLiveValue(const QString &name, const QVariant &value);
    /// Values come while the video runs: no frame may reuse the overlay of an earlier one then.
    void expectLiveValues();

private:
    bool makeSession(QSize size, QString *error);
    bool fillSession(QString *error);
    bool isDamaged(QString *error) const;
    bool openProject(QString *error);

    Options m_options;
    TelemetryFile m_telemetry;
    QSize m_size;
    bool m_live = false;
    QHash<QString, QVariant> m_liveValues; ///< the last of each name, for a new session
    std::unique_ptr<OverlaySession> m_session;
};

} // namespace Velmar::Host
