// SPDX-License-Identifier: Apache-2.0
#include "host/piperun/PipeRunSource.h"

#include <gst/base/gstpushsrc.h>
#include <gst/video/gstvideopool.h>
#include <gst/video/video.h>

#include <exception>
#include <memory>
#include <mutex>
#include <utility>

using Velmar::Host::PipeRunRenderer;
using Velmar::Host::PlanarFrame;
using ViewFunction = std::function<PipeRunRenderer::View(qint64)>;

namespace {

constexpr guint DefaultSeed = 2;      ///< the pipe of the demonstration run
constexpr double DefaultSpeed = 0.12; ///< [m/s]
constexpr int DefaultWidth = 1920;
constexpr int DefaultHeight = 1080;
constexpr int DefaultFramerate = 25;

enum Property {
    PropertySeed = 1,
};

/// What an element holds besides its GObject part, which knows nothing of constructors.
struct Source
{
    std::mutex mutex; ///< guards the next four, which other threads set or read
    guint seed = DefaultSeed;
    std::shared_ptr<const ViewFunction> viewAt;
    int queryRateN = 0; ///< the frame rate once more, for queries; 0 before there is one
    int queryRateD = 1;

    // The streaming thread's own:
    std::unique_ptr<PipeRunRenderer> renderer;
    GstVideoInfo info = {};
    bool negotiated = false;
    guint64 frames = 0;      ///< since the caps were set
    GstClockTime offset = 0; ///< time of the first of them
};

struct XqPipeRunSource
{
    GstPushSrc parent;
    Source *d;
};

struct XqPipeRunSourceClass
{
    GstPushSrcClass parent;
};

G_DEFINE_TYPE(XqPipeRunSource, xq_pipe_run_source, GST_TYPE_PUSH_SRC)

XqPipeRunSource *cast(gpointer object)
{
    return G_TYPE_CHECK_INSTANCE_CAST(object, xq_pipe_run_source_get_type(), XqPipeRunSource);
}

GstStaticPadTemplate padTemplate = GST_STATIC_PAD_TEMPLATE(
    "src", GST_PAD_SRC, GST_PAD_ALWAYS,
    GST_STATIC_CAPS("video/x-raw, format=(string)I420, width=(int)[2, 16384, 2], "
                    "height=(int)[2, 16384, 2], framerate=(fraction)[1/1000, 1000/1], "
                    "pixel-aspect-ratio=(fraction)1/1, interlace-mode=(string)progressive, "
                    "colorimetry=(string)bt709"));

/// [ns] since the caps were set, of frame @p frame.
GstClockTime timeOfFrame(const Source &source, guint64 frame)
{
    return gst_util_uint64_scale(frame, guint64(GST_VIDEO_INFO_FPS_D(&source.info)) * GST_SECOND,
                                 guint64(GST_VIDEO_INFO_FPS_N(&source.info)));
}

GstCaps *fixate(GstBaseSrc *base, GstCaps *caps)
{
    caps = gst_caps_make_writable(gst_caps_truncate(caps));
    GstStructure *structure = gst_caps_get_structure(caps, 0);
    gst_structure_fixate_field_nearest_int(structure, "width", DefaultWidth);
    gst_structure_fixate_field_nearest_int(structure, "height", DefaultHeight);
    gst_structure_fixate_field_nearest_fraction(structure, "framerate", DefaultFramerate, 1);
    return GST_BASE_SRC_CLASS(xq_pipe_run_source_parent_class)->fixate(base, caps);
}

gboolean setCaps(GstBaseSrc *base, GstCaps *caps)
{
    Source &source = *cast(base)->d;
    GstVideoInfo info;
    if (!gst_video_info_from_caps(&info, caps) || GST_VIDEO_INFO_FPS_N(&info) <= 0)
        return FALSE;
    if (source.negotiated)
        source.offset += timeOfFrame(source, source.frames);
    source.info = info;
    source.negotiated = true;
    source.frames = 0;
    {
        const std::lock_guard<std::mutex> lock(source.mutex);
        source.queryRateN = GST_VIDEO_INFO_FPS_N(&info);
        source.queryRateD = GST_VIDEO_INFO_FPS_D(&info);
    }
    gst_base_src_set_blocksize(base, guint(GST_VIDEO_INFO_SIZE(&info)));
    return TRUE;
}

gboolean decideAllocation(GstBaseSrc *base, GstQuery *query)
{
    const Source &source = *cast(base)->d;
    GstCaps *caps = nullptr;
    gst_query_parse_allocation(query, &caps, nullptr);

    GstBufferPool *pool = nullptr;
    guint size = guint(GST_VIDEO_INFO_SIZE(&source.info));
    guint minimum = 0;
    guint maximum = 0;
    const bool offered = gst_query_get_n_allocation_pools(query) > 0;
    if (offered) {
        guint offeredSize = 0;
        gst_query_parse_nth_allocation_pool(query, 0, &pool, &offeredSize, &minimum, &maximum);
        size = MAX(size, offeredSize);
    }
    if (!pool)
        pool = gst_video_buffer_pool_new();

    GstStructure *config = gst_buffer_pool_get_config(pool);
    gst_buffer_pool_config_set_params(config, caps, size, minimum, maximum);
    if (gst_query_find_allocation_meta(query, GST_VIDEO_META_API_TYPE, nullptr))
        gst_buffer_pool_config_add_option(config, GST_BUFFER_POOL_OPTION_VIDEO_META);
    // A pool that wants another configuration says so; the base class configures what is left.
    gst_buffer_pool_set_config(pool, config);

    if (offered)
        gst_query_set_nth_allocation_pool(query, 0, pool, size, minimum, maximum);
    else
        gst_query_add_allocation_pool(query, pool, size, minimum, maximum);
    gst_object_unref(pool);
    return GST_BASE_SRC_CLASS(xq_pipe_run_source_parent_class)->decide_allocation(base, query);
}

gboolean start(GstBaseSrc *base)
{
    Source &source = *cast(base)->d;
    source.negotiated = false;
    source.frames = 0;
    source.offset = 0;
    const std::lock_guard<std::mutex> lock(source.mutex);
    source.queryRateN = 0;
    return TRUE;
}

gboolean stop(GstBaseSrc *base)
{
    cast(base)->d->renderer.reset();
    return TRUE;
}

gboolean isSeekable(GstBaseSrc *)
{
    return FALSE;
}

/// The duration is known when the number of buffers is; a progress display wants it.
gboolean query(GstBaseSrc *base, GstQuery *query)
{
    if (GST_QUERY_TYPE(query) == GST_QUERY_DURATION) {
        Source &source = *cast(base)->d;
        GstFormat format = GST_FORMAT_UNDEFINED;
        gst_query_parse_duration(query, &format, nullptr);
        gint buffers = -1;
        g_object_get(base, "num-buffers", &buffers, nullptr);
        const std::lock_guard<std::mutex> lock(source.mutex);
        if (format == GST_FORMAT_TIME && buffers >= 0 && source.queryRateN > 0) {
            const guint64 time
                = gst_util_uint64_scale(guint64(buffers), guint64(source.queryRateD) * GST_SECOND,
                                        guint64(source.queryRateN));
            gst_query_set_duration(query, format, gint64(time));
            return TRUE;
        }
    }
    return GST_BASE_SRC_CLASS(xq_pipe_run_source_parent_class)->query(base, query);
}

/// May throw: what comes from the view function, and lack of memory.
void draw(Source &source, GstVideoFrame &frame, GstClockTime time)
{
    guint seed = 0;
    std::shared_ptr<const ViewFunction> viewAt;
    {
        const std::lock_guard<std::mutex> lock(source.mutex);
        seed = source.seed;
        viewAt = source.viewAt;
    }
    if (!source.renderer)
        source.renderer = std::make_unique<PipeRunRenderer>(seed);

    const double seconds = double(time) / double(GST_SECOND);
    PipeRunRenderer::View view;
    if (viewAt)
        view = (*viewAt)(qint64(time));
    else
        view.distanceM = DefaultSpeed * seconds;
    view.timeS = seconds;

    PlanarFrame picture;
    picture.width = GST_VIDEO_FRAME_WIDTH(&frame);
    picture.height = GST_VIDEO_FRAME_HEIGHT(&frame);
    for (int i = 0; i < 3; ++i) {
        picture.planes[i] = static_cast<std::uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&frame, i));
        picture.strides[i] = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, i);
    }
    source.renderer->render(picture, view);
}

