// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

namespace Velmar::Host {

/// What was in the profile files when this program read or wrote them last: a program that runs all
/// day must not save over what another one has changed meanwhile.
class ProfileStamps
{
public:
    void note(const QString &path); ///< it has just been read or written
    /// Whether the file at @p path is there and not as it was noted.
    bool isChanged(const QString &path) const;

private:
    QHash<QString, QByteArray> m_stamps; ///< by path
};

} // namespace Velmar::Host
