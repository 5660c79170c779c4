// SPDX-License-Identifier: Apache-2.0
#include "host/burn/BurnElement.h"

#include "host/burn/FrameBurner.h"
#include "host/burn/OverlayPlanes.h"

#include <gst/video/gstvideofilter.h>
#include <gst/video/video-overlay-composition.h>
#include <gst/video/video.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <map>
#include <new>
#include <utility>

namespace Velmar::Host {

namespace {

template <auto release> struct Releaser
{
    template <typename T> void operator()(T *object) const { release(object); }
};
using RectanglePtr
    = std::unique_ptr<GstVideoOverlayRectangle, Releaser<gst_video_overlay_rectangle_unref>>;
using CompositionPtr
    = std::unique_ptr<GstVideoOverlayComposition, Releaser<gst_video_overlay_composition_unref>>;

/// The overlay as GStreamer's own description of one, for an element that composes it later,
/// perhaps in hardware. Rectangles live as long as their pictures, so that a receiver that knows
/// them by their sequence number uploads each picture once.
class Composer
{
public:
    /// Owned by the composer, valid until the next call; null where nothing shows.
    GstVideoOverlayComposition *compose(const OverlaySnapshotPtr &overlay, QSize frame);

private:
    struct Rectangle
    {
        quint64 revision = 0;
        QRect visible;
        QPoint position;
        int opacity = 0;
        RectanglePtr gst;
    };

    static RectanglePtr makeRectangle(const OverlayItem &item, const QRect &visible);

    OverlaySnapshotPtr m_overlay; ///< what m_composition shows
    QSize m_frame;
    CompositionPtr m_composition;
    std::map<int, Rectangle> m_rectangles; ///< by id of the item
};

RectanglePtr Composer::makeRectangle(const OverlayItem &item, const QRect &visible)
{
    // The buffer shares the picture's memory; the copy of the QImage keeps it alive.
    const QRect part = visible.translated(-item.position);
    auto picture
        = std::make_unique<QImage>(part == item.image.rect() ? item.image : item.image.copy(part));
    const gsize size = gsize(picture->sizeInBytes());
    const gint stride = picture->bytesPerLine();
    auto *pixels = const_cast<uchar *>(picture->constBits());
    GstBuffer *buffer = gst_buffer_new_wrapped_full(
        GST_MEMORY_FLAG_READONLY, pixels, size, 0, size, picture.release(),
        [](gpointer image) { delete static_cast<QImage *>(image); });
    gsize offsets[GST_VIDEO_MAX_PLANES] = {0, 0, 0, 0};
    gint strides[GST_VIDEO_MAX_PLANES] = {stride, 0, 0, 0};
    gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE,
                                   GST_VIDEO_OVERLAY_COMPOSITION_FORMAT_RGB, guint(visible.width()),
                                   guint(visible.height()), 1, offsets, strides);
    RectanglePtr rectangle(gst_video_overlay_rectangle_new_raw(
        buffer, visible.x(), visible.y(), guint(visible.width()), guint(visible.height()),
        GST_VIDEO_OVERLAY_FORMAT_FLAG_NONE)); // none: straight alpha
    gst_buffer_unref(buffer);
    if (item.opacity < 255)
        gst_video_overlay_rectangle_set_global_alpha(rectangle.get(), gfloat(item.opacity) / 255);
    return rectangle;
}

GstVideoOverlayComposition *Composer::compose(const OverlaySnapshotPtr &overlay, QSize frame)
{
    if (overlay == m_overlay && frame == m_frame)
        return m_composition.get();

    std::map<int, Rectangle> rectangles;
    CompositionPtr composition;
    for (const OverlayItem &item : overlay->items) {
        const QRect visible = visibleRect(item, overlay->clip, frame);
        if (visible.isEmpty())
            continue;
        Rectangle &rectangle = rectangles[item.id];
        const auto known = m_rectangles.find(item.id);
        if (known != m_rectangles.end() && known->second.gst
            && known->second.revision == item.revision && known->second.visible == visible
            && known->second.position == item.position && known->second.opacity == item.opacity) {
            rectangle = std::move(known->second);
        } else {
            rectangle = Rectangle {item.revision, visible, item.position, item.opacity,
                                   makeRectangle(item, visible)};
        }
        if (composition)
            gst_video_overlay_composition_add_rectangle(composition.get(), rectangle.gst.get());
        else
            composition.reset(gst_video_overlay_composition_new(rectangle.gst.get()));
    }
    m_rectangles = std::move(rectangles);
    m_composition = std::move(composition);
    m_overlay = overlay;
    m_frame = frame;
    return m_composition.get();
}

bool showsSomething(const OverlaySnapshot &overlay, QSize frame)
{
    return std::any_of(overlay.items.cbegin(), overlay.items.cend(), [&](const OverlayItem &item) {
        return !visibleRect(item, overlay.clip, frame).isEmpty();
    });
}

/// The C++ part of an element.
struct State
{
    std::shared_ptr<OverlaySource> source; ///< guarded by the element's object lock

