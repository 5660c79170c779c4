// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/pipelines/FrameGate.h"
#include "host/pipelines/GstRef.h"
#include "host/pipelines/PipelineBus.h"
#include "host/pipelines/StreamEntries.h"
#include "host/pipelines/VideoSource.h"

#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QSize>
#include <QTimer>

#include <atomic>

namespace Velmar::Host {

/// A source whose frames get the overlay burned in; a subclass says where they go. Lives on the
/// thread of the elements and needs its event loop; emits exactly one of finished() and failed().
///
/// Whatever breaks in front of the output, the recording is brought to its end first and failed()
/// comes after it, so that what was recorded can be played.
class OverlayPipeline : public QObject, protected SourceReceiver
{
    Q_OBJECT
public:
    ~OverlayPipeline() override;

    /// False, and a text in @p error, when it cannot start; neither signal comes then.
    bool start(QString *error);

    /// Ends the recording as if the source ended here. Returns at once; finished() follows, or
    /// failed() when what was recorded cannot be completed.
    void stop();

    /// Frames before @p fromNs are left out, and those from @p toNs on. Before start() only.
    void setRange(qint64 fromNs, qint64 toNs);

    /// Announces the picture of the first frame that is shown at @p timeNs or later, with its
    /// overlay, by frameGrabbed(). Before start() only.
    void grabFrame(qint64 timeNs);

    /// How long nothing may move before the pipeline counts as stuck; 15 s unless set.
    void setStallLimit(int milliseconds);

    int frameCount() const;        ///< frames burned so far
    qint64 positionNs() const;     ///< end of the last burned frame
    qint64 durationNs() const;     ///< of what is to be recorded; -1 when unknown
    QSize frameSize() const;       ///< [px] of the burned frames; empty before the first
    const FrameGate &gate() const; ///< only of a pipeline that waits for its overlay

Q_SIGNALS:
    void finished();
    void failed(const QString &reason);
    void warned(const QString &text);
    void frameGrabbed(const QImage &picture);

protected:
    OverlayPipeline(SourceSpec source, FrameGate::Update update, QObject *parent);
    /// Burns in whatever @p overlay shows at the moment, without waiting for it.
    OverlayPipeline(SourceSpec source, std::shared_ptr<OverlaySource> overlay, QObject *parent);

    /// Adds what follows the burned frames and links it to @p frames, a raw video pad of queued
    /// frames. False, and a text in @p error, when that is impossible.
    virtual bool addOutput(GstElement *frames, QString *error) = 0;
    /// Audio that can be taken as it is; null: audio is left out.
    virtual MiniObjectRef<GstCaps> audioCaps() const;
    /// Called when the pipeline has been started.
    virtual void outputOpened() { }
    /// Called after the pipeline is gone, before failed().
    virtual void cleanUp() { }
    /// Everything was written; called after the pipeline was taken down. False, with the reason,
    /// when it could not be put in its place.
    virtual bool commit(QString *error);
    virtual QString outputName() const = 0; ///< for messages
    /// Where something is left after a failure, as a clause that ends a message; else empty.
    virtual QString remains() const { return {}; }

    GstBin *bin() const;
    PipelineBus &bus() { return m_bus; }
    GstElement *add(const char *factory, QString *error);
    /// Ends @p pad's stream, which goes into @p entry, where the range ends or when the recording
    /// is ended. Callable from every thread.
    void limit(GstPad *pad, GstPad *entry);
    /// Leaves out what comes through @p pad after the last frame of a recording that is ended: in
    /// front of the container, sound waits for the picture, seconds of it.
    void trim(GstPad *pad);
    /// What passes @p pad shows that the pipeline is not stuck.
    void watch(GstPad *pad);
    void shutDown();
    /// Both may be called from every thread.
    void reportFailure(const QString &reason);
    void reportWarning(const QString &text);

    void videoPad(GstPad *pad) override;
    void audioPad(GstPad *) override { }
    void noMorePads() override;

private:
    bool build(QString *error);
    void onWatch();
    void onError(GstMessage *message);
    void breakOff(const QString &reason);
    void endStreams();
    void fail(const QString &reason);
    void finish();
    void setUpFrames(GstCaps *caps);
    void onBurned(GstPad *pad, GstBuffer *frame);

    static GstPadProbeReturn limitProbe(GstPad *pad, GstPadProbeInfo *info, gpointer user);
    static GstPadProbeReturn trimProbe(GstPad *pad, GstPadProbeInfo *info, gpointer user);
    static GstPadProbeReturn activityProbe(GstPad *pad, GstPadProbeInfo *info, gpointer user);
    static GstPadProbeReturn capsProbe(GstPad *pad, GstPadProbeInfo *info, gpointer user);
    static GstPadProbeReturn burnedProbe(GstPad *pad, GstPadProbeInfo *info, gpointer user);

    SourceSpec m_source;
    std::shared_ptr<FrameGate> m_gate; ///< null: nobody waits for the overlay
    std::shared_ptr<OverlaySource> m_overlay;
    ObjectRef<GstElement> m_pipeline;
    GstElement *m_entry = nullptr;  ///< takes the source's video; owned by the pipeline
    GstElement *m_crop = nullptr;   ///< owned by the pipeline
    GstElement *m_filter = nullptr; ///< owned by the pipeline
    PipelineBus m_bus;
    QTimer m_watch;
    QElapsedTimer m_quiet; ///< since something moved
    int m_stallLimitMs = 15000;
    quint64 m_lastActivity = 0;
    bool m_running = false;
    bool m_stopping = false;
    QString m_failure; ///< why the recording is being ended; empty: because it was asked for
    qint64 m_fromNs = 0;
    qint64 m_grabNs = -1;

    // Shared with the streaming threads.
    std::atomic<bool> m_hasVideo {false};
    std::atomic<qint64> m_toNs;
    std::atomic<bool> m_stopNow {false};
    std::atomic<GstPad *> m_videoPad {nullptr}; ///< of the source, for comparison only
    std::atomic<qint64> m_comeNs {0};           ///< end of the last frame that came in
    std::atomic<bool> m_grabbed {false};
    std::atomic<quint64> m_activity {0};
    std::atomic<int> m_frameCount {0};
    std::atomic<qint64> m_positionNs {0};
    std::atomic<int> m_width {0};
    std::atomic<int> m_height {0};
    StreamEntries m_entries;
};

} // namespace Velmar::Host
