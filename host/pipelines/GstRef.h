// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gst/gst.h>

#include <memory>

namespace Velmar::Host {

struct GstObjectUnref
{
    void operator()(gpointer object) const { gst_object_unref(object); }
};

struct GstMiniObjectUnref
{
    template <typename T> void operator()(T *object) const
    {
        gst_mini_object_unref(GST_MINI_OBJECT_CAST(object));
    }
};

struct GFree
{
    void operator()(gpointer memory) const { g_free(memory); }
};

struct GErrorFree
{
    void operator()(GError *error) const { g_error_free(error); }
};

/// Owns one reference to an element, pad, bus or factory.
template <typename T> using ObjectRef = std::unique_ptr<T, GstObjectUnref>;

/// Owns one reference to caps, a buffer, an event, a message or a sample.
template <typename T> using MiniObjectRef = std::unique_ptr<T, GstMiniObjectUnref>;

using GStringRef = std::unique_ptr<gchar, GFree>;
using GErrorRef = std::unique_ptr<GError, GErrorFree>;

/// Keeps a message alive while it travels between threads.
inline std::shared_ptr<GstMessage> shareMessage(GstMessage *message)
{
    return {gst_message_ref(message), [](GstMessage *held) { gst_message_unref(held); }};
}

} // namespace Velmar::Host
