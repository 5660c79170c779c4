// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/RecordPipeline.h"

#include "host/pipelines/Mp4Rescue.h"
#include "host/pipelines/VideoErrors.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <iterator>

#include <unistd.h>

namespace Velmar::Host {

namespace {

struct ParserRow
{
    const char *caps;
    const char *parser;
};

/// Completes what a container needs to know of a stream that is not decoded.
constexpr ParserRow AudioParsers[] = {
    {"audio/mpeg, mpegversion=(int)1", "mpegaudioparse"},
    {"audio/mpeg, mpegversion=(int){2, 4}", "aacparse"},
    {"audio/x-flac", "flacparse"},
    {"audio/x-ac3", "ac3parse"},
};

/// Empty when a file can be written at @p path.
QString outputProblem(const QString &path, const QString &sourcePath)
{
    const QFileInfo info(path);
    const QFileInfo directory(info.absolutePath());
    if (!directory.isDir())
        return QStringLiteral("%1: there is no directory %2").arg(path, directory.filePath());
    if (info.isDir())
        return QStringLiteral("%1: is a directory").arg(path);
    const QString place = info.exists() ? path : directory.filePath();
    if (access(QFile::encodeName(place).constData(), W_OK) != 0)
        return QStringLiteral("%1: cannot be written: no permission for %2").arg(path, place);
    if (!sourcePath.isEmpty() && info.exists()
        && info.canonicalFilePath() == QFileInfo(sourcePath).canonicalFilePath())
        return QStringLiteral("%1: is the source itself").arg(path);
    return {};
}

/// [ms] An MP4 file that was cut off lacks that much, besides what the encoder holds back.
constexpr guint FragmentMs = 1000;

bool canWriteFragments(GstElement *muxer)
{
    return g_object_class_find_property(G_OBJECT_GET_CLASS(muxer), "fragment-mode") != nullptr;
}

/// The list of an MP4 file's frames stands at its end, so that a file without its end is lost. In
/// fragments, each of which has its own list, it is not; in the end it becomes a plain file all the
/// same. A muxer that cannot do both makes plain files only: players want them to tell their
/// length.
void writeFragments(GstElement *muxer)
{
    if (!canWriteFragments(muxer))
        return;
    gst_util_set_object_arg(G_OBJECT(muxer), "fragment-mode", "first-moov-then-finalise");
    g_object_set(muxer, "fragment-duration", FragmentMs, nullptr);
}

/// With sound in between, GStreamer 1.22 leaves the size out of some lists of a fragment, and no
/// player opens such a file before it is complete. Sound comes from files alone, which are still
/// there after a power cut.
void writePlain(GstElement *muxer)
{
    if (canWriteFragments(muxer))
        g_object_set(muxer, "fragment-duration", 0u, nullptr);
}

} // namespace

RecordPipeline::RecordPipeline(SourceSpec source, Output output, FrameGate::Update update,
                               QObject *parent)
    : OverlayPipeline(source, std::move(update), parent)
    , m_output(std::move(output))
    , m_sourcePath(source.path)
{
}

RecordPipeline::RecordPipeline(SourceSpec source, Output output,
                               std::shared_ptr<OverlaySource> overlay, QObject *parent)
    : OverlayPipeline(source, std::move(overlay), parent)
    , m_output(std::move(output))
    , m_sourcePath(source.path)
{
}

RecordPipeline::~RecordPipeline()
{
    shutDown(); // while the streaming threads may still ask this class
}

QByteArray RecordPipeline::encoderName() const
{
    return m_encoderName;
}

bool RecordPipeline::addOutput(GstElement *frames, QString *error)
{
    m_existedBefore = true; // until we know better: never remove what is not ours
    if (!containerFromPath(m_output.path, &m_container, error))
        return false;
    *error = outputProblem(m_output.path, m_sourcePath);
    if (!error->isEmpty())
        return false;

    VideoEncoder video;
    if (!chooseEncoder(m_output.encoder, m_container, m_output.bitrateKbit, &video, error))
        return false;
    m_encoderName = video.name;
    gst_bin_add(bin(), video.encoder);
    if (video.parser)
        gst_bin_add(bin(), video.parser);
    // An encoder that takes neither layout gets its own.
    GstElement *convert = add("videoconvert", error);
    GstElement *encoded = convert ? add("queue", error) : nullptr;
    m_muxer
        = encoded ? add(m_container == Container::Mp4 ? "mp4mux" : "matroskamux", error) : nullptr;
    GstElement *sink = m_muxer ? add("filesink", error) : nullptr;
    if (!sink)
        return false;
    if (m_container == Container::Mp4)
        writeFragments(m_muxer);
    // An earlier recording stays until this one is complete.
    m_writtenPath = QFileInfo(m_output.path).isFile() ? m_output.path + QStringLiteral(".part")
                                                      : m_output.path;
    g_object_set(sink, "location", QFile::encodeName(m_writtenPath).constData(), "sync", FALSE,
                 nullptr);
    GstElement *last = video.parser ? video.parser : video.encoder;
    const bool linked = gst_element_link_many(frames, convert, video.encoder, nullptr)
        && (!video.parser || gst_element_link(video.encoder, video.parser))
        && gst_element_link_many(last, encoded, m_muxer, sink, nullptr);
    if (!linked) {
        *error = QStringLiteral("%1: the encoder \"%2\" and the container do not fit together")
                     .arg(m_output.path, QString::fromUtf8(m_encoderName));
        return false;
    }
    // At the end, an encoder may take long for what it has held back.
    const ObjectRef<GstPad> written(gst_element_get_static_pad(sink, "sink"));
    watch(written.get());
    bus().watch(sink, &m_sinkFailed);
    gst_pad_add_probe(written.get(), GstPadProbeType(GST_PAD_PROBE_TYPE_DATA_DOWNSTREAM), sinkProbe,
                      this, nullptr);
    m_existedBefore = QFileInfo::exists(m_output.path);
    return true;
}

/// A container corrects its beginning in the end. After something could not be written this would
/// spoil the rest, in which parts are missing.
GstPadProbeReturn RecordPipeline::sinkProbe(GstPad *, GstPadProbeInfo *, gpointer user)
{
    return static_cast<RecordPipeline *>(user)->m_sinkFailed ? GST_PAD_PROBE_DROP
                                                             : GST_PAD_PROBE_OK;
}

MiniObjectRef<GstCaps> RecordPipeline::audioCaps() const
{
    GstPadTemplate *pad
        = gst_element_class_get_pad_template(GST_ELEMENT_GET_CLASS(m_muxer), "audio_%u");
    MiniObjectRef<GstCaps> taken(gst_caps_new_empty());
    const MiniObjectRef<GstCaps> all(gst_pad_template_get_caps(pad));
    for (guint i = 0; i < gst_caps_get_size(all.get()); ++i) {
        // Samples that are not compressed are worth compressing.
        const GstStructure *one = gst_caps_get_structure(all.get(), i);
        if (!gst_structure_has_name(one, "audio/x-raw"))
            gst_caps_append_structure(taken.get(), gst_structure_copy(one));
    }
    return taken;
}

void RecordPipeline::audioPad(GstPad *pad)
{
    MiniObjectRef<GstCaps> caps(gst_pad_get_current_caps(pad));
    if (!caps)
        caps.reset(gst_pad_query_caps(pad, nullptr));
    QString error;
    bool added = false;
    if (m_container == Container::Mp4)
        writePlain(m_muxer); // which begins to write when every stream is known
    if (gst_structure_has_name(gst_caps_get_structure(caps.get(), 0), "audio/x-raw")) {
        const QByteArray encoder = audioEncoderFor(m_container);
        if (encoder.isEmpty()) {
            error = QStringLiteral("no audio encoder for this container is installed");
        } else {
            const char *const names[] = {"audioconvert", "audioresample", encoder.constData()};
            added = addAudio(pad, names, int(std::size(names)), &error);
        }
    } else {
        const char *parser = nullptr;
        for (const ParserRow &row : AudioParsers) {
            const MiniObjectRef<GstCaps> wanted(gst_caps_from_string(row.caps));
            const ObjectRef<GstElementFactory> factory(gst_element_factory_find(row.parser));
            if (factory && gst_caps_can_intersect(caps.get(), wanted.get()))
                parser = row.parser;
        }
        added = addAudio(pad, &parser, parser ? 1 : 0, &error);
    }
    if (!added)
        reportWarning(
            QStringLiteral("%1: recorded without its audio: %2").arg(m_sourcePath, error));
}

bool RecordPipeline::addAudio(GstPad *pad, const char *const *names, int count, QString *error)
{
    GstElement *first = add("queue", error);
    if (!first)
        return false;
    // Video encoders hold frames back; the audio of that time must fit in here.
    g_object_set(first, "max-size-time", 10 * GST_SECOND, "max-size-buffers", 0u, nullptr);
    GstElement *last = first;
    bool linked = true;
    for (int i = 0; i < count && linked; ++i) {
        GstElement *next = add(names[i], error);
        linked = next && gst_element_link(last, next);
        if (next)
            gst_element_sync_state_with_parent(next);
        last = next;
    }
    const ObjectRef<GstPad> sink(gst_element_get_static_pad(first, "sink"));
    // The muxer last: it waits for every pad that it was asked for.
    linked = linked && gst_pad_link(pad, sink.get()) == GST_PAD_LINK_OK
        && gst_element_link_pads(last, "src", m_muxer, "audio_%u");
    if (!linked) {
        if (error->isEmpty())
            *error = QStringLiteral("the container does not take it");
        return false;
    }
    gst_element_sync_state_with_parent(first);
    const ObjectRef<GstPad> waiting(gst_element_get_static_pad(first, "src"));
    trim(waiting.get());
    limit(pad, sink.get());
    return true;
}

void RecordPipeline::cleanUp()
{
    const QFileInfo info(m_writtenPath);
    // A recording that never got a frame leaves nothing behind that looks like one.
    const bool ours = !m_existedBefore || m_writtenPath != m_output.path;
    if (ours && frameCount() == 0 && info.isFile() && !info.isSymLink())
        QFile::remove(m_writtenPath);
    else if (ours && m_container == Container::Mp4 && info.isFile())
        restoreFirstList(m_writtenPath);
}

void RecordPipeline::outputOpened()
{
    m_written.open(m_writtenPath);
}

bool RecordPipeline::commit(QString *error)
{
    const QString problem = m_written.close();
    if (!problem.isEmpty()) {
        *error = m_output.path + QLatin1String(": ") + problem;
        return false;
    }
    if (m_writtenPath == m_output.path
        || std::rename(QFile::encodeName(m_writtenPath).constData(),
                       QFile::encodeName(m_output.path).constData())
            == 0)
        return true;
    *error = QStringLiteral("%1: cannot replace the earlier file; the recording is in %2")
                 .arg(m_output.path, m_writtenPath);
    return false;
}

QString RecordPipeline::remains() const
{
    const QFileInfo info(m_writtenPath);
    if (frameCount() == 0 || !info.isFile() || info.size() == 0)
        return {};
    return QStringLiteral("; what was recorded is in %1").arg(m_writtenPath);
}

QString RecordPipeline::outputName() const
{
    return m_output.path;
}

} // namespace Velmar::Host
