// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/LiveVideo.h"

#include "host/pipelines/VideoErrors.h"

#include <gst/app/gstappsink.h>
#include <gst/video/video.h>

#include <utility>

namespace Velmar::Host {

namespace {

constexpr int WatchIntervalMs = 500;

/// A mapped frame that lives as long as the picture made of it.
struct MappedFrame
{
    MiniObjectRef<GstSample> sample;
    GstVideoFrame frame;
};

void releaseFrame(void *mapped)
{
    auto *held = static_cast<MappedFrame *>(mapped);
    gst_video_frame_unmap(&held->frame);
    delete held;
}

/// The frame's own pixels as a picture, not a copy. Null when they cannot be read.
QImage pictureOf(MiniObjectRef<GstSample> sample)
{
    auto mapped = std::make_unique<MappedFrame>();
    mapped->sample = std::move(sample);
    GstVideoInfo info;
    GstCaps *caps = gst_sample_get_caps(mapped->sample.get());
    GstBuffer *buffer = gst_sample_get_buffer(mapped->sample.get());
    if (!caps || !buffer || !gst_video_info_from_caps(&info, caps)
        || !gst_video_frame_map(&mapped->frame, &info, buffer, GST_MAP_READ))
        return QImage();
    const GstVideoFrame &frame = mapped->frame;
    const auto *pixels = static_cast<const uchar *>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0));
    const int stride = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
    const QSize size(GST_VIDEO_FRAME_WIDTH(&frame), GST_VIDEO_FRAME_HEIGHT(&frame));
    return QImage(pixels, size.width(), size.height(), stride, QImage::Format_RGB32, releaseFrame,
                  mapped.release());
}

} // namespace

LiveVideo::LiveVideo(SourceSpec source, QObject *parent)
    : QObject(parent)
    , m_source(std::move(source))
{
    connect(&m_bus, &PipelineBus::failed, this, [this](GstMessage *message) {
        fail(errorText(message, m_source.name(), QStringLiteral("screen"), m_bus.missingPlugins()));
    });
    connect(&m_bus, &PipelineBus::ended, this, [this] {
        if (m_source.isLive()) { // a camera has no end
            fail(QStringLiteral("%1: delivers no more pictures").arg(m_source.name()));
            return;
        }
        stop();
        Q_EMIT ended();
    });
    m_watch.setInterval(WatchIntervalMs);
    connect(&m_watch, &QTimer::timeout, this, &LiveVideo::onWatch);
}

LiveVideo::~LiveVideo()
{
    stop();
}

bool LiveVideo::start(QString *error)
{
    if (!build(error)) {
        stop();
        return false;
    }
    m_running = true;
    m_quiet.start();
    if (m_source.isLive()) // a file may hold one picture for as long as it likes
        m_watch.start();
    if (gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
        // The element that refused has told why, in a message that is queued before this.
        QMetaObject::invokeMethod(
            this, [this] { fail(QStringLiteral("%1: cannot be started").arg(m_source.name())); },
            Qt::QueuedConnection);
    }
    return true;
}

void LiveVideo::stop()
{
    m_running = false;
    m_watch.stop();
    if (!m_pipeline)
        return;
    takeDown(m_pipeline.get());
    m_bus.detach();
    m_pipeline.reset();
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_latest.reset();
}

void LiveVideo::setRecording(std::shared_ptr<FrameInput> recording)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_recording = std::move(recording);
}

void LiveVideo::setStallLimit(int milliseconds)
{
    m_stallLimitMs = milliseconds;
}

void LiveVideo::onWatch()
{
    const int frames = m_playedFrames;
    if (frames != m_watchedFrames) {
        m_watchedFrames = frames;
        m_quiet.restart();
        return;
    }
    const int limitMs = frames > 0 ? m_stallLimitMs : 2 * m_stallLimitMs;
    if (m_quiet.elapsed() > limitMs)
        fail(QStringLiteral("%1: has delivered no picture for %2 s")
                 .arg(m_source.name(), QString::number(limitMs / 1000.0)));
}

int LiveVideo::shownFrames() const
{
    return m_shownFrames;
}

int LiveVideo::playedFrames() const
{
    return m_playedFrames;
}

qint64 LiveVideo::positionNs() const
{
    return m_positionNs;
}

