// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/StreamEntries.h"

namespace Velmar::Host {

namespace {

bool hasBegun(GstPad *pad)
{
    return MiniObjectRef<GstEvent>(gst_pad_get_sticky_event(pad, GST_EVENT_STREAM_START, 0))
        != nullptr;
}

} // namespace

void StreamEntries::add(GstPad *entry)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_entries.emplace_back(GST_PAD(gst_object_ref(entry)));
}

void StreamEntries::end()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const ObjectRef<GstPad> &entry : m_entries) {
        if (!g_rec_mutex_trylock(GST_PAD_GET_STREAM_LOCK(entry.get())))
            continue;
        if (hasBegun(entry.get()) && !GST_PAD_IS_EOS(entry.get()))
            gst_pad_send_event(entry.get(), gst_event_new_eos());
        g_rec_mutex_unlock(GST_PAD_GET_STREAM_LOCK(entry.get()));
    }
}

} // namespace Velmar::Host
