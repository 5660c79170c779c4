// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>

#include <gst/gst.h>

namespace Velmar::Host {

/// The picture in @p frame, raw video of @p caps, in the colours a player would show. Null where
/// the format is unknown.
QImage frameImage(GstBuffer *frame, GstCaps *caps);

} // namespace Velmar::Host
