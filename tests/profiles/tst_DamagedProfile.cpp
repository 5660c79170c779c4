// SPDX-License-Identifier: Apache-2.0
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"
#include "videooverlay/profiles/Profile.h"
#include "videooverlay/profiles/ProfilesManager.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <optional>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using Velmar::Test::FullDisk;
using Velmar::Test::ProfileFolders;
using Velmar::VideoOverlay::ElementParam;
using Velmar::VideoOverlay::Profile;
using Velmar::VideoOverlay::ProfilesManager;

// The system calls of a save, counted; the planned one ends the process, as a power cut would.
namespace {

int plannedStep = 0; ///< 0: none
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

Q_DECL_EXPORT int fsync(int file)
{
    count();
    return int(::syscall(SYS_fsync, file));
}

Q_DECL_EXPORT int rename(const char *from, const char *to) noexcept
{
    count();
    return int(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

Q_DECL_EXPORT int renameat2(int fromPlace, const char *from, int toPlace, const char *to,
                            unsigned int flags) noexcept
{
    count();
    return int(::syscall(SYS_renameat2, fromPlace, from, toPlace, to, flags));
}

} // extern "C"

namespace {

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

QByteArray good(const char *text)
{
    return ProfileFolders::profileXml(
        "", QByteArray("<STATICTEXT><TEXT>") + text + "</TEXT></STATICTEXT>");
}

ElementParam note()
{
    ElementParam param;
    param.insert(s("type"), 0);
    param.insert(s("text"), s("note"));
    return param;
}

/// Reads the file, whatever comes of it, and adds one text.
void edit(Profile &profile, const QString &path)
{
    profile.load(path);
    profile.elements().append(note());
}

} // namespace

/// Saving over a file that could not be read keeps what was in it.
class tst_DamagedProfile : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void keptBeside_data();
    void keptBeside();
    void unreadableOnceOnly();
    void damagedMeanwhile();
    void readableFileIsReplaced();
    void nextOneToo();
    void theSameOneOnce();
    void longName();
    void linkedFile();
    void rightsStay();
    void fullDisk();
    void crashAtEachStep();
    void whatIsNoFile();
    void reloadedOrMoved();

private:
    void prepare() override
    {
        m_folders.emplace();
        m_path = m_folders->profiles() + s("/Main.xml");
    }
    QByteArray content(const char *suffix) const
    {
        return ProfileFolders::read(m_path + s(suffix));
    }
    bool isSaved() const
    {
        Profile saved;
        return saved.load(m_path) && !saved.elements().isEmpty()
            && saved.elements().last().value(s("text")) == s("note");
    }
    QStringList files() const
    {
        return QDir(m_folders->profiles()).entryList(QDir::Files | QDir::Hidden);
    }

    std::optional<ProfileFolders> m_folders;
    QString m_path;
};

void tst_DamagedProfile::keptBeside_data()
{
    QTest::addColumn<QByteArray>("damaged");
    QTest::newRow("cut") << good("text").chopped(12);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("two profiles") << QByteArray("<A><PROFILE/><PROFILE/></A>");
    QTest::newRow("another kind of file") << QByteArray("<OSD/>");
    QTest::newRow("zero bytes") << QByteArray(5000, '\0');
    QTest::newRow("well-formed, over the limits") << "<PROFILE>" + QByteArray("<A>").repeated(300)
            + QByteArray("</A>").repeated(300) + "</PROFILE>";
    QTest::newRow("very large") << "<PROFILE>" + QByteArray(16 * 1024 * 1024, ' ') + "</PROFILE>";
}

void tst_DamagedProfile::keptBeside()
{
    QFETCH(QByteArray, damaged);
    ProfileFolders::write(m_path, damaged);
    Profile profile;
    edit(profile, m_path);
    QVERIFY(profile.damaged());
    takeLog();

    QVERIFY(profile.save());

    QCOMPARE(takeLog(),
             QStringList {s("3 VideoOverlayLibrary: Keeping damaged profile file as:") + m_path
                          + s(".damaged")});
    QVERIFY(!profile.damaged());
    QVERIFY(isSaved());
    QVERIFY(content(".damaged") == damaged);
    QCOMPARE(files(), (QStringList {s("Main.xml"), s("Main.xml.damaged")}));
    const ProfilesManager manager;
    QCOMPARE(manager.getProfilesPath(), QStringList {s("Main.xml")});

    QVERIFY(profile.save());
    QCOMPARE(files(), (QStringList {s("Main.xml"), s("Main.xml.damaged")}));
    takeLog();
}

/// What could not be read then and can be read now was not in the records, either.
void tst_DamagedProfile::unreadableOnceOnly()
{
    Profile profile;
    edit(profile, m_path); // there is none
    QVERIFY(profile.damaged());
    ProfileFolders::write(m_path, good("of another program"));
    takeLog();
    QVERIFY(profile.save());
    QVERIFY(isSaved());
    QCOMPARE(content(".damaged"), good("of another program"));
}

void tst_DamagedProfile::damagedMeanwhile()
{
    ProfileFolders::write(m_path, good("text"));
    Profile profile;
    edit(profile, m_path);
    QVERIFY(!profile.damaged());
    ProfileFolders::write(m_path, "<PROFILE><TYPO></PROFILE>");
    QVERIFY(profile.save());
    QVERIFY(isSaved());
    QCOMPARE(content(".damaged"), QByteArray("<PROFILE><TYPO></PROFILE>"));
}

void tst_DamagedProfile::readableFileIsReplaced()
{
    ProfileFolders::write(m_path, good("text"));
    Profile profile;
    edit(profile, m_path);
    QVERIFY(profile.save());
    QCOMPARE(takeLog(), QStringList());
    QCOMPARE(files(), QStringList {s("Main.xml")});
}

void tst_DamagedProfile::nextOneToo()
{
    for (const char *damaged : {"first", "second", "third"}) {
        ProfileFolders::write(m_path, damaged);
        Profile profile;
        edit(profile, m_path);
        QVERIFY(profile.save());
        QVERIFY(isSaved());
    }
    takeLog();
    QCOMPARE(content(".damaged"), QByteArray("first"));
    QCOMPARE(content(".damaged.2"), QByteArray("second"));
    QCOMPARE(content(".damaged.3"), QByteArray("third"));
    QCOMPARE(files().size(), 4);
}

/// A save that failed after it was kept is tried again.
void tst_DamagedProfile::theSameOneOnce()
{
    for (const char *damaged : {"first", "second", "first", "second"}) {
        ProfileFolders::write(m_path, damaged);
        Profile profile;
        edit(profile, m_path);
        QVERIFY(profile.save());
    }
    takeLog();
    QCOMPARE(files().size(), 3);
}

void tst_DamagedProfile::longName()
{
    for (const QString &name : {s("p").repeated(251), s("€").repeated(83)}) {
        m_path = m_folders->profiles() + QLatin1Char('/') + name + s(".xml");
        for (const char *damaged : {"first", "second"}) {
            ProfileFolders::write(m_path, damaged);
            Profile profile;
            edit(profile, m_path);
            QVERIFY(profile.save());
            QVERIFY(isSaved());
        }
        takeLog();
        QStringList found;
        for (const QString &file : QDir(m_folders->profiles()).entryList({s("*.damaged*")}))
            found.append(QString::fromUtf8(
                ProfileFolders::read(m_folders->profiles() + QLatin1Char('/') + file)));
        found.sort();
        QCOMPARE(found, (QStringList {s("first"), s("second")}));
        QVERIFY(QDir(m_folders->profiles()).removeRecursively());
        QVERIFY(QDir().mkpath(m_folders->profiles()));
    }
}

void tst_DamagedProfile::linkedFile()
{
    const QString real = m_folders->settings() + s("/real");
    ProfileFolders::write(real, "damaged");
    QVERIFY(QFile::link(real, m_path));
    Profile profile;
    edit(profile, m_path);
    takeLog();
    QVERIFY(profile.save());
    QVERIFY(isSaved());
    QVERIFY(QFileInfo(m_path).isSymLink());
    QVERIFY(!QFileInfo(m_path + s(".damaged")).isSymLink());
    QCOMPARE(content(".damaged"), QByteArray("damaged"));
}

void tst_DamagedProfile::rightsStay()
{
    constexpr uid_t alice = 64001;
    ProfileFolders::write(m_path, "damaged");
    const QByteArray name = QFile::encodeName(m_path);
    if (::geteuid() == 0)
        QCOMPARE(::chown(name.constData(), alice, alice), 0);
    QCOMPARE(::chmod(name.constData(), 0640), 0);
    Profile profile;
    edit(profile, m_path);
    takeLog();
    QVERIFY(profile.save());
    for (const QByteArray &file : {name, name + ".damaged"}) {
        struct stat status;
        QCOMPARE(::stat(file.constData(), &status), 0);
        QCOMPARE(status.st_mode & 07777, mode_t(0640));
        QCOMPARE(status.st_uid, ::geteuid() == 0 ? alice : ::geteuid());
    }
}

void tst_DamagedProfile::fullDisk()
{
    ProfileFolders::write(m_path, "damaged");
    Profile profile;
    edit(profile, m_path);
    takeLog();
    {
        const FullDisk full;
        QVERIFY(!profile.save());
    }
    QCOMPARE(takeLog(),
             QStringList {s("1 VideoOverlayLibrary: Cannot open profile file for save:") + m_path});
    QCOMPARE(content(""), QByteArray("damaged"));
    QCOMPARE(files(), QStringList {s("Main.xml")});
    QVERIFY(profile.damaged());
}

void tst_DamagedProfile::crashAtEachStep()
{
    const QByteArray damaged(100000, 'x');
    int status = crashed;
    int steps = 0;
    while (status == crashed) {
        ProfileFolders::write(m_path, damaged);
        QFile::remove(m_path + s(".damaged"));
        ++steps;
        const pid_t child = ::fork();
        if (child == 0) {
            Profile profile;
            edit(profile, m_path);
            plannedStep = steps;
            ::_exit(profile.save() ? 0 : 1);
        }
        QVERIFY(child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status));
        status = WEXITSTATUS(status);
        QVERIFY(content("") == damaged || content(".damaged") == damaged);
        QCOMPARE(ProfilesManager().getProfilesPath(), QStringList {s("Main.xml")});
        takeLog();
    }
    QCOMPARE(status, 0);
    QVERIFY(steps > 6); // write, flush and name, twice
    QVERIFY(isSaved());
}

void tst_DamagedProfile::whatIsNoFile()
{
    Profile profile;
    profile.load(s("/dev/null"));
    takeLog();
    QVERIFY(profile.save());
    QVERIFY(!QFile::exists(s("/dev/null.damaged")));
    profile.setPath(m_folders->profiles());
    QVERIFY(!profile.save());
    QCOMPARE(takeLog(),
             QStringList {s("1 VideoOverlayLibrary: Cannot open profile file for save:")
                          + m_folders->profiles()});
}

/// A path that was set later is another file's; records that are refused are not the file's fault.
void tst_DamagedProfile::reloadedOrMoved()
{
    ProfileFolders::write(m_path, "damaged");
    Profile profile;
    edit(profile, m_path);
    QVERIFY(profile.damaged());
    profile.setPath(m_path + s("2"));
    QVERIFY(!profile.damaged());

    ProfileFolders::write(m_path, good("text"));
    Profile loaded;
    QVERIFY(!loaded.damaged());
    QVERIFY(loaded.load(m_path));
    QVERIFY(!loaded.load(m_path)); // it has records
    QVERIFY(!loaded.damaged());
    takeLog();
}

QTEST_GUILESS_MAIN(tst_DamagedProfile)
#include "tst_DamagedProfile.moc"
