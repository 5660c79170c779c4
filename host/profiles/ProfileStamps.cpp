// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/ProfileStamps.h"

#include <QCryptographicHash>
#include <QFile>

namespace Velmar::Host {

namespace {

/// Empty when there is no such file. Not its time: that may be the same, and differ for nothing.
QByteArray stampOf(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : QByteArray();
}

} // namespace

void ProfileStamps::note(const QString &path)
{
    m_stamps.insert(path, stampOf(path));
}

bool ProfileStamps::isChanged(const QString &path) const
{
    const QByteArray stamp = stampOf(path);
    return !stamp.isEmpty() && stamp != m_stamps.value(path);
}

} // namespace Velmar::Host
