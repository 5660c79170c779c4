// SPDX-License-Identifier: Apache-2.0
#include "tests/soak/LiveObjects.h"

#include <QAbstractEventDispatcher>
#include <QObject>
#include <QSet>
#include <QThread>

#include <mutex>

// Declared in a private header of Qt, of which only this array is needed.
extern quintptr Q_CORE_EXPORT qtHookData[];

namespace Velmar::Soak {

namespace {

// Places in the array.
constexpr int Version = 0;
constexpr int Size = 1;
constexpr int AddObject = 3;
constexpr int RemoveObject = 4;

using Hook = void (*)(QObject *);

std::mutex mutex; ///< guards what follows

/// Never destroyed, because objects die after main().
QSet<QObject *> &objects()
{
    static auto *const all = new QSet<QObject *>;
    return *all;
}

void add(QObject *object)
{
    const std::lock_guard<std::mutex> lock(mutex);
    objects().insert(object);
}

void remove(QObject *object)
{
    const std::lock_guard<std::mutex> lock(mutex);
    objects().remove(object);
}

QSet<QObject *> copy()
{
    const std::lock_guard<std::mutex> lock(mutex);
    return objects();
}

} // namespace

bool LiveObjects::watch()
{
    if (qtHookData[Version] < 1 || qtHookData[Size] <= quintptr(RemoveObject)
        || qtHookData[AddObject] != 0 || qtHookData[RemoveObject] != 0)
        return false;
    qtHookData[AddObject] = reinterpret_cast<quintptr>(static_cast<Hook>(add));
    qtHookData[RemoveObject] = reinterpret_cast<quintptr>(static_cast<Hook>(remove));
    return true;
}

int LiveObjects::count()
{
    const std::lock_guard<std::mutex> lock(mutex);
    return objects().size();
}

int LiveObjects::timerCount()
{
    const QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance();
    int timers = 0;
    const QSet<QObject *> all = copy();
    for (QObject *object : all) {
        if (object->thread() == QThread::currentThread())
            timers += dispatcher->registeredTimers(object).size();
    }
    return timers;
}

QMap<QByteArray, int> LiveObjects::byClass()
{
    QMap<QByteArray, int> counts;
    const QSet<QObject *> all = copy();
    for (const QObject *object : all)
        ++counts[object->metaObject()->className()];
    return counts;
}

} // namespace Velmar::Soak
