// SPDX-License-Identifier: Apache-2.0
#include "host/qml/LiveOverlay.h"

#include "host/display/GridFit.h"
#include "host/platform/CatalogStore.h"
#include "host/qml/OverlayView.h"
#include "platform/directories/CApplicationDirectories.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/osd/COsdBuilder.h>
#include <videooverlay/osd/COsdDomainDatasource.h>
#include <videooverlay/osd/COsdDomainDatasourceFactory.h>
#include <videooverlay/profiles/ProfilesManager.h>

#include <QDateTime>
#include <QDir>

namespace Velmar::Host {

using namespace VideoOverlay;

namespace {

/// What is delivered is put where the operator's own profiles are, once.
void provideProfiles()
{
    const QDir target(ProfilesManager::profilesDirectory());
    if (target.exists() && !target.entryList({QStringLiteral("*.xml")}, QDir::Files).isEmpty())
        return;
    QDir().mkpath(target.path());
    const QDir delivered(CApplicationDirectories::readonlyConfigDirectory()
                         + QStringLiteral("/profiles"));
    const QStringList names = delivered.entryList({QStringLiteral("*.xml")}, QDir::Files);
    for (const QString &name : names) {
        const QString copy = target.filePath(name);
        if (QFile::copy(delivered.filePath(name), copy))
            QFile::setPermissions(copy, QFile::permissions(copy) | QFile::WriteOwner);
    }
}

} // namespace

LiveOverlay::LiveOverlay(QSize pictureSize, QObject *parent)
    : QObject(parent)
    , m_pictureSize(pictureSize)
    , m_systemValues(CATManagement::CatalogStore::instance())
    , m_session(std::make_unique<OverlaySession>(pictureSize))
{
    provideProfiles();
    manager().setVideoOverlayEnabled(true);
    m_profiles = std::make_unique<VideoOverlayProfilesModel>(manager());
    manager().setProfilesModel(m_profiles.get());

    COsdBuilder *builder
        = COsdBuilder::initialize(CATManagement::CatalogStore::instance(), manager());
    m_domain = std::make_unique<COsdDomainDatasourceFactory>(COsdDomainDatasource::captionResolver);
    builder->registerFactory(&m_systemValues); // first: the next but one would take its texts
    builder->registerFactory(&m_session->screenSnips());
    builder->registerFactory(m_domain.get());
    builder->registerFactory(&m_pictures);
    connect(m_profiles.get(), &VideoOverlayProfilesModel::currentProfileChanged, builder,
            &COsdBuilder::load);
    connect(builder, &COsdBuilder::profileLoaded, &manager(), &CVideoOverlayManager::profileLoaded);
    connect(builder, &COsdBuilder::profileLoaded, m_profiles.get(),
            &VideoOverlayProfilesModel::profileLoaded);
    connect(builder, &COsdBuilder::profileLoaded, this, &LiveOverlay::onLoaded);
}

LiveOverlay::~LiveOverlay() = default;

void LiveOverlay::selectStartupProfile()
{
    m_profiles->selectStartupProfile();
}

void LiveOverlay::setPictureSize(QSize size)
{
    if (size.isEmpty() || size == m_pictureSize)
        return;
    m_pictureSize = size;
    scene()->capabilities().setImageSize(size);
    fitGrid(*manager().getSettings());
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

void LiveOverlay::onLoaded()
{
    m_session->feed().replay(); // the new texts have not seen what came before
    manager().resetChanges();
    scene()->flush();
    Q_EMIT profileLoaded();
}

} // namespace Velmar::Host
