// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <memory>

QT_BEGIN_NAMESPACE
class QLockFile;
QT_END_NAMESPACE

namespace Velmar::Host {

/// Keeps other programs of this host from changing profiles between reading and saving: what they
/// saved meanwhile would be lost. A hidden file in the profile directory, which goes with this
/// object; one that a killed program left is taken over.
class ProfilesLock
{
public:
    ProfilesLock();
    ~ProfilesLock();

    /// Waits @p waitMs at most. False, and a text in @p error, when another program still changes
    /// profiles then. Where the file cannot be made, because nobody may write into the directory or
    /// the disk is full, nobody is kept out, and that is no failure: saving tells what it meets.
    bool take(QString *error, int waitMs = 5000);

private:
    Q_DISABLE_COPY(ProfilesLock)

    std::unique_ptr<QLockFile> m_file;
};

} // namespace Velmar::Host