GstFlowReturn fill(GstPushSrc *push, GstBuffer *buffer)
{
    Source &source = *cast(push)->d;
    if (!source.negotiated) {
        GST_ELEMENT_ERROR(push, CORE, NEGOTIATION, (nullptr), ("no caps were agreed on"));
        return GST_FLOW_NOT_NEGOTIATED;
    }
    const GstClockTime begin = source.offset + timeOfFrame(source, source.frames);
    const GstClockTime end = source.offset + timeOfFrame(source, source.frames + 1);

    GstVideoFrame frame;
    if (!gst_video_frame_map(&frame, &source.info, buffer, GST_MAP_WRITE)) {
        GST_ELEMENT_ERROR(push, RESOURCE, WRITE, (nullptr), ("cannot map the frame for writing"));
        return GST_FLOW_ERROR;
    }
    GstFlowReturn result = GST_FLOW_OK;
    try {
        draw(source, frame, begin);
    } catch (const std::exception &exception) {
        GST_ELEMENT_ERROR(push, STREAM, FAILED, (nullptr),
                          ("cannot draw the frame: %s", exception.what()));
        result = GST_FLOW_ERROR;
    } catch (...) {
        GST_ELEMENT_ERROR(push, STREAM, FAILED, (nullptr), ("cannot draw the frame"));
        result = GST_FLOW_ERROR;
    }
    gst_video_frame_unmap(&frame);

    GST_BUFFER_PTS(buffer) = begin;
    GST_BUFFER_DTS(buffer) = GST_CLOCK_TIME_NONE;
    GST_BUFFER_DURATION(buffer) = end - begin;
    GST_BUFFER_OFFSET(buffer) = source.frames;
    GST_BUFFER_OFFSET_END(buffer) = source.frames + 1;
    ++source.frames;
    return result;
}

