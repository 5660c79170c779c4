// SPDX-License-Identifier: Apache-2.0
#include "tests/support/SignalJournal.h"

#include <QVariant>

#include <utility>

namespace Velmar::Test {

SignalJournal::SignalJournal(QObject &sender, const QMetaObject &declaring)
{
    const int firstSlot = QObject::staticMetaObject.methodCount();
    for (int i = firstSlot; i < declaring.methodCount(); ++i) {
        const QMetaMethod method = declaring.method(i);
        if (method.methodType() != QMetaMethod::Signal)
            continue;
        QMetaObject::connect(&sender, i, this, firstSlot + m_signals.size(), Qt::DirectConnection);
        m_signals.append(method);
    }
}

void SignalJournal::setObserver(std::function<void(const QString &)> observer)
{
    m_observer = std::move(observer);
}

QStringList SignalJournal::entries() const
{
    return m_entries;
}

QStringList SignalJournal::take()
{
    return std::exchange(m_entries, {});
}

int SignalJournal::qt_metacall(QMetaObject::Call call, int id, void **arguments)
{
    const int index = QObject::qt_metacall(call, id, arguments);
    if (index < 0 || call != QMetaObject::InvokeMetaMethod)
        return index;
    const QMetaMethod &method = m_signals.at(index);
    const QString name = QString::fromLatin1(method.name());
    QString entry = name;
    if (method.parameterCount() > 0) {
        const QVariant argument(method.parameterType(0), arguments[1]);
        entry += QLatin1Char('(') + argument.toString() + QLatin1Char(')');
    }
    m_entries.append(entry);
    if (m_observer)
        m_observer(name);
    return -1;
}

} // namespace Velmar::Test
