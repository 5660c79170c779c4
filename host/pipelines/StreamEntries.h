// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/pipelines/GstRef.h"

#include <gst/gst.h>

#include <mutex>
#include <vector>

namespace Velmar::Host {

/// The pads at which the streams of a source come into a pipeline: where they can be ended when the
/// source does not do it. Callable from every thread.
class StreamEntries
{
public:
    void add(GstPad *entry); ///< takes a reference of its own

    /// Ends every stream that has begun and is not at its end, except where a frame is just
    /// passing: it may wait for the calling thread, which therefore must not wait for the frame. To
    /// be called again until the end has arrived.
    void end();

private:
    std::mutex m_mutex; ///< guards what follows
    std::vector<ObjectRef<GstPad>> m_entries;
};

} // namespace Velmar::Host
