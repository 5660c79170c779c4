// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/FakeCapabilitiesBackend.h"
#include "tests/support/RecordingDisplayBackend.h"
#include "videooverlay/display/CVideoOverlayCapabilities.h"
#include "videooverlay/display/CVideoOverlayControl.h"
#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/display/IVideoOverlayElementAccessor.h"
#include "videooverlay/models/VideoOverlayElementListModel.h"

#include <QStringList>

#include <utility>

namespace Velmar::Test {

/// An accessor that writes its calls down.
class RecordingAccessor : public VideoOverlay::IVideoOverlayElementAccessor
{
public:
    QString makeKey(const VideoOverlay::ElementParam &param) override
    {
        return param.value(QStringLiteral("columnBound")).toString();
    }
    void registerElement(const QString &key, VideoOverlay::CVideoOverlayElement *element) override
    {
        calls.append(QStringLiteral("register %1 %2").arg(key).arg(element->id()));
    }
    void unregisterElement(VideoOverlay::CVideoOverlayElement *element) override
    {
        calls.append(QStringLiteral("unregister %1").arg(element->id()));
    }

    QStringList takeCalls() { return std::exchange(calls, {}); }

    QStringList calls;
};

/// A manager on a display of 1920 x 1080 pixels that writes its calls down.
struct LiveOverlay
{
    LiveOverlay()
    {
        capabilities.setBackend(&limits);
        control.setBackend(&display);
    }

    /// What reached the display since the last call: "displayElement id", "deleteElement id" and
    /// "setPaintMargins ...".
    QStringList takeShown()
    {
        QStringList calls = display.takeCalls();
        calls.removeAll(QStringLiteral("isReady"));
        calls.removeAll(QStringLiteral("isActive"));
        return calls;
    }

    /// What the display is told when @p element is shown @p times times.
    static QStringList shown(const VideoOverlay::CVideoOverlayElement *element, int times)
    {
        QStringList calls;
        for (int i = 0; i < times; ++i)
            calls.append(QStringLiteral("displayElement %1").arg(element->id()));
        return calls;
    }

    FakeCapabilitiesBackend limits;
    RecordingDisplayBackend display;
    VideoOverlay::CVideoOverlayCapabilities capabilities;
    VideoOverlay::CVideoOverlayControl control;
    VideoOverlay::CVideoOverlayManager manager {control, capabilities};
    VideoOverlay::VideoOverlayElementListModel &model = *manager.getElementListModel();
};

} // namespace Velmar::Test
