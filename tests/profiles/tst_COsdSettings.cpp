// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/COsdSettings.h"

#include "host/platform/Directories.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <functional>
#include <optional>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

using Velmar::Directories;
using Velmar::Test::FullDisk;
using Velmar::Test::ProfileFolders;
using Velmar::VideoOverlay::COsdSettings;

namespace {

std::function<void()> duringNextFlush;

} // namespace

/// Stands in for that of the system: what is copied is complete, but has not got its name yet.
extern "C" Q_DECL_EXPORT int fsync(int file)
{
    if (const std::function<void()> work = std::exchange(duringNextFlush, nullptr))
        work();
    return int(::syscall(SYS_fsync, file));
}

namespace {

QByteArray settingsXml(const QByteArray &current)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<OSD>\n"
           "    <PROFILES>\n"
           "        <CURRENT>"
        + current
        + "</CURRENT>\n"
          "    </PROFILES>\n"
          "</OSD>\n";
}

void setMode(const QString &path, mode_t mode)
{
    if (::chmod(QFile::encodeName(path).constData(), mode) != 0)
        qFatal("cannot change who may use %s", qPrintable(path));
}

int modeOf(const QString &path)
{
    struct stat status;
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : -1;
}

/// In a process of its own: for root, who may write everything, nothing is read-only.
bool asNobody(bool (*work)())
{
    constexpr uid_t nobody = 65534;
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit((::geteuid() != 0 || ::setuid(nobody) == 0) && work() ? 0 : 1);
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child && status == 0;
}

} // namespace

class tst_COsdSettings : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { m_folders.emplace(); }

    QString settingsPath() const
    {
        return m_folders->settings() + QStringLiteral("/OsdSettings.xml");
    }
    QString templatePath() const
    {
        return m_folders->configuration() + QStringLiteral("/OsdSettings.xml");
    }

    std::optional<ProfileFolders> m_folders;

