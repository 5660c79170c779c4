// SPDX-License-Identifier: Apache-2.0
#include "host/screens/VideoController.h"

#include "host/feed/SystemValueConverter.h"
#include "host/pipelines/RecordPipeline.h"
#include "host/platform/LocaleSettings.h"
#include "host/screens/LiveOverlay.h"
#include "host/screens/Messages.h"
#include "host/screens/UiTexts.h"
#include "platform/shared/GlobalLocaleData.h"

#include <videooverlay/display/CVideoOverlayManager.h>

#include <QDateTime>
#include <QDir>
#include <QTimer>

namespace Velmar::Host {

using Multimedia::CVideoRecorder;
using namespace VideoOverlay;

namespace {

constexpr qint64 NsPerMs = 1000000;
constexpr qint64 NsPerSecond = 1000000000;
constexpr int RetryMs = 3000;

const QString distanceName = ElementParam::NAME_SECTION_DISTANCE_COUNTER;
const QString speedName = ElementParam::NAME_SPEED;
const QString unknownValue = QStringLiteral("\u2013");

} // namespace

VideoController::VideoController(Setup setup, LiveOverlay &overlay, Messages &messages,
                                 const UiTexts &texts, QObject *parent)
    : QObject(parent)
    , m_setup(std::move(setup))
    , m_overlay(overlay)
    , m_messages(messages)
    , m_texts(texts)
    , m_distanceConverter(SystemValueConverter::make(*SystemValues::find(distanceName)))
    , m_speedConverter(SystemValueConverter::make(*SystemValues::find(speedName)))
{
    connect(&m_overlay.manager(), &CVideoOverlayManager::videoOverlayEnabledChanged, this,
            &VideoController::overlayEnabledChanged);
    connect(&m_overlay, &LiveOverlay::valuesChanged, this, &VideoController::valuesChanged);
    connect(Shared::GlobalLocaleData::instance(), &Shared::GlobalLocaleData::localeChanged, this,
            &VideoController::valuesChanged);
}

VideoController::~VideoController()
{
    if (m_video)
        m_video->setRecording(nullptr);
}

void VideoController::start()
{
    m_video = std::make_unique<LiveVideo>(m_setup.source);
    connect(m_video.get(), &LiveVideo::frame, this, &VideoController::onFrame);
    connect(m_video.get(), &LiveVideo::ended, this, &VideoController::onEnded);
    connect(m_video.get(), &LiveVideo::failed, this, &VideoController::onFailed);
    QString error;
    if (!m_video->start(&error))
        onFailed(error);
}

void VideoController::onFrame(const QImage &picture, qint64 timeNs)
{
    m_frame = picture;
    m_overlay.setPictureSize(picture.size());
    // A run that is over starts again, like the tape of a demonstration.
    const qint64 runMs = m_overlay.telemetry().durationMs();
    m_overlay.advanceTo(runMs > 0 ? timeNs / NsPerMs % runMs : timeNs / NsPerMs);
    Q_EMIT frame(picture);
    setRunning(true);
    if (!m_recording)
        return;
    const int seconds = int(m_recording->positionNs() / NsPerSecond);
    if (seconds != m_shownSeconds) {
        m_shownSeconds = seconds;
        Q_EMIT recordedTimeChanged();
    }
}

void VideoController::onEnded()
{
    endRecordingBy(EndedBy::EndOfVideo);
    setRunning(false);
    // A file is played again.
    QTimer::singleShot(m_video->shownFrames() > 0 ? 0 : RetryMs, this, &VideoController::start);
}

void VideoController::onFailed(const QString &reason)
{
    endRecordingBy(EndedBy::Failure, reason);
    setRunning(false);
    if (reason != m_failure) { // told once, however often it is tried again
        m_failure = reason;
        m_messages.error(m_texts.text(QStringLiteral("errorVideo")).arg(reason));
    }
    QTimer::singleShot(RetryMs, this, &VideoController::start); // a camera may come back
}

void VideoController::setRunning(bool running)
{
    if (m_running == running)
        return;
    m_running = running;
    if (running)
        m_failure.clear();
    Q_EMIT runningChanged();
}

bool VideoController::overlayEnabled() const
{
    return m_overlay.manager().videoOverlayEnabled();
}

void VideoController::setOverlayEnabled(bool enabled)
{
    m_overlay.manager().setVideoOverlayEnabled(enabled);
}

QString VideoController::recordedTime() const
{
    return QStringLiteral("%1:%2")
        .arg(m_shownSeconds / 60, 2, 10, QLatin1Char('0'))
        .arg(m_shownSeconds % 60, 2, 10, QLatin1Char('0'));
}

QString VideoController::recordingPath() const
{
    return m_path;
}

/// In the user's unit, with the unit after it.
QString VideoController::shown(SystemValueConverter &converter, const QString &valueName) const
{
    const QVariant value = m_overlay.value(valueName);
    if (!value.isValid())
        return unknownValue;
    QString text = converter.convert(value, QString(), QString());
    // On the overlay, most digits have a point everywhere. Here people read them in their language.
    bool hasPoint = false;
    const double number = text.toDouble(&hasPoint);
    if (hasPoint)
        text = Shared::LocaleSettings::locale().toString(number, 'f',
                                                         text.section(QLatin1Char('.'), 1).size());
    return text + QLatin1Char(' ') + converter.getSuffix(QString());
}

QString VideoController::distance() const
{
    return shown(*m_distanceConverter, distanceName);
}

QString VideoController::speed() const
{
    return shown(*m_speedConverter, speedName);
}

double VideoController::distanceM() const
{
    return m_overlay.value(distanceName).toDouble();
}

QString VideoController::newRecordingPath(QString *error) const
{
    const QDir directory(m_setup.recordingDirectory);
    if (!QDir().mkpath(directory.path())) {
        *error = m_texts.text(QStringLiteral("errorNoFolder")).arg(directory.path());
        return QString();
    }
    // Plain digits, whatever the system's are: these names are sorted, and read on other machines.
    const QString stem = QLocale::c().toString(QDateTime::currentDateTime(),
                                               QStringLiteral("yyyy-MM-dd_HH-mm-ss"));
    QString path = directory.filePath(stem + QStringLiteral(".mkv"));
    for (int number = 2; QFile::exists(path); ++number)
        path = directory.filePath(QStringLiteral("%1_%2.mkv").arg(stem).arg(number));
    return path;
}

void VideoController::takeSnip()
{
    if (!m_frame.isNull())
        m_overlay.showSnip(m_frame.copy()); // the source goes on to use the frame's memory
}

void VideoController::startRecording()
{
    if (m_state != Idle)
        return;
    QString error;
    if (!m_running) {
        m_messages.error(m_texts.text(QStringLiteral("errorNoPicture")));
        return;
    }
    const QString path = newRecordingPath(&error);
    if (path.isEmpty()) {
        m_messages.error(error);
        return;
    }
    SourceSpec pushed;
    pushed.kind = SourceSpec::Kind::Pushed;
    pushed.input = std::make_shared<FrameInput>();
    m_recording
        = std::make_unique<RecordPipeline>(pushed, RecordPipeline::Output {path, {}, 0},
                                           std::shared_ptr<OverlaySource>(m_overlay.scene()));
    connect(m_recording.get(), &RecordPipeline::finished, this,
            &VideoController::onRecordingFinished);
    connect(m_recording.get(), &RecordPipeline::failed, this, [this](const QString &reason) {
        endRecording();
        m_messages.error(m_texts.text(QStringLiteral("errorRecording")).arg(reason));
    });
    connect(m_recording.get(), &RecordPipeline::warned, &m_messages, &Messages::error);
    if (!m_recording->start(&error)) {
        m_recording.reset();
        m_messages.error(m_texts.text(QStringLiteral("errorRecording")).arg(error));
        return;
    }
    m_path = path;
    m_shownSeconds = 0;
    m_messages.dismiss();
    Q_EMIT recordedTimeChanged();
    setState(Recording);
    m_video->setRecording(pushed.input);
}

void VideoController::stopRecording()
{
    endRecordingBy(EndedBy::Operator);
}

void VideoController::endRecordingBy(EndedBy cause, const QString &reason)
{
    if (m_state != Recording)
        return;
    m_endedBy = cause;
    m_endReason = reason;
    setState(Finishing);
    m_recording->stop();
}

void VideoController::onRecordingFinished()
{
    const bool isEmpty = m_recording->frameCount() == 0;
    endRecording();
    if (isEmpty) {
        m_messages.error(m_texts.text(QStringLiteral("errorNoPicture")));
        return;
    }
    switch (m_endedBy) {
    case EndedBy::Operator:
        m_messages.notice(m_texts.text(QStringLiteral("recorded")).arg(m_path));
        break;
    case EndedBy::EndOfVideo:
        m_messages.notice(m_texts.text(QStringLiteral("recordedToEnd")).arg(m_path));
        break;
    case EndedBy::Failure: // nobody wanted the recording to end: not in green
        m_messages.error(m_texts.text(QStringLiteral("recordedUntil")).arg(m_endReason, m_path));
        break;
    }
    Q_EMIT recordingFinished(m_path);
}

void VideoController::endRecording()
{
    if (m_video)
        m_video->setRecording(nullptr);
    m_recording.release()->deleteLater(); // one of its own signals is being handled
    setState(Idle);
}

void VideoController::setState(State state)
{
    m_state = state;
    Q_EMIT recordStateChanged();
    m_overlay.manager().onRecordingStateChanged(state == Idle ? CVideoRecorder::Idle
                                                    : state == Recording
                                                    ? CVideoRecorder::Recording
                                                    : CVideoRecorder::Stopping);
}

} // namespace Velmar::Host
