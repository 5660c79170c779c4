// SPDX-License-Identifier: Apache-2.0
#include "tests/support/LoggedTest.h"
#include "videooverlay/profiles/ProfileXmlWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QVector>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

using namespace Velmar::VideoOverlay;

// The system calls of a save, counted while a fault is planned: the one with the planned number
// ends the process, as a power cut would, or fails, as on a full disk. A write does half of its
// work.
namespace {

enum class Fault { None, Crash, DiskFull };

Fault plannedFault = Fault::None;
int plannedStep = 0;
int step = 0;

bool watchesModes = false;
QVector<mode_t> watchedModes; ///< of the files that are written to, at each write

constexpr int crashed = 77;

void plan(Fault fault, int at)
{
    plannedFault = fault;
    plannedStep = at;
    step = 0;
}

bool isPlanned()
{
    return plannedFault != Fault::None && ++step == plannedStep;
}

/// What the call that the fault hits gives back, unless the process ends here.
int fail()
{
    if (plannedFault == Fault::Crash)
        ::_exit(crashed);
    errno = ENOSPC;
    return -1;
}

} // namespace

extern "C" { // exported: they stand in for those of the system

Q_DECL_EXPORT ssize_t write(int file, const void *bytes, size_t count)
{
    struct stat status;
    if (watchesModes && ::fstat(file, &status) == 0)
        watchedModes.append(status.st_mode & 07777);
    if (!isPlanned())
        return ::syscall(SYS_write, file, bytes, count);
    ::syscall(SYS_write, file, bytes, count / 2);
    return fail();
}

Q_DECL_EXPORT int fsync(int file)
{
    return isPlanned() ? fail() : int(::syscall(SYS_fsync, file));
}

Q_DECL_EXPORT int rename(const char *from, const char *to) noexcept
{
    return isPlanned() ? fail() : int(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

Q_DECL_EXPORT int ftruncate64(int file, off64_t size) noexcept
{
    return isPlanned() ? fail() : int(::syscall(SYS_ftruncate, file, size));
}

} // extern "C"

namespace {

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

/// A profile of about @p size bytes that differs from others of other sizes everywhere.
QList<ElementParam> profile(int size)
{
    ElementParam param;
    param.insert(s("type"), 0);
    param.insert(s("text"), QString(size, QLatin1Char(char('a' + size % 26))));
    return {param};
}

bool save(const QString &path, int size)
{
    return ProfileXmlWriter().writeElements(path, profile(size));
}

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Runs @p work in a process of its own; what it returned, or minus the signal that ended it.
int inChild(const std::function<int()> &work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        return 255;
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

/// Whoever may do everything is not stopped by permissions.
void becomeNobody()
{
    constexpr uid_t nobody = 65534;
    if (::geteuid() == 0 && ::setuid(nobody) != 0)
        ::_exit(254);
}

} // namespace

class tst_ProfileFileSafety : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void crashAtEachStep_data();
    void crashAtEachStep();
    void diskFullAtEachStep_data();
    void diskFullAtEachStep();
    void limitedFileSize_data();
    void limitedFileSize();
    void keepsPermissions();
    void newFileHasUsualPermissions();
    void keepsSymbolicLinks();
    void danglingLink();
    void chainsOfLinks();
    void longNames_data();
    void longNames();
    void placeMarkersInPaths();
    void directoryNotWritable();
    void directoryNotWritableDiskFull_data();
    void directoryNotWritableDiskFull();
    void fileNotWritable();
    void device();

private:
    void prepare() override
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_path = m_dir->filePath(s("Main.xml"));
        m_new = m_dir->filePath(s("expected"));
        if (!save(m_path, oldSize) || !save(m_new, newSize))
            qFatal("cannot prepare");
        m_oldContent = content(m_path);
        m_newContent = content(m_new);
        QFile::remove(m_new);
    }

    QStringList files() const { return QDir(m_dir->path()).entryList(QDir::Files); }
    QStringList hidden() const { return QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden); }
    QString failure(const QString &path) const
    {
        return s("1 VideoOverlayLibrary: Cannot open profile file for save:") + path;
    }
    /// The directory lets nobody make files, but the file may be changed.
    void closeDirectory()
    {
        constexpr uid_t nobody = 65534;
        QCOMPARE(::chmod(QFile::encodeName(m_dir->path()).constData(), 0555), 0);
        if (::geteuid() == 0)
            QCOMPARE(::chown(QFile::encodeName(m_path).constData(), nobody, nobody), 0);
    }

    static constexpr int oldSize = 50001;
    static constexpr int newSize = 70000;
    static constexpr int manySteps = 100; ///< no save has as many system calls
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
    QString m_new;
    QByteArray m_oldContent;
    QByteArray m_newContent;
};

void tst_ProfileFileSafety::crashAtEachStep_data()
{
    QTest::addColumn<bool>("existing");
    QTest::newRow("over an old file") << true;
    QTest::newRow("new file") << false;
}

