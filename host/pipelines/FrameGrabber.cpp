// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/FrameGrabber.h"

namespace Velmar::Host {

FrameGrabber::FrameGrabber(SourceSpec source, qint64 timeNs, FrameGate::Update update,
                           QObject *parent)
    : OverlayPipeline(std::move(source), std::move(update), parent)
{
    setRange(timeNs, -1); // what comes before is decoded, but neither laid out nor burned
    grabFrame(timeNs);
    connect(this, &OverlayPipeline::frameGrabbed, this, &OverlayPipeline::stop);
}

FrameGrabber::~FrameGrabber()
{
    shutDown(); // while the streaming threads may still ask this class
}

bool FrameGrabber::addOutput(GstElement *frames, QString *error)
{
    GstElement *sink = add("fakesink", error);
    if (!sink)
        return false;
    g_object_set(sink, "sync", FALSE, nullptr);
    return gst_element_link(frames, sink);
}

QString FrameGrabber::outputName() const
{
    return QStringLiteral("picture");
}

} // namespace Velmar::Host
