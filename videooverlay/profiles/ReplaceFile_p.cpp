// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/ReplaceFile_p.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTextStream>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace Velmar::VideoOverlay {

// The system's own calls: what they refuse, and why, decides here.
namespace {

constexpr int maximumLinks = 40; // as many as the system follows itself
constexpr mode_t modeBits = 07777;

class Descriptor
{
public:
    explicit Descriptor(int number = -1)
        : m_number(number)
    {
    }
    ~Descriptor() { close(); }
    Q_DISABLE_COPY(Descriptor)

    void take(int number)
    {
        close();
        m_number = number;
    }
    bool close()
    {
        const int number = m_number;
        m_number = -1;
        return number < 0 || ::close(number) == 0;
    }

    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }

private:
    int m_number;
};

int openFile(const QByteArray &path, int flags, mode_t mode = 0)
{
    return ::open(path.constData(), flags | O_CLOEXEC, mode);
}

QByteArray encode(const QString &text)
{
    QByteArray bytes;
    QTextStream stream(&bytes, QIODevice::WriteOnly); // without a codec of its own: the system's
    stream << text;
    stream.flush();
    return bytes;
}

/// Empty for a name that the system would understand as another one.
QByteArray nameOf(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    return name.contains('\0') || QFile::decodeName(name) != path ? QByteArray() : name;
}

/// With its end, and without links; empty when there is no such directory.
QByteArray directoryOf(const QByteArray &path)
{
    const QByteArray directory = path.left(path.lastIndexOf('/') + 1);
    const std::unique_ptr<char, void (*)(void *)> real(
        ::realpath(directory.isEmpty() ? "." : directory.constData(), nullptr), &std::free);
    if (!real)
        return {};
    const QByteArray result(real.get());
    return result.endsWith('/') ? result : result + '/';
}

/// Where the links end, also when nothing is there yet; empty when they lead in a circle or into a
/// directory that is not there. Step by step as the system goes: where ".." leads behind a linked
/// directory, the letters of a path do not tell.
QByteArray resolved(QByteArray path)
{
    for (int links = 0; links <= maximumLinks && !path.isEmpty(); ++links) {
        const QByteArray directory = directoryOf(path);
        if (directory.isEmpty())
            return {};
        path = directory + path.mid(path.lastIndexOf('/') + 1);
        std::array<char, 4096> target; // longer than any
        const ssize_t size = ::readlink(path.constData(), target.data(), target.size());
        if (size < 0)
            return path;
        const QByteArray next(target.data(), int(size));
        path = next.startsWith('/') ? next : directory + next;
    }
    return {};
}

bool writeAll(int file, const QByteArray &bytes)
{
    for (int done = 0; done < bytes.size();) {
        const ssize_t count = ::write(file, bytes.constData() + done, size_t(bytes.size() - done));
        if (count < 0 && errno != EINTR)
            return false;
        done += int(std::max<ssize_t>(count, 0));
    }
    return true;
}

/// Also where the file system knows no flushing.
bool flushToDisk(int file)
{
    return ::fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP;
}

/// What another name for a file may be refused for where its content may be changed. Not what a
/// disk that fails says: that would fail again, in the middle of the only copy.
bool isRefusal(int error)
{
    static constexpr std::array refusals {EPERM, EACCES, EBUSY, EXDEV, EINVAL, ENOSYS, ENOTSUP};
    return std::find(refusals.begin(), refusals.end(), error) != refusals.end();
}

/// A hidden name: what a power cut leaves behind must not be listed as a profile. Only the start of
/// the target's own is in it, since that may be as long as a name can be.
QByteArray nameBeside(const QByteArray &target)
{
    constexpr int nameLength = 80; // of at most three bytes each
    const int end = target.lastIndexOf('/') + 1;
    const QString name = QFile::decodeName(target.mid(end)).left(nameLength);
    const QByteArray number
        = QByteArray::number(QRandomGenerator::system()->generate(), 16).rightJustified(8, '0');
    return target.left(end) + '.' + QFile::encodeName(name) + '.' + number;
}

/// 0, or the error.
int rename(const QByteArray &from, const QByteArray &to)
{
    return std::rename(from.constData(), to.constData()) == 0 ? 0 : errno;
}

