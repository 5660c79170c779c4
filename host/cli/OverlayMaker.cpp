// SPDX-License-Identifier: Apache-2.0
#include "host/cli/OverlayMaker.h"

#include "host/video/TelemetryView.h"
#include "platform/logging/CLogger.h"

#include <limits>

namespace Velmar::Host {

namespace {

constexpr qint64 NsPerMs = 1000000;
constexpr qint64 Never = std::numeric_limits<qint64>::max();

// Where the picture stands: the right edge of the grid, above the lower texts.
constexpr int PictureRow = 5;
constexpr int PictureColumn = 42;
constexpr int PictureRows = 6;

} // namespace

bool OverlayMaker::load(const Options &options, QSize expectedSize, QString *error)
{
    m_picturePath = options.picturePath;
    m_watermarkPath = options.watermarkPath;
    if (!options.telemetryPath.isEmpty() && !m_telemetry.load(options.telemetryPath, error))
        return false;
    if (!makeSession(expectedSize, error))
        return false;
    // Once, not for every session: it is a matter of the file.
    const QStringList unshown = m_session->unshownNames();
    if (!unshown.isEmpty()) {
        const bool nothingIsShown = unshown.size() == m_telemetry.names().size();
        Logging::CLogger::logMessage(
            nothingIsShown ? Logging::LogLevel::Warning : Logging::LogLevel::Info,
            QStringLiteral("Host"),
            QStringLiteral("%1: no text shows %2")
                .arg(options.telemetryPath, unshown.join(QStringLiteral(", "))));
    }
    return true;
}

bool OverlayMaker::makeSession(QSize size, QString *error)
{
    m_size = size;
    m_session = std::make_unique<OverlaySession>(size);
    m_session->addTexts();
    m_session->setTelemetry(m_telemetry);
    for (auto it = m_liveValues.cbegin(); it != m_liveValues.cend(); ++it)
        m_session->feed().setValue(it.key(), it.value());
    if (!m_picturePath.isEmpty()
        && !m_session->addPicture(m_picturePath, PictureRow, PictureColumn, PictureRows)) {
        *error = QStringLiteral("%1: cannot be read as a picture").arg(m_picturePath);
        return false;
    }
    if (!m_watermarkPath.isEmpty() && !m_session->setWatermark(m_watermarkPath)) {
        *error = QStringLiteral("%1: cannot be read as a picture").arg(m_watermarkPath);
        return false;
    }
    return true;
}

FrameGate::Answer OverlayMaker::at(qint64 timeNs, QSize size)
{
    QString error;
    if (!size.isEmpty() && size != m_size && !makeSession(size, &error))
        Logging::CLogger::logMessage(Logging::LogLevel::Warning, QStringLiteral("Host"), error);
    m_session->advanceTo(timeNs / NsPerMs);
    if (m_live) // the next value may come at any moment
        return {m_session->scene()->snapshot(), timeNs + 1};
    const qint64 nextMs = m_session->nextChangeMs();
    return {m_session->scene()->snapshot(), nextMs > Never / NsPerMs ? Never : nextMs * NsPerMs};
}

void OverlayMaker::setLiveValue(const QString &name, const QVariant &value)
{
    m_liveValues.insert(name, value);
    m_session->feed().setValue(name, value);
}

void OverlayMaker::expectLiveValues()
{
    m_live = true;
}

std::function<PipeRunRenderer::View(qint64)> OverlayMaker::cameraView() const
{
    return telemetryView(m_telemetry, AfterRun::Stay);
}

} // namespace Velmar::Host
