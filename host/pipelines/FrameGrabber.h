// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/pipelines/OverlayPipeline.h"

namespace Velmar::Host {

/// Takes one frame with its overlay out of a source, by frameGrabbed(), and keeps nothing else. A
/// source that ends before the wanted time only finishes.
class FrameGrabber : public OverlayPipeline
{
    Q_OBJECT
public:
    FrameGrabber(SourceSpec source, qint64 timeNs, FrameGate::Update update,
                 QObject *parent = nullptr);
    ~FrameGrabber() override;

protected:
    bool addOutput(GstElement *frames, QString *error) override;
    QString outputName() const override;
};

} // namespace Velmar::Host
