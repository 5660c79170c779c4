// SPDX-License-Identifier: Apache-2.0
#include "host/screens/Screenshots.h"

#include "host/display/PngFile.h"
#include "host/screens/EditorController.h"
#include "host/screens/LiveApplication.h"
#include "host/screens/LiveOverlay.h"
#include "host/screens/Messages.h"
#include "host/screens/VideoController.h"
#include "platform/directories/CApplicationDirectories.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/elements/ElementParam.h>

#include <QDir>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>

namespace Velmar::Host {

namespace {

constexpr int FirstMs = 6000; ///< the camera of the demonstration run is on its way by then
constexpr int SettleMs = 1500;

} // namespace

Screenshots::Screenshots(LiveApplication &application, QString directory, QObject *parent)
    : QObject(parent)
    , m_application(application)
    , m_directory(std::move(directory))
{
    m_settle.setSingleShot(true);
    connect(&m_settle, &QTimer::timeout, this, &Screenshots::shoot);
    addSteps();
}

QObject *Screenshots::find(const char *objectName) const
{
    return m_application.window()->findChild<QObject *>(QString::fromLatin1(objectName));
}

void Screenshots::click(const char *objectName) const
{
    if (QObject *button = find(objectName))
        QMetaObject::invokeMethod(button, "clicked");
}

void Screenshots::addSteps()
{
    const auto show = [this](int screen) { m_application.window()->setProperty("screen", screen); };
    const auto selectValue = [this](const QString &name) {
        VideoOverlay::CVideoOverlayManager &manager = m_application.overlay().manager();
        for (int i = 0; i < manager.elementsCount(); ++i) {
            if (manager.getElement(i)->getParamObject().value(
                    VideoOverlay::ElementParam::NAME_COLUMNBOUND)
                == name)
                m_application.editor().select(i);
        }
    };
    m_steps.push_back({QStringLiteral("live"), [show] { show(0); }});
    m_steps.push_back(
        {QStringLiteral("recording"), [this] { m_application.video().startRecording(); }});
    m_steps.push_back(
        {QStringLiteral("recorded"), [this] { m_application.video().stopRecording(); }});
    m_steps.push_back({QStringLiteral("observation"), [this] {
                           m_application.messages().dismiss();
                           click("observationButton");
                       }});
    m_steps.push_back({QStringLiteral("editor"), [this, show, selectValue] {
                           QMetaObject::invokeMethod(find("observation"), "close");
                           show(1);
                           selectValue(VideoOverlay::ElementParam::NAME_SECTION_DISTANCE_COUNTER);
                       }});
    m_steps.push_back({QStringLiteral("editor-properties"), [this] {
                           m_application.editor().nudge(0, -1);
                           find("editorScreen")->setProperty("panel", 1);
                       }});
    m_steps.push_back(
        {QStringLiteral("editor-colour"), [this] { click("propertyTextColorButton"); }});
    m_steps.push_back({QStringLiteral("editor-overlay"), [this] {
                           QMetaObject::invokeMethod(find("propertyTextColorCard"), "close");
                           find("editorScreen")->setProperty("panel", 2);
                       }});
    m_steps.push_back({QStringLiteral("editor-picture"), [this] {
                           click("addPicture");
                           find("pictureCard")
                               ->setProperty("chosen",
                                             CApplicationDirectories::readonlyConfigDirectory()
                                                 + QStringLiteral("/demo/picture.png"));
                       }});
    m_steps.push_back({QStringLiteral("editor-size"), [this] {
                           click("pictureAdd");
                           m_application.editor().nudge(30, 4);
                           find("editorScreen")->setProperty("panel", 1);
                       }});
    m_steps.push_back({QStringLiteral("profiles"), [this, show] {
                           show(2);
                           find("profilesScreen")->setProperty("marked", 1);
                       }});
    m_steps.push_back({QStringLiteral("unsaved"), [this] { click("profileSelect"); }});
    m_steps.push_back({QStringLiteral("project"), [this, show] {
                           QMetaObject::invokeMethod(find("unsaved"), "close");
                           show(3);
                       }});
}

void Screenshots::start()
{
    if (!QDir().mkpath(m_directory)) {
        Q_EMIT failed(QStringLiteral("%1: the folder cannot be made").arg(m_directory));
        return;
    }
    m_steps.front().prepare();
    m_settle.start(FirstMs);
}

void Screenshots::shoot()
{
    QQuickWindow *window = m_application.window();
    QImage picture = window->grabWindow();
    if (picture.isNull()) // the software scene graph without a display has nothing to read back
        picture = window->screen()->grabWindow(window->winId()).toImage();
    const QString path = QDir(m_directory).filePath(m_steps[m_step].name + QStringLiteral(".png"));
    QString error;
    if (!savePng(picture, path, &error)) {
        Q_EMIT failed(error);
        return;
    }
    Q_EMIT written(path);
    next();
}

void Screenshots::next()
{
    if (++m_step == m_steps.size()) {
        Q_EMIT finished();
        return;
    }
    m_steps[m_step].prepare();
    m_settle.start(SettleMs);
}

} // namespace Velmar::Host
