// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/ProfilesLock.h"

#include <videooverlay/profiles/ProfilesManager.h>

#include <QDir>
#include <QLockFile>

namespace Velmar::Host {

namespace {

/// Of one that does not say whose it is, because its program was killed while it wrote it.
constexpr int StaleMs = 4000; // less than others wait

} // namespace

ProfilesLock::ProfilesLock() = default;

ProfilesLock::~ProfilesLock() = default;

bool ProfilesLock::take(QString *error, int waitMs)
{
    const QDir directory(VideoOverlay::ProfilesManager::profilesDirectory());
    m_file = std::make_unique<QLockFile>(directory.filePath(QStringLiteral(".lock")));
    m_file->setStaleLockTime(StaleMs);
    if (m_file->tryLock(waitMs))
        return true;
    const QLockFile::LockError problem = m_file->error();
    qint64 process = 0;
    QString machine;
    QString program;
    m_file->getLockInfo(&process, &machine, &program);
    m_file.reset();
    if (problem != QLockFile::LockFailedError)
        return true;
    const QString who = program.isEmpty()
        ? QStringLiteral("another program")
        : QStringLiteral("another program (%1, process %2)").arg(program, QString::number(process));
    *error
        = QStringLiteral("%1: %2 is changing the profiles; try again").arg(directory.path(), who);
    return false;
}

} // namespace Velmar::Host
