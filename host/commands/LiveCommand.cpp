// SPDX-License-Identifier: Apache-2.0
#include "host/commands/LiveCommand.h"

#include "host/commands/InterruptWatch.h"
#include "host/commands/Report.h"
#include "host/screens/LiveApplication.h"
#include "host/screens/Screenshots.h"
#include "host/screens/VideoController.h"
#include "platform/directories/CApplicationDirectories.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QQuickWindow>
#include <QStandardPaths>

namespace Velmar::Host {

namespace {

QString orStandard(const QString &path, QStandardPaths::StandardLocation location)
{
    return path.isEmpty() ? QStandardPaths::writableLocation(location) + QStringLiteral("/xqosd")
                          : QFileInfo(path).absoluteFilePath();
}

} // namespace

int runLive(const Options &options)
{
    const QString data = CApplicationDirectories::readonlyConfigDirectory();
    LiveApplication::Setup setup;
    setup.source = options.source;
    const bool hasInput = options.inputFromPipe || !options.inputSocket.isEmpty();
    setup.telemetryPath = options.telemetryPath.isEmpty() && options.source.isDrawn() && !hasInput
        ? data + QStringLiteral("/demo/telemetry.csv")
        : options.telemetryPath;
    setup.projectDirectory
        = orStandard(options.projectDirectory, QStandardPaths::DocumentsLocation);
    setup.recordingDirectory
        = orStandard(options.recordingDirectory, QStandardPaths::MoviesLocation);
    setup.pictureDirectory = options.screenshotDirectory.isEmpty()
        ? QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)
        : data + QStringLiteral("/demo");
    setup.demoProject = data + QStringLiteral("/demo/project/demo.json");
    setup.inputFromPipe = options.inputFromPipe;
    setup.inputSocket = options.inputSocket;

    QString error;
    LiveApplication application;
    if (!application.start(setup, &error))
        return reportError(error);

    QEventLoop loop;
    InterruptWatch interrupt;
    QObject::connect(&interrupt, &InterruptWatch::interrupted, &loop, [&] {
        VideoController &video = application.video();
        if (video.recordState() == VideoController::Idle) {
            loop.quit();
            return;
        }
        QObject::connect(&video, &VideoController::recordStateChanged, &loop, [&] {
            if (video.recordState() == VideoController::Idle)
                loop.quit();
        });
        video.stopRecording(); // so that the file is complete
    });
    // The application tells of its last window only while its own loop runs, which this is not.
    QObject::connect(application.window(), &QWindow::visibleChanged, &loop, [&](bool visible) {
        if (!visible)
            loop.quit();
    });
    QString failure;
    Screenshots screenshots(application, options.screenshotDirectory);
    if (!options.screenshotDirectory.isEmpty()) {
        QObject::connect(&screenshots, &Screenshots::written, &loop,
                         [](const QString &path) { report(path); });
        QObject::connect(&screenshots, &Screenshots::finished, &loop, &QEventLoop::quit);
        QObject::connect(&screenshots, &Screenshots::failed, &loop, [&](const QString &reason) {
            failure = reason;
            loop.quit();
        });
        // From the loop, which must run before it can be left.
        QMetaObject::invokeMethod(&screenshots, &Screenshots::start, Qt::QueuedConnection);
    }
    loop.exec();
    if (!failure.isEmpty())
        return reportError(failure);
    return interrupt.isInterrupted() ? InterruptWatch::ExitStatus : 0;
}

} // namespace Velmar::Host
