// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/OverlayPipeline.h"

#include "host/burn/BurnElement.h"
#include "host/pipelines/FrameImage.h"
#include "host/pipelines/FrameInput.h"
#include "host/pipelines/VideoErrors.h"

#include <gst/video/video.h>

#include <limits>

namespace Velmar::Host {

namespace {

constexpr qint64 Forever = std::numeric_limits<qint64>::max();
/// Enough for decoding, burning and encoding to run side by side; a 4K frame takes 12 MB.
constexpr guint QueuedFrames = 4;
constexpr int WatchIntervalMs = 500;
/// What may be missing at the end of a file, compared with the length that it tells.
constexpr qint64 ToleratedGapNs = 1000000000;
/// Time for the last frames after a stop, before the pipeline is taken down as it is.
constexpr int StopLimitMs = 5000;
/// [px] Encoders and containers take no smaller picture.
constexpr int SmallestSide = 16;

void limitQueue(GstElement *queue)
{
    g_object_set(queue, "max-size-buffers", QueuedFrames, "max-size-bytes", 0u, "max-size-time",
                 G_GUINT64_CONSTANT(0), nullptr);
}

/// Stream time of @p buffer on @p pad [ns]; -1 when it has none.
qint64 streamTime(GstPad *pad, GstBuffer *buffer)
{
    if (!GST_BUFFER_PTS_IS_VALID(buffer))
        return -1;
    const MiniObjectRef<GstEvent> event(gst_pad_get_sticky_event(pad, GST_EVENT_SEGMENT, 0));
    if (!event)
        return -1;
    const GstSegment *segment = nullptr;
    gst_event_parse_segment(event.get(), &segment);
    const guint64 time
        = gst_segment_to_stream_time(segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
    return GST_CLOCK_TIME_IS_VALID(time) ? qint64(time) : -1;
}

QString seconds(qint64 ns)
{
    return QString::number(double(ns) / 1e9, 'f', 2);
}

qint64 durationOf(GstBuffer *buffer)
{
    return GST_BUFFER_DURATION_IS_VALID(buffer) ? qint64(GST_BUFFER_DURATION(buffer)) : 0;
}

} // namespace

OverlayPipeline::OverlayPipeline(SourceSpec source, FrameGate::Update update, QObject *parent)
    : OverlayPipeline(std::move(source), std::shared_ptr<OverlaySource>(), parent)
{
    m_gate = std::make_shared<FrameGate>(this, std::move(update));
    m_overlay = m_gate;
}

OverlayPipeline::OverlayPipeline(SourceSpec source, std::shared_ptr<OverlaySource> overlay,
                                 QObject *parent)
    : QObject(parent)
    , m_source(std::move(source))
    , m_overlay(std::move(overlay))
    , m_toNs(Forever)
{
    m_watch.setInterval(WatchIntervalMs);
    connect(&m_watch, &QTimer::timeout, this, &OverlayPipeline::onWatch);
    connect(&m_bus, &PipelineBus::ended, this, &OverlayPipeline::finish);
    connect(&m_bus, &PipelineBus::failed, this, &OverlayPipeline::onError);
}

OverlayPipeline::~OverlayPipeline()
{
    shutDown();
}

void OverlayPipeline::setRange(qint64 fromNs, qint64 toNs)
{
    m_fromNs = fromNs;
    m_toNs = toNs >= 0 ? toNs : Forever;
}

void OverlayPipeline::grabFrame(qint64 timeNs)
{
    m_grabNs = timeNs;
}

void OverlayPipeline::setStallLimit(int milliseconds)
{
    m_stallLimitMs = milliseconds;
}

int OverlayPipeline::frameCount() const
{
    return m_frameCount;
}

qint64 OverlayPipeline::positionNs() const
{
    return m_positionNs;
}

qint64 OverlayPipeline::durationNs() const
{
    gint64 ofSource = -1;
    if (m_source.kind == SourceSpec::Kind::File && m_pipeline
        && !gst_element_query_duration(m_pipeline.get(), GST_FORMAT_TIME, &ofSource))
        ofSource = -1;
    const qint64 limit = m_toNs;
    if (limit == Forever)
        return ofSource;
    return ofSource < 0 ? limit : qMin<qint64>(limit, ofSource);
}

QSize OverlayPipeline::frameSize() const
{
    return {m_width, m_height};
}

const FrameGate &OverlayPipeline::gate() const
{
    return *m_gate;
}

GstBin *OverlayPipeline::bin() const
{
    return GST_BIN(m_pipeline.get());
}

MiniObjectRef<GstCaps> OverlayPipeline::audioCaps() const
{
    return {};
}

bool OverlayPipeline::commit(QString *)
{
    return true;
}

GstElement *OverlayPipeline::add(const char *factory, QString *error)
{
    GstElement *element = makeElement(factory, error);
    if (element)
        gst_bin_add(bin(), element);
    return element;
}

bool OverlayPipeline::start(QString *error)
{
    if (!build(error)) {
        shutDown();
        cleanUp();
        return false;
    }
    m_running = true;
    m_quiet.start();
    m_watch.start();
    if (gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
        // The element that refused has told why, in a message that is queued before this.
        QMetaObject::invokeMethod(
            this, [this] { fail(QStringLiteral("%1: cannot be started").arg(m_source.name())); },
            Qt::QueuedConnection);
    } else {
        outputOpened();
    }
    return true;
}

bool OverlayPipeline::build(QString *error)
{
    if (!registerBurnElement()) {
        *error = QStringLiteral("The burning element cannot be registered with GStreamer");
        return false;
    }
    m_pipeline.reset(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    m_bus.attach(m_pipeline.get());

    m_entry = add("queue", error);
    m_crop = m_entry ? add("videocrop", error) : nullptr;
    GstElement *scale = m_crop ? add("videoscale", error) : nullptr;
    GstElement *convert = scale ? add("videoconvert", error) : nullptr;
    m_filter = convert ? add("capsfilter", error) : nullptr;
    GstElement *burn = m_filter ? add("xqosdburn", error) : nullptr;
    GstElement *burned = burn ? add("queue", error) : nullptr;
    if (!burned)
        return false;
    limitQueue(m_entry);
    limitQueue(burned);
    g_object_set(scale, "add-borders", TRUE, nullptr);
    const MiniObjectRef<GstCaps> formats(
        gst_caps_from_string("video/x-raw, format=(string){ I420, NV12 }"));
    g_object_set(m_filter, "caps", formats.get(), nullptr);
    setOverlaySource(burn, m_overlay);
    if (!gst_element_link_many(m_entry, m_crop, scale, convert, m_filter, burn, burned, nullptr)) {
        *error = QStringLiteral("The GStreamer elements for raw video do not fit together");
        return false;
    }
    const ObjectRef<GstPad> cropSink(gst_element_get_static_pad(m_crop, "sink"));
    gst_pad_add_probe(cropSink.get(), GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, capsProbe, this,
                      nullptr);
    const ObjectRef<GstPad> burnSource(gst_element_get_static_pad(burn, "src"));
    gst_pad_add_probe(burnSource.get(), GST_PAD_PROBE_TYPE_BUFFER, burnedProbe, this, nullptr);

    // The output first: what the source may hand out depends on it.
    if (!addOutput(burned, error))
        return false;
    const MiniObjectRef<GstCaps> audio = audioCaps();
    return addSource(bin(), m_source, audio.get(), this, error);
}

void OverlayPipeline::videoPad(GstPad *pad)
{
    if (m_hasVideo.exchange(true))
        return;
    const ObjectRef<GstPad> sink(gst_element_get_static_pad(m_entry, "sink"));
    m_videoPad = pad;
    limit(pad, sink.get());
    if (gst_pad_link(pad, sink.get()) != GST_PAD_LINK_OK)
        reportFailure(QStringLiteral("%1: its video cannot be connected").arg(m_source.name()));
}

void OverlayPipeline::noMorePads()
{
    if (m_hasVideo)
        return;
    QMetaObject::invokeMethod(
        this, [this] { fail(m_bus.noVideoText(m_source.name())); }, Qt::QueuedConnection);
}

void OverlayPipeline::limit(GstPad *pad, GstPad *entry)
{
    m_entries.add(entry);
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, limitProbe, this, nullptr);
}

void OverlayPipeline::watch(GstPad *pad)
{
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, activityProbe, this, nullptr);
}

GstPadProbeReturn OverlayPipeline::activityProbe(GstPad *, GstPadProbeInfo *, gpointer user)
{
    ++static_cast<OverlayPipeline *>(user)->m_activity;
    return GST_PAD_PROBE_OK;
}

GstPadProbeReturn OverlayPipeline::limitProbe(GstPad *pad, GstPadProbeInfo *info, gpointer user)
{
    auto *self = static_cast<OverlayPipeline *>(user);
    GstBuffer *buffer = GST_PAD_PROBE_INFO_BUFFER(info);
    ++self->m_activity;
    const qint64 time = streamTime(pad, buffer);
    if (self->m_stopNow || time >= self->m_toNs) {
        // From the streaming thread itself: anybody else would have to wait for it, and it may be
        // waiting for the thread of the elements.
        gst_pad_push_event(pad, gst_event_new_eos());
        return GST_PAD_PROBE_DROP;
    }
    if (time >= 0 && time + durationOf(buffer) <= self->m_fromNs && self->m_fromNs > 0)
        return GST_PAD_PROBE_DROP;
    if (time >= 0 && pad == self->m_videoPad)
        self->m_comeNs = time + durationOf(buffer);
    return GST_PAD_PROBE_OK;
}

void OverlayPipeline::trim(GstPad *pad)
{
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, trimProbe, this, nullptr);
}

