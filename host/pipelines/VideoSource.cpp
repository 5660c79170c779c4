// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/VideoSource.h"

#include "host/pipelines/FrameInput.h"
#include "host/pipelines/GstRef.h"
#include "host/pipelines/VideoErrors.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace Velmar::Host {

namespace {

constexpr QSize DefaultSize {1920, 1080};
constexpr int DefaultFramesPerSecond = 25;

void onPadAdded(GstElement *, GstPad *pad, gpointer user)
{
    auto *receiver = static_cast<SourceReceiver *>(user);
    MiniObjectRef<GstCaps> caps(gst_pad_get_current_caps(pad));
    if (!caps)
        caps.reset(gst_pad_query_caps(pad, nullptr));
    if (!caps || gst_caps_is_empty(caps.get()) || gst_caps_is_any(caps.get()))
        return;
    const gchar *type = gst_structure_get_name(gst_caps_get_structure(caps.get(), 0));
    if (g_str_has_prefix(type, "video/x-raw"))
        receiver->videoPad(pad);
    else if (g_str_has_prefix(type, "audio/"))
        receiver->audioPad(pad);
}

void onNoMorePads(GstElement *, gpointer user)
{
    static_cast<SourceReceiver *>(user)->noMorePads();
}

void announcePads(GstElement *decoder, SourceReceiver *receiver)
{
    g_signal_connect(decoder, "pad-added", G_CALLBACK(onPadAdded), receiver);
    g_signal_connect(decoder, "no-more-pads", G_CALLBACK(onNoMorePads), receiver);
}

/// Empty when the file can be opened; opening anything but a file may block for good.
QString fileProblem(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return QStringLiteral("%1: no such file").arg(path);
    if (!info.isFile())
        return QStringLiteral("%1: is not a file").arg(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("%1: cannot be read: %2").arg(path, file.errorString());
    if (file.size() == 0)
        return QStringLiteral("%1: is not a video: the file is empty").arg(path);
    return {};
}

QString deviceProblem(const QString &path)
{
    struct stat status;
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return QStringLiteral("%1: no such camera device").arg(path);
    if (!S_ISCHR(status.st_mode))
        return QStringLiteral("%1: is not a camera device").arg(path);
    return {};
}

bool addDrawn(GstBin *pipeline, const SourceSpec &spec, SourceReceiver *receiver, QString *error)
{
    GstElement *source = nullptr;
    if (spec.kind == SourceSpec::Kind::PipeRun) {
        if (!registerPipeRunSource()) {
            *error = QStringLiteral("The drawn pipe run cannot be registered with GStreamer");
            return false;
        }
        source = makeElement("xqosdpiperun", error);
        if (source) {
            g_object_set(source, "seed", spec.seed, nullptr);
            if (spec.view)
                setViewFunction(source, spec.view);
        }
    } else {
        source = makeElement("videotestsrc", error);
    }
    if (!source)
        return false;
    gst_bin_add(pipeline, source);
    GstElement *filter = makeElement("capsfilter", error);
    if (!filter)
        return false;
    gst_bin_add(pipeline, filter);

    const QSize size = spec.size.isEmpty() ? DefaultSize : spec.size;
    const int rate = spec.framesPerSecond > 0 ? spec.framesPerSecond : DefaultFramesPerSecond;
    // The pipe is always drawn in BT.709; the bars can be had in what players assume of an unmarked
    // picture of their height.
    const bool small = size.height() < 720 && spec.kind == SourceSpec::Kind::Test;
    const char *colorimetry = small ? "bt601" : "bt709";
    const MiniObjectRef<GstCaps> caps(gst_caps_new_simple(
        "video/x-raw", "format", G_TYPE_STRING, "I420", "width", G_TYPE_INT, size.width(), "height",
        G_TYPE_INT, size.height(), "framerate", GST_TYPE_FRACTION, rate, 1, "colorimetry",
        G_TYPE_STRING, colorimetry, "pixel-aspect-ratio", GST_TYPE_FRACTION, 1, 1, nullptr));
    g_object_set(filter, "caps", caps.get(), nullptr);
    if (!gst_element_link(source, filter)) {
        *error = QStringLiteral("%1: cannot draw %2x%3")
                     .arg(spec.name())
                     .arg(size.width())
                     .arg(size.height());
        return false;
    }
    const ObjectRef<GstPad> pad(gst_element_get_static_pad(filter, "src"));
    receiver->videoPad(pad.get());
    receiver->noMorePads();
    return true;
}

bool addFile(GstBin *pipeline, const SourceSpec &spec, GstCaps *audioCaps, SourceReceiver *receiver,
             QString *error)
{
    *error = fileProblem(spec.path);
    if (!error->isEmpty())
        return false;
    GstElement *decoder = makeElement("uridecodebin", error);
    if (!decoder)
        return false;
    gst_bin_add(pipeline, decoder);

    const QByteArray path = QFile::encodeName(QFileInfo(spec.path).absoluteFilePath());
    const GStringRef uri(gst_filename_to_uri(path.constData(), nullptr));
    MiniObjectRef<GstCaps> wanted(gst_caps_new_empty_simple("video/x-raw"));
    gst_caps_set_features_simple(wanted.get(), gst_caps_features_new_any());
    if (audioCaps) {
        gst_caps_append(wanted.get(), gst_caps_new_empty_simple("audio/x-raw"));
        gst_caps_append(wanted.get(), gst_caps_copy(audioCaps));
    }
    g_object_set(decoder, "uri", uri.get(), "caps", wanted.get(), "expose-all-streams", FALSE,
                 nullptr);
    announcePads(decoder, receiver);
    return true;
}

bool addDevice(GstBin *pipeline, const SourceSpec &spec, SourceReceiver *receiver, QString *error)
{
    *error = deviceProblem(spec.path);
    if (!error->isEmpty())
        return false;
    GstElement *parts[3] = {};
    const char *const names[3] = {"v4l2src", "capsfilter", "decodebin"};
    for (int i = 0; i < 3; ++i) {
        parts[i] = makeElement(names[i], error);
        if (!parts[i])
            return false;
        gst_bin_add(pipeline, parts[i]);
    }
    g_object_set(parts[0], "device", QFile::encodeName(spec.path).constData(), nullptr);
    // A camera may hand out pictures it has compressed itself; those are decoded.
    MiniObjectRef<GstCaps> caps(gst_caps_new_empty());
    for (const char *type : {"video/x-raw", "image/jpeg", "video/x-h264"}) {
        GstCaps *one = gst_caps_new_empty_simple(type);
        if (!spec.size.isEmpty())
            gst_caps_set_simple(one, "width", G_TYPE_INT, spec.size.width(), "height", G_TYPE_INT,
                                spec.size.height(), nullptr);
        if (spec.framesPerSecond > 0)
            gst_caps_set_simple(one, "framerate", GST_TYPE_FRACTION, spec.framesPerSecond, 1,
                                nullptr);
        gst_caps_append(caps.get(), one);
    }
    g_object_set(parts[1], "caps", caps.get(), nullptr);
    if (!gst_element_link_many(parts[0], parts[1], parts[2], nullptr)) {
        *error = QStringLiteral("%1: the camera cannot be connected").arg(spec.path);
        return false;
    }
    announcePads(parts[2], receiver);
    return true;
}

bool addPushed(GstBin *pipeline, const SourceSpec &spec, SourceReceiver *receiver, QString *error)
{
    GstElement *source = spec.input->makeSource(error);
    if (!source)
        return false;
    gst_bin_add(pipeline, source);
    const ObjectRef<GstPad> pad(gst_element_get_static_pad(source, "src"));
    receiver->videoPad(pad.get());
    receiver->noMorePads();
    return true;
}

} // namespace

SourceSpec SourceSpec::fromText(const QString &text)
{
    SourceSpec spec;
    if (text == QLatin1String("pipe")) {
        spec.kind = Kind::PipeRun;
    } else if (text == QLatin1String("test")) {
        spec.kind = Kind::Test;
    } else {
        spec.kind = text.startsWith(QLatin1String("/dev/")) ? Kind::Device : Kind::File;
        spec.path = text;
    }
    return spec;
}

QString SourceSpec::name() const
{
    switch (kind) {
    case Kind::PipeRun:
        return QStringLiteral("pipe");
    case Kind::Test:
        return QStringLiteral("test");
    case Kind::Pushed:
        return QStringLiteral("live video");
    case Kind::File:
    case Kind::Device:
        break;
    }
    return path;
}

bool SourceSpec::isDrawn() const
{
    return kind == Kind::PipeRun || kind == Kind::Test;
}

bool SourceSpec::isLive() const
{
    return kind == Kind::Device || kind == Kind::Pushed;
}

bool addSource(GstBin *pipeline, const SourceSpec &spec, GstCaps *audioCaps,
               SourceReceiver *receiver, QString *error)
{
    switch (spec.kind) {
    case SourceSpec::Kind::PipeRun:
    case SourceSpec::Kind::Test:
        return addDrawn(pipeline, spec, receiver, error);
    case SourceSpec::Kind::File:
        return addFile(pipeline, spec, audioCaps, receiver, error);
    case SourceSpec::Kind::Device:
        return addDevice(pipeline, spec, receiver, error);
    case SourceSpec::Kind::Pushed:
        return addPushed(pipeline, spec, receiver, error);
    }
    return false;
}

} // namespace Velmar::Host
