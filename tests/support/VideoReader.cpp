// SPDX-License-Identifier: Apache-2.0
#include "tests/support/VideoReader.h"

#include "host/pipelines/GstRef.h"

#include <QUrl>

#include <gst/app/gstappsink.h>
#include <gst/pbutils/pbutils.h>

using namespace Velmar::Host;

namespace {

constexpr GstClockTime Timeout = 20 * GST_SECOND;

QString mediaType(GstDiscovererStreamInfo *stream)
{
    const MiniObjectRef<GstCaps> caps(gst_discoverer_stream_info_get_caps(stream));
    return QString::fromUtf8(gst_structure_get_name(gst_caps_get_structure(caps.get(), 0)));
}

/// Decodes the video of a file into the sink at its end.
struct Player
{
    explicit Player(const QString &path)
    {
        const QString description
            = QStringLiteral("filesrc location=\"%1\" ! decodebin ! videoconvert "
                             "! video/x-raw,format=RGB "
                             "! appsink name=sink sync=false max-buffers=4")
                  .arg(path);
        pipeline.reset(GST_ELEMENT(
            gst_object_ref_sink(gst_parse_launch(description.toUtf8().constData(), nullptr))));
        m_sink.reset(gst_bin_get_by_name(GST_BIN(pipeline.get()), "sink"));
    }
    ~Player() { gst_element_set_state(pipeline.get(), GST_STATE_NULL); }

    GstAppSink *sink() const { return GST_APP_SINK(m_sink.get()); }

    ObjectRef<GstElement> pipeline;

private:
    Q_DISABLE_COPY(Player)
    ObjectRef<GstElement> m_sink;
};

DecodedFrame frameOf(GstSample *sample)
{
    const GstStructure *caps = gst_caps_get_structure(gst_sample_get_caps(sample), 0);
    int width = 0;
    int height = 0;
    gst_structure_get_int(caps, "width", &width);
    gst_structure_get_int(caps, "height", &height);
    GstBuffer *buffer = gst_sample_get_buffer(sample);
    GstMapInfo map;
    if (!gst_buffer_map(buffer, &map, GST_MAP_READ))
        return {};
    // GStreamer's lines end at multiples of four bytes, as a QImage's do.
    const QImage view(map.data, width, height, (width * 3 + 3) / 4 * 4, QImage::Format_RGB888);
    const guint64 time = gst_segment_to_stream_time(gst_sample_get_segment(sample), GST_FORMAT_TIME,
                                                    GST_BUFFER_PTS(buffer));
    const DecodedFrame frame {qint64(time), view.copy()};
    gst_buffer_unmap(buffer, &map);
    return frame;
}

} // namespace

MediaFacts readFacts(const QString &path)
{
    MediaFacts facts;
    GError *rawError = nullptr;
    const std::unique_ptr<GstDiscoverer, GstObjectUnref> discoverer(
        gst_discoverer_new(Timeout, nullptr));
    const std::unique_ptr<GstDiscovererInfo, GstObjectUnref> info(gst_discoverer_discover_uri(
        discoverer.get(), QUrl::fromLocalFile(path).toEncoded().constData(), &rawError));
    const GErrorRef error(rawError);
    if (error || !info) {
        facts.problem = error ? QString::fromUtf8(error->message) : QStringLiteral("no facts");
        return facts;
    }
    facts.seconds = double(gst_discoverer_info_get_duration(info.get())) / GST_SECOND;
    facts.seekable = gst_discoverer_info_get_seekable(info.get());
    GList *videos = gst_discoverer_info_get_video_streams(info.get());
    if (videos) {
        auto *video = static_cast<GstDiscovererVideoInfo *>(videos->data);
        facts.size = QSize(int(gst_discoverer_video_info_get_width(video)),
                           int(gst_discoverer_video_info_get_height(video)));
        facts.videoType = mediaType(GST_DISCOVERER_STREAM_INFO(video));
    }
    gst_discoverer_stream_info_list_free(videos);
    GList *audios = gst_discoverer_info_get_audio_streams(info.get());
    if (audios)
        facts.audioType = mediaType(GST_DISCOVERER_STREAM_INFO(audios->data));
    gst_discoverer_stream_info_list_free(audios);
    return facts;
}

QVector<DecodedFrame> readFrames(const QString &path)
{
    const Player player(path);
    gst_element_set_state(player.pipeline.get(), GST_STATE_PLAYING);
    QVector<DecodedFrame> frames;
    while (const MiniObjectRef<GstSample> sample {
        gst_app_sink_try_pull_sample(player.sink(), Timeout)})
        frames.append(frameOf(sample.get()));
    return frames;
}

DecodedFrame readFrameAt(const QString &path, qint64 timeNs)
{
    const Player player(path);
    gst_element_set_state(player.pipeline.get(), GST_STATE_PAUSED);
    // Only what has come so far can be asked for another place.
    if (gst_element_get_state(player.pipeline.get(), nullptr, nullptr, Timeout)
            != GST_STATE_CHANGE_SUCCESS
        || !gst_element_seek_simple(player.pipeline.get(), GST_FORMAT_TIME,
                                    GstSeekFlags(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE),
                                    timeNs))
        return {};
    const MiniObjectRef<GstSample> sample(gst_app_sink_try_pull_preroll(player.sink(), Timeout));
    return sample ? frameOf(sample.get()) : DecodedFrame();
}

bool runPipeline(const QString &description)
{
    const ObjectRef<GstElement> pipeline(GST_ELEMENT(
        gst_object_ref_sink(gst_parse_launch(description.toUtf8().constData(), nullptr))));
    gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
    const ObjectRef<GstBus> bus(gst_element_get_bus(pipeline.get()));
    const MiniObjectRef<GstMessage> message(gst_bus_timed_pop_filtered(
        bus.get(), Timeout, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR)));
    gst_element_set_state(pipeline.get(), GST_STATE_NULL);
    return message && GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_EOS;
}
