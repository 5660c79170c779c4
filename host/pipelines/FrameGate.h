// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/display/OverlaySnapshot.h"

#include <QSize>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

QT_BEGIN_NAMESPACE
class QObject;
QT_END_NAMESPACE

namespace Velmar::Host {

/// Lets a frame wait until the overlay is as far as the frame. The streaming thread asks, the
/// thread of the elements answers, so that the frame of a moment shows exactly the readings of that
/// moment. A frame before the next change of the overlay does not wait.
class FrameGate : public OverlaySource, public std::enable_shared_from_this<FrameGate>
{
public:
    struct Answer
    {
        OverlaySnapshotPtr overlay; ///< never null
        qint64 nextChangeNs = 0;    ///< the overlay holds for every frame before this time
    };
    /// Brings the overlay to a time [ns] for frames of a size [px]. Called on the context's thread.
    using Update = std::function<Answer(qint64 timeNs, QSize frameSize)>;

    /// @p context lives on the thread of the elements and is not owned; cancel() before it dies.
    FrameGate(QObject *context, Update update);

    /// Frames are this large from now on. Called on the streaming thread, before the first frame.
    void setFrameSize(QSize size);

    OverlaySnapshotPtr overlayAt(qint64 streamTimeNs) override;

    /// Nobody waits from now on; frames get the last overlay. Call on the context's thread before a
    /// pipeline is stopped from there, since stopping waits for the streaming thread.
    void cancel();

    int roundTrips() const; ///< how often the elements were asked

private:
    void answer();

    mutable std::mutex m_mutex; ///< guards every field below
    std::condition_variable m_answered;
    QObject *m_context;
    Update m_update;
    QSize m_frameSize;
    bool m_cancelled = false;
    bool m_pending = false; ///< a question is on its way
    qint64 m_askedNs = 0;
    qint64 m_validFromNs = 0;
    qint64 m_validUntilNs = -1; ///< m_overlay holds from the one to before the other
    OverlaySnapshotPtr m_overlay;
    int m_roundTrips = 0;
};

} // namespace Velmar::Host
