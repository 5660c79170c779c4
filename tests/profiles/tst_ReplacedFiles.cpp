// SPDX-License-Identifier: Apache-2.0
#include "tests/support/LoggedTest.h"
#include "videooverlay/profiles/ProfileXmlWriter.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <grp.h>
#include <memory>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Velmar::VideoOverlay;

// Some file systems refuse what others allow. Root can make such a place; for everybody else, the
// system calls are made to refuse.
namespace {

int renameError = 0; ///< 0: as the system does
int modeError = 0;
int ownerError = 0;
int flushError = 0;
std::function<void()> beforeRename;

int refusal(int error)
{
    errno = error;
    return -1;
}

} // namespace

extern "C" { // exported: they stand in for those of the system

Q_DECL_EXPORT int rename(const char *from, const char *to) noexcept
{
    if (beforeRename)
        beforeRename();
    return renameError ? refusal(renameError)
                       : int(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

Q_DECL_EXPORT int fchmod(int file, mode_t mode) noexcept
{
    return modeError ? refusal(modeError) : int(::syscall(SYS_fchmod, file, mode));
}

Q_DECL_EXPORT int fchown(int file, uid_t owner, gid_t group) noexcept
{
    return ownerError ? refusal(ownerError) : int(::syscall(SYS_fchown, file, owner, group));
}

Q_DECL_EXPORT int fsync(int file)
{
    return flushError ? refusal(flushError) : int(::syscall(SYS_fsync, file));
}

} // extern "C"

namespace {

constexpr uid_t alice = 64001;
constexpr uid_t bob = 64002;
constexpr gid_t shared = 64100;

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

bool isRoot()
{
    return ::geteuid() == 0;
}

bool save(const QString &path, const char *text)
{
    ElementParam param;
    param.insert(s("type"), 0);
    param.insert(s("text"), s(text));
    return ProfileXmlWriter().writeElements(path, {param});
}

bool holds(const QString &path, const char *text)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray content = file.readAll();
    return content.contains(QByteArray("<TEXT>") + text + "</TEXT>")
        && content.endsWith("</PROFILE>\n") && content.count("</PROFILE>") == 1;
}

struct stat statusOf(const QString &path)
{
    struct stat status = {};
    ::stat(QFile::encodeName(path).constData(), &status);
    return status;
}

void own(const QString &path, uid_t owner, gid_t group, mode_t mode)
{
    const QByteArray name = QFile::encodeName(path);
    if (isRoot() && ::chown(name.constData(), owner, group) != 0)
        qFatal("cannot give %s away", name.constData());
    if (::chmod(name.constData(), mode) != 0)
        qFatal("cannot change the mode of %s", name.constData());
}

/// Runs @p work in a process of its own; what it returned.
int inChild(const std::function<int()> &work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return 255;
    return WEXITSTATUS(status);
}

/// Saves as @p user of the shared group, where the test may choose; as itself otherwise.
bool saveAs(uid_t user, const QString &path, const char *text)
{
    return inChild([&] {
               const gid_t group = shared;
               if (isRoot()
                   && (::setgroups(1, &group) != 0 || ::setgid(user) != 0 || ::setuid(user) != 0))
                   return 254;
               return save(path, text) ? 0 : 1;
           })
        == 0;
}

/// A list of access rights that lets one more user write: version, then tag, rights and id of each.
QByteArray accessList(quint32 user)
{
    struct Entry
    {
        quint16 tag;
        quint16 rights;
        quint32 id;
    };
    constexpr quint32 nobody = 0xffffffff;
    const Entry entries[] = {{0x01, 6, nobody},
                             {0x02, 6, user},
                             {0x04, 4, nobody},
                             {0x10, 6, nobody},
                             {0x20, 0, nobody}};
    const quint32 version = 2;
    QByteArray bytes(reinterpret_cast<const char *>(&version), sizeof version);
    return bytes.append(reinterpret_cast<const char *>(entries), sizeof entries);
}

QByteArray accessListOf(const QString &path)
{
    QByteArray list(200, '\0');
    const ssize_t size = ::getxattr(QFile::encodeName(path).constData(), "system.posix_acl_access",
                                    list.data(), size_t(list.size()));
    return list.left(int(std::max<ssize_t>(size, 0)));
}

} // namespace

/// What a plain opening for writing would have written is written, and stays whose it was.
class tst_ReplacedFiles : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void refusedRename_data();
    void refusedRename();
    void fileThatGoesMeanwhile();
    void mountedFile();
    void refusedMode();
    void refusedOwner();
    void stickyFolder();
    void ownerStays_data();
    void ownerStays();
    void groupMembersTakeTurns();
    void accessListStays();
    void fileThatCannotBeRead();
    void flushIsUnknown();
    void linkThroughLinkedFolder();
    void linkIntoNowhere();
    void nameWithZero();

private:
    void prepare() override
    {
        renameError = modeError = ownerError = flushError = 0;
        beforeRename = nullptr;
        m_dir = std::make_unique<QTemporaryDir>();
        own(m_dir->path(), ::geteuid(), ::getegid(), 0777);
        m_path = m_dir->filePath(s("Main.xml"));
        if (!save(m_path, "old text that is longer"))
            qFatal("cannot prepare");
    }

    QStringList files() const
    {
        return QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }
    QString failure(const QString &path) const
    {
        return s("1 VideoOverlayLibrary: Cannot open profile file for save:") + path;
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
};

void tst_ReplacedFiles::refusedRename_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("the file of another owner in a sticky folder") << EPERM;
    QTest::newRow("a mounted file") << EBUSY;
    QTest::newRow("another file system") << EXDEV;
    QTest::newRow("a security module") << EACCES;
    QTest::newRow("not supported") << ENOSYS;
}