/// Never over another file. 0, or the error.
int renameToNew(const QByteArray &from, const QByteArray &to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    struct stat status; // a file system that cannot look by itself
    return ::lstat(to.constData(), &status) == 0 ? EEXIST : rename(from, to);
}

/// Where letter case does not count, a name in other letters is taken by the file itself.
bool differOnlyInCase(const QString &one, const QString &other)
{
    struct stat first;
    struct stat second;
    return one != other && one.compare(other, Qt::CaseInsensitive) == 0
        && ::lstat(nameOf(one).constData(), &first) == 0
        && ::lstat(nameOf(other).constData(), &second) == 0 && first.st_dev == second.st_dev
        && first.st_ino == second.st_ino;
}

/// A file beside the target that is removed again unless it takes the target's name.
class Replacement
{
public:
    Replacement(const QByteArray &target, mode_t mode)
        : m_target(target)
    {
        constexpr int attempts = 100;
        for (int i = 0; i < attempts && !m_file.isOpen(); ++i) {
            m_name = nameBeside(target);
            m_file.take(openFile(m_name, O_WRONLY | O_CREAT | O_EXCL, mode));
            if (!m_file.isOpen() && errno != EEXIST)
                break;
        }
        m_isThere = m_file.isOpen();
    }
    ~Replacement()
    {
        if (m_isThere)
            ::unlink(m_name.constData());
    }
    Q_DISABLE_COPY(Replacement)

    bool isOpen() const { return m_file.isOpen(); }
    int file() const { return m_file.number(); }

    /// False when a stranger would still see whose file the old one was.
    bool takeOver(const struct stat &old) const
    {
        struct stat mine;
        if (::fstat(file(), &mine) != 0)
            return false;
        if ((mine.st_uid != old.st_uid || mine.st_gid != old.st_gid)
            && ::fchown(file(), old.st_uid, old.st_gid) != 0)
            return false;
        if (::fstat(file(), &mine) == 0 && mine.st_mode != old.st_mode)
            ::fchmod(file(), old.st_mode & modeBits);
        return ::fstat(file(), &mine) == 0 && mine.st_uid == old.st_uid && mine.st_gid == old.st_gid
            && mine.st_mode == old.st_mode;
    }

    bool finish() { return flushToDisk(file()) && m_file.close(); }

    /// 0, or the error that kept it from taking the name.
    int takeName(Existing existing)
    {
        const int error = existing == Existing::Replace ? rename(m_name, m_target)
                                                        : renameToNew(m_name, m_target);
        m_isThere = error != 0;
        return error;
    }

private:
    QByteArray m_target;
    QByteArray m_name;
    Descriptor m_file;
    bool m_isThere = false;
};

