// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QSize>
#include <QVector>

#include <gst/gst.h>

/// A chain of pipeline elements that runs on the caller's thread: what is pushed in at the top has
/// left at the bottom when push() returns. So the CPU time of the chain can be told from everything
/// else.
class FrameChain
{
public:
    /// Takes I420 frames of @p frameSize; @p elements are linked in this order and owned from now
    /// on.
    FrameChain(QSize frameSize, const QVector<GstElement *> &elements);
    ~FrameChain();
    FrameChain(const FrameChain &) = delete;
    FrameChain &operator=(const FrameChain &) = delete;

    /// A new frame for push(), with pixels of its own. Costs a copy.
    GstBuffer *makeFrame(const QByteArray &pixels);
    void push(GstBuffer *frame);

private:
    GstElement *m_pipeline;
    GstPad *m_top;
    quint64 m_frames = 0;
};

/// One I420 frame with a picture that no part of is plain.
QByteArray texturedFrame(QSize size);
