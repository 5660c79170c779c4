// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

QT_BEGIN_NAMESPACE
class QSocketNotifier;
QT_END_NAMESPACE

namespace Velmar::Host {

/// Turns the first Ctrl-C (or SIGTERM, or SIGHUP) into a signal of Qt's; the second ends the
/// process at once, with status 130. One per process.
class InterruptWatch : public QObject
{
    Q_OBJECT
public:
    explicit InterruptWatch(QObject *parent = nullptr);
    ~InterruptWatch() override;

    bool isInterrupted() const;

    static constexpr int ExitStatus = 130;

Q_SIGNALS:
    void interrupted();

private:
    void onReadable();

    QSocketNotifier *m_notifier = nullptr; ///< a child; null where there is no pipe
    bool m_interrupted = false;
};

} // namespace Velmar::Host
