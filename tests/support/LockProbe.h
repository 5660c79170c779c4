// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/CVideoOverlayElement.h"

#include <chrono>
#include <future>

namespace Velmar::Test {

/// An element that tells whether another thread could take its lock now.
template <class Element> class LockProbe : public Element
{
public:
    bool isLocked() const
    {
        return !std::async(std::launch::async, [this] {
                    const bool taken = this->m_mutex.tryLock();
                    if (taken)
                        this->m_mutex.unlock();
                    return taken;
                }).get();
    }
};

/// True when @p access, called in another thread, does not end while the lock of @p element is
/// held.
template <typename Element, typename Access>
bool waitsForLock(Element &element, const Access &access)
{
    bool waited = false;
    std::future<void> other;
    const auto connection
        = QObject::connect(&element, &VideoOverlay::CVideoOverlayElement::idChanged, [&] {
              other = std::async(std::launch::async, [&] { access(element); });
              waited = other.wait_for(std::chrono::milliseconds(20)) == std::future_status::timeout;
          });
    element.setId(element.id() + 1); // announced with the lock held
    other.get();
    QObject::disconnect(connection);
    return waited;
}

} // namespace Velmar::Test
