// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/pipelines/EncoderChoice.h"
#include "host/pipelines/OverlayPipeline.h"
#include "host/pipelines/WrittenFile.h"

#include <atomic>

namespace Velmar::Host {

/// Records a source with its overlay into a Matroska or MP4 file; audio of a file is passed on.
class RecordPipeline : public OverlayPipeline
{
    Q_OBJECT
public:
    struct Output
    {
        QString path;        ///< ends in .mkv or .mp4
        QByteArray encoder;  ///< name of a GStreamer element; empty: the best installed one
        int bitrateKbit = 0; ///< 0: constant quality
    };

    RecordPipeline(SourceSpec source, Output output, FrameGate::Update update,
                   QObject *parent = nullptr);
    /// Burns in whatever @p overlay shows at the moment, for recording while the picture runs.
    RecordPipeline(SourceSpec source, Output output, std::shared_ptr<OverlaySource> overlay,
                   QObject *parent = nullptr);
    ~RecordPipeline() override;

    QByteArray encoderName() const; ///< what encodes the video, once started

protected:
    bool addOutput(GstElement *frames, QString *error) override;
    MiniObjectRef<GstCaps> audioCaps() const override;
    void audioPad(GstPad *pad) override;
    void outputOpened() override;
    void cleanUp() override;
    bool commit(QString *error) override;
    QString outputName() const override;
    QString remains() const override;

private:
    bool addAudio(GstPad *pad, const char *const *names, int count, QString *error);

    static GstPadProbeReturn sinkProbe(GstPad *pad, GstPadProbeInfo *info, gpointer user);

    Output m_output;
    QString m_sourcePath;
    Container m_container = Container::Matroska;
    QByteArray m_encoderName;
    GstElement *m_muxer = nullptr; ///< owned by the pipeline
    QString m_writtenPath;         ///< the output, or a file beside it while the output exists
    WrittenFile m_written;
    bool m_existedBefore = false;           ///< somebody else's file was there
    std::atomic<bool> m_sinkFailed {false}; ///< set and read in the streaming threads
};

} // namespace Velmar::Host
