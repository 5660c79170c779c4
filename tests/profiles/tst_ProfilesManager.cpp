// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/ProfilesManager.h"

#include "host/platform/Directories.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QQmlEngine>
#include <QSignalSpy>
#include <QTest>

#include <optional>

using Velmar::Directories;
using Velmar::Test::FullDisk;
using Velmar::Test::ProfileFolders;
using Velmar::VideoOverlay::Profile;
using Velmar::VideoOverlay::ProfilesManager;

namespace {

QString line(const QString &message)
{
    return QStringLiteral("1 VideoOverlayLibrary: ") + message;
}

} // namespace

class tst_ProfilesManager : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { m_folders.emplace(); }

    QString pathOf(const QString &fileName) const
    {
        return m_folders->profiles() + QLatin1Char('/') + fileName;
    }

    QString writeNamed(const QString &name) const
    {
        return m_folders->writeProfile(
            name + QStringLiteral(".xml"),
            ProfileFolders::profileXml("name=\"" + name.toUtf8() + "\"", "<STATICTEXT/>"));
    }

    std::optional<ProfileFolders> m_folders;

private Q_SLOTS:
    void directory()
    {
        QCOMPARE(ProfilesManager::profilesDirectory(), m_folders->profiles());
        Directories::setSettingsDirectory(QStringLiteral("/"));
        QCOMPARE(ProfilesManager::profilesDirectory(), QStringLiteral("/osd"));
    }

    void noDirectoryNoProfiles()
    {
        QVERIFY(QDir(m_folders->profiles()).removeRecursively());
        const ProfilesManager manager;
        QCOMPARE(manager.getProfiles().size(), 0);
        QCOMPARE(manager.getProfilesPath(), QStringList());
        QCOMPARE(manager.checkDuplicates(QStringLiteral("a")), QStringLiteral("a"));
        QVERIFY(!QFileInfo::exists(m_folders->profiles()));
        QCOMPARE(takeLog(), QStringList());
    }

    void listsFilesOnly()
    {
        writeNamed(QStringLiteral("b"));
        writeNamed(QStringLiteral("a"));
        m_folders->writeProfile(QStringLiteral("c.XML"), "<PROFILE name=\"c\"/>");
        m_folders->writeProfile(QStringLiteral("d.xml.bak"), "<PROFILE/>");
        m_folders->writeProfile(QStringLiteral("xml"), "<PROFILE/>");
        m_folders->writeProfile(QStringLiteral(".hidden.xml"), "<PROFILE/>");
        QVERIFY(QDir(m_folders->profiles()).mkpath(QStringLiteral("folder.xml")));

        const ProfilesManager manager;

        const QStringList names {QStringLiteral("a.xml"), QStringLiteral("b.xml"),
                                 QStringLiteral("c.XML")};
        QCOMPARE(manager.getProfilesPath(), names);
        QCOMPARE(manager.getProfiles().size(), 3);
        QStringList logged;
        for (int i = 0; i < names.size(); ++i) {
            const Profile *profile = manager.getProfiles().at(i);
            QCOMPARE(profile->path(), pathOf(names.at(i)));
            QCOMPARE(profile->name(), names.at(i).left(1));
            QCOMPARE(profile->parent(), &manager);
            logged.append(line(QStringLiteral("profile found: '%1'    '%2'")
                                   .arg(profile->name(), profile->path())));
        }
        QCOMPARE(takeLog(), logged);
    }

    void aBrokenProfileIsListed()
    {
        const QString path = m_folders->writeProfile(QStringLiteral("broken.xml"), "<PROFILE");
        const ProfilesManager manager;
        QCOMPARE(manager.getProfiles().size(), 1);
        QCOMPARE(manager.getProfiles().first()->path(), path);
        QCOMPARE(manager.getProfiles().first()->elements().size(), 0);
        const QStringList logged = takeLog();
        QCOMPARE(logged.size(), 3); // the parser's words for header and elements
        QCOMPARE(logged.last(), line(QStringLiteral("profile found: ''    '%1'").arg(path)));
    }

    void hostileFilesKeepNoOtherAway()
    {
        const QString bomb = m_folders->writeProfile(
            QStringLiteral("bomb.xml"),
            "<!DOCTYPE P [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]><PROFILE>&b;</PROFILE>");
        const QString good = writeNamed(QStringLiteral("good"));
        const QString huge = writeNamed(QStringLiteral("huge"));
        QVERIFY(QFile::resize(huge, 100 * 1024 * 1024));

        const ProfilesManager manager;

        QCOMPARE(manager.getProfiles().size(), 3);
        QCOMPARE(manager.findProfileByName(QStringLiteral("good"))->elements().size(), 1);
        const QString refusesBomb
            = line(QStringLiteral("declarations inside the document are not supported"));
        const QString refusesHuge = line(QStringLiteral("larger than 16777216 bytes"));
        QCOMPARE(takeLog(),
                 (QStringList {refusesBomb, refusesBomb,
                               line(QStringLiteral("profile found: ''    '%1'").arg(bomb)),
                               line(QStringLiteral("profile found: 'good'    '%1'").arg(good)),
                               refusesHuge, refusesHuge,
                               line(QStringLiteral("profile found: ''    '%1'").arg(huge))}));
    }

    void laterFilesAreNotSeen()
    {
        const ProfilesManager manager;
        writeNamed(QStringLiteral("late"));
        QCOMPARE(manager.getProfiles().size(), 0);
        QCOMPARE(manager.getProfilesPath(), QStringList {QStringLiteral("late.xml")});
    }

    void saveProfile()
    {
        writeNamed(QStringLiteral("a"));
        ProfilesManager manager;
        takeLog();
        Profile *profile = manager.getProfiles().first();
        profile->elements().clear();

        QVERIFY(manager.saveProfile(profile));
        QCOMPARE(ProfileFolders::read(profile->path()),
                 QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<PROFILE readonly=\"false\" name=\"\"/>\n"));

        QVERIFY(!manager.saveProfile(nullptr));
        profile->setPath(m_folders->profiles());
        QVERIFY(!manager.saveProfile(profile));
        QCOMPARE(takeLog(),
                 QStringList {line(QStringLiteral("Cannot open profile file for save:")
                                   + m_folders->profiles())});
    }

    void checkDuplicates_data()
    {
        QTest::addColumn<QStringList>("taken");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("result");

        const auto row = [](const char *what, const QStringList &taken, const char *name,
                            const char *result) {
            QTest::newRow(what) << taken << QString::fromUtf8(name) << QString::fromUtf8(result);
        };
        const auto names = [](std::initializer_list<const char *> list) {
            QStringList result;
            for (const char *name : list)
                result.append(QString::fromUtf8(name));
            return result;
        };
        row("free", {}, "Main", "Main");
        row("free although it looks like a copy", {}, "Main(copy 4)", "Main(copy 4)");
        row("another letter case is another file", names({"main"}), "Main", "Main");
        row("taken", names({"Main"}), "Main", "Main(copy)");
        row("the copy is taken", names({"Main", "Main(copy)"}), "Main", "Main(copy 1)");
        row("the next one, too", names({"Main", "Main(copy)", "Main(copy 1)"}), "Main",
            "Main(copy 2)");
        row("a gap is filled", names({"Main", "Main(copy)", "Main(copy 2)"}), "Main",
            "Main(copy 1)");
        row("copy of a copy", names({"Main(copy)"}), "Main(copy)", "Main(copy 1)");
        row("counts on", names({"Main(copy 3)"}), "Main(copy 3)", "Main(copy 4)");
        row("from 9 to 10", names({"Main(copy 9)"}), "Main(copy 9)", "Main(copy 10)");
        row("without a blank", names({"Main(copy7)"}), "Main(copy7)", "Main(copy 8)");
        row("a blank and no number", names({"Main(copy )"}), "Main(copy )", "Main(copy 1)");
        row("any white space", names({"Main(copy\t2)"}), "Main(copy\t2)", "Main(copy 3)");
        row("two blanks are none of it", names({"Main(copy  7)"}), "Main(copy  7)",
            "Main(copy  7)(copy)");
        row("leading zeros", names({"Main(copy 007)"}), "Main(copy 007)", "Main(copy 8)");
        row("no octal number", names({"Main(copy 010)"}), "Main(copy 010)", "Main(copy 11)");
        row("zero", names({"Main(copy 0)"}), "Main(copy 0)", "Main(copy 1)");
        row("letters are none of it", names({"Main(copy b)"}), "Main(copy b)",
            "Main(copy b)(copy)");
        row("a line feed behind it", names({"Main(copy)\n"}), "Main(copy)\n", "Main(copy)\n(copy)");
        row("negative is none of it", names({"Main(copy -1)"}), "Main(copy -1)",
            "Main(copy -1)(copy)");
        row("not at the end", names({"Main(copy 1) "}), "Main(copy 1) ", "Main(copy 1) (copy)");
        row("by letter case", names({"Main(Copy)"}), "Main(Copy)", "Main(Copy)(copy)");
        row("only the last", names({"Main(copy)(copy 3)"}), "Main(copy)(copy 3)",
            "Main(copy)(copy 4)");
        row("nothing before it", names({"(copy)"}), "(copy)", "(copy 1)");
        row("the largest number", names({"Main(copy 2147483647)"}), "Main(copy 2147483647)",
            "Main(copy 2147483648)");
        row("too large to be a number", names({"Main(copy 2147483648)"}), "Main(copy 2147483648)",
            "Main(copy 1)");
        row("far too large", names({"Main(copy 99999999999999999999)"}),
            "Main(copy 99999999999999999999)", "Main(copy 1)");
        row("dots", names({"DN 1.5"}), "DN 1.5", "DN 1.5(copy)");

        // "Main", then 100 candidates: Main(copy), Main(copy 1) .. Main(copy 99).
        QStringList many {QStringLiteral("Main"), QStringLiteral("Main(copy)")};
        for (int i = 1; i < 99; ++i)
            many.append(QStringLiteral("Main(copy %1)").arg(i));
        row("the hundredth candidate is free", many, "Main", "Main(copy 99)");
        many.append(QStringLiteral("Main(copy 99)"));
        row("all hundred are taken", many, "Main", "");
    }

    void checkDuplicates()
    {
        QFETCH(QStringList, taken);
        QFETCH(QString, name);
        QFETCH(QString, result);
        const ProfilesManager manager;
        for (const QString &file : qAsConst(taken))
            m_folders->writeProfile(file + QStringLiteral(".xml"), "x");

        QCOMPARE(manager.checkDuplicates(name), result);
    }

    void clone_data()
    {
        QTest::addColumn<QString>("newName");
        QTest::addColumn<QString>("result");

        QTest::newRow("none: the source's file") << QString() << QStringLiteral("A(copy 1)");
        QTest::newRow("blank: the source's file")
            << QStringLiteral(" \t ") << QStringLiteral("A(copy 1)");
        QTest::newRow("new") << QStringLiteral("B") << QStringLiteral("B");
        QTest::newRow("trimmed") << QStringLiteral("  B 2 ") << QStringLiteral("B 2");
        QTest::newRow("taken") << QStringLiteral(" A ") << QStringLiteral("A(copy 1)");
        QTest::newRow("dots") << QStringLiteral("DN 1.5") << QStringLiteral("DN 1.5");
        const QString longest(251, QLatin1Char('B'));
        QTest::newRow("as long as a file allows") << longest << longest;
    }

    void clone()
    {
        QFETCH(QString, newName);
        QFETCH(QString, result);
        const QByteArray content = ProfileFolders::profileXml("name=\"Original\" readonly=\"true\"",
                                                              "<IMAGE><ROW>4</ROW></IMAGE>");
        m_folders->writeProfile(QStringLiteral("A.xml"), content);
        m_folders->writeProfile(QStringLiteral("A(copy).xml"), "<PROFILE name=\"\"/>");
        ProfilesManager manager;
        takeLog();
        Profile *source = manager.findProfileByName(QStringLiteral("Original"));
        QVERIFY(source && source->readOnly());
        const QList<Profile *> before = manager.getProfiles();
        QSignalSpy aboutToBeAdded(&manager, &ProfilesManager::profileAboutToBeAdded);
        QSignalSpy added(&manager, &ProfilesManager::profileAdded);
        QVector<int> sizes;
        connect(&manager, &ProfilesManager::profileAboutToBeAdded, this,
                [&] { sizes.append(manager.getProfiles().size()); });
        connect(&manager, &ProfilesManager::profileAdded, this,
                [&] { sizes.append(manager.getProfiles().size()); });

        Profile *copy = manager.clone(source, newName);

        QVERIFY(copy);
        QCOMPARE(copy->name(), result);
        QCOMPARE(copy->path(), pathOf(result + QStringLiteral(".xml")));
        QCOMPARE(copy->readOnly(), false);
        QCOMPARE(copy->elements(), source->elements());
        QCOMPARE(copy->parent(), &manager);
        QCOMPARE(QQmlEngine::objectOwnership(copy), QQmlEngine::CppOwnership);
        QCOMPARE(manager.getProfiles(), before + QList<Profile *> {copy});
        QCOMPARE(sizes, (QVector<int> {2, 3}));
        QVERIFY(ProfileFolders::read(copy->path())
                    .startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<PROFILE readonly=\"false\" name=\"\">\n"
                                "    <IMAGE>\n"));
        QCOMPARE(ProfileFolders::read(source->path()), content);
        QCOMPARE(source->name(), QStringLiteral("Original"));
        QVERIFY(source->readOnly());
        QCOMPARE(takeLog(), QStringList());
    }

    void aCloneOfANameWithDots()
    {
        writeNamed(QStringLiteral("DN 1.5"));
        ProfilesManager manager;
        takeLog();
        const Profile *copy = manager.clone(manager.getProfiles().first(), QString());
        QVERIFY(copy);
        QCOMPARE(copy->path(), pathOf(QStringLiteral("DN 1.5(copy).xml")));
        QCOMPARE(copy->name(), QStringLiteral("DN 1.5(copy)"));
    }

    void aCloneLiesBesideItsSource()
    {
        ProfilesManager manager;
        Profile source;
        source.setPath(m_folders->settings() + QStringLiteral("/elsewhere.profile"));
        source.setName(QStringLiteral("Elsewhere"));

        const Profile *copy = manager.clone(&source, QStringLiteral("B"));

        QVERIFY(copy);
        QCOMPARE(copy->path(), m_folders->settings() + QStringLiteral("/B.profile"));
        QVERIFY(QFileInfo::exists(copy->path()));
    }

    void cloneOfNothing()
    {
        ProfilesManager manager;
        QSignalSpy aboutToBeAdded(&manager, &ProfilesManager::profileAboutToBeAdded);
        QCOMPARE(manager.clone(nullptr, QStringLiteral("B")), nullptr);
        QCOMPARE(takeLog(), QStringList {line(QStringLiteral("Cloning error"))});
        QCOMPARE(aboutToBeAdded.count(), 0);
        QCOMPARE(manager.getProfiles().size(), 0);
    }

    void refusedClones_data()
    {
        QTest::addColumn<QString>("newName");

        QTest::newRow("another directory") << QStringLiteral("../B");
        QTest::newRow("hidden") << QStringLiteral(".B");
        QTest::newRow("two lines") << QStringLiteral("B\nB");
        QTest::newRow("all copies taken") << QStringLiteral("Many");
        QTest::newRow("would overwrite the source") << QStringLiteral("A");
    }

    void refusedClones()
    {
        QFETCH(QString, newName);
        const QByteArray content = ProfileFolders::profileXml("name=\"A\"");
        // ".XML" is listed, but no name with ".xml" says that it is taken.
        const QString path = m_folders->writeProfile(QStringLiteral("A.XML"), content);
        m_folders->writeProfile(QStringLiteral("Many.xml"), "<PROFILE name=\"\"/>");
        m_folders->writeProfile(QStringLiteral("Many(copy).xml"), "<PROFILE name=\"\"/>");
        for (int i = 1; i < 100; ++i)
            m_folders->writeProfile(QStringLiteral("Many(copy %1).xml").arg(i),
                                    "<PROFILE name=\"\"/>");
        ProfilesManager manager;
        takeLog();
        const QStringList files = manager.getProfilesPath();
        const int count = manager.getProfiles().size();

        QCOMPARE(manager.clone(manager.findProfileByPath(path), newName), nullptr);

        QCOMPARE(
            takeLog(),
            QStringList {line(QStringLiteral("Cloning error: no file for the name ") + newName)});
        QCOMPARE(manager.getProfiles().size(), count);
        QCOMPARE(manager.getProfilesPath(), files);
        QCOMPARE(ProfileFolders::read(path), content);
    }

    void aCloneThatCannotBeSavedIsNotListed()
    {
        writeNamed(QStringLiteral("A"));
        ProfilesManager manager;
        takeLog();
        Profile *copy = nullptr;
        {
            const FullDisk full;
            copy = manager.clone(manager.getProfiles().first(), QStringLiteral("B"));
        }
        QCOMPARE(copy, nullptr);
        QCOMPARE(manager.getProfiles().size(), 1);
        QCOMPARE(manager.getProfilesPath(), QStringList {QStringLiteral("A.xml")});
        QCOMPARE(takeLog(),
                 QStringList {line(QStringLiteral("Cannot open profile file for save:")
                                   + pathOf(QStringLiteral("B.xml")))});
    }

    void find()
    {
        const QString path = writeNamed(QStringLiteral("A"));
        m_folders->writeProfile(QStringLiteral("B.xml"), "<PROFILE name=\"A\"/>");
        m_folders->writeProfile(QStringLiteral("C.xml"), "<PROFILE name=\"\"/>"); // as if saved
        const ProfilesManager manager;
        takeLog();

        QCOMPARE(manager.findProfileByPath(path), manager.getProfiles().at(0));
        QCOMPARE(manager.findProfileByPath(pathOf(QStringLiteral("B.xml"))),
                 manager.getProfiles().at(1));
        QCOMPARE(manager.findProfileByName(QStringLiteral("A")), manager.getProfiles().at(0));
        QCOMPARE(takeLog(), QStringList());

        QCOMPARE(manager.findProfileByPath(m_folders->profiles() + QStringLiteral("/./A.xml")),
                 nullptr);
        QCOMPARE(takeLog(), QStringList {line(QStringLiteral("Cannot find profile path"))});
        QCOMPARE(manager.findProfileByName(QStringLiteral("a")), nullptr);
        QCOMPARE(takeLog(), QStringList {line(QStringLiteral("Cannot find profile name"))});
        QCOMPARE(manager.getProfiles().at(2)->caption(), QStringLiteral("C"));
        QCOMPARE(manager.findProfileByName(QStringLiteral("C")), nullptr);
        QCOMPARE(takeLog(), QStringList {line(QStringLiteral("Cannot find profile name"))});
        QCOMPARE(manager.findProfileByName(QString()), manager.getProfiles().at(2));
    }

    void remove()
    {
        const QString path = writeNamed(QStringLiteral("A"));
        writeNamed(QStringLiteral("B"));
        ProfilesManager manager;
        takeLog();
        const QPointer<Profile> profile(manager.getProfiles().first());

        manager.remove(profile);

        QCOMPARE(manager.getProfiles().size(), 1);
        QCOMPARE(manager.getProfiles().first()->name(), QStringLiteral("B"));
        QVERIFY(!QFileInfo::exists(path));
        QCOMPARE(takeLog(), QStringList());
        QVERIFY(profile); // whoever still shows it may do so until the event loop turns
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!profile);
    }

    void removeWithoutItsFile()
    {
        const QString path = writeNamed(QStringLiteral("A"));
        ProfilesManager manager;
        takeLog();
        QVERIFY(QFile::remove(path));

        manager.remove(manager.getProfiles().first());

        QCOMPARE(manager.getProfiles().size(), 0);
        QCOMPARE(takeLog(),
                 QStringList {line(QStringLiteral("Deleting profile file '%1' failed").arg(path))});
    }

    void removeAStranger()
    {
        const QString path = writeNamed(QStringLiteral("A"));
        ProfilesManager manager;
        takeLog();
        Profile stranger;
        stranger.setPath(path);

        manager.remove(&stranger);
        manager.remove(nullptr);

        const QString message = line(QStringLiteral("Cannot delete. Profile doesn't exists"));
        QCOMPARE(takeLog(), (QStringList {message, message}));
        QCOMPARE(manager.getProfiles().size(), 1);
        QVERIFY(QFileInfo::exists(path));
    }
};

QTEST_MAIN(tst_ProfilesManager)
#include "tst_ProfilesManager.moc"