    std::atomic<bool> askNextElement {true}; ///< how it wants the overlay

    // Streaming thread only.
    FrameBurner burner;
    Composer composer;
    OverlaySnapshotPtr overlay; ///< of the frame at hand; null where it has nothing to show
    bool attach = false;        ///< the next element takes the overlay as composition
    qint64 streamTimeNs = 0;    ///< of the last frame that had one
};

PlanarFrame::Matrix matrixOf(const GstVideoInfo &info)
{
    switch (info.colorimetry.matrix) {
    case GST_VIDEO_COLOR_MATRIX_BT601:
    case GST_VIDEO_COLOR_MATRIX_FCC: // differs in the third decimal
        return PlanarFrame::Matrix::Bt601;
    case GST_VIDEO_COLOR_MATRIX_UNKNOWN:
        return info.height >= 720 ? PlanarFrame::Matrix::Bt709 : PlanarFrame::Matrix::Bt601;
    default:
        return PlanarFrame::Matrix::Bt709;
    }
}

PlanarFrame planarFrame(const GstVideoFrame &mapped)
{
    PlanarFrame frame;
    frame.layout = GST_VIDEO_FRAME_FORMAT(&mapped) == GST_VIDEO_FORMAT_NV12
        ? PlanarFrame::Layout::NV12
        : PlanarFrame::Layout::I420;
    frame.matrix = matrixOf(mapped.info);
    frame.range = mapped.info.colorimetry.range == GST_VIDEO_COLOR_RANGE_0_255
        ? PlanarFrame::Range::Full
        : PlanarFrame::Range::Limited;
    frame.width = GST_VIDEO_FRAME_WIDTH(&mapped);
    frame.height = GST_VIDEO_FRAME_HEIGHT(&mapped);
    for (guint plane = 0; plane < GST_VIDEO_FRAME_N_PLANES(&mapped); ++plane) {
        frame.planes[plane]
            = static_cast<std::uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&mapped, plane));
        frame.strides[plane] = GST_VIDEO_FRAME_PLANE_STRIDE(&mapped, plane);
    }
    return frame;
}

} // namespace

} // namespace Velmar::Host

// The names below are part of the GObject type and follow its conventions.

using Velmar::Host::State;

struct XqOsdBurn
{
    GstVideoFilter parent;
    State *state;
};

struct XqOsdBurnClass
{
    GstVideoFilterClass parent;
};

G_DEFINE_TYPE(XqOsdBurn, xq_osd_burn, GST_TYPE_VIDEO_FILTER)

