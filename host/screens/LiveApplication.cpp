// SPDX-License-Identifier: Apache-2.0
#include "host/screens/LiveApplication.h"

#include "host/display/OverlayFont.h"
#include "host/feed/LiveInput.h"
#include "host/pipelines/VideoErrors.h"
#include "host/screens/EditorController.h"
#include "host/screens/ElementFilter.h"
#include "host/screens/LiveOverlay.h"
#include "host/screens/Messages.h"
#include "host/screens/OverlayView.h"
#include "host/screens/PreviewProvider.h"
#include "host/screens/ProfileActions.h"
#include "host/screens/ProjectController.h"
#include "host/screens/UiTexts.h"
#include "host/screens/VideoController.h"
#include "host/screens/VideoView.h"
#include "host/session/TelemetryView.h"
#include "platform/logging/CLogger.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/display/VideoOverlaySettings.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>

#include <QFileInfo>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickWindow>
#include <QUrl>

/// The resources are in a static library, which nobody else makes the linker keep. Outside of every
/// namespace, because the macro declares a function.
static void keepScreens()
{
    Q_INIT_RESOURCE(screens);
}

namespace Velmar::Host {

namespace {

constexpr QSize DefaultSize {1280, 720};

void registerTypes()
{
    constexpr const char *Module = "Xqosd";
    qmlRegisterType<VideoView>(Module, 1, 0, "VideoView");
    qmlRegisterType<OverlayView>(Module, 1, 0, "OverlayView");
    qmlRegisterUncreatableType<VideoController>(Module, 1, 0, "VideoController",
                                                QStringLiteral("there is one already"));
}

} // namespace

LiveApplication::LiveApplication(QObject *parent)
    : QObject(parent)
{
}

LiveApplication::~LiveApplication() = default;

bool LiveApplication::start(const Setup &setup, QString *error)
{
    if (!initialiseVideo(error))
        return false;
    TelemetryFile telemetry;
    if (!setup.telemetryPath.isEmpty() && !telemetry.load(setup.telemetryPath, error))
        return false;
    VideoController::Setup video {setup.source, setup.recordingDirectory};
    if (video.source.isDrawn() && video.source.size.isEmpty())
        video.source.size = DefaultSize;
    if (!video.source.view)
        video.source.view = telemetryView(telemetry, AfterRun::Again);

    m_texts = std::make_unique<UiTexts>();
    m_messages = std::make_unique<Messages>();
    m_overlay = std::make_unique<LiveOverlay>(video.source.size.isEmpty() ? DefaultSize
                                                                          : video.source.size);
    m_overlay->setTelemetry(telemetry);
    connect(m_overlay.get(), &LiveOverlay::problemFound, m_messages.get(), &Messages::error);
    m_video = std::make_unique<VideoController>(video, *m_overlay, *m_messages, *m_texts);
    m_editor = std::make_unique<EditorController>(*m_overlay, *m_messages, *m_texts);
    m_filter
        = std::make_unique<ElementFilter>(*m_editor, *m_overlay->manager().getElementListModel());
    m_profileActions = std::make_unique<ProfileActions>(*m_overlay, *m_messages, *m_texts);
    m_project = std::make_unique<ProjectController>(setup.projectDirectory, *m_overlay, *m_messages,
                                                    *m_texts);
    const VideoOverlay::VideoOverlaySettings &grid = *m_overlay->manager().getSettings();
    connect(&grid, &VideoOverlay::VideoOverlaySettings::settingsError, this,
            [this](const QString &error) {
                m_messages->error(m_texts->text(QStringLiteral("errorGrid")).arg(error));
            });
    const QString fontProblem = overlayFontProblem(grid.font());
    if (!fontProblem.isEmpty()) // in the log too: without a font, the screens cannot be read either
        Logging::CLogger::logMessage(Logging::LogLevel::Error, QStringLiteral("Host"), fontProblem);
    const QString problem = fontProblem.isEmpty() ? m_overlay->startupError() : fontProblem;
    if (!problem.isEmpty())
        m_messages->error(problem);
    if (!setup.demoProject.isEmpty())
        m_project->provideDemo(setup.demoProject);

    if (!openInput(setup, error))
        return false;
    expose(setup);
    m_engine->load(QUrl(QStringLiteral("qrc:/xqosd/qml/Main.qml")));
    if (!window()) {
        *error = QStringLiteral("The screens cannot be loaded; the log says why");
        return false;
    }
    m_video->start();
    return true;
}

bool LiveApplication::openInput(const Setup &setup, QString *error)
{
    m_input = std::make_unique<LiveInput>();
    connect(m_input.get(), &LiveInput::valueRead, m_overlay.get(), &LiveOverlay::setValue);
    connect(m_input.get(), &LiveInput::problemFound, m_messages.get(), &Messages::error);
    if (setup.inputFromPipe)
        m_input->readFrom(0);
    return setup.inputSocket.isEmpty() || m_input->listen(setup.inputSocket, error);
}

void LiveApplication::expose(const Setup &setup)
{
    keepScreens();
    registerTypes();
    m_engine = std::make_unique<QQmlApplicationEngine>();
    m_engine->addImageProvider(QStringLiteral("preview"), new PreviewProvider); // the engine's
    QQmlContext *context = m_engine->rootContext();
    const std::initializer_list<std::pair<const char *, QObject *>> objects {
        {"texts", m_texts.get()},
        {"messages", m_messages.get()},
        {"liveOverlay", m_overlay.get()},
        {"manager", &m_overlay->manager()},
        {"elements", m_overlay->manager().getElementListModel()},
        {"profiles", &m_overlay->profiles()},
        {"video", m_video.get()},
        {"editor", m_editor.get()},
        {"elementFilter", m_filter.get()},
        {"profileActions", m_profileActions.get()},
        {"project", m_project.get()},
    };
    for (const auto &[name, object] : objects)
        context->setContextProperty(QString::fromLatin1(name), object);
    context->setContextProperty(QStringLiteral("useKeyboard"),
                                qEnvironmentVariable("QT_IM_MODULE")
                                    == QLatin1String("qtvirtualkeyboard"));
    // The list would show the working directory in place of one that is not there.
    QString pictures = setup.pictureDirectory;
    while (!QFileInfo(pictures).isDir() && pictures != QFileInfo(pictures).path())
        pictures = QFileInfo(pictures).path();
    context->setContextProperty(QStringLiteral("pictureFolder"), QUrl::fromLocalFile(pictures));
}

QQuickWindow *LiveApplication::window() const
{
    return m_engine && !m_engine->rootObjects().isEmpty()
        ? qobject_cast<QQuickWindow *>(m_engine->rootObjects().constFirst())
        : nullptr;
}

} // namespace Velmar::Host
