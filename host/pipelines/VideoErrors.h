// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include <gst/gst.h>

namespace Velmar::Host {

/// Makes GStreamer usable. On failure @p error says what is wrong, in one line.
bool initialiseVideo(QString *error);

/// "The GStreamer element x is not installed; the package y has it."
QString missingElementText(const QByteArray &factory);

/// A new element, or null and a text in @p error. The reference floats, as a bin wants it.
GstElement *makeElement(const char *factory, QString *error);

/// Stops a pipeline for good. A decoder that is building itself in another thread meanwhile may add
/// parts that the first order does not reach: it is repeated until all have stopped.
void takeDown(GstElement *pipeline);

/// Whether a message of type error says that the output cannot be made or written, so that nothing
/// more can come out of the pipeline. Otherwise what came so far can still be brought to its end.
bool isOutputError(GstMessage *message);

/// What a message of type error means for whoever records @p source into @p output, in one line.
/// @p missing describes the plugins that were asked for in vain.
QString errorText(GstMessage *message, const QString &source, const QString &output,
                  const QStringList &missing);

} // namespace Velmar::Host