GstPadProbeReturn OverlayPipeline::trimProbe(GstPad *pad, GstPadProbeInfo *info, gpointer user)
{
    const auto *self = static_cast<OverlayPipeline *>(user);
    const bool isLate
        = self->m_stopNow && streamTime(pad, GST_PAD_PROBE_INFO_BUFFER(info)) >= self->m_comeNs;
    return isLate ? GST_PAD_PROBE_DROP : GST_PAD_PROBE_OK;
}

GstPadProbeReturn OverlayPipeline::capsProbe(GstPad *, GstPadProbeInfo *info, gpointer user)
{
    GstEvent *event = GST_PAD_PROBE_INFO_EVENT(info);
    if (GST_EVENT_TYPE(event) == GST_EVENT_CAPS) {
        GstCaps *caps = nullptr;
        gst_event_parse_caps(event, &caps);
        static_cast<OverlayPipeline *>(user)->setUpFrames(caps);
    }
    return GST_PAD_PROBE_OK;
}

void OverlayPipeline::setUpFrames(GstCaps *caps)
{
    GstVideoInfo info;
    if (!gst_video_info_from_caps(&info, caps))
        return; // negotiation fails next, and says more
    const QSize size(GST_VIDEO_INFO_WIDTH(&info), GST_VIDEO_INFO_HEIGHT(&info));
    const bool scaled = !m_source.size.isEmpty() && !m_source.isDrawn();
    // Chroma covers two lines and columns, so that encoders want even sides. Leaving out a line
    // keeps every other one sharp; scaling would blur them all.
    const QSize even(size.width() & ~1, size.height() & ~1);
    g_object_set(m_crop, "right", size.width() - even.width(), "bottom",
                 size.height() - even.height(), nullptr);
    if (m_width > 0)
        return; // another size in the middle is scaled to the first: a container holds only one
    const QSize target
        = scaled ? QSize(m_source.size.width() & ~1, m_source.size.height() & ~1) : even;
    if (target.width() < SmallestSide || target.height() < SmallestSide) {
        reportFailure(QStringLiteral("%1: a picture of %2x%3 is too small to record")
                          .arg(m_source.name(), QString::number(size.width()),
                               QString::number(size.height())));
        return;
    }
    m_width = target.width();
    m_height = target.height();
    const MiniObjectRef<GstCaps> wanted(
        gst_caps_from_string("video/x-raw, format=(string){ I420, NV12 }"));
    gst_caps_set_simple(wanted.get(), "width", G_TYPE_INT, target.width(), "height", G_TYPE_INT,
                        target.height(), "pixel-aspect-ratio", GST_TYPE_FRACTION,
                        scaled ? 1 : GST_VIDEO_INFO_PAR_N(&info),
                        scaled ? 1 : GST_VIDEO_INFO_PAR_D(&info), nullptr);
    g_object_set(m_filter, "caps", wanted.get(), nullptr);
    if (m_gate)
        m_gate->setFrameSize(target);
}

