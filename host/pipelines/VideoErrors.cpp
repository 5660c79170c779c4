// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/VideoErrors.h"

#include "host/pipelines/GstRef.h"

#include <cstring>

namespace Velmar::Host {

namespace {

struct PackageRow
{
    const char *element; ///< exact name, or a prefix ending in '*'
    const char *package;
};

/// Where Debian and its relatives keep the elements that this host asks for.
constexpr PackageRow PackageTable[] = {
    {"x264enc", "gstreamer1.0-plugins-ugly"},
    {"openh264enc", "gstreamer1.0-plugins-bad"},
    {"h264parse", "gstreamer1.0-plugins-bad"},
    {"h265parse", "gstreamer1.0-plugins-bad"},
    {"x265enc", "gstreamer1.0-plugins-bad"},
    {"va*", "gstreamer1.0-plugins-bad or gstreamer1.0-vaapi"},
    {"nv*", "gstreamer1.0-plugins-bad"},
    {"av*", "gstreamer1.0-libav"},
    {"v4l2*", "gstreamer1.0-plugins-good"},
    {"vp8*", "gstreamer1.0-plugins-good"},
    {"vp9*", "gstreamer1.0-plugins-good"},
    {"matroskamux", "gstreamer1.0-plugins-good"},
    {"mp4mux", "gstreamer1.0-plugins-good"},
    {"videocrop", "gstreamer1.0-plugins-good"},
    {"videotestsrc", "gstreamer1.0-plugins-base"},
    {"videoconvert", "gstreamer1.0-plugins-base"},
    {"videoscale", "gstreamer1.0-plugins-base"},
    {"uridecodebin", "gstreamer1.0-plugins-base"},
    {"decodebin", "gstreamer1.0-plugins-base"},
    {"audio*", "gstreamer1.0-plugins-base"},
    {"filesink", "libgstreamer1.0-0"},
    {"fakesink", "libgstreamer1.0-0"},
    {"queue", "libgstreamer1.0-0"},
    {"capsfilter", "libgstreamer1.0-0"},
};

const char *packageOf(const QByteArray &element)
{
    for (const PackageRow &row : PackageTable) {
        const QByteArray pattern = row.element;
        if (pattern.endsWith('*') ? element.startsWith(pattern.chopped(1)) : element == pattern)
            return row.package;
    }
    return nullptr;
}

QString oneLine(const char *text)
{
    return QString::fromUtf8(text).simplified();
}

/// What the system said of a failed call: the end of the line that follows the place in the
/// sources.
QString systemReason(const char *debug, const QString &otherwise)
{
    const QString detail = oneLine(debug ? std::strchr(debug, '\n') : nullptr);
    const QString reason = detail.section(QStringLiteral(": "), -1);
    return reason.isEmpty() ? otherwise : reason;
}

} // namespace

bool initialiseVideo(QString *error)
{
    GError *raw = nullptr;
    if (gst_init_check(nullptr, nullptr, &raw))
        return true;
    const GErrorRef reason(raw);
    *error = QStringLiteral("GStreamer cannot be used: %1")
                 .arg(reason ? oneLine(reason->message) : QStringLiteral("unknown reason"));
    return false;
}

QString missingElementText(const QByteArray &factory)
{
    const QString name = QString::fromUtf8(factory);
    if (const char *package = packageOf(factory))
        return QStringLiteral("The GStreamer element \"%1\" is not installed; "
                              "the package %2 has it")
            .arg(name, QString::fromLatin1(package));
    return QStringLiteral("The GStreamer element \"%1\" is not installed").arg(name);
}

GstElement *makeElement(const char *factory, QString *error)
{
    GstElement *element = gst_element_factory_make(factory, nullptr);
    if (!element)
        *error = missingElementText(factory);
    return element;
}

void takeDown(GstElement *pipeline)
{
    constexpr int MostAttempts = 10;
    for (int attempt = 0; attempt < MostAttempts; ++attempt) {
        gst_element_set_state(pipeline, GST_STATE_NULL);
        bool allStopped = true;
        GstIterator *parts = gst_bin_iterate_recurse(GST_BIN(pipeline));
        const auto check = [](const GValue *item, gpointer result) {
            auto *part = GST_ELEMENT(g_value_get_object(item));
            if (GST_STATE(part) != GST_STATE_NULL)
                *static_cast<bool *>(result) = false;
        };
        while (gst_iterator_foreach(parts, check, &allStopped) == GST_ITERATOR_RESYNC)
            gst_iterator_resync(parts);
        gst_iterator_free(parts);
        if (allStopped)
            return;
    }
}

bool isOutputError(GstMessage *message)
{
    GError *rawError = nullptr;
    gst_message_parse_error(message, &rawError, nullptr);
    const GErrorRef error(rawError);
    if (error->domain == GST_RESOURCE_ERROR)
        return error->code == GST_RESOURCE_ERROR_NO_SPACE_LEFT
            || error->code == GST_RESOURCE_ERROR_OPEN_WRITE
            || error->code == GST_RESOURCE_ERROR_WRITE || error->code == GST_RESOURCE_ERROR_SEEK;
    return error->domain == GST_STREAM_ERROR
        && (error->code == GST_STREAM_ERROR_ENCODE || error->code == GST_STREAM_ERROR_MUX);
}

QString errorText(GstMessage *message, const QString &source, const QString &output,
                  const QStringList &missing)
{
    GError *rawError = nullptr;
    gchar *rawDebug = nullptr;
    gst_message_parse_error(message, &rawError, &rawDebug);
    const GErrorRef error(rawError);
    const GStringRef debug(rawDebug);
    const QString reason = oneLine(error->message);

    if (error->domain == GST_RESOURCE_ERROR) {
        switch (error->code) {
        case GST_RESOURCE_ERROR_NO_SPACE_LEFT:
            return QStringLiteral("%1: the disk is full").arg(output);
        case GST_RESOURCE_ERROR_OPEN_WRITE:
        case GST_RESOURCE_ERROR_WRITE:
        case GST_RESOURCE_ERROR_SEEK:
            return QStringLiteral("%1: cannot be written: %2")
                .arg(output, systemReason(debug.get(), reason));
        default:
            return QStringLiteral("%1: cannot be read: %2").arg(source, reason);
        }
    }
    if (!missing.isEmpty())
        return QStringLiteral("%1: cannot be decoded; not installed: %2")
            .arg(source, missing.join(QStringLiteral(", ")));
    if (error->domain == GST_STREAM_ERROR) {
        switch (error->code) {
        case GST_STREAM_ERROR_TYPE_NOT_FOUND:
        case GST_STREAM_ERROR_WRONG_TYPE:
            return QStringLiteral("%1: is not a video").arg(source);
        case GST_STREAM_ERROR_ENCODE:
        case GST_STREAM_ERROR_MUX:
            return QStringLiteral("%1: cannot be made: %2").arg(output, reason);
        default:
            return QStringLiteral("%1: cannot be decoded: %2").arg(source, reason);
        }
    }
    const GStringRef name(gst_object_get_name(GST_MESSAGE_SRC(message)));
    return QStringLiteral("%1: %2").arg(oneLine(name.get()), reason);
}

} // namespace Velmar::Host