void tst_ReplacedFiles::refusedRename()
{
    QFETCH(int, error);
    const ino_t before = statusOf(m_path).st_ino;
    renameError = error;
    QVERIFY(save(m_path, "new"));
    QVERIFY(holds(m_path, "new"));
    QCOMPARE(statusOf(m_path).st_ino, before);

    const QString other = m_dir->filePath(s("Other.xml"));
    QVERIFY(save(other, "first"));
    QVERIFY(holds(other, "first"));
    QCOMPARE(files(), (QStringList {s("Main.xml"), s("Other.xml")}));
}

/// What is written to a file that has lost its name is not saved.
void tst_ReplacedFiles::fileThatGoesMeanwhile()
{
    for (int error : {EPERM, ENOENT}) {
        QVERIFY(save(m_path, "old"));
        beforeRename = [this] { QFile::remove(m_path); };
        renameError = error;
        QVERIFY(!save(m_path, "new"));
        QCOMPARE(takeLog(), QStringList {failure(m_path)});
        QCOMPARE(files(), QStringList());
        beforeRename = nullptr;
        renameError = 0;
    }
}

/// As containers hand in a single file.
void tst_ReplacedFiles::mountedFile()
{
    const QString real = m_dir->filePath(s("real"));
    QVERIFY(save(real, "old"));
    const int status = inChild([&] {
        const QByteArray from = QFile::encodeName(real);
        const QByteArray to = QFile::encodeName(m_path);
        const bool isMounted = ::unshare(isRoot() ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS) == 0
            && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
            && ::mount(from.constData(), to.constData(), nullptr, MS_BIND, nullptr) == 0;
        if (!isMounted)
            renameError = EBUSY; // the mount is not allowed here; it would say the same
        if (!save(m_path, "new"))
            return 1;
        return holds(m_path, "new") && holds(real, isMounted ? "new" : "old") ? 0 : 2;
    });
    QCOMPARE(status, 0);
    QCOMPARE(files(), (QStringList {s("Main.xml"), s("real")}));
}

void tst_ReplacedFiles::refusedMode()
{
    for (int error : {EPERM, ENOTSUP}) {
        own(m_path, ::geteuid(), ::getegid(), 0664);
        modeError = error;
        QVERIFY(save(m_path, error == EPERM ? "a" : "b"));
        modeError = 0;
        QVERIFY(holds(m_path, error == EPERM ? "a" : "b"));
        QCOMPARE(statusOf(m_path).st_mode & 07777, mode_t(0664));
        QCOMPARE(files(), QStringList {s("Main.xml")});
    }
}

void tst_ReplacedFiles::refusedOwner()
{
    own(m_path, alice, shared, 0666);
    const struct stat before = statusOf(m_path);
    ownerError = EPERM;
    QVERIFY(save(m_path, "new"));
    QVERIFY(holds(m_path, "new"));
    QCOMPARE(statusOf(m_path).st_uid, before.st_uid);
    QCOMPARE(statusOf(m_path).st_gid, before.st_gid);
    QCOMPARE(files(), QStringList {s("Main.xml")});
}

void tst_ReplacedFiles::stickyFolder()
{
    own(m_dir->path(), ::geteuid(), ::getegid(), 01777);
    own(m_path, alice, alice, 0666);
    if (!isRoot())
        renameError = ownerError = EPERM;
    const struct stat before = statusOf(m_path);
    QVERIFY(saveAs(bob, m_path, "new"));
    QVERIFY(holds(m_path, "new"));
    QCOMPARE(statusOf(m_path).st_uid, before.st_uid);
    QCOMPARE(files(), QStringList {s("Main.xml")});
}

void tst_ReplacedFiles::ownerStays_data()
{
    QTest::addColumn<int>("mode");
    for (int mode : {0600, 0644, 0660, 0666})
        QTest::addRow("%o", unsigned(mode)) << mode;
}

