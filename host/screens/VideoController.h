// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/pipelines/LiveVideo.h"
#include "host/pipelines/VideoSource.h"

#include <QImage>
#include <QObject>
#include <QString>

#include <memory>

namespace Velmar::Host {

class LiveOverlay;
class Messages;
class RecordPipeline;
class SystemValueConverter;
class UiTexts;

/// The running picture and the recording of it, for the screens. The picture runs whatever becomes
/// of a recording.
class VideoController : public QObject
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(bool running READ isRunning NOTIFY runningChanged)
    Q_PROPERTY(bool overlayEnabled READ overlayEnabled WRITE setOverlayEnabled NOTIFY overlayEnabledChanged)
    Q_PROPERTY(State recordState READ recordState NOTIFY recordStateChanged)
    Q_PROPERTY(QString recordedTime READ recordedTime NOTIFY recordedTimeChanged)
    Q_PROPERTY(QString recordingPath READ recordingPath NOTIFY recordStateChanged)
    Q_PROPERTY(QString distance READ distance NOTIFY valuesChanged)
    Q_PROPERTY(QString speed READ speed NOTIFY valuesChanged)
    // clang-format on

public:
    enum State { Idle, Recording, Finishing };
    Q_ENUM(State)

    struct Setup
    {
        SourceSpec source;
        QString recordingDirectory; ///< made when the first recording starts
    };

    /// None of the references is owned; all must outlive this object.
    VideoController(Setup setup, LiveOverlay &overlay, Messages &messages, const UiTexts &texts,
                    QObject *parent = nullptr);
    ~VideoController() override;

    void start(); ///< what keeps the video from running becomes a message

    bool isRunning() const { return m_running; }
    bool overlayEnabled() const;
    void setOverlayEnabled(bool enabled);
    State recordState() const { return m_state; }
    QString recordedTime() const;         ///< "mm:ss"
    QString recordingPath() const;        ///< of the recording, or of the last one
    QString distance() const;             ///< with its unit; a dash while it is not known
    QString speed() const;                ///< the same
    Q_INVOKABLE double distanceM() const; ///< 0 while it is not known

    Q_INVOKABLE void startRecording();
    /// Shows the picture as it is now in the screen snips of the profile, without the overlay.
    Q_INVOKABLE void takeSnip();
    /// Ends the file where the picture is now; it is complete when the state is Idle again. When
    /// the picture is gone or over, the recording is ended so without being asked.
    Q_INVOKABLE void stopRecording();

Q_SIGNALS:
    void frame(const QImage &picture);
    void runningChanged();
    void overlayEnabledChanged();
    void recordStateChanged();
    void recordedTimeChanged();
    void valuesChanged();
    void recordingFinished(const QString &path); ///< and the file is complete

private:
    void onFrame(const QImage &picture, qint64 timeNs);
    void onEnded();
    void onFailed(const QString &reason);
    void setRunning(bool running);
    void setState(State state);
    /// Who ended the recording.
    enum class EndedBy { Operator, EndOfVideo, Failure };
    void endRecordingBy(EndedBy cause, const QString &reason = QString());
    void onRecordingFinished();
    void endRecording();
    QString newRecordingPath(QString *error) const;
    QString shown(SystemValueConverter &converter, const QString &valueName) const;

    Setup m_setup;
    LiveOverlay &m_overlay;
    Messages &m_messages;
    const UiTexts &m_texts;
    const std::unique_ptr<SystemValueConverter> m_distanceConverter;
    const std::unique_ptr<SystemValueConverter> m_speedConverter;
    std::unique_ptr<LiveVideo> m_video;
    std::unique_ptr<RecordPipeline> m_recording;
    QImage m_frame; ///< the last one; the screens hold it as well
    QString m_path;
    QString m_failure; ///< of the source, since there was a picture
    EndedBy m_endedBy = EndedBy::Operator;
    QString m_endReason; ///< of a failure
    State m_state = Idle;
    bool m_running = false;
    int m_shownSeconds = 0;
};

} // namespace Velmar::Host
