// SPDX-License-Identifier: Apache-2.0
#pragma once

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

} // namespace Velmar::Test