GstPadProbeReturn OverlayPipeline::burnedProbe(GstPad *pad, GstPadProbeInfo *info, gpointer user)
{
    static_cast<OverlayPipeline *>(user)->onBurned(pad, GST_PAD_PROBE_INFO_BUFFER(info));
    return GST_PAD_PROBE_OK;
}

void OverlayPipeline::onBurned(GstPad *pad, GstBuffer *frame)
{
    ++m_activity;
    const qint64 time = streamTime(pad, frame);
    if (time >= 0)
        m_positionNs = time + durationOf(frame);
    // The frame that is on the screen at the wanted time ends after it.
    const bool wanted = m_grabNs >= 0 && (time >= m_grabNs || time + durationOf(frame) > m_grabNs);
    if (wanted && !m_grabbed.exchange(true)) {
        const MiniObjectRef<GstCaps> caps(gst_pad_get_current_caps(pad));
        QImage picture = caps ? frameImage(frame, caps.get()) : QImage();
        QMetaObject::invokeMethod(
            this, [this, picture] { Q_EMIT frameGrabbed(picture); }, Qt::QueuedConnection);
    }
    ++m_frameCount;
}

void OverlayPipeline::stop()
{
    if (!m_running || m_stopping)
        return;
    m_stopping = true;
    m_quiet.restart();
    // Frames that were pushed already belong to the recording. Of another source it ends here.
    const bool hasBegun = m_source.input ? m_source.input->end() : m_activity > 0;
    m_stopNow = !m_source.input || !hasBegun;
    if (!hasBegun)
        QMetaObject::invokeMethod(this, &OverlayPipeline::finish, Qt::QueuedConnection);
    else if (m_stopNow)
        endStreams();
}

