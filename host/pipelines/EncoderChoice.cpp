// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/EncoderChoice.h"

#include "host/pipelines/GstRef.h"
#include "host/pipelines/VideoErrors.h"

#include <QThread>

namespace Velmar::Host {

namespace {

/// Best first.
constexpr const char *VideoEncoders[] = {
    "v4l2h264enc", "vah264enc", "vah264lpenc", "vaapih264enc", "nvh264enc",
    "omxh264enc",  "x264enc",   "openh264enc", "vp8enc",
};
constexpr const char *MatroskaAudioEncoders[] = {"opusenc", "vorbisenc", "flacenc"};
constexpr const char *Mp4AudioEncoders[] = {
    "fdkaacenc", "avenc_aac", "voaacenc", "faac", "opusenc", "lamemp3enc",
};

/// [frames] between two key frames at most: players find any place within a few seconds.
constexpr int KeyFrameDistance = 100;
/// Of H.264, 0 is lossless and 51 worst: letters have no visible fringe.
constexpr int Quantizer = 20;

bool has(GstElement *element, const char *property)
{
    return g_object_class_find_property(G_OBJECT_GET_CLASS(element), property) != nullptr;
}

void setText(GstElement *element, const char *property, const QByteArray &value)
{
    if (has(element, property))
        gst_util_set_object_arg(G_OBJECT(element), property, value.constData());
}

void configure(GstElement *encoder, const QByteArray &name, Container container, int bitrateKbit)
{
    const QByteArray kbit = QByteArray::number(bitrateKbit);
    const QByteArray bits = kbit + "000";
    const QByteArray distance = QByteArray::number(KeyFrameDistance);
    const QByteArray quantizer = QByteArray::number(Quantizer);

    if (name == "x264enc") {
        setText(encoder, "speed-preset", "superfast");
        setText(encoder, "key-int-max", distance);
        setText(encoder, "pass", bitrateKbit > 0 ? "cbr" : "qual");
        // Frames that are not in their order need an edit list in MP4. Its length is wrong in a
        // file that was cut off, and readers leave frames out; without them the file is 1 % larger.
        if (container == Container::Mp4)
            setText(encoder, "bframes", "0");
        if (bitrateKbit > 0)
            setText(encoder, "bitrate", kbit);
        else
            setText(encoder, "quantizer", quantizer);
    } else if (name == "vp8enc" || name == "vp9enc") {
        setText(encoder, "deadline", "1");
        setText(encoder, "cpu-used", "5");
        setText(encoder, "threads", QByteArray::number(qMax(1, QThread::idealThreadCount())));
        setText(encoder, "keyframe-max-dist", distance);
        if (bitrateKbit > 0) {
            setText(encoder, "target-bitrate", bits);
        } else {
            setText(encoder, "end-usage", "cq");
            setText(encoder, "cq-level", "10");
            setText(encoder, "min-quantizer", "4");
            setText(encoder, "max-quantizer", "24");
            setText(encoder, "target-bitrate", "20000000");
        }
    } else if (name == "v4l2h264enc") {
        const int rate = bitrateKbit > 0 ? bitrateKbit * 1000 : 10000000;
        gst_util_set_object_arg(G_OBJECT(encoder), "extra-controls",
                                ("controls,video_bitrate=" + QByteArray::number(rate)
                                 + ",h264_i_frame_period=" + distance)
                                    .constData());
    } else {
        // Hardware encoders name the same things in a few ways.
        setText(encoder, "key-int-max", distance);
        setText(encoder, "keyframe-period", distance);
        setText(encoder, "gop-size", distance);
        // Encoders of the av family count bits, hardware ones thousands of them.
        if (name == "openh264enc" || name.startsWith("av"))
            setText(encoder, "bitrate", bitrateKbit > 0 ? bits : QByteArray("10000000"));
        else
            setText(encoder, "bitrate", bitrateKbit > 0 ? kbit : QByteArray("10000"));
    }
}

bool isInstalled(const char *name)
{
    return ObjectRef<GstElementFactory>(gst_element_factory_find(name)) != nullptr;
}

/// Whether the encoder works on this machine; a driver without its hardware says so here.
bool comesUp(GstElement *encoder)
{
    const bool ready = gst_element_set_state(encoder, GST_STATE_READY) == GST_STATE_CHANGE_SUCCESS;
    gst_element_set_state(encoder, GST_STATE_NULL);
    return ready;
}

bool makes(GstElement *encoder, const char *mediaType)
{
    const MiniObjectRef<GstCaps> caps(gst_caps_new_empty_simple(mediaType));
    return gst_element_factory_can_src_any_caps(gst_element_get_factory(encoder), caps.get());
}

bool makesH264(GstElement *encoder)
{
    return makes(encoder, "video/x-h264");
}

/// Whether a sink pad of @p muxer takes what @p encoder makes.
bool muxerTakes(GstElement *muxer, GstElement *encoder)
{
    const GList *outputs
        = gst_element_factory_get_static_pad_templates(gst_element_get_factory(encoder));
    for (const GList *at = outputs; at; at = at->next) {
        auto *pad = static_cast<GstStaticPadTemplate *>(at->data);
        if (pad->direction != GST_PAD_SRC)
            continue;
        const MiniObjectRef<GstCaps> caps(gst_static_pad_template_get_caps(pad));
        if (gst_element_factory_can_sink_any_caps(gst_element_get_factory(muxer), caps.get()))
            return true;
    }
    return false;
}

const char *muxerName(Container container)
{
    return container == Container::Mp4 ? "mp4mux" : "matroskamux";
}

/// Fills @p choice with @p name, which is installed. False where it cannot go into the container.
bool prepare(const QByteArray &name, Container container, int bitrateKbit, VideoEncoder *choice,
             QString *error)
{
    GstElement *made = makeElement(name.constData(), error);
    if (!made)
        return false;
    ObjectRef<GstElement> encoder(GST_ELEMENT(gst_object_ref_sink(made)));
    if (!comesUp(encoder.get())) {
        *error = QStringLiteral("The encoder \"%1\" does not work on this machine")
                     .arg(QString::fromUtf8(name));
        return false;
    }
    GstElement *madeMuxer = makeElement(muxerName(container), error);
    if (!madeMuxer)
        return false;
    const ObjectRef<GstElement> muxer(GST_ELEMENT(gst_object_ref_sink(madeMuxer)));

    ObjectRef<GstElement> parser;
    if (makesH264(encoder.get()) && isInstalled("h264parse"))
        parser.reset(
            GST_ELEMENT(gst_object_ref_sink(gst_element_factory_make("h264parse", nullptr))));
    // Of VP9, MP4 wants facts that only a parser has; files without them do not play everywhere.
    const bool holds = container == Container::Matroska || !makes(encoder.get(), "video/x-vp9");
    if (!parser && !(holds && muxerTakes(muxer.get(), encoder.get()))) {
        const QString format = container == Container::Mp4 ? QStringLiteral("MP4; record into .mkv")
                                                           : QStringLiteral("Matroska");
        *error = makesH264(encoder.get())
            ? missingElementText("h264parse")
            : QStringLiteral("The video of the encoder \"%1\" cannot be held by %2")
                  .arg(QString::fromUtf8(name), format);
        return false;
    }
    configure(encoder.get(), name, container, bitrateKbit);
    choice->encoder = encoder.release();
    g_object_force_floating(G_OBJECT(choice->encoder));
    choice->parser = parser.release();
    if (choice->parser)
        g_object_force_floating(G_OBJECT(choice->parser));
    choice->name = name;
    return true;
}

} // namespace

bool containerFromPath(const QString &path, Container *container, QString *error)
{
    if (path.endsWith(QLatin1String(".mkv"), Qt::CaseInsensitive)) {
        *container = Container::Matroska;
        return true;
    }
    if (path.endsWith(QLatin1String(".mp4"), Qt::CaseInsensitive)) {
        *container = Container::Mp4;
        return true;
    }
    *error = QStringLiteral("%1: the name must end in .mkv or .mp4").arg(path);
    return false;
}

bool chooseEncoder(const QByteArray &name, Container container, int bitrateKbit,
                   VideoEncoder *choice, QString *error)
{
    if (!name.isEmpty()) {
        const ObjectRef<GstElementFactory> factory(gst_element_factory_find(name.constData()));
        if (!factory) {
            *error = missingElementText(name);
            return false;
        }
        if (!gst_element_factory_list_is_type(factory.get(),
                                              GST_ELEMENT_FACTORY_TYPE_VIDEO_ENCODER)) {
            *error = QStringLiteral("The GStreamer element \"%1\" is no video encoder")
                         .arg(QString::fromUtf8(name));
            return false;
        }
        return prepare(name, container, bitrateKbit, choice, error);
    }

    QString lastReason;
    for (const char *candidate : VideoEncoders) {
        if (isInstalled(candidate)
            && prepare(candidate, container, bitrateKbit, choice, &lastReason))
            return true;
    }
    *error = lastReason.isEmpty()
        ? QStringLiteral("No video encoder is installed: x264enc (package "
                         "gstreamer1.0-plugins-ugly) makes H.264, vp8enc (package "
                         "gstreamer1.0-plugins-good) makes VP8")
        : lastReason;
    return false;
}

QByteArray audioEncoderFor(Container container)
{
    if (container == Container::Matroska) {
        for (const char *name : MatroskaAudioEncoders) {
            if (isInstalled(name))
                return name;
        }
    } else {
        for (const char *name : Mp4AudioEncoders) {
            if (isInstalled(name))
                return name;
        }
    }
    return {};
}

} // namespace Velmar::Host
