// SPDX-License-Identifier: Apache-2.0
// Shows the thread sanitizer what QMutex does. Qt is not built with the sanitizer and its mutexes
// stand on futexes, so that without this every field that they guard would be reported. These
// definitions come before Qt's own in a program that contains them, and call those.
#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

#include <type_traits>

namespace {

/// Recursive or not: the sanitizer only needs to know the order of the threads.
constexpr unsigned Flags = __tsan_mutex_write_reentrant;

template <typename Result = void, typename... Arguments>
Result callQt(const char *symbol, void *mutex, Arguments... arguments)
{
    using Operation = Result (*)(void *, Arguments...);
    const auto operation = reinterpret_cast<Operation>(dlsym(RTLD_NEXT, symbol));
    return operation(mutex, arguments...);
}

template <typename... Arguments>
bool tryLock(const char *symbol, void *mutex, Arguments... arguments)
{
    __tsan_mutex_pre_lock(mutex, Flags | __tsan_mutex_try_lock);
    const bool taken = callQt<bool>(symbol, mutex, arguments...);
    __tsan_mutex_post_lock(
        mutex, Flags | __tsan_mutex_try_lock | (taken ? 0 : __tsan_mutex_try_lock_failed), 0);
    return taken;
}

} // namespace

// By their mangled names, because a class that Qt declares cannot be defined a second time.
#pragma GCC visibility push(default)
extern "C" {

void _ZN6QMutex4lockEv(void *mutex)
{
    __tsan_mutex_pre_lock(mutex, Flags);
    callQt("_ZN6QMutex4lockEv", mutex);
    __tsan_mutex_post_lock(mutex, Flags, 0);
}

bool _ZN6QMutex7tryLockEi(void *mutex, int timeoutMs)
{
    return tryLock("_ZN6QMutex7tryLockEi", mutex, timeoutMs);
}

void _ZN6QMutex6unlockEv(void *mutex)
{
    __tsan_mutex_pre_unlock(mutex, Flags);
    callQt("_ZN6QMutex6unlockEv", mutex);
    __tsan_mutex_post_unlock(mutex, Flags);
}

void _ZN6QMutexD1Ev(void *mutex)
{
    __tsan_mutex_destroy(mutex, Flags);
    callQt("_ZN6QMutexD1Ev", mutex);
}
}
#pragma GCC visibility pop
