// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace Velmar::Test {

/// The host's directories, empty and of their own for one test: settings with its folder of
/// profiles, and the read-only configuration.
class ProfileFolders
{
public:
    ProfileFolders();

    QString settings() const;
    QString profiles() const;
    QString configuration() const;

    /// Writes a file into the folder of profiles and returns its path.
    QString writeProfile(const QString &fileName, const QByteArray &content) const;

    static void write(const QString &path, const QByteArray &content);
    static QByteArray read(const QString &path);

    /// A profile file whose root has @p attributes and @p children.
    static QByteArray profileXml(const QByteArray &attributes, const QByteArray &children = {});

private:
    QTemporaryDir m_root;
};

/// As long as it lives, no file of this process can be made or grow, as on a full disk. For root,
/// too, whom no permission keeps from writing.
class FullDisk
{
public:
    FullDisk();
    ~FullDisk();

private:
    Q_DISABLE_COPY_MOVE(FullDisk)

    unsigned long long m_before = 0;
    void (*m_handlerBefore)(int);
};

} // namespace Velmar::Test
