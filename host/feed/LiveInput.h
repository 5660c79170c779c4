// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/feed/LiveInputParser.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QVariant>

#include <memory>

QT_BEGIN_NAMESPACE
class QLocalServer;
class QLocalSocket;
class QSocketNotifier;
QT_END_NAMESPACE

namespace Velmar::Host {

/// Live values from a pipe or from the clients of a local socket. Reads what is there when there is
/// something and never waits. GUI thread only.
class LiveInput : public QObject
{
    Q_OBJECT
public:
    explicit LiveInput(QObject *parent = nullptr);
    ~LiveInput() override;

    /// Reads @p descriptor (the standard input is 0) until it ends; it is not closed.
    void readFrom(int descriptor);

    /// Opens a socket at @p path for any number of clients of the same user. One that an ended
    /// program left behind is replaced. False, and the reason in @p error, when it cannot be made.
    bool listen(const QString &path, QString *error);

Q_SIGNALS:
    void valueRead(const QString &name, const QVariant &value);
    void problemFound(const QString &text); ///< one line, for people
    void ended();                           ///< the pipe ended; clients come and go unannounced

private:
    void readPipe();
    void acceptClients();
    void readClient(QLocalSocket *client);
    void dropClient(QLocalSocket *client);
    void announce(const LiveInputParser::Batch &batch, const QString &origin);

    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    LiveInputParser m_pipe;
    std::unique_ptr<QLocalServer> m_server;
    QHash<QLocalSocket *, LiveInputParser> m_clients; ///< owned by the server
};

} // namespace Velmar::Host