void tst_ProfileFileSafety::crashAtEachStep()
{
    QFETCH(bool, existing);
    int steps = 0;
    int status = crashed;
    for (int at = 1; status == crashed; ++at) {
        QFile::remove(m_path);
        if (existing)
            QVERIFY(save(m_path, oldSize));
        status = inChild([&] {
            plan(Fault::Crash, at);
            return save(m_path, newSize) ? 0 : 1;
        });
        QVERIFY(++steps < manySteps);
        const QByteArray found = content(m_path);
        if (status == crashed) {
            QCOMPARE(found, existing ? m_oldContent : QByteArray());
            // What is left behind is not taken for a profile.
            QCOMPARE(files(), existing ? QStringList {s("Main.xml")} : QStringList());
        } else {
            QCOMPARE(status, 0);
            QCOMPARE(found, m_newContent);
        }
    }
    QVERIFY(steps > 3); // write, flush to the disk, rename
}

void tst_ProfileFileSafety::diskFullAtEachStep_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("large") << newSize;
    QTest::newRow("small enough for a buffer") << 10;
}

void tst_ProfileFileSafety::diskFullAtEachStep()
{
    QFETCH(int, size);
    QVERIFY(save(m_new, size));
    const QByteArray expected = content(m_new);
    QVERIFY(QFile::remove(m_new));
    int steps = 0;
    bool saved = false;
    while (!saved) {
        QVERIFY(steps < manySteps);
        plan(Fault::DiskFull, ++steps);
        saved = save(m_path, size);
        plan(Fault::None, 0);
        QCOMPARE(takeLog(), saved ? QStringList() : QStringList {failure(m_path)});
        QCOMPARE(content(m_path), saved ? expected : m_oldContent);
        QCOMPARE(hidden(), QStringList {s("Main.xml")}); // nothing is left behind
    }
    QVERIFY(steps > 3);
}

void tst_ProfileFileSafety::limitedFileSize_data()
{
    QTest::addColumn<int>("limit");
    for (int limit : {0, 1, 4096, 16384, 60000})
        QTest::addRow("%d", limit) << limit;
}

/// The same without the test's own hands in it: the system lets no file grow beyond the limit.
void tst_ProfileFileSafety::limitedFileSize()
{
    QFETCH(int, limit);
    const auto saveLimited = [&](void (*onLimit)(int)) {
        return inChild([&] {
            const struct rlimit size
            {
                rlim_t(limit), rlim_t(limit)
            };
            std::signal(SIGXFSZ, onLimit);
            if (::setrlimit(RLIMIT_FSIZE, &size) != 0)
                return 2;
            return save(m_path, newSize) ? 0 : 1;
        });
    };
    QCOMPARE(saveLimited(SIG_IGN), 1);
    QCOMPARE(content(m_path), m_oldContent);
    QCOMPARE(hidden(), QStringList {s("Main.xml")});
    QCOMPARE(saveLimited(SIG_DFL), -SIGXFSZ); // killed while it writes
    QCOMPARE(content(m_path), m_oldContent);
    QCOMPARE(files(), QStringList {s("Main.xml")});
}

void tst_ProfileFileSafety::keepsPermissions()
{
    for (mode_t mode : {0600, 0640, 0666, 0755}) {
        const QByteArray name = QFile::encodeName(m_path);
        QCOMPARE(::chmod(name.constData(), mode), 0);
        watchesModes = true;
        const bool saved = save(m_path, newSize);
        watchesModes = false;
        QVERIFY(saved);
        // From the first byte on: what only its owner may read is never there for others.
        const QVector<mode_t> modes = std::exchange(watchedModes, {});
        QVERIFY(!modes.isEmpty());
        for (mode_t watched : modes)
            QCOMPARE(watched, mode);
        struct stat status;
        QCOMPARE(::stat(name.constData(), &status), 0);
        QCOMPARE(status.st_mode & 07777, mode);
    }
}

void tst_ProfileFileSafety::newFileHasUsualPermissions()
{
    const mode_t old = ::umask(027);
    const bool saved = save(m_new, newSize);
    ::umask(old);
    QVERIFY(saved);
    struct stat status;
    QCOMPARE(::stat(QFile::encodeName(m_new).constData(), &status), 0);
    QCOMPARE(status.st_mode & 07777, mode_t(0640));
}

void tst_ProfileFileSafety::keepsSymbolicLinks()
{
    const QString link = m_dir->filePath(s("link"));
    const QString second = m_dir->filePath(s("second"));
    QVERIFY(QFile::link(s("Main.xml"), link)); // relative
    QVERIFY(QFile::link(link, second));
    QVERIFY(save(second, newSize));
    QVERIFY(QFileInfo(second).isSymLink());
    QVERIFY(QFileInfo(link).isSymLink());
    QVERIFY(!QFileInfo(m_path).isSymLink());
    QCOMPARE(content(m_path), m_newContent);
}

void tst_ProfileFileSafety::danglingLink()
{
    const QString link = m_dir->filePath(s("link"));
    QVERIFY(QFile::link(m_new, link));
    QVERIFY(save(link, newSize));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(content(m_new), m_newContent);

    const QString circle = m_dir->filePath(s("circle"));
    QVERIFY(QFile::link(circle, circle));
    QVERIFY(!save(circle, newSize));
    QCOMPARE(takeLog(), QStringList {failure(circle)});
    QVERIFY(QFileInfo(circle).isSymLink());
}

