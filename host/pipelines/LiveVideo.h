// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/pipelines/FrameInput.h"
#include "host/pipelines/GstRef.h"
#include "host/pipelines/PipelineBus.h"
#include "host/pipelines/VideoSource.h"

#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QTimer>

#include <atomic>
#include <memory>
#include <mutex>

namespace Velmar::Host {

/// A source that plays at its own speed: its frames are announced as pictures, and handed on
/// unchanged to a recording while there is one. Lives on the GUI thread and needs its event loop.
///
/// The GUI thread never waits for the video and the video never for it: of the frames that come
/// while the GUI thread is busy, the last is announced.
class LiveVideo : public QObject, private SourceReceiver
{
    Q_OBJECT
public:
    explicit LiveVideo(SourceSpec source, QObject *parent = nullptr);
    ~LiveVideo() override;

    /// False, and a text in @p error, when it cannot start; no signal comes then.
    bool start(QString *error);
    void stop(); ///< at once; emits nothing

    /// How long a camera may deliver nothing before it counts as broken; 5 s unless set, and twice
    /// as long for the first picture. A picture that stands still would be taken for a live one.
    void setStallLimit(int milliseconds);

    /// Where every frame goes from now on; null: nowhere.
    void setRecording(std::shared_ptr<FrameInput> recording);

    int shownFrames() const;   ///< announced so far
    int playedFrames() const;  ///< come from the source so far
    qint64 positionNs() const; ///< of the last announced frame

Q_SIGNALS:
    void frame(const QImage &picture, qint64 timeNs);
    void ended();                       ///< the source is over
    void failed(const QString &reason); ///< and the video has stopped

private:
    bool build(QString *error);
    void showLatest();
    void onWatch();
    void fail(const QString &reason);

    void videoPad(GstPad *pad) override;
    void audioPad(GstPad *pad) override;
    void noMorePads() override;

    static GstPadProbeReturn rawProbe(GstPad *pad, GstPadProbeInfo *info, gpointer user);
    static GstFlowReturn takeSample(GstElement *sink, gpointer user);

    SourceSpec m_source;
    ObjectRef<GstElement> m_pipeline;
    GstElement *m_entry = nullptr; ///< takes the source's video; owned by the pipeline
    PipelineBus m_bus;
    QTimer m_watch;
    QElapsedTimer m_quiet; ///< since a picture came
    int m_stallLimitMs = 5000;
    int m_watchedFrames = 0; ///< that had come at the last look
    bool m_running = false;
    int m_shownFrames = 0;
    qint64 m_positionNs = 0;

    std::atomic<bool> m_hasVideo {false};
    std::atomic<int> m_playedFrames {0};
    std::mutex m_mutex; ///< guards what follows
    std::shared_ptr<FrameInput> m_recording;
    MiniObjectRef<GstSample> m_latest; ///< not announced yet
};

} // namespace Velmar::Host
