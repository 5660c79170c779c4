// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/OverlaySession.h"
#include "host/profiles/ProfileStamps.h"

#include <QObject>
#include <QSize>
#include <QVariant>

#include <memory>

QT_BEGIN_NAMESPACE
class QQuickItem;
QT_END_NAMESPACE

namespace Velmar::VideoOverlay {
class CVideoOverlayManager;
class VideoOverlayProfilesModel;
} // namespace Velmar::VideoOverlay

namespace Velmar::Host {

/// The overlay that the screens show and edit: manager, models and scene, the profile that is
/// loaded into them, and the values that the texts show.
class LiveOverlay : public QObject
{
    Q_OBJECT
public:
    /// Reads the profiles of the settings directory, after it put the delivered ones there if it
    /// has none. @p pictureSize is the video picture's [px] until one comes.
    explicit LiveOverlay(QSize pictureSize, QObject *parent = nullptr);
    ~LiveOverlay() override;

    std::shared_ptr<OverlayScene> scene() const { return m_session->scene(); }
    VideoOverlay::CVideoOverlayManager &manager() const { return m_session->manager(); }
    VideoOverlay::VideoOverlayProfilesModel &profiles() const { return *m_session->profiles(); }
    ProjectSession &project() { return m_session->project(); }
    QString startupError() const { return m_startupError; }    ///< empty: a profile is loaded
    ProfileStamps &profileStamps() { return m_profileStamps; } ///< of what was read or saved here

    QSize pictureSize() const { return m_pictureSize; }
    /// Lays the overlay out for pictures of another size.
    void setPictureSize(QSize size);

    /// The run that the values follow.
    void setTelemetry(TelemetryFile telemetry);
    const TelemetryFile &telemetry() const { return m_telemetry; }
    /// Brings the values to their readings at @p timeMs of the run.
    void advanceTo(qint64 timeMs);
    void setValue(const QString &name, const QVariant &value);
    QVariant value(const QString &name) const; ///< the last one; invalid when there was none

    /// Makes an OverlayView show this overlay.
    Q_INVOKABLE void showIn(QQuickItem *view) const;

Q_SIGNALS:
    void profileLoaded(); ///< all elements are new
    void pictureSizeChanged();
    void valuesChanged();

private:
    void openProfiles();

    QSize m_pictureSize;
    TelemetryFile m_telemetry;
    QString m_startupError;
    ProfileStamps m_profileStamps;
    qint64 m_clockSecond = -1; ///< that the texts show
    std::unique_ptr<OverlaySession> m_session;
};

} // namespace Velmar::Host
