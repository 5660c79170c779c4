// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/display/OverlayScene.h"
#include "host/feed/TelemetryFile.h"

#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/CVideoOverlayControl.h>
#include <videooverlay/display/VideoOverlaySettings.h>

#include <QHash>
#include <QObject>
#include <QSize>
#include <QStringList>
#include <QVector>

#include <memory>
#include <vector>

namespace Velmar::VideoOverlay {
class CVideoOverlayElement;
class CVideoOverlayImage;
class CVideoOverlayText;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

/// One overlay from its elements to the display: owns the scene and the library's objects over it,
/// places the elements on the grid and keeps their texts at the readings of a recorded run.
/// Everything happens on the thread that made the session; only the scene is read elsewhere.
class OverlaySession : public QObject
{
    Q_OBJECT
public:
    /// @p imageSize is the video picture's [px].
    explicit OverlaySession(QSize imageSize, QObject *parent = nullptr);
    ~OverlaySession() override;

    /// Shared with the streaming threads that read it; they may keep it beyond the session.
    std::shared_ptr<OverlayScene> scene() const;
    const VideoOverlay::VideoOverlaySettings &settings() const;

    /// Makes the text boxes of the demonstration.
    void addTexts();

    /// Puts a picture on the grid, @p height cells high. False when the file cannot be read as one.
    bool addPicture(const QString &path, int row, int column, int height);
    /// Puts the watermark onto the lower right corner. False when the file cannot be read as one.
    bool setWatermark(const QString &path);

    /// The run that the texts follow from now on.
    void setTelemetry(TelemetryFile telemetry);
    /// The value names of the run that no text shows.
    QStringList unshownNames() const;
    /// Brings every text to its reading at @p timeMs of the run, backwards as well, the video's
    /// time to @p timeMs itself, and publishes the result on the scene.
    void advanceTo(qint64 timeMs);
    /// When the next text changes [ms]; the largest number when none will.
    qint64 nextChangeMs() const;

private:
    void addText(const QString &text, int row, int column, QColor background, QColor color);
    void addValue(const QString &name, int row, int column);
    /// Wires an element as every element on this display is, and gives it the next id.
    void adopt(VideoOverlay::CVideoOverlayElement &element);
    void place(VideoOverlay::CVideoOverlayElement &element);
    bool loadPicture(VideoOverlay::CVideoOverlayImage &image, const QString &path, int height);
    void show(const TelemetryFile::Reading &reading);
    void show(const QString &name, const QVariant &value);

    std::shared_ptr<OverlayScene> m_scene;
    VideoOverlay::CVideoOverlayCapabilities m_capabilities;
    VideoOverlay::CVideoOverlayControl m_control;
    std::unique_ptr<VideoOverlay::VideoOverlaySettings> m_settings;
    std::vector<std::unique_ptr<VideoOverlay::CVideoOverlayElement>> m_elements;
    QHash<QString, VideoOverlay::CVideoOverlayText *> m_values; ///< by value name; not owned
    int m_lastId = 0;
    TelemetryFile m_telemetry;
    int m_nextReading = 0; ///< index of the first reading that is not shown yet
    qint64 m_timeMs = -1;
};

} // namespace Velmar::Host