/// False when it could not be read to its end.
bool readAll(int file, const std::function<bool(const QByteArray &)> &use)
{
    QByteArray part(64 * 1024, Qt::Uninitialized);
    for (;;) {
        const ssize_t count = ::read(file, part.data(), size_t(part.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count == 0;
        if (!use(part.left(int(count))))
            return false;
    }
}

/// Writes over the old bytes without giving up their room first, so that they can be put back on a
/// full disk. A file that may not be read cannot be put back.
bool writeInPlace(int file, const QByteArray &bytes)
{
    QByteArray old;
    const bool canBeRead = (::fcntl(file, F_GETFL) & O_ACCMODE) == O_RDWR;
    const auto keep = [&old](const QByteArray &part) {
        old += part;
        return true;
    };
    if (canBeRead && !readAll(file, keep))
        return false;
    if (::lseek(file, 0, SEEK_SET) == 0 && writeAll(file, bytes) && flushToDisk(file)
        && ::ftruncate64(file, bytes.size()) == 0)
        return true;
    if (canBeRead && ::lseek(file, 0, SEEK_SET) == 0 && writeAll(file, old)
        && ::ftruncate64(file, old.size()) == 0)
        flushToDisk(file);
    return false;
}

/// Whether it can still be found there: what is written to a file without a name is lost.
bool isNamed(int file, const QByteArray &path)
{
    struct stat mine;
    struct stat named;
    return ::fstat(file, &mine) == 0 && ::stat(path.constData(), &named) == 0
        && mine.st_dev == named.st_dev && mine.st_ino == named.st_ino;
}

/// Where a new file cannot come under another name first.
bool writeNew(const QByteArray &path, const QByteArray &bytes)
{
    Descriptor file(openFile(path, O_WRONLY | O_CREAT | O_EXCL, 0666));
    if (!file.isOpen())
        return false;
    if (writeAll(file.number(), bytes) && flushToDisk(file.number()) && file.close())
        return true;
    ::unlink(path.constData());
    return false;
}

/// A device or a pipe is written to, never replaced.
bool writeDevice(const QByteArray &path, const QByteArray &bytes)
{
    Descriptor file(openFile(path, O_WRONLY));
    return file.isOpen() && writeAll(file.number(), bytes) && file.close();
}

/// Its rights are more than mode, owner and group, and no copy of it may have them.
bool hasAccessList(int file)
{
    return ::fgetxattr(file, "system.posix_acl_access", nullptr, 0) > 0;
}

bool replaceExisting(const QByteArray &path, const struct stat &status, const QByteArray &bytes)
{
    // That it opens is all that a caller may ask for; its directory may refuse, or allow, more.
    Descriptor old(openFile(path, O_RDWR));
    if (!old.isOpen() && errno == EACCES)
        old.take(openFile(path, O_WRONLY));
    if (!old.isOpen())
        return false;
    const auto writeOver
        = [&] { return writeInPlace(old.number(), bytes) && isNamed(old.number(), path); };
    if (hasAccessList(old.number()))
        return writeOver();
    Replacement replacement(path, 0600); // nobody reads what only its owner may
    if (!replacement.isOpen() || !replacement.takeOver(status))
        return writeOver();
    if (!writeAll(replacement.file(), bytes) || !replacement.finish())
        return false;
    const int error = replacement.takeName(Existing::Replace);
    return error == 0 || (isRefusal(error) && writeOver());
}

bool makeFile(const QByteArray &path, const QByteArray &bytes)
{
    Replacement replacement(path, 0666);
    if (!replacement.isOpen())
        return writeNew(path, bytes);
    if (!writeAll(replacement.file(), bytes) || !replacement.finish())
        return false;
    const int error = replacement.takeName(Existing::Replace);
    return error == 0 || (isRefusal(error) && writeNew(path, bytes));
}

} // namespace

bool replaceFile(const QString &path, const QString &text)
{
    const QByteArray target = resolved(nameOf(path));
    if (target.isEmpty())
        return false;
    const QByteArray bytes = encode(text);
    struct stat status;
    if (::stat(target.constData(), &status) != 0)
        return errno == ENOENT && makeFile(target, bytes);
    return S_ISREG(status.st_mode) ? replaceExisting(target, status, bytes)
                                   : writeDevice(target, bytes);
}

bool copyFile(const QString &source, const QString &target, Existing existing)
{
    const QByteArray to = existing == Existing::Keep ? resolved(nameOf(target)) : nameOf(target);
    struct stat status;
    // Reading from a pipe would wait for its writer.
    if (to.isEmpty() || ::stat(nameOf(source).constData(), &status) != 0
        || !S_ISREG(status.st_mode))
        return false;
    const Descriptor from(openFile(nameOf(source), O_RDONLY));
    if (!from.isOpen())
        return false;
    Replacement copy(to, 0600);
    if (!copy.isOpen())
        return false;
    copy.takeOver(status); // as far as it may
    ::fchmod(copy.file(), (status.st_mode & 0777) | S_IRUSR | S_IWUSR);
    const auto write = [&copy](const QByteArray &part) { return writeAll(copy.file(), part); };
    return readAll(from.number(), write) && copy.finish() && copy.takeName(existing) == 0;
}

bool moveFile(const QString &source, const QString &target)
{
    const QByteArray from = nameOf(source);
    const QByteArray to = nameOf(target);
    if (from.isEmpty() || to.isEmpty())
        return false;
    const int error = differOnlyInCase(source, target) ? rename(from, to) : renameToNew(from, to);
    if (error != EXDEV || !copyFile(source, target, Existing::Keep))
        return error == 0;
    if (::unlink(from.constData()) == 0)
        return true;
    ::unlink(to.constData());
    return false;
}

} // namespace Velmar::VideoOverlay