void OverlayPipeline::endStreams()
{
    m_stopNow = true; // where a frame is passing, the next one ends its stream
    m_entries.end();
}

void OverlayPipeline::onWatch()
{
    const quint64 activity = m_activity;
    if (activity != m_lastActivity) {
        m_lastActivity = activity;
        m_quiet.restart();
        return;
    }
    const int limitMs = m_stopping ? qMin(StopLimitMs, m_stallLimitMs) : m_stallLimitMs;
    if (m_quiet.elapsed() <= limitMs) {
        if (m_stopNow)
            endStreams();
        return;
    }
    const QString duration = QString::number(limitMs / 1000.0);
    if (!m_stopping)
        breakOff(
            m_frameCount == 0
                ? QStringLiteral("%1: delivers no picture").arg(m_source.name())
                : QStringLiteral("%1: nothing has moved for %2 s").arg(m_source.name(), duration));
    else
        fail(m_failure.isEmpty()
                 ? QStringLiteral("%1: cannot be completed: nothing has moved for %2 s")
                       .arg(outputName(), duration)
                 : m_failure);
}

void OverlayPipeline::onError(GstMessage *message)
{
    const QString reason
        = errorText(message, m_source.name(), outputName(), m_bus.missingPlugins());
    if (isOutputError(message))
        fail(reason);
    else
        breakOff(reason);
}

/// What came so far is brought to its end before the failure is told.
void OverlayPipeline::breakOff(const QString &reason)
{
    if (!m_running)
        return;
    if (m_activity == 0) {
        fail(reason);
        return;
    }
    if (!m_stopping) { // else it is ending already, and what breaks now belongs to no recording
        m_stopping = true;
        m_failure = reason;
        m_quiet.restart();
    }
    endStreams();
}

void OverlayPipeline::fail(const QString &reason)
{
    if (!m_running)
        return;
    shutDown();
    cleanUp();
    Q_EMIT failed(reason + remains());
}

void OverlayPipeline::finish()
{
    if (!m_running)
        return;
    for (const QString &missing : m_bus.missingPlugins())
        Q_EMIT warned(QStringLiteral("%1: left out a stream; not installed: %2")
                          .arg(m_source.name(), missing));
    // A file that was cut off ends like any other; only its own word on its length tells.
    const qint64 promisedNs = durationNs();
    if (m_source.kind == SourceSpec::Kind::File && !m_stopping
        && promisedNs - m_positionNs > ToleratedGapNs)
        Q_EMIT warned(QStringLiteral("%1: ends at %2 s of %3 s")
                          .arg(m_source.name(), seconds(m_positionNs), seconds(promisedNs)));
    const bool cameraEnded = m_source.kind == SourceSpec::Kind::Device && !m_stopping
        && m_toNs - m_positionNs > ToleratedGapNs;
    if (cameraEnded)
        Q_EMIT warned(QStringLiteral("%1: delivers no more pictures").arg(m_source.name()));
    shutDown();
    QString error;
    const bool complete = m_failure.isEmpty() && m_frameCount > 0;
    if (!complete)
        cleanUp();
    if (!m_failure.isEmpty())
        Q_EMIT failed(m_failure + remains());
    else if (complete && !commit(&error))
        Q_EMIT failed(error);
    else
        Q_EMIT finished();
}

void OverlayPipeline::reportFailure(const QString &reason)
{
    QMetaObject::invokeMethod(
        this, [this, reason] { fail(reason); }, Qt::QueuedConnection);
}

void OverlayPipeline::reportWarning(const QString &text)
{
    QMetaObject::invokeMethod(
        this, [this, text] { Q_EMIT warned(text); }, Qt::QueuedConnection);
}

void OverlayPipeline::shutDown()
{
    m_running = false;
    m_watch.stop();
    if (m_gate)
        m_gate->cancel(); // before the streaming threads are joined: one may be waiting for us
    if (!m_pipeline)
        return;
    takeDown(m_pipeline.get());
    m_bus.detach();
    m_pipeline.reset();
}

} // namespace Velmar::Host
