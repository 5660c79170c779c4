// SPDX-License-Identifier: Apache-2.0
#include "host/platform/WholeFile.h"

#include "tests/support/ProfileFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

using Velmar::WholeFile;
using Velmar::Test::FullDisk;
using Velmar::Test::ProfileFolders;
using Existing = WholeFile::Existing;

namespace {

int renameError = 0; ///< 0: as the system does
std::function<void()> duringNextFlush;

} // namespace

extern "C" { // exported: they stand in for those of the system

Q_DECL_EXPORT int rename(const char *from, const char *to) noexcept
{
    if (renameError == 0)
        return int(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
    errno = renameError;
    return -1;
}

Q_DECL_EXPORT int fsync(int file)
{
    if (const std::function<void()> work = std::exchange(duringNextFlush, nullptr))
        work();
    return int(::syscall(SYS_fsync, file));
}

} // extern "C"

class tst_WholeFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        renameError = 0;
        m_directory = std::make_unique<QTemporaryDir>();
        m_path = m_directory->filePath(QStringLiteral("a.txt"));
        m_error.clear();
    }

    void written()
    {
        QVERIFY(WholeFile::write(m_path, "one", Existing::Replace, &m_error));
        QCOMPARE(content(), QByteArray("one"));
        QVERIFY(WholeFile::write(m_path, "2", Existing::Replace, &m_error));
        QCOMPARE(content(), QByteArray("2"));
        QVERIFY(WholeFile::write(m_path, "three", Existing::Keep, &m_error));
        QCOMPARE(content(), QByteArray("2"));
        QCOMPARE(files(), QStringList(QStringLiteral("a.txt")));
        QCOMPARE(m_error, QString());
    }

    void keepsWhatComesMeanwhile()
    {
        duringNextFlush = [this] { ProfileFolders::write(m_path, "the other's"); };
        QVERIFY(WholeFile::write(m_path, "mine", Existing::Keep, &m_error));
        QCOMPARE(content(), QByteArray("the other's"));
        QCOMPARE(files(), QStringList(QStringLiteral("a.txt")));
    }

    void fullDisk_data()
    {
        QTest::addColumn<bool>("isThere");
        QTest::addColumn<int>("size");
        for (bool isThere : {false, true}) {
            for (int size : {10, 100000})
                QTest::addRow("%s, %d bytes", isThere ? "old" : "new", size) << isThere << size;
        }
    }

    /// One that fits into a buffer fails as well, and the reason is told.
    void fullDisk()
    {
        QFETCH(bool, isThere);
        QFETCH(int, size);
        if (isThere)
            ProfileFolders::write(m_path, "old");
        {
            const FullDisk full;
            QVERIFY(!WholeFile::write(m_path, QByteArray(size, 'x'), Existing::Replace, &m_error));
        }
        QCOMPARE(m_error, QStringLiteral("File too large"));
        QCOMPARE(content(), isThere ? QByteArray("old") : QByteArray());
        QCOMPARE(files().size(), isThere ? 1 : 0);
    }

    void refusedRename()
    {
        ProfileFolders::write(m_path, "something longer");
        for (int error : {EPERM, EACCES, EBUSY}) {
            renameError = error;
            const QByteArray text = QByteArray::number(error);
            QVERIFY(WholeFile::write(m_path, text, Existing::Replace, &m_error));
            QCOMPARE(content(), text);
        }
        renameError = ENOSPC;
        QVERIFY(!WholeFile::write(m_path, "x", Existing::Replace, &m_error));
        QCOMPARE(m_error, QStringLiteral("No space left on device"));
        QCOMPARE(content(), QByteArray::number(EBUSY));
        QCOMPARE(files(), QStringList(QStringLiteral("a.txt")));
    }

    void modeAndOwnerStay()
    {
        ProfileFolders::write(m_path, "old");
        const QByteArray name = QFile::encodeName(m_path);
        constexpr uid_t alice = 64001;
        const uid_t owner = ::geteuid() == 0 ? alice : ::geteuid();
        QCOMPARE(::chown(name.constData(), owner, gid_t(-1)), 0);
        QCOMPARE(::chmod(name.constData(), 0640), 0);
        QVERIFY(WholeFile::write(m_path, "new", Existing::Replace, &m_error));
        struct stat status;
        QCOMPARE(::stat(name.constData(), &status), 0);
        QCOMPARE(status.st_mode & 07777, mode_t(0640));
        QCOMPARE(status.st_uid, owner);
        QCOMPARE(content(), QByteArray("new"));
    }

    void linksAndDevices()
    {
        const QString link = m_directory->filePath(QStringLiteral("link"));
        QVERIFY(QFile::link(m_path, link));
        for (const char *text : {"first, where there is nothing", "second"}) {
            QVERIFY(WholeFile::write(link, text, Existing::Replace, &m_error));
            QVERIFY(QFileInfo(link).isSymLink());
            QCOMPARE(content(), QByteArray(text));
        }
        QVERIFY(WholeFile::write(QStringLiteral("/dev/null"), "x", Existing::Replace, &m_error));
        QVERIFY(!WholeFile::write(QStringLiteral("/dev/full"), "x", Existing::Replace, &m_error));
        QCOMPARE(m_error, QStringLiteral("No space left on device"));
    }

    void nowhere()
    {
        const QString path = m_directory->filePath(QStringLiteral("none/a.txt"));
        QVERIFY(!WholeFile::write(path, "x", Existing::Replace, &m_error));
        QCOMPARE(m_error, QStringLiteral("No such file or directory"));
        QVERIFY(!WholeFile::write(m_directory->path(), "x", Existing::Replace, &m_error));
        QVERIFY(!m_error.isEmpty());
    }

    void renamed()
    {
        const QString other = m_directory->filePath(QStringLiteral("b.txt"));
        ProfileFolders::write(m_path, "a");
        QVERIFY(WholeFile::rename(m_path, other, &m_error));
        QCOMPARE(files(), QStringList(QStringLiteral("b.txt")));
        ProfileFolders::write(m_path, "c");
        QVERIFY(!WholeFile::rename(other, m_path, &m_error));
        QCOMPARE(m_error, QStringLiteral("File exists"));
        QCOMPARE(content(), QByteArray("c"));
        QCOMPARE(files().size(), 2);
    }

private:
    QByteArray content() const { return ProfileFolders::read(m_path); }
    QStringList files() const
    {
        return QDir(m_directory->path()).entryList(QDir::Files | QDir::Hidden);
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_path;
    QString m_error;
};

QTEST_GUILESS_MAIN(tst_WholeFile)
#include "tst_WholeFile.moc"