/// Whoever may do everything must not take the file from its owner by saving once.
void tst_ReplacedFiles::ownerStays()
{
    QFETCH(int, mode);
    own(m_path, alice, shared, mode_t(mode));
    const struct stat before = statusOf(m_path);
    QVERIFY(save(m_path, "root's"));
    QCOMPARE(statusOf(m_path).st_uid, before.st_uid);
    QCOMPARE(statusOf(m_path).st_gid, before.st_gid);
    QCOMPARE(statusOf(m_path).st_mode & 07777, mode_t(mode));
    QVERIFY(saveAs(alice, m_path, "the owner's"));
    QVERIFY(holds(m_path, "the owner's"));
}

void tst_ReplacedFiles::groupMembersTakeTurns()
{
    own(m_dir->path(), alice, shared, 0775);
    own(m_path, alice, shared, 0664);
    const struct stat before = statusOf(m_path);
    int turn = 0;
    for (uid_t user : {bob, alice, bob}) {
        const QByteArray text = QByteArray::number(++turn);
        QVERIFY(saveAs(user, m_path, text.constData()));
        QVERIFY(holds(m_path, text.constData()));
        QCOMPARE(statusOf(m_path).st_uid, before.st_uid);
        QCOMPARE(statusOf(m_path).st_gid, before.st_gid);
        QCOMPARE(statusOf(m_path).st_mode & 07777, mode_t(0664));
    }
    QCOMPARE(files(), QStringList {s("Main.xml")});
}

void tst_ReplacedFiles::accessListStays()
{
    const QByteArray list = accessList(bob);
    ::setxattr(QFile::encodeName(m_path).constData(), "system.posix_acl_access", list.constData(),
               size_t(list.size()), 0); // a file system may have none: it stays without, then
    const QByteArray before = accessListOf(m_path);
    QVERIFY(save(m_path, "new"));
    QVERIFY(holds(m_path, "new"));
    QCOMPARE(accessListOf(m_path), before);
}

/// Opening it for writing is all that is asked for.
void tst_ReplacedFiles::fileThatCannotBeRead()
{
    own(m_dir->path(), ::geteuid(), ::getegid(), 0555);
    own(m_path, alice, alice, 0222);
    QVERIFY(saveAs(alice, m_path, "new"));
    own(m_dir->path(), ::geteuid(), ::getegid(), 0755);
    own(m_path, alice, alice, 0666);
    QVERIFY(holds(m_path, "new"));
}

void tst_ReplacedFiles::flushIsUnknown()
{
    flushError = EINVAL; // what a file system without it says
    QVERIFY(save(m_path, "new"));
    QVERIFY(holds(m_path, "new"));
    flushError = EIO;
    QVERIFY(!save(m_path, "newer"));
    QVERIFY(holds(m_path, "new"));
    QCOMPARE(takeLog(), QStringList {failure(m_path)});
    QCOMPARE(files(), QStringList {s("Main.xml")});
}

/// Where such a link ends depends on where the linked folder lies, not on its letters.
void tst_ReplacedFiles::linkThroughLinkedFolder()
{
    QVERIFY(QDir(m_dir->path()).mkpath(s("far/away/inner")));
    QVERIFY(QDir(m_dir->path()).mkpath(s("links")));
    const QString real = m_dir->filePath(s("far/away/real.xml"));
    QVERIFY(save(real, "old"));
    QVERIFY(QFile::link(m_dir->filePath(s("far/away/inner")), m_dir->filePath(s("links/inner"))));
    for (const char *target : {"inner/../real.xml", "inner/../made.xml"}) {
        const QString link = m_dir->filePath(s("links/link.xml"));
        QFile::remove(link);
        QCOMPARE(::symlink(target, QFile::encodeName(link).constData()), 0);
        QVERIFY2(save(link, "new"), target);
        QVERIFY(QFileInfo(link).isSymLink());
        QVERIFY(holds(link, "new"));
    }
    QVERIFY(holds(real, "new"));
    QVERIFY(holds(m_dir->filePath(s("far/away/made.xml")), "new"));
    QCOMPARE(QDir(m_dir->filePath(s("links"))).entryList(QDir::Files | QDir::Hidden),
             QStringList {s("link.xml")});
}

void tst_ReplacedFiles::linkIntoNowhere()
{
    const QString link = m_dir->filePath(s("link.xml"));
    QVERIFY(QFile::link(m_dir->filePath(s("nowhere/x.xml")), link));
    QVERIFY(!save(link, "new"));
    QCOMPARE(takeLog(), QStringList {failure(link)});
    QVERIFY(QFileInfo(link).isSymLink());
}

/// The system would take such a name to end at the zero, and replace another file.
void tst_ReplacedFiles::nameWithZero()
{
    const QString path = m_path + QChar::Null + s("more");
    QVERIFY(!save(path, "new"));
    QCOMPARE(takeLog(), QStringList {failure(path)});
    QVERIFY(holds(m_path, "old text that is longer"));
    QVERIFY(!save(QString(), "new"));
    QCOMPARE(takeLog(), QStringList {failure(QString())});
}

QTEST_GUILESS_MAIN(tst_ReplacedFiles)
#include "tst_ReplacedFiles.moc"
