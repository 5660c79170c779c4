// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/FrameInput.h"

#include "host/pipelines/VideoErrors.h"

#include <gst/app/gstappsrc.h>

namespace Velmar::Host {

namespace {

/// One second at 25 frames per second: an encoder that is slow to start loses nothing.
constexpr guint64 WaitingFrames = 25;

} // namespace

FrameInput::FrameInput() = default;
FrameInput::~FrameInput() = default;

void FrameInput::push(GstBuffer *frame, GstCaps *caps)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_source || !GST_BUFFER_PTS_IS_VALID(frame))
        return;
    if (!GST_CLOCK_TIME_IS_VALID(m_first))
        m_first = GST_BUFFER_PTS(frame);
    if (GST_BUFFER_PTS(frame) < m_first)
        return;
    auto *source = GST_APP_SRC(m_source.get());
    if (!m_caps || !gst_caps_is_equal(m_caps.get(), caps)) {
        m_caps.reset(gst_caps_ref(caps));
        gst_app_src_set_caps(source, caps);
    }
    GstBuffer *own = gst_buffer_copy(frame); // shares the pixels
    GST_BUFFER_PTS(own) = GST_BUFFER_PTS(frame) - m_first;
    GST_BUFFER_DTS(own) = GST_CLOCK_TIME_NONE;
    gst_app_src_push_buffer(source, own); // takes the reference, whatever comes of it
}

bool FrameInput::end()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_source)
        gst_app_src_end_of_stream(GST_APP_SRC(m_source.get()));
    m_source.reset();
    return GST_CLOCK_TIME_IS_VALID(m_first);
}

GstElement *FrameInput::makeSource(QString *error)
{
    GstElement *source = makeElement("appsrc", error);
    if (!source)
        return nullptr;
    g_object_set(source, "format", GST_FORMAT_TIME, "is-live", TRUE, "max-buffers", WaitingFrames,
                 "max-bytes", G_GUINT64_CONSTANT(0), "max-time", G_GUINT64_CONSTANT(0),
                 "leaky-type", GST_APP_LEAKY_TYPE_DOWNSTREAM, nullptr);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_source.reset(GST_ELEMENT(gst_object_ref(source)));
    m_caps.reset();
    m_first = GST_CLOCK_TIME_NONE;
    return source;
}

} // namespace Velmar::Host
