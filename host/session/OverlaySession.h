// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/display/OverlayScene.h"
#include "host/feed/ScreenSnipDatasourceFactory.h"
#include "host/feed/SystemValueDatasourceFactory.h"
#include "host/feed/TelemetryFile.h"
#include "host/feed/ValueFeed.h"
#include "host/inspection/ObservationColumns.h"
#include "host/inspection/ProjectSession.h"

#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/CVideoOverlayControl.h>
#include <videooverlay/display/VideoOverlaySettings.h>
#include <videooverlay/osd/COsdImageDatasourceFactory.h>

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QStringList>
#include <QVector>

#include <memory>

namespace Velmar::VideoOverlay {
class CVideoOverlayElement;
class CVideoOverlayImage;
class COsdDomainDatasourceFactory;
class CVideoOverlayManager;
class ElementParam;
class VideoOverlayProfilesModel;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

/// One overlay from its profile to the display: owns the scene, the library's objects over it, the
/// factories for what the elements show and the project that their inspection texts come from, and
/// keeps the texts at the readings of a recorded run and at the live values. Everything happens on
/// the thread that made the session; only the scene is read elsewhere. One at a time, because the
/// library's builder is one.
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

    /// What timeouts of elements are measured by.
    enum class Clock {
        Wall,  ///< their own timers
        Video, ///< the time of advanceTo(): a recording may run faster or slower than the clock
    };
    void setClock(Clock clock);

    /// Another picture [px]: the grid is fitted anew and all elements are laid out again. What
    /// addPicture() and setWatermark() put there keeps its height in cells.
    void resize(QSize imageSize);

    /// From now on the elements are those of the current profile, which is the one called
    /// @p profile (or has that path; the stored start-up profile for an empty text) and then
    /// whatever profiles() selects. False, and a text in @p error, when there is no such profile or
    /// it cannot be read; one to start with is loaded as far as it can be read.
    bool openProfiles(const QString &profile, QString *error);
    /// Null before openProfiles().
    VideoOverlay::VideoOverlayProfilesModel *profiles() const;

    /// The project whose records the inspection texts show.
    ProjectSession &project();
    /// Whether the readings of the run that name an observation create one in the active
    /// inspection, when their time comes for the first time.
    void setObservationsFromRun(bool create);

    /// Replaces all elements, but not the watermark, by those of @p records. A system text is
    /// hidden until its first value.
    void load(const QList<VideoOverlay::ElementParam> &records);
    /// Loads the text boxes of the demonstration, which need neither profile nor project.
    void addTexts();

    /// Puts a picture on the grid, @p height cells high. False, and a text in @p error, when the
    /// file cannot be read as one or the library cannot keep its copy.
    bool addPicture(const QString &path, int row, int column, int height, QString *error = nullptr);
    /// Puts the watermark onto the lower right corner. False, and a text in @p error, when the file
    /// cannot be read as a picture.
    bool setWatermark(const QString &path, QString *error = nullptr);

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
    struct PlacedPicture
    {
        QPointer<VideoOverlay::CVideoOverlayImage> image;
        int height; ///< [cells]
    };

    VideoOverlay::CVideoOverlayElement *create(VideoOverlay::ElementParam record);
    bool giveDatasource(VideoOverlay::CVideoOverlayElement *element,
                        VideoOverlay::ElementParam &record);
    void scaleTo(VideoOverlay::CVideoOverlayImage &image, int height);
    void placeWatermark();
    void show(const TelemetryFile::Reading &reading);
    void showTimes(qint64 timeMs);
    void observe(qint64 timeMs);
    void expire(qint64 timeMs);
    void onProfileLoaded();
    void onInspectionChanged(const Database::CDomainObjectPointer &inspection);
    void onObservationCreated();
    void announceInspectionAgain();

    std::shared_ptr<OverlayScene> m_scene;
    VideoOverlay::CVideoOverlayCapabilities m_capabilities;
    VideoOverlay::CVideoOverlayControl m_control;
    ValueFeed m_feed;
    SystemValueDatasourceFactory m_systemValues;
    ScreenSnipDatasourceFactory m_screenSnips;
    VideoOverlay::COsdImageDatasourceFactory m_pictures;
    std::unique_ptr<VideoOverlay::COsdDomainDatasourceFactory> m_inspectionTexts;
    std::unique_ptr<VideoOverlay::CVideoOverlayManager> m_manager; ///< goes before all above
    std::unique_ptr<VideoOverlay::VideoOverlayProfilesModel> m_profiles;
    QVector<PlacedPicture> m_placedPictures; ///< by addPicture()
    ProjectSession m_project;
    bool m_isAnnouncingAgain = false;
    Clock m_clock = Clock::Wall;
    bool m_observationsFromRun = false;
    ObservationColumns m_observation; ///< read so far of the one at m_observationMs
    qint64 m_observationMs = -1;
    qint64 m_observedUntilMs = -1; ///< observations up to here were created
    QHash<VideoOverlay::CVideoOverlayElement *, qint64> m_expiries; ///< [ms] of what has a timeout
    TelemetryFile m_telemetry;
    QDateTime m_start;     ///< invalid: not known
    int m_nextReading = 0; ///< index of the first reading that is not shown yet
    qint64 m_timeMs = -1;
};

} // namespace Velmar::Host
