// SPDX-License-Identifier: Apache-2.0
#include "tests/support/RecordingDisplayBackend.h"

#include "videooverlay/elements/CVideoOverlayElement.h"

#include <utility>

namespace Velmar::Test {

using VideoOverlay::CVideoOverlayElement;

bool RecordingDisplayBackend::isReady()
{
    m_calls.append(QStringLiteral("isReady"));
    return ready;
}

bool RecordingDisplayBackend::isActive()
{
    m_calls.append(QStringLiteral("isActive"));
    return active;
}

bool RecordingDisplayBackend::displayElement(CVideoOverlayElement &element)
{
    m_calls.append(QStringLiteral("displayElement %1").arg(element.id()));
    if (whileDisplaying)
        whileDisplaying(element);
    return displayResult;
}

bool RecordingDisplayBackend::deleteElement(CVideoOverlayElement &element)
{
    m_calls.append(QStringLiteral("deleteElement %1").arg(element.id()));
    if (whileDeleting)
        whileDeleting(element);
    return deleteResult;
}

void RecordingDisplayBackend::setPaintMargins(const QRectF &margins)
{
    m_calls.append(QStringLiteral("setPaintMargins %1,%2 %3x%4")
                       .arg(margins.x())
                       .arg(margins.y())
                       .arg(margins.width())
                       .arg(margins.height()));
}

bool RecordingDisplayBackend::videoOverlayEnabled()
{
    m_calls.append(QStringLiteral("videoOverlayEnabled"));
    return enabled;
}

void RecordingDisplayBackend::setVideoOverlayEnabled(bool newEnabled)
{
    m_calls.append(QStringLiteral("setVideoOverlayEnabled %1").arg(int(newEnabled)));
    enabled = newEnabled;
}

void RecordingDisplayBackend::prepareOverlay()
{
    m_calls.append(QStringLiteral("prepareOverlay"));
}

QStringList RecordingDisplayBackend::takeCalls()
{
    return std::exchange(m_calls, {});
}

} // namespace Velmar::Test
