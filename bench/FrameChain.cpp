// SPDX-License-Identifier: Apache-2.0
#include "bench/FrameChain.h"

#include <gst/video/video.h>

FrameChain::FrameChain(QSize frameSize, const QVector<GstElement *> &elements)
    : m_pipeline(gst_pipeline_new(nullptr))
    , m_top(gst_pad_new("src", GST_PAD_SRC))
{
    GstElement *sink = gst_element_factory_make("fakesink", nullptr);
    g_object_set(sink, "sync", FALSE, "async", FALSE, nullptr);
    gst_bin_add(GST_BIN(m_pipeline), sink);
    GstElement *next = sink;
    for (int i = elements.size() - 1; i >= 0; --i) {
        gst_bin_add(GST_BIN(m_pipeline), elements.at(i));
        gst_element_link(elements.at(i), next);
        next = elements.at(i);
    }
    gst_pad_set_active(m_top, TRUE);
    GstPad *entry = gst_element_get_static_pad(next, elements.isEmpty() ? "sink" : "video_sink");
    if (!entry)
        entry = gst_element_get_static_pad(next, "sink");
    gst_pad_link(m_top, entry);
    gst_object_unref(entry);
    gst_element_set_state(m_pipeline, GST_STATE_PLAYING);

    gst_pad_push_event(m_top, gst_event_new_stream_start("bench"));
    GstCaps *caps = gst_caps_new_simple(
        "video/x-raw", "format", G_TYPE_STRING, "I420", "width", G_TYPE_INT, frameSize.width(),
        "height", G_TYPE_INT, frameSize.height(), "framerate", GST_TYPE_FRACTION, 25, 1, nullptr);
    gst_pad_push_event(m_top, gst_event_new_caps(caps));
    gst_caps_unref(caps);
    GstSegment segment;
    gst_segment_init(&segment, GST_FORMAT_TIME);
    gst_pad_push_event(m_top, gst_event_new_segment(&segment));
}

FrameChain::~FrameChain()
{
    gst_element_set_state(m_pipeline, GST_STATE_NULL);
    gst_object_unref(m_top);
    gst_object_unref(m_pipeline);
}

GstBuffer *FrameChain::makeFrame(const QByteArray &pixels)
{
    GstBuffer *frame = gst_buffer_new_allocate(nullptr, gsize(pixels.size()), nullptr);
    gst_buffer_fill(frame, 0, pixels.constData(), gsize(pixels.size()));
    GST_BUFFER_PTS(frame) = m_frames++ * 40 * GST_MSECOND;
    GST_BUFFER_DURATION(frame) = 40 * GST_MSECOND;
    return frame;
}

void FrameChain::push(GstBuffer *frame)
{
    if (gst_pad_push(m_top, frame) != GST_FLOW_OK)
        qFatal("The chain refuses a frame");
}

QByteArray texturedFrame(QSize size)
{
    QByteArray pixels(size.width() * size.height() * 3 / 2, Qt::Uninitialized);
    quint32 state = 1;
    for (char &byte : pixels) {
        state = state * 1664525 + 1013904223;
        byte = char(64 + (state >> 25));
    }
    return pixels;
}
