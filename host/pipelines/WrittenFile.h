// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace Velmar::Host {

/// A file that somebody else writes. While it grows, it is brought onto the disk again and again,
/// so that a power cut takes the last seconds only; at the end it tells whether the file is there.
class WrittenFile
{
public:
    WrittenFile();
    ~WrittenFile();

    /// Looks after the file at @p path, which exists, from now on. A device or a pipe is nothing
    /// to look after.
    void open(const QString &path);

    /// To be called when the last byte was written. Empty, or what is wrong with the file.
    QString close();

private:
    Q_DISABLE_COPY(WrittenFile)

    void keepOnDisk();
    void sync();
    void stop();

    QString m_path;
    int m_file = -1; ///< the file itself, whatever becomes of its name; -1: nothing to look after
    std::thread m_thread;
    std::mutex m_mutex; ///< guards what follows while the thread runs
    std::condition_variable m_wake;
    bool m_stopped = false;
    int m_error = 0; ///< the first error of the disk, which tells each only once
};

} // namespace Velmar::Host
