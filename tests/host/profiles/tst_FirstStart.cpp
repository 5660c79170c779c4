// SPDX-License-Identifier: Apache-2.0
#include "host/platform/Directories.h"
#include "host/profiles/FirstStart.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Velmar;
using namespace Velmar::Host;
using Test::ProfileFolders;

// The system calls of a first start, counted; the planned one ends the process.
namespace {

const QString otherFile = QStringLiteral("Other.xml");
const QString defaultFile = QStringLiteral("Halvo push camera system - default.xml");

int readsThatFail = 0; ///< of the default profile in the settings
int plannedStep = 0;   ///< 0: none
int step = 0;
constexpr int crashed = 77;

void count()
{
    if (plannedStep > 0 && ++step == plannedStep)
        ::_exit(crashed);
}

} // namespace

extern "C" { // exported: they stand in for those of the system

Q_DECL_EXPORT ssize_t write(int file, const void *bytes, size_t size)
{
    count();
    return ::syscall(SYS_write, file, bytes, size);
}

Q_DECL_EXPORT int open64(const char *path, int flags, ...)
{
    const bool isRead = (flags & O_ACCMODE) == O_RDONLY;
    if (readsThatFail > 0 && isRead && QByteArray(path).endsWith("/osd/" + defaultFile.toUtf8())) {
        --readsThatFail;
        errno = EIO;
        return -1;
    }
    return int(::syscall(SYS_openat, AT_FDCWD, path, flags, 0666));
}

Q_DECL_EXPORT int fsync(int file)
{
    count();
    return int(::syscall(SYS_fsync, file));
}

Q_DECL_EXPORT int renameat2(int fromPlace, const char *from, int toPlace, const char *to,
                            unsigned int flags) noexcept
{
    count();
    return int(::syscall(SYS_renameat2, fromPlace, from, toPlace, to, flags));
}

} // extern "C"

class tst_FirstStart : public Test::LoggedTest
{
    Q_OBJECT

protected:
    void prepare() override
    {
        m_root = std::make_unique<QTemporaryDir>();
        Directories::setSettingsDirectory(settings());
        QVERIFY(QDir(m_root->path()).mkpath(QStringLiteral("shipped/pictures")));
        ProfileFolders::write(shipped(defaultFile), "<PROFILE name=\"d\"/>");
        ProfileFolders::write(shipped(QStringLiteral("Other.xml")),
                              "<PROFILE><IMAGE><PATH>pictures/a.png</PATH></IMAGE>"
                              "<IMAGE><PATH>/else/b.png</PATH></IMAGE>"
                              "<IMAGE><PATH>pictures/none.png</PATH></IMAGE></PROFILE>");
        ProfileFolders::write(shipped(QStringLiteral("pictures/a.png")), "picture");
    }

    QString settings() const { return m_root->filePath(QStringLiteral("settings")); }
    QString shipped(const QString &name = QString()) const
    {
        return m_root->filePath(QStringLiteral("shipped/") + name);
    }
    QStringList profiles() const
    {
        return QDir(settings() + QLatin1String("/osd"))
            .entryList({QStringLiteral("*.xml")}, QDir::Files);
    }
    QString profile(const QString &name) const
    {
        return settings() + QLatin1String("/osd/") + name;
    }

private Q_SLOTS:
    void everythingIsCopiedOnce();
    void whatTheOperatorRemovedStaysRemoved();
    void whatIsShippedLaterComes();
    void interruptedStartIsCompleted();
    void killAtEachStep();
    void fullDiskLeavesNoPartOfAProfile();
    void damagedDefaultIsPutBack_data();
    void damagedDefaultIsPutBack();
    void everyDamagedDefaultIsKept();
    void defaultThatCannotBeReadOnce();
    void directoryThatCannotBeListed_data();
    void directoryThatCannotBeListed();
    void failuresAreTold();
    void pictureThatCannotBeLookedFor();
    void shippedProfilesAreCopiedWithTheirPictures();

private:
    std::unique_ptr<QTemporaryDir> m_root;
};

void tst_FirstStart::everythingIsCopiedOnce()
{
    QString error;
    QVERIFY2(prepareProfiles(shipped(), &error), qPrintable(error));
    QCOMPARE(ProfileFolders::read(profile(defaultFile)), QByteArray("<PROFILE name=\"d\"/>"));
    QCOMPARE(ProfileFolders::read(profile(QStringLiteral("Other.xml"))),
             "<PROFILE><IMAGE><PATH>" + settings().toUtf8()
                 + "/a.png</PATH></IMAGE><IMAGE><PATH>/else/b.png</PATH></IMAGE>"
                   "<IMAGE><PATH>pictures/none.png</PATH></IMAGE></PROFILE>");
    QCOMPARE(ProfileFolders::read(settings() + QLatin1String("/a.png")), QByteArray("picture"));
    QCOMPARE(QDir(settings() + QLatin1String("/osd")).entryList(QDir::Files | QDir::Hidden),
             (QStringList {QStringLiteral(".delivered"), defaultFile, otherFile}));
}

