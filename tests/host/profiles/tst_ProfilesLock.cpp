// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/ProfilesLock.h"

#include "tests/support/ProfileFolders.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using Velmar::Host::ProfilesLock;
using Velmar::Test::FullDisk;
using Velmar::Test::ProfileFolders;

class tst_ProfilesLock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folders.emplace();
        m_file = m_folders->profiles() + QStringLiteral("/.lock");
        m_error.clear();
    }

    void oneAtATime()
    {
        {
            ProfilesLock first;
            QVERIFY(first.take(&m_error));
            ProfilesLock second;
            QVERIFY(!second.take(&m_error, 1));
            QCOMPARE(
                m_error,
                QStringLiteral("%1: another program (tst_ProfilesLock, process %2) is changing "
                               "the profiles; try again")
                    .arg(m_folders->profiles(), QString::number(::getpid())));
            QVERIFY(QFile::exists(m_file)); // the first one's
        }
        QVERIFY(!QFile::exists(m_file));
        ProfilesLock third;
        QVERIFY(third.take(&m_error));
    }

    void isWaitedFor()
    {
        std::optional<ProfilesLock> first(std::in_place);
        QVERIFY(first->take(&m_error));
        std::thread ends([&first] {
            QTest::qSleep(50); // what the other program does meanwhile
            first.reset();
        });
        ProfilesLock second;
        const bool taken = second.take(&m_error, 30000);
        ends.join();
        QVERIFY2(taken, qPrintable(m_error));
    }

    void killedOwner()
    {
        const pid_t child = ::fork();
        if (child == 0) {
            ProfilesLock lock;
            ::_exit(lock.take(&m_error) ? 0 : 1);
        }
        int status = 1;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
        QVERIFY(QFile::exists(m_file));
        ProfilesLock lock;
        QVERIFY2(lock.take(&m_error, 1000), qPrintable(m_error));
    }

    /// One that was killed before it could say who it is.
    void unsignedAndOld()
    {
        ProfileFolders::write(m_file, "");
        const timespec past[2] = {{1000000000, 0}, {1000000000, 0}};
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(m_file).constData(), past, 0), 0);
        ProfilesLock lock;
        QVERIFY2(lock.take(&m_error, 1000), qPrintable(m_error));
    }

    void unsignedAndNew()
    {
        ProfileFolders::write(m_file, "");
        {
            ProfilesLock lock;
            QVERIFY(!lock.take(&m_error, 0));
            QCOMPARE(m_error,
                     m_folders->profiles()
                         + QStringLiteral(": another program is changing the profiles; try again"));
        }
        ProfilesLock lock; // it may be waited for until it is old
        QVERIFY2(lock.take(&m_error), qPrintable(m_error));
    }

    /// Files in such a directory may be saved all the same.
    void directoryThatMayNotBeChanged()
    {
        constexpr uid_t nobody = 65534;
        const QByteArray directory = QFile::encodeName(m_folders->profiles());
        QCOMPARE(::chmod(directory.constData(), 0555), 0);
        QCOMPARE(::chmod((directory + "/../..").constData(), 0755), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            ProfilesLock lock;
            const bool isNobody = ::geteuid() != 0 || ::setuid(nobody) == 0;
            ::_exit(isNobody && lock.take(&m_error, 0) ? 0 : 1);
        }
        int status = 1;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
        QCOMPARE(::chmod(directory.constData(), 0755), 0);
        QVERIFY(!QFile::exists(m_file));
    }

    /// The reason why it cannot be saved is a better one than that it cannot be locked.
    void fullDisk()
    {
        const FullDisk full;
        ProfilesLock lock;
        QVERIFY(lock.take(&m_error, 0));
    }

    void noDirectory()
    {
        QVERIFY(QDir(m_folders->profiles()).removeRecursively());
        ProfilesLock lock;
        QVERIFY(lock.take(&m_error, 0));
    }

private:
    std::optional<ProfileFolders> m_folders;
    QString m_file;
    QString m_error;
};

QTEST_GUILESS_MAIN(tst_ProfilesLock)
#include "tst_ProfilesLock.moc"
