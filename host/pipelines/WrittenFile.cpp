// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/WrittenFile.h"

#include <QFile>

#include <cerrno>
#include <chrono>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Velmar::Host {

namespace {

/// How much video a power cut may take, besides what encoder and container hold back.
constexpr std::chrono::seconds SyncInterval {2};

} // namespace

WrittenFile::WrittenFile() = default;

WrittenFile::~WrittenFile()
{
    stop();
}

void WrittenFile::open(const QString &path)
{
    stop();
    m_path = path;
    m_error = 0;
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    // Opening a pipe would wait for its other end.
    if (stat(name.constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return;
    m_file = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (m_file < 0)
        return; // writable, but not readable
    m_stopped = false;
    m_thread = std::thread(&WrittenFile::keepOnDisk, this);
}

QString WrittenFile::close()
{
    if (m_file < 0)
        return {};
    struct stat written = {};
    struct stat found = {};
    const bool isKnown = fstat(m_file, &written) == 0;
    sync();
    stop();
    if (m_error != 0)
        return QStringLiteral("cannot be written: %1").arg(qt_error_string(m_error));
    if (!isKnown || written.st_size == 0)
        return QStringLiteral("nothing was written");
    if (stat(QFile::encodeName(m_path).constData(), &found) != 0)
        return QStringLiteral("the file is gone: it was removed while it was recorded");
    if (found.st_dev != written.st_dev || found.st_ino != written.st_ino)
        return QStringLiteral("the file is gone: another one was put in its place");
    return {};
}

void WrittenFile::keepOnDisk()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_wake.wait_for(lock, SyncInterval, [this] { return m_stopped; })) {
        lock.unlock();
        sync();
        lock.lock();
    }
}

void WrittenFile::sync()
{
    // Some file systems have no such thing, and nothing to fear.
    const int error = fdatasync(m_file) != 0 && errno != EINVAL && errno != ENOSYS ? errno : 0;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_error == 0 && error != EINTR)
        m_error = error;
}

void WrittenFile::stop()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopped = true;
    }
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
    if (m_file >= 0)
        ::close(m_file);
    m_file = -1;
}

} // namespace Velmar::Host
