// SPDX-License-Identifier: Apache-2.0
#include "host/screens/LiveOverlay.h"

#include "host/feed/SystemValues.h"
#include "host/profiles/FirstStart.h"
#include "host/profiles/ProfilesLock.h"
#include "host/screens/OverlayView.h"
#include "host/session/LiveValue.h"
#include "platform/directories/CApplicationDirectories.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/osd/COsdBuilder.h>
#include <videooverlay/profiles/ProfilesManager.h>

#include <QDateTime>
#include <QDir>

#include <algorithm>

namespace Velmar::Host {

using namespace VideoOverlay;

namespace {

bool isFreeText(const CVideoOverlayElement &element)
{
    return element.type() == CVideoOverlayElement::FreeText;
}

bool isScreenSnip(const CVideoOverlayElement &element)
{
    return element.getParamObject().value(QStringLiteral("screenSnip")).toBool();
}

bool hasEnabled(CVideoOverlayManager &manager, bool (*isWanted)(const CVideoOverlayElement &))
{
    const QList<CVideoOverlayElement *> elements = manager.getElementList();
    return std::any_of(elements.cbegin(), elements.cend(),
                       [isWanted](const CVideoOverlayElement *element) {
                           return element->enabled() && isWanted(*element);
                       });
}

} // namespace

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
    connect(this, &LiveOverlay::profileLoaded, this, &LiveOverlay::followLiveElements);
    followLiveElements();
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
        for (const QString &name : {ElementParam::NAME_DATE, ElementParam::NAME_TIME}) {
            if (!m_given.contains(name) && !m_telemetry.names().contains(name))
                m_session->feed().setValue(name, QVariant::fromValue(now));
        }
    }
    m_session->advanceTo(timeMs);
    Q_EMIT valuesChanged();
}

void LiveOverlay::setValue(const QString &name, const QVariant &value)
{
    if (!value.isNull())
        m_given.insert(name);
    QString error;
    if (!showLiveValue(*m_session, name, value, &error))
        Q_EMIT problemFound(error);
    if (name == SystemValues::screenSnip().name)
        Q_EMIT snipChanged();
}

void LiveOverlay::showSnip(const QImage &picture)
{
    m_session->screenSnips().setPicture(picture);
    Q_EMIT snipChanged();
}

void LiveOverlay::removeSnip()
{
    showSnip(QImage());
}

void LiveOverlay::showFreeText(const QString &text)
{
    // An empty one takes it away; a null one would be no new value.
    setValue(ElementParam::NAME_OSD_FREE_TEXT_BOX, text.isEmpty() ? QStringLiteral("") : text);
}

bool LiveOverlay::hasFreeText() const
{
    return hasEnabled(manager(), isFreeText);
}

bool LiveOverlay::hasScreenSnip() const
{
    return hasEnabled(manager(), isScreenSnip);
}

void LiveOverlay::followLiveElements()
{
    const QList<CVideoOverlayElement *> elements = manager().getElementList();
    for (const CVideoOverlayElement *element : elements) {
        if (isFreeText(*element) || isScreenSnip(*element))
            connect(element, &CVideoOverlayElement::enabledChanged, this,
                    &LiveOverlay::liveElementsChanged);
    }
    Q_EMIT liveElementsChanged();
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
