// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ProfileFolders.h"

#include "host/platform/Directories.h"

#include <QDir>
#include <QFile>

#include <csignal>
#include <sys/resource.h>

namespace Velmar::Test {

namespace {

unsigned long long setFileSizeLimit(unsigned long long bytes)
{
    rlimit limit;
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0)
        qFatal("cannot read the limit of file sizes");
    const unsigned long long before = limit.rlim_cur;
    limit.rlim_cur = bytes;
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
        qFatal("cannot set the limit of file sizes");
    return before;
}

} // namespace

ProfileFolders::ProfileFolders()
{
    if (!QDir().mkpath(profiles()) || !QDir().mkpath(configuration()))
        qFatal("cannot make folders for a test");
    Directories::setSettingsDirectory(settings());
    Directories::setReadonlyConfigDirectory(configuration());
}

QString ProfileFolders::settings() const
{
    return m_root.filePath(QStringLiteral("settings"));
}

QString ProfileFolders::profiles() const
{
    return m_root.filePath(QStringLiteral("settings/osd"));
}

QString ProfileFolders::configuration() const
{
    return m_root.filePath(QStringLiteral("usr/share/configuration"));
}

QString ProfileFolders::writeProfile(const QString &fileName, const QByteArray &content) const
{
    const QString path = profiles() + QLatin1Char('/') + fileName;
    write(path, content);
    return path;
}

void ProfileFolders::write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray ProfileFolders::read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray ProfileFolders::profileXml(const QByteArray &attributes, const QByteArray &children)
{
    return "<PROFILE " + attributes + ">" + children + "</PROFILE>";
}

FullDisk::FullDisk()
    : m_handlerBefore(std::signal(SIGXFSZ, SIG_IGN))
{
    m_before = setFileSizeLimit(0);
}

FullDisk::~FullDisk()
{
    setFileSizeLimit(m_before);
    std::signal(SIGXFSZ, m_handlerBefore);
}

} // namespace Velmar::Test
