// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/FrameImage.h"

#include <gst/video/video.h>

#include <memory>

namespace Velmar::Host {

namespace {

struct ConverterFree
{
    void operator()(GstVideoConverter *converter) const { gst_video_converter_free(converter); }
};

struct BufferUnref
{
    void operator()(GstBuffer *buffer) const { gst_buffer_unref(buffer); }
};

/// A frame in memory for as long as this lives.
class MappedFrame
{
public:
    MappedFrame(GstVideoInfo *info, GstBuffer *buffer, GstMapFlags flags)
        : m_mapped(gst_video_frame_map(&m_frame, info, buffer, flags))
    {
    }
    ~MappedFrame()
    {
        if (m_mapped)
            gst_video_frame_unmap(&m_frame);
    }
    Q_DISABLE_COPY(MappedFrame)

    bool isMapped() const { return m_mapped; }
    GstVideoFrame *get() { return &m_frame; }

private:
    GstVideoFrame m_frame {};
    bool m_mapped;
};

} // namespace

QImage frameImage(GstBuffer *frame, GstCaps *caps)
{
    GstVideoInfo from;
    if (!gst_video_info_from_caps(&from, caps))
        return {};
    GstVideoInfo to;
    gst_video_info_set_format(&to, GST_VIDEO_FORMAT_RGB, GST_VIDEO_INFO_WIDTH(&from),
                              GST_VIDEO_INFO_HEIGHT(&from));
    // The converter refuses two clocks, although it is a single picture.
    GST_VIDEO_INFO_FPS_N(&to) = GST_VIDEO_INFO_FPS_N(&from);
    GST_VIDEO_INFO_FPS_D(&to) = GST_VIDEO_INFO_FPS_D(&from);
    const std::unique_ptr<GstBuffer, BufferUnref> buffer(
        gst_buffer_new_allocate(nullptr, GST_VIDEO_INFO_SIZE(&to), nullptr));
    const std::unique_ptr<GstVideoConverter, ConverterFree> converter(
        gst_video_converter_new(&from, &to, nullptr));
    if (!converter)
        return {};
    {
        MappedFrame source(&from, frame, GST_MAP_READ);
        MappedFrame target(&to, buffer.get(), GST_MAP_WRITE);
        if (!source.isMapped() || !target.isMapped())
            return {};
        gst_video_converter_frame(converter.get(), source.get(), target.get());
    }
    MappedFrame result(&to, buffer.get(), GST_MAP_READ);
    if (!result.isMapped())
        return {};
    const QImage view(static_cast<const uchar *>(GST_VIDEO_FRAME_PLANE_DATA(result.get(), 0)),
                      GST_VIDEO_INFO_WIDTH(&to), GST_VIDEO_INFO_HEIGHT(&to),
                      GST_VIDEO_FRAME_PLANE_STRIDE(result.get(), 0), QImage::Format_RGB888);
    return view.copy();
}

} // namespace Velmar::Host
