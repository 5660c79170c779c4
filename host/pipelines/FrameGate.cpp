// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/FrameGate.h"

#include <QMetaObject>
#include <QObject>
#include <QThread>

namespace Velmar::Host {

FrameGate::FrameGate(QObject *context, Update update)
    : m_context(context)
    , m_update(std::move(update))
    , m_overlay(std::make_shared<const OverlaySnapshot>())
{
}

void FrameGate::setFrameSize(QSize size)
{
    const std::lock_guard lock(m_mutex);
    if (m_frameSize == size)
        return;
    m_frameSize = size;
    m_validUntilNs = -1; // the overlay was laid out for another picture
}

OverlaySnapshotPtr FrameGate::overlayAt(qint64 streamTimeNs)
{
    std::unique_lock lock(m_mutex);
    const bool valid = streamTimeNs >= m_validFromNs && streamTimeNs < m_validUntilNs;
    if (m_cancelled || valid)
        return m_overlay;

    m_askedNs = streamTimeNs;
    m_pending = true;
    ++m_roundTrips;
    if (m_context->thread() == QThread::currentThread()) {
        lock.unlock(); // waiting for ourselves would never end
        answer();
        lock.lock();
        return m_overlay;
    }
    QMetaObject::invokeMethod(
        m_context, [gate = shared_from_this()] { gate->answer(); }, Qt::QueuedConnection);
    m_answered.wait(lock, [this] { return !m_pending || m_cancelled; });
    return m_overlay;
}

void FrameGate::answer()
{
    Update update;
    qint64 timeNs = 0;
    QSize size;
    {
        const std::lock_guard lock(m_mutex);
        if (m_cancelled || !m_pending)
            return;
        update = m_update;
        timeNs = m_askedNs;
        size = m_frameSize;
    }
    // Without the lock: the elements' work takes a while and may end in cancel().
    Answer result = update(timeNs, size);
    {
        const std::lock_guard lock(m_mutex);
        m_pending = false;
        m_overlay = std::move(result.overlay);
        m_validFromNs = timeNs;
        m_validUntilNs = result.nextChangeNs;
    }
    m_answered.notify_all();
}

void FrameGate::cancel()
{
    {
        const std::lock_guard lock(m_mutex);
        m_cancelled = true;
        m_context = nullptr;
        m_update = nullptr;
    }
    m_answered.notify_all();
}

int FrameGate::roundTrips() const
{
    const std::lock_guard lock(m_mutex);
    return m_roundTrips;
}

} // namespace Velmar::Host
