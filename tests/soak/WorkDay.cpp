// SPDX-License-Identifier: Apache-2.0
#include "tests/soak/WorkDay.h"

#include "host/burn/FrameBurner.h"
#include "host/feed/SystemValues.h"
#include "host/platform/CatalogStore.h"
#include "host/platform/Directories.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "host/profiles/FirstStart.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/elements/CVideoOverlayImage.h>
#include <videooverlay/elements/CVideoOverlayText.h>
#include <videooverlay/elements/ElementParam.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFile>

#include <chrono>
#include <cmath>
#include <vector>

namespace Velmar::Soak {

using namespace Host;
using namespace VideoOverlay;

namespace {

constexpr QSize FullSize {1920, 1080};
constexpr QSize SmallSize {1280, 720};
constexpr int ValuesPerReading = 20;
constexpr qint64 ReadingMs = 200;
constexpr std::chrono::milliseconds FrameInterval {40};

const QString dataDirectory = QStringLiteral(DATA_DIRECTORY);

/// Another one for every reading, as of a camera that moves.
QVariant readingOf(const SystemValue &value, qint64 ms)
{
    switch (value.quantity) {
    case SystemValue::Quantity::Date:
    case SystemValue::Quantity::Time:
        return QVariant::fromValue(qint64(1773000000000) + ms);
    case SystemValue::Quantity::ElapsedTime:
        return QVariant::fromValue(ms);
    case SystemValue::Quantity::Text:
        return QStringLiteral("reading %1").arg(ms);
    default:
        return 50.0 + 49.0 * std::sin(double(ms) / 7000.0);
    }
}

} // namespace

WorkDay::WorkDay()
{
    const QDir data(dataDirectory);
    QDir().mkpath(settingsDirectory());
    Directories::setSettingsDirectory(settingsDirectory());
    Directories::setReadonlyConfigDirectory(data.path());
    CATManagement::CatalogStore::instance().setDirectory(data.filePath(QStringLiteral("catalogs")));
    Translation::TranslationStore::instance().setDirectory(
        data.filePath(QStringLiteral("translations")));
    Shared::LocaleSettings::setLocale(QLocale(QStringLiteral("en_GB")));
    Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("en_GB")));

    QString error;
    check(prepareProfiles(data.filePath(QStringLiteral("profiles")), &error), "prepare profiles");
    // Two catalogs, so that captions and inspection texts change with the project.
    for (const char *catalog : {"EN13508-2-ENG-GB", "EN13508-2-DEU-DE"}) {
        const QString path = m_root.filePath(QString::fromLatin1(catalog));
        check(ProjectSession().createDemo(path,
                                          data.filePath(QStringLiteral("demo/project/demo.json")),
                                          QString::fromLatin1(catalog)),
              "make a project");
        m_demoProjects.append(path);
    }
    m_session = std::make_unique<OverlaySession>(FullSize);
    m_session->manager().setVideoOverlayEnabled(true);
    check(m_session->openProfiles(QString(), &error), "open the profiles");
    m_scene = m_session->scene();
    m_streaming = std::thread(&WorkDay::burnFrames, this);
}

WorkDay::~WorkDay()
{
    m_isOver = true;
    m_streaming.join();
}

QString WorkDay::settingsDirectory() const
{
    return m_root.filePath(QStringLiteral("settings"));
}

void WorkDay::check(bool done, const char *what)
{
    if (!done)
        qFatal("cannot %s", what);
}

void WorkDay::settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

void WorkDay::doRound(int readings)
{
    VideoOverlayProfilesModel &profiles = *m_session->profiles();
    const int first = profiles.currentProfileIndex();
    const int count = profiles.rowCount();
    for (int i = 1; i <= count; ++i) {
        check(profiles.setCurrentProfileByIndex((first + i) % count), "select a profile");
        ++m_switches;
        workInProject(readings);
    }
    changeDisplay();
}

