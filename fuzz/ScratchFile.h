// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fuzz/Require.h"

#include <QByteArray>
#include <QDir>
#include <QString>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

/// A file for what is read by its path, filled anew with every input. It lives in memory and has no
/// name in any folder, so that thousands of runs a second touch no disk, and none that was broken
/// off leaves anything behind.
class ScratchFile
{
public:
    ScratchFile()
        : m_handle(::memfd_create("xq-fuzz", MFD_CLOEXEC))
    {
        require(m_handle >= 0);
    }
    ~ScratchFile() { ::close(m_handle); }
    Q_DISABLE_COPY(ScratchFile)

    /// Whoever opens it starts at its beginning.
    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_handle); }

    void fill(const std::uint8_t *data, std::size_t size)
    {
        require(::ftruncate(m_handle, 0) == 0);
        require(::pwrite(m_handle, data, size, 0) == ssize_t(size));
    }
    void fill(const QByteArray &bytes)
    {
        fill(reinterpret_cast<const std::uint8_t *>(bytes.constData()), std::size_t(bytes.size()));
    }

private:
    int m_handle;
};

/// A folder for files that are replaced; in memory, too, where the system offers that.
inline QString scratchFolder()
{
    static const QTemporaryDir folder(
        (QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm") : QDir::tempPath())
        + QStringLiteral("/xq-fuzz-XXXXXX"));
    require(folder.isValid());
    return folder.path();
}
