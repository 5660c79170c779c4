// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <gst/gst.h>

namespace Velmar::Host {

enum class Container {
    Matroska,
    Mp4,
};

/// The container that the file name of @p path asks for; false, and a text in @p error, for a name
/// that asks for none.
bool containerFromPath(const QString &path, Container *container, QString *error);

/// A video encoder and what must follow it in front of the container.
struct VideoEncoder
{
    GstElement *encoder = nullptr; ///< floating, until a bin takes it
    GstElement *parser = nullptr;  ///< floating; null: the encoder's output goes in directly
    QByteArray name;
};

/// Makes the encoder called @p name, or for an empty name the best installed one: H.264 in
/// hardware, H.264 in software, VP8. @p bitrateKbit 0 means constant quality, at which small
/// letters stay sharp. False, and a text in @p error, when there is none or the container cannot
/// hold its video.
bool chooseEncoder(const QByteArray &name, Container container, int bitrateKbit,
                   VideoEncoder *choice, QString *error);

/// The name of the best installed audio encoder for @p container; empty: there is none.
QByteArray audioEncoderFor(Container container);

} // namespace Velmar::Host