void tst_FirstStart::whatTheOperatorRemovedStaysRemoved()
{
    QString error;
    QVERIFY(prepareProfiles(shipped(), &error));
    const QByteArray changed = "<PROFILE name=\"d\"><STATICTEXT/></PROFILE>";
    QVERIFY(QFile::remove(profile(otherFile)));
    ProfileFolders::write(profile(defaultFile), changed);
    QVERIFY(prepareProfiles(shipped(), &error));
    QVERIFY(!QFile::exists(profile(otherFile)));
    QCOMPARE(ProfileFolders::read(profile(defaultFile)), changed);

    // Without the default profile there is nothing to fall back on.
    QVERIFY(QFile::remove(profile(defaultFile)));
    QVERIFY(prepareProfiles(shipped(), &error));
    QCOMPARE(ProfileFolders::read(profile(defaultFile)), QByteArray("<PROFILE name=\"d\"/>"));
}

void tst_FirstStart::whatIsShippedLaterComes()
{
    QString error;
    QVERIFY(prepareProfiles(shipped(), &error));
    QVERIFY(QFile::rename(profile(otherFile), profile(QStringLiteral("Mine.xml"))));
    ProfileFolders::write(shipped(QStringLiteral("Newer.xml")), "<PROFILE/>");
    QVERIFY(prepareProfiles(shipped(), &error));
    QCOMPARE(profiles(),
             (QStringList {defaultFile, QStringLiteral("Mine.xml"), QStringLiteral("Newer.xml")}));
}

/// That a profile is not there yet says nothing about who removed it.
void tst_FirstStart::interruptedStartIsCompleted()
{
    QVERIFY(QDir().mkpath(settings() + QLatin1String("/osd")));
    ProfileFolders::write(profile(defaultFile), "<PROFILE name=\"d\"/>");
    QString error;
    QVERIFY2(prepareProfiles(shipped(), &error), qPrintable(error));
    QCOMPARE(profiles(), (QStringList {defaultFile, otherFile}));
}

void tst_FirstStart::killAtEachStep()
{
    QString error;
    QVERIFY(prepareProfiles(shipped(), &error));
    const QByteArray wholeDefault = ProfileFolders::read(profile(defaultFile));
    const QByteArray wholeOther = ProfileFolders::read(profile(otherFile));
    int status = crashed;
    int steps = 0;
    while (status == crashed) {
        QVERIFY(QDir(settings()).removeRecursively());
        ++steps;
        const pid_t child = ::fork();
        if (child == 0) {
            plannedStep = steps;
            ::_exit(prepareProfiles(shipped(), &error) ? 0 : 1);
        }
        QVERIFY(child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status));
        status = WEXITSTATUS(status);
        for (const QString &name : profiles())
            QCOMPARE(ProfileFolders::read(profile(name)),
                     name == defaultFile ? wholeDefault : wholeOther);
        // A lock that the killed one had no time to sign is given up by age alone.
        QFile::remove(profile(QStringLiteral(".lock")));
        QVERIFY2(prepareProfiles(shipped(), &error), qPrintable(error));
        QCOMPARE(profiles(), (QStringList {defaultFile, otherFile}));
        QCOMPARE(ProfileFolders::read(profile(defaultFile)), wholeDefault);
        QCOMPARE(ProfileFolders::read(profile(otherFile)), wholeOther);
    }
    QCOMPARE(status, 0);
    QVERIFY(steps > 9); // write, flush and name of two profiles and a picture
}

void tst_FirstStart::fullDiskLeavesNoPartOfAProfile()
{
    QString error;
    {
        const Test::FullDisk full;
        QVERIFY(!prepareProfiles(shipped(), &error));
    }
    QVERIFY(error.startsWith(settings()));
    QCOMPARE(profiles(), QStringList());
    QVERIFY(!QFile::exists(settings() + QLatin1String("/a.png")));
    QVERIFY2(prepareProfiles(shipped(), &error), qPrintable(error));
    QCOMPARE(profiles(), (QStringList {defaultFile, otherFile}));
}

void tst_FirstStart::damagedDefaultIsPutBack_data()
{
    QTest::addColumn<QByteArray>("damaged");
    QTest::addColumn<QString>("reason"); // behind the path
    QTest::newRow("cut") << QByteArray("<PROFILE name=\"d\">\n<IMAGE></IMA")
                         << QStringLiteral(":2:13: unexpected end of file");
    QTest::newRow("empty") << QByteArray() << QStringLiteral(":1:1: unexpected end of file");
    QTest::newRow("another file") << QByteArray("<OSD/>")
                                  << QStringLiteral(": does not hold one profile");
    // The library finds it by its name.
    QTest::newRow("nameless") << QByteArray("<PROFILE/>") << QStringLiteral(": has lost its name");
}