/// As many as the system follows when it reads.
void tst_ProfileFileSafety::chainsOfLinks()
{
    QString last = m_path;
    for (int i = 1; i <= 41; ++i) {
        const QString link = m_dir->filePath(s("link%1").arg(i));
        QVERIFY(QFile::link(last, link));
        last = link;
    }
    QVERIFY(save(m_dir->filePath(s("link40")), newSize));
    QCOMPARE(content(m_path), m_newContent);
    QVERIFY(!save(last, oldSize));
    QCOMPARE(takeLog(), QStringList {failure(last)});
    QCOMPARE(content(m_path), m_newContent);
}

void tst_ProfileFileSafety::longNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("255 bytes") << s("p").repeated(251) + s(".xml");
    QTest::newRow("three bytes each") << s("€").repeated(83) + s(".xml");
    QTest::newRow("four bytes each") << s("x🙂").repeated(50) + s(".xml");
}

/// A name that leaves no room for anything beside it can be saved, and as safely as others.
void tst_ProfileFileSafety::longNames()
{
    QFETCH(QString, name);
    const QString path = m_dir->filePath(name);
    QVERIFY(save(path, oldSize));
    QCOMPARE(content(path), m_oldContent);
    QFile old(path);
    QVERIFY(old.open(QIODevice::ReadOnly));
    QVERIFY(save(path, newSize));
    QCOMPARE(old.readAll(), m_oldContent); // replaced, not overwritten
    QCOMPARE(content(path), m_newContent);
    QCOMPARE(hidden().size(), 2);
}

void tst_ProfileFileSafety::placeMarkersInPaths()
{
    for (const char *name : {"%1", "%2", "%3", "%1%2%3"}) {
        const QString directory = m_dir->filePath(s(name));
        QVERIFY(QDir().mkdir(directory));
        const QString path = directory + QLatin1Char('/') + s(name) + s(".xml");
        QVERIFY2(save(path, newSize), name);
        QCOMPARE(content(path), m_newContent);
        QCOMPARE(QDir(directory).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }
    QCOMPARE(files(), QStringList {s("Main.xml")});
}

void tst_ProfileFileSafety::directoryNotWritable()
{
    closeDirectory();
    for (int size : {newSize, 10, oldSize}) { // longer, shorter, longer
        QCOMPARE(inChild([&] {
                     becomeNobody();
                     return save(m_path, size) ? 0 : 1;
                 }),
                 0);
        QVERIFY(content(m_path).contains(QByteArray(size, char('a' + size % 26)) + "</TEXT>"));
        QVERIFY(content(m_path).endsWith("</PROFILE>\n"));
        QCOMPARE(content(m_path).count("</PROFILE>"), 1);
        QCOMPARE(inChild([&] {
                     becomeNobody();
                     return save(m_new, size) ? 0 : 1;
                 }),
                 1);
    }
}

void tst_ProfileFileSafety::directoryNotWritableDiskFull_data()
{
    diskFullAtEachStep_data();
}

/// Without a second file the old content is put back.
void tst_ProfileFileSafety::directoryNotWritableDiskFull()
{
    QFETCH(int, size);
    QVERIFY(save(m_new, size));
    const QByteArray expected = content(m_new);
    closeDirectory();
    int steps = 0;
    int status = 1;
    while (status == 1) {
        QVERIFY(++steps < manySteps);
        status = inChild([&] {
            becomeNobody();
            plan(Fault::DiskFull, steps);
            return save(m_path, size) ? 0 : 1;
        });
        QCOMPARE(content(m_path), status == 0 ? expected : m_oldContent);
    }
    QCOMPARE(status, 0);
    QVERIFY(steps > 3); // write, flush to the disk, cut off what is left of the old content
}

void tst_ProfileFileSafety::fileNotWritable()
{
    QCOMPARE(::chmod(QFile::encodeName(m_dir->path()).constData(), 0777), 0);
    QCOMPARE(::chmod(QFile::encodeName(m_path).constData(), 0444), 0);
    QCOMPARE(inChild([&] {
                 becomeNobody();
                 return save(m_path, newSize) ? 0 : 1;
             }),
             1);
    QCOMPARE(content(m_path), m_oldContent);
    QCOMPARE(hidden(), QStringList {s("Main.xml")});
}

void tst_ProfileFileSafety::device()
{
    for (int size : {newSize, 10}) { // one fits a buffer
        QVERIFY(!save(s("/dev/full"), size));
        QCOMPARE(takeLog(), QStringList {failure(s("/dev/full"))});
    }
    QVERIFY(save(s("/dev/null"), newSize));
    struct stat status;
    QCOMPARE(::stat("/dev/null", &status), 0);
    QVERIFY(S_ISCHR(status.st_mode));
}

QTEST_GUILESS_MAIN(tst_ProfileFileSafety)
#include "tst_ProfileFileSafety.moc"
