// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/display/OverlayScene.h"
#include "host/feed/ScreenSnipDatasourceFactory.h"
#include "host/feed/SystemValueDatasourceFactory.h"
#include "host/feed/TelemetryFile.h"
#include "host/feed/ValueFeed.h"

#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/CVideoOverlayControl.h>
#include <videooverlay/display/VideoOverlaySettings.h>
#include <videooverlay/osd/COsdImageDatasourceFactory.h>

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QSize>
#include <QStringList>

#include <memory>

namespace Velmar::VideoOverlay {
class CVideoOverlayElement;
class CVideoOverlayImage;
class CVideoOverlayManager;
class ElementParam;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

/// One overlay from its elements to the display: owns the scene, the library's objects over it and
/// the factories for what the elements show, and keeps the texts at the readings of a recorded run
/// and at the live values. Everything happens on the thread that made the session; only the scene
/// is read elsewhere.
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
    VideoOverlay::CVideoOverlayManager &manager() const;
    ValueFeed &feed();
    ScreenSnipDatasourceFactory &screenSnips();

    /// Replaces all elements, but not the watermark, by those of @p records. A system text is
    /// hidden until its first value.
    void load(const QList<VideoOverlay::ElementParam> &records);
    /// Loads the text boxes of the demonstration.
    void addTexts();

    /// Puts a picture on the grid, @p height cells high. False when the file cannot be read as one.
    bool addPicture(const QString &path, int row, int column, int height);
    /// Puts the watermark onto the lower right corner. False when the file cannot be read as one.
    bool setWatermark(const QString &path);

    /// The run that the texts follow from now on.
    void setTelemetry(TelemetryFile telemetry);
    /// When the video began: then DATE and TIME follow it, otherwise they come as other values do.
    void setStart(const QDateTime &start);
    /// The value names of the run that no text shows.
    QStringList unshownNames() const;
    /// Brings every text to its reading at @p timeMs of the run, backwards as well, the video's
    /// time to @p timeMs itself, and publishes the result on the scene.
    void advanceTo(qint64 timeMs);
    /// When the next text changes [ms]; the largest number when none will.
    qint64 nextChangeMs() const;

private:
    VideoOverlay::CVideoOverlayElement *create(VideoOverlay::ElementParam record);
    bool giveDatasource(VideoOverlay::CVideoOverlayElement *element,
                        VideoOverlay::ElementParam &record);
    void scaleTo(VideoOverlay::CVideoOverlayImage &image, int height);
    void show(const TelemetryFile::Reading &reading);
    void showTimes(qint64 timeMs);

    std::shared_ptr<OverlayScene> m_scene;
    VideoOverlay::CVideoOverlayCapabilities m_capabilities;
    VideoOverlay::CVideoOverlayControl m_control;
    ValueFeed m_feed;
    SystemValueDatasourceFactory m_systemValues;
    ScreenSnipDatasourceFactory m_screenSnips;
    VideoOverlay::COsdImageDatasourceFactory m_pictures;
    std::unique_ptr<VideoOverlay::CVideoOverlayManager> m_manager; ///< goes before all above
    TelemetryFile m_telemetry;
    QDateTime m_start;     ///< invalid: not known
    int m_nextReading = 0; ///< index of the first reading that is not shown yet
    qint64 m_timeMs = -1;
};

} // namespace Velmar::Host