bool LiveVideo::build(QString *error)
{
    m_pipeline.reset(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    auto *bin = GST_BIN(m_pipeline.get());
    m_bus.attach(m_pipeline.get());

    const auto add = [&](const char *factory) {
        GstElement *element = makeElement(factory, error);
        if (element)
            gst_bin_add(bin, element);
        return element;
    };
    m_entry = add("queue");
    // In the source's own time, before anything is converted for the screen.
    GstElement *pace = m_entry ? add("clocksync") : nullptr;
    GstElement *convert = pace ? add("videoconvert") : nullptr;
    GstElement *sink = convert ? add("appsink") : nullptr;
    if (!sink)
        return false;
    g_object_set(m_entry, "max-size-buffers", 4u, "max-size-bytes", 0u, "max-size-time",
                 G_GUINT64_CONSTANT(0), nullptr);
    const MiniObjectRef<GstCaps> caps(gst_caps_from_string("video/x-raw, format=(string)BGRx"));
    g_object_set(sink, "caps", caps.get(), "sync", FALSE, "max-buffers", 1u, "drop", TRUE,
                 "emit-signals", TRUE, nullptr);
    g_signal_connect(sink, "new-sample", G_CALLBACK(takeSample), this);
    if (!gst_element_link_many(m_entry, pace, convert, sink, nullptr)) {
        *error = QStringLiteral("The GStreamer elements for raw video do not fit together");
        return false;
    }
    const ObjectRef<GstPad> raw(gst_element_get_static_pad(pace, "src"));
    gst_pad_add_probe(raw.get(), GST_PAD_PROBE_TYPE_BUFFER, rawProbe, this, nullptr);
    return addSource(bin, m_source, nullptr, this, error);
}

void LiveVideo::videoPad(GstPad *pad)
{
    if (m_hasVideo.exchange(true))
        return;
    const ObjectRef<GstPad> sink(gst_element_get_static_pad(m_entry, "sink"));
    gst_pad_link(pad, sink.get()); // a pad that does not fit reports itself
}

void LiveVideo::audioPad(GstPad *) { }

void LiveVideo::noMorePads()
{
    if (m_hasVideo)
        return;
    QMetaObject::invokeMethod(
        this, [this] { fail(m_bus.noVideoText(m_source.name())); }, Qt::QueuedConnection);
}

GstPadProbeReturn LiveVideo::rawProbe(GstPad *pad, GstPadProbeInfo *info, gpointer user)
{
    auto *self = static_cast<LiveVideo *>(user);
    ++self->m_playedFrames;
    std::shared_ptr<FrameInput> recording;
    {
        const std::lock_guard<std::mutex> lock(self->m_mutex);
        recording = self->m_recording;
    }
    if (recording) {
        const MiniObjectRef<GstCaps> caps(gst_pad_get_current_caps(pad));
        if (caps)
            recording->push(GST_PAD_PROBE_INFO_BUFFER(info), caps.get());
    }
    return GST_PAD_PROBE_OK;
}

GstFlowReturn LiveVideo::takeSample(GstElement *sink, gpointer user)
{
    auto *self = static_cast<LiveVideo *>(user);
    MiniObjectRef<GstSample> sample(gst_app_sink_pull_sample(GST_APP_SINK(sink)));
    if (!sample)
        return GST_FLOW_OK;
    const std::lock_guard<std::mutex> lock(self->m_mutex);
    const bool waiting = bool(self->m_latest);
    self->m_latest = std::move(sample);
    if (!waiting)
        QMetaObject::invokeMethod(self, &LiveVideo::showLatest, Qt::QueuedConnection);
    return GST_FLOW_OK;
}

void LiveVideo::showLatest()
{
    MiniObjectRef<GstSample> sample;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        sample = std::move(m_latest);
    }
    if (!sample || !m_running)
        return;
    const GstSegment *segment = gst_sample_get_segment(sample.get());
    const guint64 time = gst_segment_to_stream_time(
        segment, GST_FORMAT_TIME, GST_BUFFER_PTS(gst_sample_get_buffer(sample.get())));
    const QImage picture = pictureOf(std::move(sample));
    if (picture.isNull())
        return;
    if (GST_CLOCK_TIME_IS_VALID(time))
        m_positionNs = qint64(time);
    ++m_shownFrames;
    Q_EMIT frame(picture, m_positionNs);
}

void LiveVideo::fail(const QString &reason)
{
    if (!m_running)
        return;
    stop();
    Q_EMIT failed(reason);
}

} // namespace Velmar::Host
