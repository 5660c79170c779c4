// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/pipelines/VideoSource.h"

#include <QObject>
#include <QString>

#include <memory>

QT_BEGIN_NAMESPACE
class QQmlApplicationEngine;
class QQuickWindow;
QT_END_NAMESPACE

namespace Velmar::Host {

class EditorController;
class ElementFilter;
class LiveInput;
class LiveOverlay;
class Messages;
class ProfileActions;
class ProjectController;
class UiTexts;
class VideoController;

/// The touch screens: makes what they show and edit, and the window with them. Needs a
/// QGuiApplication and its event loop. One at a time.
class LiveApplication : public QObject
{
    Q_OBJECT
public:
    struct Setup
    {
        SourceSpec source;
        QString telemetryPath;      ///< empty: no values but the video's time
        QString projectDirectory;   ///< where the operator's projects are
        QString recordingDirectory; ///< where recordings go
        QString pictureDirectory;   ///< where the choice of a picture begins
        QString demoProject;        ///< a project as JSON, for who has none yet; may be empty
        bool inputFromPipe = false; ///< live values come from the standard input
        QString inputSocket;        ///< path of a socket that takes live values; may be empty
    };

    explicit LiveApplication(QObject *parent = nullptr);
    ~LiveApplication() override;

    /// Opens the window and starts the video. False, and a text in @p error, when there can be no
    /// window or no socket for live values; a video that cannot be played is told in the window.
    bool start(const Setup &setup, QString *error);

    QQuickWindow *window() const; ///< null before the start
    LiveOverlay &overlay() const { return *m_overlay; }
    VideoController &video() const { return *m_video; }
    EditorController &editor() const { return *m_editor; }
    ProjectController &project() const { return *m_project; }
    Messages &messages() const { return *m_messages; }

private:
    bool openInput(const Setup &setup, QString *error);
    void expose(const Setup &setup);

    std::unique_ptr<UiTexts> m_texts;
    std::unique_ptr<Messages> m_messages;
    std::unique_ptr<LiveOverlay> m_overlay;
    std::unique_ptr<VideoController> m_video;
    std::unique_ptr<EditorController> m_editor;
    std::unique_ptr<ElementFilter> m_filter;
    std::unique_ptr<ProfileActions> m_profileActions;
    std::unique_ptr<ProjectController> m_project;
    std::unique_ptr<LiveInput> m_input;
    std::unique_ptr<QQmlApplicationEngine> m_engine; ///< goes before all that it shows
};

} // namespace Velmar::Host