void WorkDay::workInProject(int readings)
{
    // Each in a file of its own, as in the folder of an operator.
    const QString path = m_root.filePath(QStringLiteral("project"));
    check(QFile::copy(m_demoProjects.at(m_projects % m_demoProjects.size()), path),
          "copy a project");
    ProjectSession &project = m_session->project();
    check(project.open(path), "open a project");
    ++m_projects;
    check(project.startInspection(project.inspections().at(0)), "start an inspection");
    takeReadings(readings / 2);
    observe();
    edit();
    takeReadings(readings - readings / 2);
    project.close();
    QFile::remove(path);
    settle();
}

void WorkDay::takeReadings(int readings)
{
    const QVector<SystemValue> &values = SystemValues::all();
    for (int i = 0; i < readings; ++i) {
        m_nowMs += ReadingMs;
        for (int j = 0; j < ValuesPerReading; ++j) {
            const SystemValue &value = values.at(j % values.size());
            m_session->feed().setValue(value.name, readingOf(value, m_nowMs + j));
            ++m_values;
        }
        m_session->advanceTo(m_nowMs);
        QCoreApplication::processEvents();
    }
}

void WorkDay::observe()
{
    ProjectSession::Observation observation;
    observation.code = QStringLiteral("BAB");
    observation.text = QStringLiteral("along the pipe");
    observation.remark = QStringLiteral("at %1").arg(m_nowMs);
    check(m_session->project().createObservation(observation) != nullptr, "make an observation");
    settle();
}

void WorkDay::edit()
{
    CVideoOverlayManager &manager = m_session->manager();
    VideoOverlayElementListModel &list = *manager.getElementListModel();
    const QString picture = dataDirectory + QStringLiteral("/demo/picture.png");
    auto *text = qobject_cast<CVideoOverlayText *>(
        list.createStaticText(QStringLiteral("Manhole 4711")).value<QObject *>());
    auto *image = list.createImage(picture).value<CVideoOverlayImage *>();
    check(text && image, "add elements");
    m_elements += 2;
    text->setTextColor(Qt::yellow);
    text->setEnabled(true);
    text->setVisible(true);
    text->setRow(12);
    image->setEnabled(true);
    image->setVisible(true);
    image->setScaleFactor(0.5);
    settle();
    QString error;
    check(m_session->setWatermark(dataDirectory + QStringLiteral("/demo/watermark.png"), &error),
          "show a watermark");
    settle();
    manager.hideWatermark();
    // One by hand, one as it was never there.
    check(list.removeAlways(manager.rowIndexByID(text->id())), "remove an element");
    m_session->profiles()->revertCurrentProfile();
    settle();
}

void WorkDay::changeDisplay()
{
    m_scene->stop();
    settle();
    m_scene->start();
    m_session->manager().onSettingsChanged(); // nothing is sent again by itself
    settle();
    m_session->resize(SmallSize);
    settle();
    m_session->resize(FullSize);
    settle();
    ++m_displays;
}

/// What a streaming thread does with the overlay.
void WorkDay::burnFrames()
{
    std::vector<std::uint8_t> pixels(std::size_t(FullSize.width()) * FullSize.height() * 3 / 2);
    PlanarFrame frame;
    frame.width = FullSize.width();
    frame.height = FullSize.height();
    const std::size_t luma = std::size_t(frame.width) * frame.height;
    frame.planes[0] = pixels.data();
    frame.planes[1] = pixels.data() + luma;
    frame.planes[2] = pixels.data() + luma * 5 / 4;
    frame.strides[0] = frame.width;
    frame.strides[1] = frame.strides[2] = frame.width / 2;
    FrameBurner burner;
    while (!m_isOver) {
        burner.burn(frame, *m_scene->snapshot());
        ++m_frames;
        std::this_thread::sleep_for(FrameInterval);
    }
}

} // namespace Velmar::Soak
