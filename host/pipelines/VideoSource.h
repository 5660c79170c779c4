// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/piperun/PipeRunSource.h"

#include <QSize>
#include <QString>

#include <gst/gst.h>

#include <functional>
#include <memory>

namespace Velmar::Host {

class FrameInput;

/// Where the pictures come from, as the operator said it.
struct SourceSpec
{
    enum class Kind {
        PipeRun, ///< a drawn camera drive through a pipe
        Test,    ///< colour bars
        File,    ///< any video file that the installed decoders read
        Device,  ///< a V4L2 camera
        Pushed,  ///< what another pipeline pushes
    };

    Kind kind = Kind::PipeRun;
    QString path;            ///< of a file or device
    QSize size;              ///< [px]; empty: 1920 x 1080 where the picture is drawn, else its own
    int framesPerSecond = 0; ///< 0: 25 where the picture is drawn, else the source's own
    unsigned seed = 1;       ///< of a drawn run
    /// Where the camera of a drawn run is at a time [ns]; null: the run's own. Called on a
    /// streaming thread.
    std::function<PipeRunRenderer::View(qint64)> view;
    std::shared_ptr<FrameInput> input; ///< of pushed frames

    /// "pipe", "test", a path below /dev, or a file.
    static SourceSpec fromText(const QString &text);
    QString name() const; ///< for messages
    bool isDrawn() const;
    bool isLive() const;
};

/// Receives the pads of a source as they appear. Called on the thread that makes them.
class SourceReceiver
{
public:
    /// One raw video pad; only the first is used.
    virtual void videoPad(GstPad *pad) = 0;
    /// One audio pad, encoded where the container takes the codec, else raw.
    virtual void audioPad(GstPad *pad) = 0;
    virtual void noMorePads() = 0;

protected:
    ~SourceReceiver() = default;
};

/// Puts the elements of @p spec into @p pipeline and hands their pads to @p receiver, which must
/// live as long as the pipeline. @p audioCaps names the audio formats that need no decoding; null:
/// audio is left out. False, and a text in @p error, when the source cannot be made.
bool addSource(GstBin *pipeline, const SourceSpec &spec, GstCaps *audioCaps,
               SourceReceiver *receiver, QString *error);

} // namespace Velmar::Host
