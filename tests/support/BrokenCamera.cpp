// SPDX-License-Identifier: Apache-2.0
#include "tests/support/BrokenCamera.h"

#include "host/pipelines/GstRef.h"

#include <atomic>

using Velmar::Host::ObjectRef;

namespace {

std::atomic<int> goodFrames {0};
std::atomic<BrokenCamera::End> lastWord {BrokenCamera::End::Eos};

} // namespace

// The names below are part of the GObject type and follow its conventions.

struct XqBrokenCamera
{
    GstBin parent;
    gchar *device;
    int frames; ///< that are still delivered; streaming thread only
};

struct XqBrokenCameraClass
{
    GstBinClass parent;
};

G_DEFINE_TYPE(XqBrokenCamera, xq_broken_camera, GST_TYPE_BIN)

namespace {

GstStaticPadTemplate sourceTemplate = GST_STATIC_PAD_TEMPLATE(
    "src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS("video/x-raw, width=320, height=240"));

XqBrokenCamera *cameraOf(gpointer object)
{
    return reinterpret_cast<XqBrokenCamera *>(object);
}

void setProperty(GObject *object, guint, const GValue *value, GParamSpec *)
{
    g_free(cameraOf(object)->device);
    cameraOf(object)->device = g_value_dup_string(value);
}

void finalize(GObject *object)
{
    g_free(cameraOf(object)->device);
    G_OBJECT_CLASS(xq_broken_camera_parent_class)->finalize(object);
}

/// Counts what goes out, and ends as the silent ones do: whatever comes later stays here.
GstPadProbeReturn countFrames(GstPad *, GstPadProbeInfo *, gpointer user)
{
    XqBrokenCamera *camera = cameraOf(user);
    if (camera->frames-- > 0)
        return GST_PAD_PROBE_OK;
    if (camera->frames == -1 && lastWord == BrokenCamera::End::Unplugged)
        GST_ELEMENT_ERROR(camera, RESOURCE, READ, ("Could not read from the device."), (nullptr));
    return GST_PAD_PROBE_DROP;
}

} // namespace

static void xq_broken_camera_class_init(XqBrokenCameraClass *type)
{
    auto *object = G_OBJECT_CLASS(type);
    object->set_property = setProperty;
    object->finalize = finalize;
    g_object_class_install_property(
        object, 1,
        g_param_spec_string("device", "Device", "Device file", nullptr, G_PARAM_WRITABLE));
    auto *element = GST_ELEMENT_CLASS(type);
    gst_element_class_add_static_pad_template(element, &sourceTemplate);
    gst_element_class_set_static_metadata(element, "Broken camera", "Source/Video",
                                          "Breaks after some pictures", "xqosd");
}

static void xq_broken_camera_init(XqBrokenCamera *camera)
{
    using BrokenCamera::End;
    camera->frames = goodFrames;
    const int errorAfter = lastWord == End::Error ? goodFrames + 1 : -1;
    const int buffers = lastWord == End::Eos ? goodFrames.load() : -1;
    const Velmar::Host::GStringRef description(g_strdup_printf(
        "videotestsrc is-live=true num-buffers=%d ! video/x-raw,format=I420,width=320,height=240,"
        "framerate=%d/1 ! identity error-after=%d",
        buffers, BrokenCamera::FramesPerSecond, errorAfter));
    GstElement *pictures = gst_parse_bin_from_description(description.get(), TRUE, nullptr);
    gst_bin_add(GST_BIN(camera), pictures);
    const ObjectRef<GstPad> out(gst_element_get_static_pad(pictures, "src"));
    if (lastWord == End::Unplugged || lastWord == End::Silence)
        gst_pad_add_probe(out.get(), GST_PAD_PROBE_TYPE_BUFFER, countFrames, camera, nullptr);
    gst_element_add_pad(GST_ELEMENT(camera), gst_ghost_pad_new("src", out.get()));
}

namespace BrokenCamera {

bool plugIn(int frames, End end)
{
    goodFrames = frames;
    lastWord = end;
    // A second element of the same name replaces the first.
    return gst_element_register(nullptr, "v4l2src", GST_RANK_NONE, xq_broken_camera_get_type());
}

QString device()
{
    return QStringLiteral("/dev/null");
}

} // namespace BrokenCamera
