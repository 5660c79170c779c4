// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <QVector>

/// What a player learns of a file before it plays it.
struct MediaFacts
{
    QString problem;   ///< empty: the file can be played
    QString videoType; ///< media type, as "video/x-h264"
    QString audioType; ///< media type; empty: no audio
    QSize size;        ///< [px]
    double seconds = 0.0;
    bool seekable = false;
};

struct DecodedFrame
{
    qint64 timeNs = 0;
    QImage image; ///< RGB888
};

MediaFacts readFacts(const QString &path);

/// All frames of the video in @p path; empty where it cannot be decoded.
QVector<DecodedFrame> readFrames(const QString &path);

/// The frame that is on the screen at @p timeNs, found as a player does that jumps there; with a
/// null image where that is impossible.
DecodedFrame readFrameAt(const QString &path, qint64 timeNs);

/// Runs a pipeline in gst-launch syntax to its end; false on an error.
bool runPipeline(const QString &description);
