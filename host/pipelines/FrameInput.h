// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/pipelines/GstRef.h"

#include <QString>

#include <gst/gst.h>

#include <mutex>

namespace Velmar::Host {

/// The end of a pipeline into which another one's frames are pushed. Never makes the pushing side
/// wait: frames that are not taken in time are left out. Callable from every thread.
class FrameInput
{
public:
    FrameInput();
    ~FrameInput();

    /// A frame of raw video; the first one starts the time at 0. Takes no ownership.
    void push(GstBuffer *frame, GstCaps *caps);

    /// Nothing comes any more: what was pushed is delivered, then the stream ends. False when
    /// nothing ever was, so that there is nothing to wait for.
    bool end();

    /// The element that delivers what is pushed from now on: a new "appsrc", floating, for whoever
    /// builds the pipeline. Null, and a text in @p error, when there is none.
    GstElement *makeSource(QString *error);

private:
    Q_DISABLE_COPY(FrameInput)
    std::mutex m_mutex; ///< guards every field below
    ObjectRef<GstElement> m_source;
    MiniObjectRef<GstCaps> m_caps; ///< of the frames so far
    GstClockTime m_first = GST_CLOCK_TIME_NONE;
};

} // namespace Velmar::Host
