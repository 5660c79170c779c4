// SPDX-License-Identifier: Apache-2.0
// The timeout of an element: how it hides itself when its time is over.
#include "videooverlay/elements/CVideoOverlayElement.h"

#include "videooverlay/Log_p.h"

#include <QMutexLocker>

#include <algorithm>
#include <limits>

namespace Velmar::VideoOverlay {

namespace {

/// The longest whole number of seconds that fits a timer [ms]. Timers round long times to seconds,
/// with the clock up to half a second beyond: from a longer one, what is left would not fit into
/// the answer and come back negative.
constexpr int longestInterval = std::numeric_limits<int>::max() / 1000 * 1000;

/// A timer interval [ms] from any factor: neither negative nor beyond what a timer can take.
int timerInterval(int value)
{
    const qint64 interval = qint64(value) * 1000;
    return int(std::clamp<qint64>(interval, 0, longestInterval));
}

} // namespace

void CVideoOverlayElement::startTimer()
{
    const EditLock lock(this);
    if (m_timeout == 0 || !m_enabled || m_timeoutDisabled)
        return;
    const auto scheduled = [this](const QString &when) {
        log(LogLevel::Debug,
            QStringLiteral("ID %1 timeout scheduled to %2 seconds ")
                .arg(QString::number(m_id), when));
    };
    if (m_remaining < 1) {
        scheduled(QString::number(m_timeout));
        m_timer.start(timerInterval(m_timeout));
    } else {
        // Milliseconds taken for seconds, and kept for the next start as well: hosts rely on it.
        scheduled(QStringLiteral("remaining") + QString::number(m_remaining));
        m_timer.start(timerInterval(m_remaining));
    }
}

void CVideoOverlayElement::suspendTimer()
{
    const EditLock lock(this);
    if (m_timeout == 0 || !m_enabled || !m_timer.isActive())
        return;
    const int left = m_timer.remainingTime();
    m_remaining = left < 0 ? longestInterval : left; // negative while it runs: it did not fit
    m_timer.stop();
}

void CVideoOverlayElement::stopTimer()
{
    const EditLock lock(this);
    if (!m_timer.isActive())
        return;
    m_timer.stop();
    m_remaining = 0;
}

void CVideoOverlayElement::expireTimer()
{
    {
        QMutexLocker lock(&m_mutex);
        if (!m_timer.isActive())
            return;
        m_timer.stop();
        m_remaining = 0;
    }
    handleTimeout();
}

void CVideoOverlayElement::determineVisibility()
{
    const EditLock lock(this);
    if (m_timeout != 0)
        setVisible(false);
    else if (m_type != InspText && m_type != FreeText)
        setVisible(m_enabled);
}

void CVideoOverlayElement::handleTimeout()
{
    // A receiver may destroy this element, though a manager waits until this function is left.
    const QPointer<CVideoOverlayElement> alive(this);
    const Use use(*this);
    setVisible(false);
    if (!alive)
        return;
    bool deleteOnExpiry = false;
    {
        QMutexLocker lock(&m_mutex);
        deleteOnExpiry = m_deleteOnExpiry;
    }
    if (deleteOnExpiry) // no lock is held
        Q_EMIT deleteRequest(this);
    if (alive)
        Q_EMIT timerExpired();
}

} // namespace Velmar::VideoOverlay