namespace Velmar::Host {

namespace {

#define XQ_BURN_CAPS "{ I420, NV12 }"

GstStaticPadTemplate sinkTemplate = GST_STATIC_PAD_TEMPLATE(
    "sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS(GST_VIDEO_CAPS_MAKE(XQ_BURN_CAPS)));
GstStaticPadTemplate sourceTemplate
    = GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS,
                              GST_STATIC_CAPS(GST_VIDEO_CAPS_MAKE_WITH_FEATURES(
                                  GST_CAPS_FEATURE_MEMORY_SYSTEM_MEMORY
                                  ", " GST_CAPS_FEATURE_META_GST_VIDEO_OVERLAY_COMPOSITION,
                                  XQ_BURN_CAPS) ";" GST_VIDEO_CAPS_MAKE(XQ_BURN_CAPS)));

State &stateOf(gpointer element)
{
    return *reinterpret_cast<XqOsdBurn *>(element)->state;
}

QSize sizeOf(gpointer element)
{
    const GstVideoInfo &info = GST_VIDEO_FILTER(element)->in_info;
    return QSize(info.width, info.height);
}

/// Runs @p step of the streaming thread. C frames lie between us and whoever could catch an
/// exception, so it ends here, as an error of the pipeline.
template <typename Step> GstFlowReturn guarded(GstBaseTransform *transform, Step step)
{
    try {
        return step();
    } catch (const std::exception &error) {
        GST_ELEMENT_ERROR(transform, RESOURCE, FAILED, ("The overlay could not be drawn."),
                          ("%s", error.what()));
    } catch (...) {
        GST_ELEMENT_ERROR(transform, RESOURCE, FAILED, ("The overlay could not be drawn."),
                          (nullptr));
    }
    return GST_FLOW_ERROR;
}

/// The overlay of a frame; null where there is no source, or nothing of it shows.
OverlaySnapshotPtr overlayFor(GstBaseTransform *transform, GstBuffer *buffer)
{
    State &state = stateOf(transform);
    GST_OBJECT_LOCK(transform);
    const std::shared_ptr<OverlaySource> source = state.source;
    GST_OBJECT_UNLOCK(transform);
    if (!source)
        return nullptr;

    // A frame without a time shows what the one before it showed.
    const guint64 streamTime
        = gst_segment_to_stream_time(&transform->segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
    if (GST_CLOCK_TIME_IS_VALID(streamTime))
        state.streamTimeNs = qint64(streamTime);
    OverlaySnapshotPtr overlay = source->overlayAt(state.streamTimeNs);
    return overlay && showsSomething(*overlay, sizeOf(transform)) ? overlay : nullptr;
}

/// Asks the next element how it wants the overlay. It is attached only where that element both
/// accepted the caps that announce it and says that it handles the meta-data; else the pixels are
/// written. The base class asks nothing for elements that work in place.
bool nextElementComposes(GstBaseTransform *transform)
{
    const std::unique_ptr<GstCaps, Releaser<gst_caps_unref>> caps(
        gst_pad_get_current_caps(transform->srcpad));
    if (!caps
        || !gst_caps_features_contains(gst_caps_get_features(caps.get(), 0),
                                       GST_CAPS_FEATURE_META_GST_VIDEO_OVERLAY_COMPOSITION))
        return false;
    const std::unique_ptr<GstQuery, Releaser<gst_query_unref>> query(
        gst_query_new_allocation(caps.get(), FALSE));
    return gst_pad_peer_query(transform->srcpad, query.get())
        && gst_query_find_allocation_meta(query.get(), GST_VIDEO_OVERLAY_COMPOSITION_META_API_TYPE,
                                          nullptr);
}

/// Decides whether this frame is touched at all. Only then it must be writable; the copy that is
/// made otherwise shares the pixels until they are mapped for writing, which composing never does.
GstFlowReturn prepareOutputBuffer(GstBaseTransform *transform, GstBuffer *input, GstBuffer **output)
{
    return guarded(transform, [&] {
        State &state = stateOf(transform);
        state.overlay = overlayFor(transform, input);
        if (state.overlay && state.askNextElement.exchange(false))
            state.attach = nextElementComposes(transform);
        *output = !state.overlay || gst_buffer_is_writable(input) ? input : gst_buffer_copy(input);
        return *output ? GST_FLOW_OK : GST_FLOW_ERROR;
    });
}

GstFlowReturn transformInPlace(GstBaseTransform *transform, GstBuffer *buffer)
{
    return guarded(transform, [&] {
        State &state = stateOf(transform);
        const OverlaySnapshotPtr overlay = std::exchange(state.overlay, nullptr);
        if (!overlay)
            return GST_FLOW_OK;
        if (state.attach) {
            gst_buffer_add_video_overlay_composition_meta(
                buffer, state.composer.compose(overlay, sizeOf(transform)));
            return GST_FLOW_OK;
        }
        GstVideoFrame mapped;
        if (!gst_video_frame_map(&mapped, &GST_VIDEO_FILTER(transform)->in_info, buffer,
                                 GST_MAP_READWRITE)) {
            GST_ELEMENT_ERROR(transform, RESOURCE, WRITE, ("A video frame cannot be written to."),
                              (nullptr));
            return GST_FLOW_ERROR;
        }
        const auto unmap = [](GstVideoFrame *frame) { gst_video_frame_unmap(frame); };
        const std::unique_ptr<GstVideoFrame, decltype(unmap)> guard(&mapped, unmap);
        state.burner.burn(planarFrame(mapped), *overlay);
        return GST_FLOW_OK;
    });
}

/// @p caps with or without the mark that an overlay composition may come along.
GstCaps *marked(GstCaps *caps, bool mark)
{
    GstCaps *result = gst_caps_copy(caps);
    for (guint i = 0; i < gst_caps_get_size(result); ++i) {
        GstCapsFeatures *features = gst_caps_get_features(result, i);
        if (gst_caps_features_is_any(features))
            continue;
        if (mark)
            gst_caps_features_add(features, GST_CAPS_FEATURE_META_GST_VIDEO_OVERLAY_COMPOSITION);
        else
            gst_caps_features_remove(features, GST_CAPS_FEATURE_META_GST_VIDEO_OVERLAY_COMPOSITION);
    }
    return result;
}

/// The caps stay as they are; towards the next element a composition is offered first.
GstCaps *transformCaps(GstBaseTransform *, GstPadDirection direction, GstCaps *caps,
                       GstCaps *filter)
{
    GstCaps *plain = marked(caps, false);
    GstCaps *result
        = direction == GST_PAD_SINK ? gst_caps_merge(marked(plain, true), plain) : plain;
    if (!filter)
        return result;
    GstCaps *filtered = gst_caps_intersect_full(filter, result, GST_CAPS_INTERSECT_FIRST);
    gst_caps_unref(result);
    return filtered;
}

gboolean setInfo(GstVideoFilter *filter, GstCaps *, GstVideoInfo *, GstCaps *, GstVideoInfo *)
{
    // The caps reach the next element after this, so that it cannot be asked yet.
    stateOf(filter).askNextElement = true;
    return TRUE;
}

gboolean sourceEvent(GstBaseTransform *transform, GstEvent *event)
{
    if (GST_EVENT_TYPE(event) == GST_EVENT_RECONFIGURE)
        stateOf(transform).askNextElement = true;
    return GST_BASE_TRANSFORM_CLASS(xq_osd_burn_parent_class)->src_event(transform, event);
}

gboolean stop(GstBaseTransform *transform)
{
    State &state = stateOf(transform);
    state.overlay = nullptr;
    state.askNextElement = true;
    state.streamTimeNs = 0;
    return TRUE;
}

void finalize(GObject *object)
{
    delete reinterpret_cast<XqOsdBurn *>(object)->state;
    G_OBJECT_CLASS(xq_osd_burn_parent_class)->finalize(object);
}

} // namespace

bool registerBurnElement()
{
    return gst_element_register(nullptr, "xqosdburn", GST_RANK_NONE, xq_osd_burn_get_type());
}

void setOverlaySource(GstElement *element, std::shared_ptr<OverlaySource> source)
{
    g_return_if_fail(G_TYPE_CHECK_INSTANCE_TYPE(element, xq_osd_burn_get_type()));
    GST_OBJECT_LOCK(element);
    stateOf(element).source.swap(source);
    GST_OBJECT_UNLOCK(element);
    // The old source goes here, outside of the lock.
}

} // namespace Velmar::Host

static void xq_osd_burn_class_init(XqOsdBurnClass *klass)
{
    using namespace Velmar::Host;
    G_OBJECT_CLASS(klass)->finalize = finalize;

    GstElementClass *element = GST_ELEMENT_CLASS(klass);
    gst_element_class_set_static_metadata(element, "Overlay burner", "Filter/Editor/Video",
                                          "Burns the on-screen display into video frames",
                                          "XqVideoOverlay");
    gst_element_class_add_static_pad_template(element, &sinkTemplate);
    gst_element_class_add_static_pad_template(element, &sourceTemplate);

    GstBaseTransformClass *transform = GST_BASE_TRANSFORM_CLASS(klass);
    transform->transform = nullptr;
    transform->transform_ip = transformInPlace;
    transform->transform_caps = transformCaps;
    transform->prepare_output_buffer = prepareOutputBuffer;
    transform->src_event = sourceEvent;
    transform->stop = stop;
    GST_VIDEO_FILTER_CLASS(klass)->set_info = setInfo;
}

static void xq_osd_burn_init(XqOsdBurn *self)
{
    self->state = new State;
    gst_base_transform_set_in_place(GST_BASE_TRANSFORM(self), TRUE);
    // A frame that comes late is still recorded, and the overlay costs too little to save anything.
    gst_base_transform_set_qos_enabled(GST_BASE_TRANSFORM(self), FALSE);
}