private Q_SLOTS:
    void paths()
    {
        QCOMPARE(COsdSettings::xmlSettingsPath(), settingsPath());
        QCOMPARE(COsdSettings::xmlConfigPath(), templatePath());

        Directories::setSettingsDirectory(QStringLiteral("/"));
        QCOMPARE(COsdSettings::xmlSettingsPath(), QStringLiteral("/OsdSettings.xml"));
    }

    void copiesTheTemplateOnlyWhereNothingIs()
    {
        ProfileFolders::write(templatePath(), "the template");

        QVERIFY(COsdSettings::copySettingsFile());
        QCOMPARE(ProfileFolders::read(settingsPath()), QByteArray("the template"));

        ProfileFolders::write(settingsPath(), "no settings at all");
        QVERIFY(!COsdSettings::copySettingsFile());
        QCOMPARE(ProfileFolders::read(settingsPath()), QByteArray("no settings at all"));
        QCOMPARE(takeLog(), QStringList());
    }

    void theCopyOfAReadOnlyTemplateCanBeWritten()
    {
        ProfileFolders::write(templatePath(), settingsXml("a"));
        setMode(templatePath(), 0444);
        setMode(m_folders->settings(), 0777);
        setMode(m_folders->settings() + QStringLiteral("/.."), 0755);

        QVERIFY(asNobody(&COsdSettings::copySettingsFile));

        QCOMPARE(modeOf(settingsPath()), 0644);
    }

    /// The template is copied first and then replaced, which keeps who may read it.
    void storingStartsFromTheTemplate()
    {
        ProfileFolders::write(templatePath(), settingsXml("a"));
        setMode(templatePath(), 0600);

        COsdSettings::setDefaultProfile(QStringLiteral("b"));

        QCOMPARE(ProfileFolders::read(settingsPath()), settingsXml("b"));
        QCOMPARE(modeOf(settingsPath()), 0600);
    }

    /// Half a template would stay for good: what is there is never overwritten by it.
    void aFullDiskLeavesNoPartOfTheTemplate()
    {
        for (int size : {100, 100000}) { // one fits a buffer
            ProfileFolders::write(templatePath(), QByteArray(size, 'x'));
            {
                const FullDisk full;
                QVERIFY(!COsdSettings::copySettingsFile());
            }
            QCOMPARE(QDir(m_folders->settings()).entryList(QDir::Files | QDir::Hidden),
                     QStringList());
        }
    }

    void whatAnotherStoresMeanwhileStays()
    {
        ProfileFolders::write(templatePath(), settingsXml("the template's"));
        duringNextFlush = [this] { ProfileFolders::write(settingsPath(), "the other's"); };

        QVERIFY(!COsdSettings::copySettingsFile());

        QCOMPARE(ProfileFolders::read(settingsPath()), QByteArray("the other's"));
        QCOMPARE(QDir(m_folders->settings()).entryList(QDir::Files | QDir::Hidden),
                 QStringList {QStringLiteral("OsdSettings.xml")});
    }

    void withoutATemplateNothingIsMade()
    {
        QVERIFY(!COsdSettings::copySettingsFile());
        QVERIFY(!QFileInfo::exists(settingsPath()));
        QCOMPARE(takeLog(), QStringList());
    }

    void theFirstStartReadsTheTemplate()
    {
        ProfileFolders::write(templatePath(), settingsXml("osd/first.xml"));

        QCOMPARE(COsdSettings::getDefaultProfile(), QStringLiteral("osd/first.xml"));

        QCOMPARE(ProfileFolders::read(settingsPath()), settingsXml("osd/first.xml"));
        QCOMPARE(takeLog(),
                 QStringList {QStringLiteral(
                     "3 VideoOverlayLibrary: Startup OSD profile path:osd/first.xml")});
    }

    void getDefaultProfile_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("logged");

        const auto row = [](const char *name, const QByteArray &content, const char *path) {
            const QString text = QString::fromUtf8(path ? path : "");
            QTest::newRow(name) << content << text
                                << (path ? QStringLiteral("3 VideoOverlayLibrary: Startup OSD "
                                                          "profile path:")
                                            + text
                                         : QString());
        };
        row("as written", settingsXml("../../settings/osd/a.xml"), "../../settings/osd/a.xml");
        row("escaped", settingsXml("a&amp;b &lt;c&gt;.xml"), "a&b <c>.xml");
        row("blanks around it stay", settingsXml(" a.xml "), " a.xml ");
        row("letters beyond ASCII", settingsXml("R\xc3\xb6hre.xml"), "R\xc3\xb6hre.xml");
        row("in pieces",
            "<OSD><PROFILES><CURRENT>a<!-- -->b<![CDATA[&]]></CURRENT></PROFILES></OSD>", "ab&");
        row("carriage returns", "<OSD><PROFILES><CURRENT>a\r\nb\r</CURRENT></PROFILES></OSD>",
            "a\nb");
        row("empty", settingsXml(""), "");
        row("below another root", "<X><OSD><PROFILES><CURRENT>a</CURRENT></PROFILES></OSD></X>",
            "a");
        row("the first of two",
            "<OSD><PROFILES><CURRENT>a</CURRENT><CURRENT>b</CURRENT></PROFILES></OSD>", "a");
        row("strangers beside it",
            "<OSD><X/><PROFILES><Y/><CURRENT z='1'>a</CURRENT></PROFILES></OSD>", "a");
        row("two OSD elements", "<X><OSD><PROFILES><CURRENT>a</CURRENT></PROFILES></OSD><OSD/></X>",
            nullptr);
        row("OSD within OSD", "<OSD><PROFILES><CURRENT>a</CURRENT></PROFILES><OSD/></OSD>",
            nullptr);
        row("another root", "<PROFILES><CURRENT>a</CURRENT></PROFILES>", nullptr);
        row("spelled otherwise", "<osd><PROFILES><CURRENT>a</CURRENT></PROFILES></osd>", nullptr);
        row("no PROFILES", "<OSD><CURRENT>a</CURRENT></OSD>", nullptr);
        row("no CURRENT", "<OSD><PROFILES/></OSD>", nullptr);
        row("only the first PROFILES counts",
            "<OSD><PROFILES/><PROFILES><CURRENT>a</CURRENT></PROFILES></OSD>", nullptr);
        row("not a child", "<OSD><PROFILES><X><CURRENT>a</CURRENT></X></PROFILES></OSD>", nullptr);
    }

    void getDefaultProfile()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, path);
        QFETCH(QString, logged);
        ProfileFolders::write(settingsPath(), content);
        ProfileFolders::write(templatePath(), settingsXml("never read"));

        QCOMPARE(COsdSettings::getDefaultProfile(), path);

        QCOMPARE(takeLog(), logged.isEmpty() ? QStringList() : QStringList {logged});
        QCOMPARE(ProfileFolders::read(settingsPath()), content);
    }

    void unreadable_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("message");

        QTest::newRow("empty file") << QByteArray() << QStringLiteral("unexpected end of file");
        QTest::newRow("cut off") << QByteArray("<OSD><PROFILES>")
                                 << QStringLiteral("unexpected end of file");
        QTest::newRow("two roots")
            << QByteArray("<OSD/><OSD/>") << QStringLiteral("unexpected character");
        QTest::newRow("crossed tags")
            << QByteArray("<OSD><PROFILES></OSD></PROFILES>") << QStringLiteral("tag mismatch");
        QTest::newRow("declared entities")
            << QByteArray("<!DOCTYPE OSD [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>"
                          "<OSD><PROFILES><CURRENT>&b;</CURRENT></PROFILES></OSD>")
            << QStringLiteral("declarations inside the document are not supported");
        QTest::newRow("very deep")
            << QByteArray("<A>").repeated(100000) + QByteArray("</A>").repeated(100000)
            << QStringLiteral("nested deeper than 200 levels");
        QTest::newRow("zero bytes")
            << QByteArray(100, '\0') << QStringLiteral("error occurred while parsing element");
        QTest::newRow("very large") << QByteArray("<OSD>" + QByteArray(16 * 1024 * 1024, ' '))
                                    << QStringLiteral("larger than 16777216 bytes");
        QTest::newRow("very many")
            << QByteArray("<OSD>" + QByteArray("<A/>").repeated(500000) + "</OSD>")
            << QStringLiteral("more than 500000 tags, attributes and references");
    }

    void unreadable()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, message);
        ProfileFolders::write(settingsPath(), content);
        ProfileFolders::write(templatePath(), settingsXml("never read"));

        QCOMPARE(COsdSettings::getDefaultProfile(), QString());

        QCOMPARE(takeLog(), QStringList {QStringLiteral("1 VideoOverlayLibrary: ") + message});
        QCOMPARE(ProfileFolders::read(settingsPath()), content);
    }

    void cannotBeOpened_data()
    {
        QTest::addColumn<bool>("isFolder");
        QTest::newRow("neither file nor template") << false;
        QTest::newRow("a folder in its place") << true;
    }

    void cannotBeOpened()
    {
        QFETCH(bool, isFolder);
        if (isFolder)
            QVERIFY(QDir().mkpath(settingsPath()));

        QCOMPARE(COsdSettings::getDefaultProfile(), QString());

        QCOMPARE(takeLog(),
                 QStringList {
                     QStringLiteral("1 VideoOverlayLibrary: Cannot open osd xml settings file")});
    }

    void setDefaultProfile_data()
    {
        QTest::addColumn<QString>("path"); // "%1" the settings, "%2" the configuration
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QByteArray>("written");

        QTest::newRow("outside: parent steps")
            << QStringLiteral("%1/osd/a.xml") << QStringLiteral("../../../settings/osd/a.xml")
            << QByteArray("../../../settings/osd/a.xml");
        QTest::newRow("inside") << QStringLiteral("%2/osd/a.xml") << QStringLiteral("osd/a.xml")
                                << QByteArray("osd/a.xml");
        QTest::newRow("relative already") << QStringLiteral("osd/a.xml")
                                          << QStringLiteral("osd/a.xml") << QByteArray("osd/a.xml");
        QTest::newRow("escaped") << QStringLiteral("%2/a&b <c>.xml")
                                 << QStringLiteral("a&b <c>.xml")
                                 << QByteArray("a&amp;b &lt;c&gt;.xml");
        QTest::newRow("letters beyond ASCII")
            << QString::fromUtf8("%2/R\xc3\xb6hre \xe2\x82\xac.xml")
            << QString::fromUtf8("R\xc3\xb6hre \xe2\x82\xac.xml")
            << QByteArray("R\xc3\xb6hre \xe2\x82\xac.xml");
    }

    void setDefaultProfile()
    {
        QFETCH(QString, path);
        QFETCH(QString, stored);
        QFETCH(QByteArray, written);
        path.replace(QStringLiteral("%1"), m_folders->settings());
        path.replace(QStringLiteral("%2"), m_folders->configuration());
        ProfileFolders::write(settingsPath(),
                              settingsXml("something much longer than that").repeated(9));

        COsdSettings::setDefaultProfile(path);

        QCOMPARE(takeLog(),
                 QStringList {QStringLiteral("3 VideoOverlayLibrary: Saving current profile:")
                              + stored});
        QCOMPARE(ProfileFolders::read(settingsPath()), settingsXml(written));
        QCOMPARE(QDir(m_folders->settings()).entryList(QDir::Files | QDir::Hidden),
                 QStringList {QStringLiteral("OsdSettings.xml")});

        QCOMPARE(COsdSettings::getDefaultProfile(), stored);
    }

    void storesWithoutAFileOrATemplate()
    {
        COsdSettings::setDefaultProfile(m_folders->configuration() + QStringLiteral("/a.xml"));

        QCOMPARE(
            takeLog(),
            QStringList {QStringLiteral("3 VideoOverlayLibrary: Saving current profile:a.xml")});
        QCOMPARE(ProfileFolders::read(settingsPath()), settingsXml("a.xml"));
    }

    void theSettingsDirectoryIsNotMade()
    {
        const QString missing = m_folders->settings() + QStringLiteral("/missing");
        Directories::setSettingsDirectory(missing);
        ProfileFolders::write(templatePath(), settingsXml("a"));

        COsdSettings::setDefaultProfile(QStringLiteral("b"));

        QCOMPARE(takeLog(),
                 QStringList {QStringLiteral(
                                  "1 VideoOverlayLibrary: Cannot open osd settings file for save:")
                              + missing + QStringLiteral("/OsdSettings.xml")});
        QVERIFY(!QFileInfo::exists(missing));
    }

    void aFailedSaveKeepsTheOldFile_data()
    {
        QTest::addColumn<bool>("isFolder");
        QTest::newRow("a folder in its place") << true;
        QTest::newRow("a full disk") << false;
    }

    void aFailedSaveKeepsTheOldFile()
    {
        QFETCH(bool, isFolder);
        if (isFolder)
            QVERIFY(QDir().mkpath(settingsPath()));
        else
            ProfileFolders::write(settingsPath(), settingsXml("old"));

        if (isFolder) {
            COsdSettings::setDefaultProfile(QStringLiteral("new"));
        } else {
            const FullDisk full;
            COsdSettings::setDefaultProfile(QStringLiteral("new"));
        }

        QCOMPARE(takeLog(),
                 QStringList {QStringLiteral(
                                  "1 VideoOverlayLibrary: Cannot open osd settings file for save:")
                              + settingsPath()});
        QCOMPARE(QFileInfo(settingsPath()).isDir(), isFolder);
        if (!isFolder)
            QCOMPARE(ProfileFolders::read(settingsPath()), settingsXml("old"));
        QCOMPARE(QDir(m_folders->settings()).entryList(QDir::Files | QDir::Hidden).size(),
                 isFolder ? 0 : 1);
    }
};

QTEST_MAIN(tst_COsdSettings)
#include "tst_COsdSettings.moc"
