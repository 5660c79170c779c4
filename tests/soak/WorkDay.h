// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/session/OverlaySession.h"

#include <QString>
#include <QTemporaryDir>

#include <atomic>
#include <memory>
#include <thread>

namespace Velmar::Soak {

/// What an operator does in a day, again and again and without a pause between: the real library,
/// platform and session, with a streaming thread that burns in what is shown.
class WorkDay
{
public:
    WorkDay();
    ~WorkDay();

    /// Selects every profile once and works in it: a project, an inspection in it, @p readings
    /// readings, an observation, elements that come and go. Then the display goes and comes, and
    /// the video's size changes. Ends as it began.
    void doRound(int readings);

    QString settingsDirectory() const;

    int values() const { return m_values; }
    int switches() const { return m_switches; }
    int projects() const { return m_projects; }
    int elements() const { return m_elements; }
    int displays() const { return m_displays; }
    int frames() const { return m_frames; }

private:
    Q_DISABLE_COPY(WorkDay)

    void workInProject(int readings);
    void takeReadings(int readings);
    void observe();
    void edit();
    void changeDisplay();
    void burnFrames();
    static void settle();
    static void check(bool done, const char *what);

    QTemporaryDir m_root;
    QStringList m_demoProjects;
    std::unique_ptr<Host::OverlaySession> m_session;
    std::shared_ptr<Host::OverlayScene> m_scene;
    qint64 m_nowMs = 0; ///< of the video
    int m_values = 0;
    int m_switches = 0;
    int m_projects = 0;
    int m_elements = 0;
    int m_displays = 0;
    std::atomic<int> m_frames {0};
    std::atomic<bool> m_isOver {false};
    std::thread m_streaming;
};

} // namespace Velmar::Soak
