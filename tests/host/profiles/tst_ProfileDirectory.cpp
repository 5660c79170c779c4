// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/ProfileDirectory.h"

#include "host/profiles/ProfileAccess.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"

#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/CVideoOverlayControl.h>
#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/profiles/COsdSettings.h>

#include <QDir>
#include <QTest>

#include <cerrno>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Velmar::Host;
using namespace Velmar::VideoOverlay;
using Velmar::Test::ProfileFolders;

namespace {

int listingsThatFail = 0;
int filesThatFail = 0;

bool fails(const char *path)
{
    if (listingsThatFail == 0 || !QByteArray(path).contains("/osd"))
        return false;
    --listingsThatFail;
    errno = EIO;
    return true;
}

} // namespace

extern "C" { // exported: they stand in for those of the system, on a disk that cannot be read

Q_DECL_EXPORT DIR *opendir(const char *path)
{
    static const auto real
        = reinterpret_cast<DIR *(*)(const char *)>(::dlsym(RTLD_NEXT, "opendir"));
    return fails(path) ? nullptr : real(path);
}

Q_DECL_EXPORT int openat(int place, const char *path, int flags, ...)
{
    return (flags & O_DIRECTORY) && fails(path)
        ? -1
        : int(::syscall(SYS_openat, place, path, flags, 0666));
}

Q_DECL_EXPORT int stat(const char *path, struct stat *status)
{
    static const auto real
        = reinterpret_cast<int (*)(const char *, struct stat *)>(::dlsym(RTLD_NEXT, "stat"));
    if (filesThatFail == 0 || !QByteArray(path).contains("/osd/"))
        return real(path, status);
    --filesThatFail;
    errno = EIO;
    return -1;
}

} // extern "C"

class tst_ProfileDirectory : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void list()
    {
        for (const char *name : {"b.xml", "a.xml", "c.XML", ".hidden.xml", "d.xml.damaged", "xml"})
            m_folders->writeProfile(QString::fromLatin1(name), "<PROFILE/>");
        QVERIFY(QDir(m_folders->profiles()).mkdir(QStringLiteral("folder.xml")));
        QStringList names {QStringLiteral("old")};
        QString error;
        QVERIFY(listProfileFiles(m_folders->profiles(), &names, &error));
        QCOMPARE(names,
                 (QStringList {QStringLiteral("a.xml"), QStringLiteral("b.xml"),
                               QStringLiteral("c.XML")}));

        listingsThatFail = 1;
        QVERIFY(!listProfileFiles(m_folders->profiles(), &names, &error));
        QCOMPARE(names, QStringList());
        QCOMPARE(error, m_folders->profiles() + QStringLiteral(": Input/output error"));

        error.clear();
        filesThatFail = 1;
        QVERIFY(!listProfileFiles(m_folders->profiles(), &names, &error));
        QCOMPARE(names, QStringList());
        QCOMPARE(error, m_folders->profiles() + QStringLiteral(": Input/output error"));
    }

    /// Neither is a file, and nothing is wrong with the directory.
    void linksThatLeadNowhere()
    {
        const QDir directory(m_folders->profiles());
        m_folders->writeProfile(QStringLiteral("a.xml"), "<PROFILE/>");
        QVERIFY(QFile::link(QStringLiteral("none"), directory.filePath(QStringLiteral("b.xml"))));
        QVERIFY(QFile::link(QStringLiteral("c.xml"), directory.filePath(QStringLiteral("c.xml"))));
        QStringList names;
        QString error;
        QVERIFY2(listProfileFiles(directory.path(), &names, &error), qPrintable(error));
        QCOMPARE(names, QStringList(QStringLiteral("a.xml")));
    }

    /// To the library, such a directory is an empty one.
    void holdsAll()
    {
        m_folders->writeProfile(QStringLiteral("a.xml"), "<PROFILE/>");
        allow(QStringLiteral("1 VideoOverlayLibrary: profile found: '%1'    '%1'")
                  .arg(m_folders->profiles() + QStringLiteral("/a.xml")));
        CVideoOverlayCapabilities capabilities;
        CVideoOverlayControl control;
        CVideoOverlayManager manager(control, capabilities);
        QString error;
        QVERIFY(holdsAllProfiles(VideoOverlayProfilesModel(manager), &error));
        listingsThatFail = 1;
        QVERIFY(!holdsAllProfiles(VideoOverlayProfilesModel(manager), &error));
        QCOMPARE(error, m_folders->profiles() + QStringLiteral(": could not be read"));

        listingsThatFail = 1;
        VideoOverlayProfilesModel unread(manager);
        error.clear();
        QVERIFY(!selectProfile(unread, QStringLiteral("a"), &error)); // not: there is none
        QCOMPARE(error, m_folders->profiles() + QStringLiteral(": could not be read"));
    }

    void start()
    {
        const QString path = m_folders->profiles() + QStringLiteral("/a.xml");
        QVERIFY(!isStartProfile(path));
        COsdSettings::setDefaultProfile(path);
        QVERIFY(isStartProfile(path));
        QVERIFY(!isStartProfile(m_folders->profiles() + QStringLiteral("/b.xml")));
        ProfileFolders::write(COsdSettings::xmlSettingsPath(), "<OSD>");
        QVERIFY(!isStartProfile(path));
        takeLog();
    }

private:
    void prepare() override
    {
        listingsThatFail = 0;
        filesThatFail = 0;
        m_folders.emplace();
    }

    std::optional<ProfileFolders> m_folders;
};

QTEST_MAIN(tst_ProfileDirectory)
#include "tst_ProfileDirectory.moc"
