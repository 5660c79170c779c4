// SPDX-License-Identifier: Apache-2.0
#include "host/qml/LiveOverlay.h"

#include "host/profiles/FirstStart.h"
#include "host/profiles/ProfilesLock.h"
#include "host/qml/OverlayView.h"
#include "platform/directories/CApplicationDirectories.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/osd/COsdBuilder.h>
#include <videooverlay/profiles/ProfilesManager.h>

#include <QDateTime>
#include <QDir>

namespace Velmar::Host {

using namespace VideoOverlay;

LiveOverlay::LiveOverlay(QSize pictureSize, QObject *parent)
    : QObject(parent)
    , m_pictureSize(pictureSize)
    , m_session(std::make_unique<OverlaySession>(pictureSize))
{
    manager().setVideoOverlayEnabled(true);
    if (prepareProfiles(QDir(CApplicationDirectories::readonlyConfigDirectory())
                            .filePath(QStringLiteral("profiles")),
                        &m_startupError))
        openProfiles();
    // After the session's own handling of it.
    connect(COsdBuilder::instance(), &COsdBuilder::profileLoaded, this,
            &LiveOverlay::profileLoaded);
}

LiveOverlay::~LiveOverlay() = default;

void LiveOverlay::openProfiles()
{
    ProfilesLock lock; // what is noted must be what is read
    if (!lock.take(&m_startupError))
        return;
    m_session->openProfiles(QString(), &m_startupError);
    for (int row = 0; row < profiles().rowCount(); ++row)
        m_profileStamps.note(profiles().data(profiles().index(row)).value<Profile *>()->path());
}

void LiveOverlay::setPictureSize(QSize size)
{
    if (size.isEmpty() || size == m_pictureSize)
        return;
    m_pictureSize = size;
    m_session->resize(size);
    Q_EMIT pictureSizeChanged();
}

void LiveOverlay::setTelemetry(TelemetryFile telemetry)
{
    m_telemetry = telemetry;
    m_session->setTelemetry(std::move(telemetry));
}

void LiveOverlay::advanceTo(qint64 timeMs)
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (now / 1000 != m_clockSecond) { // the texts show whole seconds
        m_clockSecond = now / 1000;
        m_session->feed().setValue(ElementParam::NAME_DATE, QVariant::fromValue(now));
        m_session->feed().setValue(ElementParam::NAME_TIME, QVariant::fromValue(now));
    }
    m_session->advanceTo(timeMs);
    Q_EMIT valuesChanged();
}

void LiveOverlay::setValue(const QString &name, const QVariant &value)
{
    m_session->feed().setValue(name, value);
}

QVariant LiveOverlay::value(const QString &name) const
{
    return m_session->feed().value(name);
}

void LiveOverlay::showIn(QQuickItem *view) const
{
    if (auto *overlay = qobject_cast<OverlayView *>(view))
        overlay->setScene(scene());
}

} // namespace Velmar::Host
