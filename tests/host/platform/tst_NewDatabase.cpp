// SPDX-License-Identifier: Apache-2.0
#include "host/platform/InspectionDatabase.h"

#include "tests/support/ProfileFolders.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using Velmar::Database::InspectionDatabase;
using Velmar::Test::FullDisk;
using Kind = InspectionDatabase::Kind;

// The system calls that change files, counted; the planned one ends the process.
namespace {

enum class Fault { Crash, DiskFull };

Fault plannedFault = Fault::Crash;
int plannedStep = 0; ///< 0: none
int step = 0;
constexpr int crashed = 77;

bool fails()
{
    if (plannedStep <= 0 || ++step != plannedStep)
        return false;
    if (plannedFault == Fault::Crash)
        ::_exit(crashed);
    errno = ENOSPC;
    return true;
}

} // namespace

extern "C" { // exported: they stand in for those of the system

Q_DECL_EXPORT ssize_t write(int file, const void *bytes, size_t size)
{
    return fails() ? -1 : ::syscall(SYS_write, file, bytes, size);
}

Q_DECL_EXPORT ssize_t pwrite64(int file, const void *bytes, size_t size, off64_t offset)
{
    return fails() ? -1 : ::syscall(SYS_pwrite64, file, bytes, size, offset);
}

Q_DECL_EXPORT int fsync(int file)
{
    return fails() ? -1 : int(::syscall(SYS_fsync, file));
}

Q_DECL_EXPORT int fdatasync(int file)
{
    return fails() ? -1 : int(::syscall(SYS_fdatasync, file));
}

Q_DECL_EXPORT int renameat2(int fromPlace, const char *from, int toPlace, const char *to,
                            unsigned int flags) noexcept
{
    return fails() ? -1 : int(::syscall(SYS_renameat2, fromPlace, from, toPlace, to, flags));
}

} // extern "C"

/// A new project file gets its name when it is complete.
class tst_NewDatabase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_path = m_directory->filePath(QStringLiteral("a.db"));
    }

    void filled()
    {
        InspectionDatabase database;
        QVERIFY2(create(database), qPrintable(database.errorText()));
        QCOMPARE(database.path(), m_path);
        QCOMPARE(projectCount(database), 1);
        QVERIFY(database.add(Kind::Project, {})); // it is open, for writing
        database.close();
        QCOMPARE(files(), QStringList(QStringLiteral("a.db")));
        QVERIFY(database.open(m_path));
        QCOMPARE(projectCount(database), 2);
    }

    void inMemory()
    {
        InspectionDatabase database;
        m_path = QStringLiteral(":memory:");
        QVERIFY(create(database));
        QCOMPARE(projectCount(database), 1);
        QVERIFY(!database.create(m_path, [] { return false; }));
        QCOMPARE(projectCount(database), 1); // still the one before
    }

    void notFilled()
    {
        InspectionDatabase database;
        QVERIFY(database.create(m_directory->filePath(QStringLiteral("before.db"))));
        QVERIFY(!database.create(m_path, [&] {
            database.add(Kind::Project, {});
            return false;
        }));
        QCOMPARE(database.path(), m_directory->filePath(QStringLiteral("before.db")));
        QVERIFY(!database.create(m_path, [&] { return !database.add(Kind::Job, {}).isNull(); }));
        QVERIFY2(database.errorText().contains(QLatin1String("add a record to JOB")),
                 qPrintable(database.errorText()));
        QCOMPARE(files(), QStringList(QStringLiteral("before.db")));
    }

    /// By another program, while this one fills its own.
    void nameTakenMeanwhile()
    {
        InspectionDatabase database;
        QVERIFY(!database.create(m_path, [this] {
            Velmar::Test::ProfileFolders::write(m_path, "the other's");
            return true;
        }));
        QCOMPARE(database.errorText(),
                 QStringLiteral("Cannot create project database \"%1\": File exists").arg(m_path));
        QVERIFY(!database.isOpen());
        QCOMPARE(Velmar::Test::ProfileFolders::read(m_path), QByteArray("the other's"));
        QCOMPARE(files(), QStringList(QStringLiteral("a.db")));
    }

    void fullDisk()
    {
        InspectionDatabase database;
        {
            const FullDisk full;
            QVERIFY(!create(database));
        }
        const QString what = QStringLiteral("Cannot create project database \"%1\": ").arg(m_path);
        QVERIFY2(database.errorText().startsWith(what), qPrintable(database.errorText()));
        QCOMPARE(files(), QStringList());
        QVERIFY(create(database));
    }

    void diskFullAtEachStep()
    {
        plannedFault = Fault::DiskFull;
        int failed = 0;
        do {
            InspectionDatabase database;
            step = 0;
            ++plannedStep;
            if (create(database)) { // not everything that fails matters
                database.close();
                QVERIFY(QFile::remove(m_path));
                continue;
            }
            ++failed;
            const QString what
                = QStringLiteral("Cannot create project database \"%1\": ").arg(m_path);
            QVERIFY2(database.errorText().startsWith(what), qPrintable(database.errorText()));
            QVERIFY(!database.isOpen());
            QCOMPARE(files(), QStringList());
        } while (step >= plannedStep);
        plannedStep = 0;
        QVERIFY(failed > 5);
    }

    void killAtEachStep()
    {
        plannedFault = Fault::Crash;
        int status = crashed;
        int steps = 0;
        while (status == crashed) {
            ++steps;
            const pid_t child = ::fork();
            if (child == 0) {
                InspectionDatabase database;
                step = 0;
                plannedStep = steps;
                const bool isMade = create(database);
                plannedStep = 0;
                ::_exit(isMade ? 0 : 1);
            }
            QVERIFY(child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status));
            status = WEXITSTATUS(status);
            InspectionDatabase database;
            const bool isThere = QFile::exists(m_path);
            QVERIFY2(isThere ? database.open(m_path) : create(database),
                     qPrintable(database.errorText()));
            QCOMPARE(projectCount(database), 1);
            database.close();
            QVERIFY(QFile::remove(m_path));
        }
        QCOMPARE(status, 0);
        QVERIFY(steps > 5);
    }

private:
    bool create(InspectionDatabase &database) const
    {
        return database.create(m_path, [&] { return !database.add(Kind::Project, {}).isNull(); });
    }
    static int projectCount(InspectionDatabase &database) { return database.projects().size(); }
    QStringList files() const
    {
        return QDir(m_directory->path()).entryList(QDir::Files | QDir::Hidden);
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_path;
};

QTEST_GUILESS_MAIN(tst_NewDatabase)
#include "tst_NewDatabase.moc"