void tst_FirstStart::damagedDefaultIsPutBack()
{
    QFETCH(QByteArray, damaged);
    QFETCH(QString, reason);
    QString error;
    QVERIFY(prepareProfiles(shipped(), &error));
    ProfileFolders::write(profile(defaultFile), damaged);
    takeLog();
    QVERIFY2(prepareProfiles(shipped(), &error), qPrintable(error));
    QCOMPARE(ProfileFolders::read(profile(defaultFile)), QByteArray("<PROFILE name=\"d\"/>"));
    const QString kept = profile(defaultFile) + QStringLiteral(".damaged");
    QCOMPARE(ProfileFolders::read(kept), damaged);
    QCOMPARE(takeLog().last(),
             QStringLiteral("2 Host: %1; the delivered one takes its place, it is kept as %2")
                 .arg(profile(defaultFile) + reason, kept));
    QVERIFY(prepareProfiles(shipped(), &error));
    QCOMPARE(QDir(settings() + QLatin1String("/osd")).entryList(QDir::Files),
             (QStringList {defaultFile, defaultFile + QStringLiteral(".damaged"), otherFile}));
}

void tst_FirstStart::everyDamagedDefaultIsKept()
{
    QString error;
    for (const char *damaged : {"first", "second"}) {
        QVERIFY(prepareProfiles(shipped(), &error));
        ProfileFolders::write(profile(defaultFile), damaged);
    }
    QVERIFY(prepareProfiles(shipped(), &error));
    takeLog();
    const QString kept = profile(defaultFile) + QStringLiteral(".damaged");
    QCOMPARE(ProfileFolders::read(kept), QByteArray("first"));
    QCOMPARE(ProfileFolders::read(kept + QStringLiteral(".2")), QByteArray("second"));
}

/// That is no reason to replace it.
void tst_FirstStart::defaultThatCannotBeReadOnce()
{
    QString error;
    QVERIFY(prepareProfiles(shipped(), &error));
    readsThatFail = 1;
    QVERIFY2(prepareProfiles(shipped(), &error), qPrintable(error));
    QCOMPARE(readsThatFail, 0);
    QCOMPARE(QDir(settings() + QLatin1String("/osd")).entryList(QDir::Files),
             (QStringList {defaultFile, otherFile}));
    takeLog();
}

void tst_FirstStart::directoryThatCannotBeListed_data()
{
    QTest::addColumn<bool>("isThere");
    QTest::newRow("none") << false;
    QTest::newRow("no directory") << true;
}

/// To a plain listing it would be an empty one.
void tst_FirstStart::directoryThatCannotBeListed()
{
    QFETCH(bool, isThere);
    const QString directory = m_root->filePath(QStringLiteral("elsewhere"));
    if (isThere)
        ProfileFolders::write(directory, "a file");
    QString error;
    QVERIFY(!prepareProfiles(directory, &error));
    QCOMPARE(error,
             directory
                 + (isThere ? QStringLiteral(": Not a directory")
                            : QStringLiteral(": No such file or directory")));
}

void tst_FirstStart::failuresAreTold()
{
    QString error;
    ProfileFolders::write(settings(), "a file where the directory should be");
    QVERIFY(!prepareProfiles(shipped(), &error));
    QCOMPARE(error, settings() + QStringLiteral("/osd: cannot be made"));
    QVERIFY(QFile::remove(settings()));

    QVERIFY(QFile::remove(shipped(defaultFile)));
    QVERIFY(!prepareProfiles(shipped(), &error));
    QVERIFY(error.startsWith(shipped(defaultFile) + QLatin1String(": ")));
    QCOMPARE(profiles(), QStringList(otherFile)); // the rest is copied
}

/// One that is not shipped is left out. But where nobody can tell, the profile would lose it.
void tst_FirstStart::pictureThatCannotBeLookedFor()
{
    const QString picture = shipped(QStringLiteral("pictures/none.png"));
    QVERIFY(QFile::link(QStringLiteral("none.png"), picture)); // to itself
    QString error;
    QVERIFY(!prepareProfiles(shipped(), &error));
    QVERIFY2(error.startsWith(picture + QLatin1String(": ")), qPrintable(error));
    QCOMPARE(profiles(), QStringList());
}

void tst_FirstStart::shippedProfilesAreCopiedWithTheirPictures()
{
    QString error;
    QVERIFY2(prepareProfiles(QStringLiteral(DATA_DIRECTORY "/profiles"), &error),
             qPrintable(error));
    QCOMPARE(QDir(settings() + QLatin1String("/osd")).entryList(QDir::Files).size(), 4);
    QVERIFY(QFile::exists(settings() + QLatin1String("/watermark.png")));
}

QTEST_GUILESS_MAIN(tst_FirstStart)
#include "tst_FirstStart.moc"