void setProperty(GObject *object, guint id, const GValue *value, GParamSpec *spec)
{
    Source &source = *cast(object)->d;
    if (id == PropertySeed) {
        const std::lock_guard<std::mutex> lock(source.mutex);
        source.seed = g_value_get_uint(value);
    } else {
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
}

void getProperty(GObject *object, guint id, GValue *value, GParamSpec *spec)
{
    Source &source = *cast(object)->d;
    if (id == PropertySeed) {
        const std::lock_guard<std::mutex> lock(source.mutex);
        g_value_set_uint(value, source.seed);
    } else {
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
}

void finalize(GObject *object)
{
    delete cast(object)->d;
    G_OBJECT_CLASS(xq_pipe_run_source_parent_class)->finalize(object);
}

void xq_pipe_run_source_class_init(XqPipeRunSourceClass *klass)
{
    GObjectClass *object = G_OBJECT_CLASS(klass);
    object->set_property = setProperty;
    object->get_property = getProperty;
    object->finalize = finalize;
    g_object_class_install_property(
        object, PropertySeed,
        g_param_spec_uint("seed", "Seed", "Which pipe to drive through; read when drawing begins",
                          0, G_MAXUINT, DefaultSeed,
                          GParamFlags(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS)));

    GstElementClass *element = GST_ELEMENT_CLASS(klass);
    gst_element_class_set_static_metadata(element, "Pipe run", "Source/Video",
                                          "Draws a camera's run through a sewer pipe",
                                          "The XqVideoOverlay developers");
    gst_element_class_add_static_pad_template(element, &padTemplate);

    GstBaseSrcClass *base = GST_BASE_SRC_CLASS(klass);
    base->fixate = fixate;
    base->set_caps = setCaps;
    base->decide_allocation = decideAllocation;
    base->start = start;
    base->stop = stop;
    base->is_seekable = isSeekable;
    base->query = query;
    GST_PUSH_SRC_CLASS(klass)->fill = fill;
}

void xq_pipe_run_source_init(XqPipeRunSource *self)
{
    self->d = new Source;
    gst_base_src_set_format(GST_BASE_SRC(self), GST_FORMAT_TIME);
    gst_base_src_set_live(GST_BASE_SRC(self), FALSE);
}

} // namespace

namespace Velmar::Host {

bool registerPipeRunSource()
{
    return gst_element_register(nullptr, "xqosdpiperun", GST_RANK_NONE,
                                xq_pipe_run_source_get_type());
}

void setDistanceFunction(GstElement *source, std::function<double(qint64 streamTimeNs)> distanceAt)
{
    if (!distanceAt) {
        setViewFunction(source, {});
        return;
    }
    setViewFunction(source, [distanceAt = std::move(distanceAt)](qint64 streamTimeNs) {
        PipeRunRenderer::View view;
        view.distanceM = distanceAt(streamTimeNs);
        return view;
    });
}

void setViewFunction(GstElement *source,
                     std::function<PipeRunRenderer::View(qint64 streamTimeNs)> viewAt)
{
    Q_ASSERT(G_TYPE_CHECK_INSTANCE_TYPE(source, xq_pipe_run_source_get_type()));
    Source &d = *cast(source)->d;
    auto shared = viewAt ? std::make_shared<const ViewFunction>(std::move(viewAt)) : nullptr;
    // The old function is destroyed after the lock is released: it may own anything.
    const std::lock_guard<std::mutex> lock(d.mutex);
    d.viewAt.swap(shared);
}

} // namespace Velmar::Host
