// SPDX-License-Identifier: Apache-2.0
#include "host/feed/LiveInput.h"

#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QSocketNotifier>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace Velmar::Host {

namespace {

constexpr int PortionSize = 64 * 1024; ///< [bytes] at a time, so that the display keeps its turn
constexpr int ProbeLimitMs = 200;

const QLatin1String pipeName("live input");
const QLatin1String clientName("live input client");

bool isSocket(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISSOCK(status.st_mode);
}

/// Whether some program answers there. A local connection is made or refused at once.
bool isInUse(const QString &path)
{
    QLocalSocket probe;
    probe.connectToServer(path);
    return probe.waitForConnected(ProbeLimitMs);
}

} // namespace

LiveInput::LiveInput(QObject *parent)
    : QObject(parent)
{
}

LiveInput::~LiveInput()
{
    // The sockets say goodbye when the server deletes them, and would find nobody.
    for (auto it = m_clients.cbegin(); it != m_clients.cend(); ++it)
        it.key()->disconnect(this);
}

void LiveInput::readFrom(int descriptor)
{
    m_descriptor = descriptor;
    m_notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &LiveInput::readPipe);
}

bool LiveInput::listen(const QString &path, QString *error)
{
    // A bare name would end up in the folder for temporary files.
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (isSocket(absolute)) {
        if (isInUse(absolute)) {
            *error = QStringLiteral("%1: another program reads there").arg(path);
            return false;
        }
        QLocalServer::removeServer(absolute);
    } else if (QFileInfo::exists(absolute)) {
        *error = QStringLiteral("%1: exists and is no socket").arg(path);
        return false;
    }
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server.get(), &QLocalServer::newConnection, this, &LiveInput::acceptClients);
    if (m_server->listen(absolute))
        return true;
    *error = QStringLiteral("%1: %2").arg(path, m_server->errorString());
    m_server.reset();
    return false;
}

void LiveInput::readPipe()
{
    QByteArray bytes(PortionSize, Qt::Uninitialized);
    // There is something, so this does not wait.
    const ssize_t count = ::read(m_descriptor, bytes.data(), size_t(bytes.size()));
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    const QPointer<LiveInput> alive(this);
    if (count > 0) {
        bytes.truncate(int(count));
        announce(m_pipe.feed(bytes), pipeName);
        return;
    }
    m_notifier->setEnabled(false);
    if (count < 0)
        Q_EMIT problemFound(
            QStringLiteral("%1: %2").arg(pipeName, QString::fromLocal8Bit(std::strerror(errno))));
    if (alive)
        announce(m_pipe.finish(), pipeName);
    if (alive)
        Q_EMIT ended();
}

void LiveInput::acceptClients()
{
    while (QLocalSocket *client = m_server->nextPendingConnection()) {
        client->setReadBufferSize(PortionSize);
        m_clients.insert(client, LiveInputParser());
        connect(client, &QLocalSocket::readyRead, this, [this, client] { readClient(client); });
        connect(client, &QLocalSocket::disconnected, this, [this, client] { dropClient(client); });
        readClient(client);
        if (client->state() == QLocalSocket::UnconnectedState)
            dropClient(client); // came, wrote and went
    }
}

void LiveInput::readClient(QLocalSocket *client)
{
    const auto parser = m_clients.find(client);
    if (parser != m_clients.end())
        announce(parser->feed(client->readAll()), clientName);
}

void LiveInput::dropClient(QLocalSocket *client)
{
    if (!m_clients.contains(client))
        return;
    readClient(client);
    LiveInputParser parser = m_clients.take(client);
    client->deleteLater();
    announce(parser.finish(), clientName);
}

void LiveInput::announce(const LiveInputParser::Batch &batch, const QString &origin)
{
    const QPointer<LiveInput> alive(this); // whoever listens may have enough
    for (const QString &problem : batch.problems) {
        Q_EMIT problemFound(QStringLiteral("%1, %2").arg(origin, problem));
        if (!alive)
            return;
    }
    for (const LiveInputParser::Value &value : batch.values) {
        Q_EMIT valueRead(value.name, value.value);
        if (!alive)
            return;
    }
}

} // namespace Velmar::Host
