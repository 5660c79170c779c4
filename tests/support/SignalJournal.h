// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMetaMethod>
#include <QObject>
#include <QStringList>
#include <QVector>

#include <functional>

namespace Velmar::Test {

/// Writes down, in order, every signal of an object as "name" or "name(argument)". Connected
/// directly, so that it sees the object in the state in which it emits.
class SignalJournal : public QObject
{
public:
    /// Listens to the signals that @p declaring and its bases declare, except QObject's own: a
    /// class that declares a base's signal again would otherwise be counted twice.
    SignalJournal(QObject &sender, const QMetaObject &declaring);

    /// Called with the name of each signal, while it is being emitted.
    void setObserver(std::function<void(const QString &name)> observer);

    QStringList entries() const;
    QStringList take(); ///< the entries since the last call

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

private:
    QVector<QMetaMethod> m_signals;
    std::function<void(const QString &)> m_observer;
    QStringList m_entries;
};

} // namespace Velmar::Test
