// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/display/CAbstractVideoOverlayControlBackend.h"

#include <QStringList>

#include <functional>

namespace Velmar::Test {

/// A display that writes down every call in order and answers what the test sets.
class RecordingDisplayBackend : public VideoOverlay::CAbstractVideoOverlayControlBackend
{
    Q_OBJECT
public:
    bool isReady() override;
    bool isActive() override;
    bool displayElement(VideoOverlay::CVideoOverlayElement &element) override;
    bool deleteElement(VideoOverlay::CVideoOverlayElement &element) override;
    void setPaintMargins(const QRectF &margins) override;
    bool videoOverlayEnabled() override;
    void setVideoOverlayEnabled(bool enabled) override;
    void prepareOverlay() override;

    QStringList takeCalls(); ///< the calls since the last time

    bool ready = true;
    bool active = true;
    bool enabled = false; ///< also changed by setVideoOverlayEnabled()
    bool displayResult = true;
    bool deleteResult = true;
    /// Runs inside displayElement().
    std::function<void(VideoOverlay::CVideoOverlayElement &)> whileDisplaying;
    /// Runs inside deleteElement().
    std::function<void(VideoOverlay::CVideoOverlayElement &)> whileDeleting;

private:
    QStringList m_calls;
};

} // namespace Velmar::Test
