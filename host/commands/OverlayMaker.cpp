// SPDX-License-Identifier: Apache-2.0
#include "host/commands/OverlayMaker.h"

#include "host/check/ProfileProblem.h"
#include "host/display/OverlayFont.h"
#include "host/session/LiveValue.h"
#include "host/session/TelemetryView.h"
#include "platform/logging/CLogger.h"

#include <videooverlay/models/VideoOverlayProfilesModel.h>

#include <limits>

namespace Velmar::Host {

namespace {

constexpr qint64 NsPerMs = 1000000;
constexpr qint64 Never = std::numeric_limits<qint64>::max();

// Where the picture stands: the right edge of the grid, above the lower texts.
constexpr int PictureRow = 5;
constexpr int PictureColumn = 42;
constexpr int PictureRows = 6;

void warn(const QString &text)
{
    Logging::CLogger::logMessage(Logging::LogLevel::Warning, QStringLiteral("Host"), text);
}

} // namespace

bool OverlayMaker::load(const Options &options, QSize expectedSize, QString *error)
{
    m_options = options;
    if (!options.telemetryPath.isEmpty() && !m_telemetry.load(options.telemetryPath, error))
        return false;
    if (!makeSession(expectedSize, error))
        return false;
    *error = overlayFontProblem(m_session->settings().font());
    if (!error->isEmpty())
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
    if (m_session && !m_options.profile.isNull()) {
        m_session->resize(size); // a project is not opened twice
        return true;
    }
    m_session.reset(); // there may be one only
    m_session = std::make_unique<OverlaySession>(size);
    m_session->setClock(OverlaySession::Clock::Video);
    m_session->setTelemetry(m_telemetry);
    m_session->setObservationsFromRun(m_options.observations);
    if (m_options.profile.isNull())
        m_session->addTexts();
    else if (!m_session->openProfiles(m_options.profile, error) || isDamaged(error)
             || !openProject(error))
        return false;
    return fillSession(error);
}

/// The library would show what it could read: a whole recording without its texts.
bool OverlayMaker::isDamaged(QString *error) const
{
    *error = profileProblem(*m_session->profiles()->currentProfile());
    return !error->isEmpty();
}

bool OverlayMaker::openProject(QString *error)
{
    if (m_options.projectPath.isEmpty())
        return true;
    ProjectSession &project = m_session->project();
    if (!project.open(m_options.projectPath)) {
        *error = project.errorText();
        return false;
    }
    const QString wanted = m_options.inspectionNumber;
    for (const ProjectSession::RecordPointer &inspection : project.inspections()) {
        if (!wanted.isEmpty()
            && inspection->readValue(QStringLiteral("INS_Number")).toString() != wanted)
            continue;
        if (project.startInspection(inspection))
            return true;
        *error = project.errorText();
        return false;
    }
    *error = wanted.isEmpty()
        ? QStringLiteral("%1: holds no inspection").arg(m_options.projectPath)
        : QStringLiteral("%1: holds no inspection %2").arg(m_options.projectPath, wanted);
    return false;
}

bool OverlayMaker::fillSession(QString *error)
{
    for (auto it = m_liveValues.cbegin(); it != m_liveValues.cend(); ++it)
        showLiveValue(*m_session, it.key(), it.value(), error);
    error->clear(); // what could not be shown was told when it came
    const QString picture = m_options.picturePath;
    if (!picture.isEmpty()
        && !m_session->addPicture(picture, PictureRow, PictureColumn, PictureRows, error))
        return false;
    const QString watermark = m_options.watermarkPath;
    return watermark.isEmpty() || m_session->setWatermark(watermark, error);
}

FrameGate::Answer OverlayMaker::at(qint64 timeNs, QSize size)
{
    QString error;
    if (!size.isEmpty() && size != m_size && !makeSession(size, &error))
        warn(error);
    m_session->advanceTo(timeNs / NsPerMs);
    if (m_live) // the next value may come at any moment
        return {m_session->scene()->snapshot(), timeNs + 1};
    const qint64 nextMs = m_session->nextChangeMs();
    return {m_session->scene()->snapshot(), nextMs > Never / NsPerMs ? Never : nextMs * NsPerMs};
}

void OverlayMaker::setLiveValue(const QString &name, const QVariant &value)
{
    m_liveValues.insert(name, value);
    QString error;
    if (!showLiveValue(*m_session, name, value, &error))
        warn(error);
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
