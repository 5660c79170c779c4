// SPDX-License-Identifier: Apache-2.0
#include "host/platform/WholeFile.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Velmar {

namespace {

constexpr QIODevice::OpenMode toWrite = QIODevice::WriteOnly | QIODevice::Unbuffered;

bool fail(QString *error, const QString &reason)
{
    *error = reason;
    return false;
}

/// In as many steps as it takes: a part that fits is no error to QFile, and what is left would fail
/// without a reason.
bool writeAll(QFile &file, const QByteArray &content, QString *error)
{
    qint64 done = 0;
    while (done < content.size()) {
        const qint64 count = file.write(content.constData() + done, content.size() - done);
        if (count <= 0)
            return fail(error, file.errorString());
        done += count;
    }
    return true;
}

bool flushToDisk(const QFile &file, QString *error)
{
    // A file system that knows no flushing says so by these.
    return ::fsync(file.handle()) == 0 || errno == EINVAL || errno == ENOTSUP
        || fail(error, qt_error_string(errno));
}

bool writeInPlace(const QString &path, const QByteArray &content, QString *error)
{
    QFile file(path);
    if (!file.open(toWrite))
        return fail(error, file.errorString());
    return writeAll(file, content, error)
        && (!QFileInfo(path).isFile() || flushToDisk(file, error));
}

/// Whether the new file is now as the old one, for everybody.
bool takeOver(const QFile &file, const QString &old)
{
    struct stat mine;
    struct stat its;
    if (::stat(QFile::encodeName(old).constData(), &its) != 0 || ::fstat(file.handle(), &mine) != 0)
        return false;
    if ((mine.st_uid != its.st_uid || mine.st_gid != its.st_gid)
        && ::fchown(file.handle(), its.st_uid, its.st_gid) != 0)
        return false;
    if (mine.st_mode != its.st_mode)
        ::fchmod(file.handle(), its.st_mode & 07777);
    return ::fstat(file.handle(), &mine) == 0 && mine.st_mode == its.st_mode;
}

/// 0, or the error.
int renameToNew(const QByteArray &from, const QByteArray &to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    struct stat status; // a file system that cannot look by itself
    if (::lstat(to.constData(), &status) == 0)
        return EEXIST;
    return std::rename(from.constData(), to.constData()) == 0 ? 0 : errno;
}

/// Removed unless it got its name.
class Unfinished
{
public:
    explicit Unfinished(const QString &path)
        : m_file(WholeFile::nameBeside(path))
        , m_isThere(m_file.open(toWrite | QIODevice::NewOnly))
    {
    }
    ~Unfinished()
    {
        if (m_isThere)
            QFile::remove(m_file.fileName());
    }
    Q_DISABLE_COPY(Unfinished)

    QFile &file() { return m_file; }

    /// 0, or the error.
    int takeName(const QString &path, WholeFile::Existing existing)
    {
        const QByteArray from = QFile::encodeName(m_file.fileName());
        const QByteArray to = QFile::encodeName(path);
        int error = 0;
        if (existing == WholeFile::Existing::Keep)
            error = renameToNew(from, to);
        else if (std::rename(from.constData(), to.constData()) != 0)
            error = errno;
        m_isThere = error != 0;
        return error;
    }

private:
    QFile m_file;
    bool m_isThere;
};

} // namespace

bool WholeFile::write(const QString &path, const QByteArray &content, Existing existing,
                      QString *error)
{
    const QFileInfo info(path);
    const bool isThere = info.exists();
    if (existing == Existing::Keep && (isThere || info.isSymLink()))
        return true;
    if (isThere ? !info.isFile() : info.isSymLink())
        return writeInPlace(path, content, error); // a device, or where a link leads
    if (isThere && !info.isWritable())
        return fail(error, qt_error_string(EACCES)); // its directory would allow it
    const QString target = isThere ? info.canonicalFilePath() : info.absoluteFilePath();
    Unfinished unfinished(target);
    QFile &file = unfinished.file();
    const bool mayReplace = file.isOpen() && (!isThere || takeOver(file, target));
    if (!mayReplace)
        return isThere ? writeInPlace(target, content, error) : fail(error, file.errorString());
    if (!writeAll(file, content, error) || !flushToDisk(file, error))
        return false;
    file.close();
    const int problem = unfinished.takeName(target, existing);
    if (problem == 0 || (problem == EEXIST && existing == Existing::Keep))
        return true;
    const bool isRefused = problem == EPERM || problem == EACCES || problem == EBUSY;
    return isThere && isRefused ? writeInPlace(target, content, error)
                                : fail(error, qt_error_string(problem));
}

bool WholeFile::rename(const QString &from, const QString &to, QString *error)
{
    const int problem = renameToNew(QFile::encodeName(from), QFile::encodeName(to));
    return problem == 0 || fail(error, qt_error_string(problem));
}

QString WholeFile::nameBeside(const QString &path)
{
    constexpr int nameLength = 80; // a name may be as long as it can be already
    const QFileInfo info(path);
    QString name;
    do {
        const QString number = QString::number(QRandomGenerator::system()->generate(), 16);
        name = info.path() + QLatin1String("/.") + info.fileName().left(nameLength)
            + QLatin1Char('.') + number.rightJustified(8, QLatin1Char('0'));
    } while (QFileInfo::exists(name));
    return name;
}

} // namespace Velmar
