// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/Profile.h"

#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/ProfileFolders.h"

#include <QDir>
#include <QFileInfo>
#include <QQmlEngine>
#include <QSignalSpy>
#include <QTest>

#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <sys/syscall.h>
#include <unistd.h>

using Velmar::Test::FullDisk;
using Velmar::Test::methodsOf;
using Velmar::Test::ProfileFolders;
using Velmar::Test::propertiesOf;
using Velmar::VideoOverlay::ElementParam;
using Velmar::VideoOverlay::Profile;

namespace {

int renameError = 0; ///< 0: as the system does

} // namespace

/// Stands in for that of the system: files of one directory may lie on several disks.
extern "C" Q_DECL_EXPORT int renameat2(int fromPlace, const char *from, int toPlace, const char *to,
                                       unsigned int flags) noexcept
{
    const bool isCopy = std::strstr(from, "/.") != nullptr;
    if (renameError == 0 || isCopy)
        return int(::syscall(SYS_renameat2, fromPlace, from, toPlace, to, flags));
    errno = renameError;
    return -1;
}

namespace {

const QString rowKey = QStringLiteral("row");

ElementParam record(int type, int row)
{
    ElementParam param;
    param.insert(QStringLiteral("type"), type);
    param.insert(rowKey, row);
    return param;
}

} // namespace

class tst_Profile : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { m_folders.emplace(); }

    QString pathOf(const QString &fileName) const
    {
        return m_folders->profiles() + QLatin1Char('/') + fileName;
    }

    std::optional<ProfileFolders> m_folders;

private Q_SLOTS:
    void metaObject()
    {
        QCOMPARE(propertiesOf(Profile::staticMetaObject),
                 (QStringList {QStringLiteral("QString caption captionChanged()"),
                               QStringLiteral("QString path captionChanged()"),
                               QStringLiteral("bool readOnly captionChanged()")}));
        QCOMPARE(methodsOf(Profile::staticMetaObject),
                 QStringList {QStringLiteral("signal captionChanged()")});
    }

    void aNewProfileIsEmpty()
    {
        const Profile profile;
        QCOMPARE(profile.name(), QString());
        QCOMPARE(profile.path(), QString());
        QCOMPARE(profile.readOnly(), false);
        QCOMPARE(profile.changed(), false);
        QCOMPARE(profile.elements(), QList<ElementParam>());
        QCOMPARE(profile.caption(), QString());
    }

    void settersAreSilent()
    {
        Profile profile;
        QSignalSpy captionChanged(&profile, &Profile::captionChanged);

        profile.setName(QStringLiteral("name"));
        profile.setPath(QStringLiteral("/path/file.xml"));
        profile.setReadOnly(true);
        profile.elements().append(record(0, 1));

        QCOMPARE(profile.name(), QStringLiteral("name"));
        QCOMPARE(profile.path(), QStringLiteral("/path/file.xml"));
        QCOMPARE(profile.readOnly(), true);
        QCOMPARE(profile.changed(), false);
        QCOMPARE(qAsConst(profile).elements(), QList<ElementParam> {record(0, 1)});
        QCOMPARE(captionChanged.count(), 0);
    }

    void caption_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("caption");

        QTest::newRow("the name") << QStringLiteral("N") << QStringLiteral("/a/b.xml")
                                  << QStringLiteral("N");
        QTest::newRow("the file") << QString() << QStringLiteral("/a/b.xml") << QStringLiteral("b");
        QTest::newRow("dots in it")
            << QString() << QStringLiteral("/a.c/DN 1.5.xml") << QStringLiteral("DN 1.5");
    }

    void caption()
    {
        QFETCH(QString, name);
        QFETCH(QString, path);
        QFETCH(QString, caption);
        Profile profile;
        profile.setName(name);
        profile.setPath(path);
        QCOMPARE(profile.caption(), caption);
        QCOMPARE(profile.property("caption").toString(), caption);
        QCOMPARE(profile.property("path").toString(), path);
    }

    void load_data()
    {
        QTest::addColumn<QByteArray>("attributes");
        QTest::addColumn<QString>("name"); // "%1" the path
        QTest::addColumn<bool>("readOnly");

        QTest::newRow("name and flag")
            << QByteArray("name=\"Main\" readonly=\"true\"") << QStringLiteral("Main") << true;
        QTest::newRow("not read-only")
            << QByteArray("name=\"Main\" readonly=\"false\"") << QStringLiteral("Main") << false;
        QTest::newRow("no flag") << QByteArray("name=\"Main\"") << QStringLiteral("Main") << false;
        QTest::newRow("flag in capitals")
            << QByteArray("name=\"\" readonly=\"TRUE\"") << QString() << true;
        QTest::newRow("flag zero") << QByteArray("name=\"\" readonly=\"0\"") << QString() << false;
        QTest::newRow("no name: the path") << QByteArray() << QStringLiteral("%1") << false;
        QTest::newRow("empty name") << QByteArray("name=\"\"") << QString() << false;
    }

    void load()
    {
        QFETCH(QByteArray, attributes);
        QFETCH(QString, name);
        QFETCH(bool, readOnly);
        const QString path = m_folders->writeProfile(
            QStringLiteral("p.xml"),
            ProfileFolders::profileXml(attributes,
                                       "<SYSTEMTEXT><ROW>7</ROW></SYSTEMTEXT>"
                                       "<STATICTEXT><ROW>5</ROW></STATICTEXT>"));
        Profile profile;
        QSignalSpy captionChanged(&profile, &Profile::captionChanged);

        QVERIFY(profile.load(path));

        QCOMPARE(profile.path(), path);
        QCOMPARE(profile.name(), name.replace(QStringLiteral("%1"), path));
        QCOMPARE(profile.readOnly(), readOnly);
        QCOMPARE(profile.property("readOnly").toBool(), readOnly);
        QCOMPARE(profile.elements().size(), 2);
        QCOMPARE(profile.elements().at(0).value(rowKey).toInt(), 7);
        QCOMPARE(profile.elements().at(1).value(rowKey).toInt(), 5);
        QCOMPARE(captionChanged.count(), 0);
        QCOMPARE(takeLog(), QStringList());
    }

    void unreadable_data()
    {
        QTest::addColumn<QByteArray>("content"); // null: no file
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("logged");

        const QString category = QStringLiteral("1 VideoOverlayLibrary: ");
        const QString cannotOpen = category + QStringLiteral("Cannot open osd xml settings file:")
            + QStringLiteral("%1");
        const QString cutOff = category + QStringLiteral("unexpected end of file");
        QTest::newRow("no file") << QByteArray() << QString()
                                 << QStringList {cannotOpen, cannotOpen};
        QTest::newRow("no XML") << QByteArray("<PROFILE name=\"a\">") << QString()
                                << QStringList {cutOff, cutOff};
        QTest::newRow("two within another root: no elements, silently")
            << QByteArray("<X><PROFILE name=\"a\"/><PROFILE/></X>") << QStringLiteral("%1")
            << QStringList();
    }

    void unreadable()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, name);
        QFETCH(QStringList, logged);
        const QString path = pathOf(QStringLiteral("p.xml"));
        if (!content.isNull())
            ProfileFolders::write(path, content);
        Profile profile;
        profile.setName(QStringLiteral("before"));
        profile.setReadOnly(true);

        QVERIFY(!profile.load(path));

        // Listed all the same, so it has to say which file it is.
        QCOMPARE(profile.path(), path);
        QCOMPARE(profile.name(), name.replace(QStringLiteral("%1"), path));
        QCOMPARE(profile.readOnly(), false);
        QCOMPARE(profile.elements().size(), 0);
        QCOMPARE(takeLog(), logged.replaceInStrings(QStringLiteral("%1"), path));
    }

    void aSecondLoadIsRefused()
    {
        const QString path = m_folders->writeProfile(
            QStringLiteral("p.xml"), ProfileFolders::profileXml("name=\"a\"", "<STATICTEXT/>"));
        Profile profile;
        QVERIFY(profile.load(path));

        QVERIFY(!profile.load(path));

        QCOMPARE(profile.elements().size(), 1);
        QCOMPARE(
            takeLog(),
            QStringList {QStringLiteral("1 VideoOverlayLibrary: Profile setting storage should "
                                        "be empty before load data")});
    }

    void save()
    {
        Profile profile;
        profile.setName(QStringLiteral("Main"));
        profile.setPath(pathOf(QStringLiteral("p.xml")));
        profile.setReadOnly(true);
        profile.elements().append(record(2, 3));

        QVERIFY(profile.save());

        // Neither the name nor the flag is written.
        QVERIFY2(ProfileFolders::read(profile.path())
                     .startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                 "<PROFILE readonly=\"false\" name=\"\">\n"
                                 "    <IMAGE>\n"
                                 "        <COL>0</COL>\n"
                                 "        <ROW>3</ROW>\n"),
                 ProfileFolders::read(profile.path()).constData());
        QCOMPARE(profile.name(), QStringLiteral("Main"));
        QCOMPARE(profile.readOnly(), true);

        Profile again;
        QVERIFY(again.load(profile.path()));
        QCOMPARE(again.name(), QString());
        QCOMPARE(again.caption(), QStringLiteral("p"));
        QCOMPARE(again.readOnly(), false);
        QCOMPARE(again.elements().size(), 1);
        QCOMPARE(takeLog(), QStringList());
    }

    void aFailedSaveKeepsTheFile()
    {
        Profile profile;
        profile.setPath(m_folders->writeProfile(QStringLiteral("p.xml"), "old"));
        {
            const FullDisk full;
            QVERIFY(!profile.save());
        }
        QCOMPARE(ProfileFolders::read(profile.path()), QByteArray("old"));
        QCOMPARE(
            takeLog(),
            QStringList {QStringLiteral("1 VideoOverlayLibrary: Cannot open profile file for save:")
                         + profile.path()});
    }

    void clone()
    {
        Profile profile;
        profile.setName(QStringLiteral("Main"));
        profile.setPath(QStringLiteral("/a/b.xml"));
        profile.setReadOnly(true);
        profile.elements() = {record(0, 1), record(1, 2)};

        const std::unique_ptr<Profile> copy(profile.clone());

        QCOMPARE(copy->name(), QStringLiteral("Main"));
        QCOMPARE(copy->path(), QStringLiteral("/a/b.xml"));
        QCOMPARE(copy->readOnly(), true);
        QCOMPARE(copy->elements(), profile.elements());
        QCOMPARE(copy->parent(), nullptr);
        QQmlEngine engine; // takes what nobody declared
        engine.newQObject(copy.get());
        QCOMPARE(QQmlEngine::objectOwnership(copy.get()), QQmlEngine::CppOwnership);

        copy->elements()[0].insert(rowKey, 9);
        copy->elements().removeLast();
        QCOMPARE(profile.elements(), (QList<ElementParam> {record(0, 1), record(1, 2)}));
    }

    void rename()
    {
        const QByteArray content = ProfileFolders::profileXml("name=\"Main\"");
        Profile profile;
        QVERIFY(profile.load(m_folders->writeProfile(QStringLiteral("p.xml"), content)));
        QSignalSpy captionChanged(&profile, &Profile::captionChanged);
        QString nameInHandler;
        connect(&profile, &Profile::captionChanged, this,
                [&] { nameInHandler = profile.name() + profile.path(); });

        QVERIFY(profile.rename(QStringLiteral("DN 1.5")));

        QCOMPARE(captionChanged.count(), 1);
        QCOMPARE(profile.path(), pathOf(QStringLiteral("DN 1.5.xml")));
        QCOMPARE(profile.name(), QStringLiteral("DN 1.5"));
        QCOMPARE(nameInHandler, profile.name() + profile.path());
        QCOMPARE(ProfileFolders::read(profile.path()), content);
        QCOMPARE(QDir(m_folders->profiles()).entryList(QDir::Files),
                 QStringList {QStringLiteral("DN 1.5.xml")});
        QCOMPARE(takeLog(), QStringList());
    }

    void aRenameMovesIntoTheProfileDirectory()
    {
        Profile profile;
        profile.setPath(m_folders->settings() + QStringLiteral("/p.xml"));
        ProfileFolders::write(profile.path(), "x");

        QVERIFY(profile.rename(QStringLiteral("q")));

        QCOMPARE(profile.path(), pathOf(QStringLiteral("q.xml")));
        QCOMPARE(ProfileFolders::read(profile.path()), QByteArray("x"));
    }

    /// As from a mounted file, or another file system.
    void aMoveBetweenDisksLosesNothing()
    {
        const QByteArray content = ProfileFolders::profileXml("");
        Profile profile;
        profile.setPath(m_folders->writeProfile(QStringLiteral("p.xml"), content));
        renameError = EXDEV;
        {
            const FullDisk full;
            QVERIFY(!profile.rename(QStringLiteral("q")));
        }
        QCOMPARE(profile.path(), pathOf(QStringLiteral("p.xml")));
        QCOMPARE(ProfileFolders::read(profile.path()), content);
        QCOMPARE(QDir(m_folders->profiles()).entryList(QDir::Files | QDir::Hidden),
                 QStringList {QStringLiteral("p.xml")});

        QVERIFY(profile.rename(QStringLiteral("q")));
        renameError = 0;
        QCOMPARE(ProfileFolders::read(profile.path()), content);
        QCOMPARE(QDir(m_folders->profiles()).entryList(QDir::Files | QDir::Hidden),
                 QStringList {QStringLiteral("q.xml")});
    }

    void theLongestName()
    {
        Profile profile;
        profile.setPath(m_folders->writeProfile(QStringLiteral("p.xml"), "x"));
        QVERIFY(profile.rename(QString(251, QLatin1Char('p'))));
    }

    void refusedNames_data()
    {
        QTest::addColumn<QString>("newName");

        QTest::newRow("taken") << QStringLiteral("taken");
        QTest::newRow("its own") << QStringLiteral("p");
        QTest::newRow("empty") << QString();
        QTest::newRow("blank") << QStringLiteral("  ");
        QTest::newRow("hidden") << QStringLiteral(".p");
        QTest::newRow("another directory") << QStringLiteral("../p");
        QTest::newRow("a directory that is there") << QStringLiteral("sub/p");
        QTest::newRow("half a character, which files cannot have") << QString(QChar(0xd83d));
        QTest::newRow("a zero in it") << QString(QStringLiteral("p") + QChar::Null);
        QTest::newRow("a byte too long") << QString(252, QLatin1Char('p'));
        QTest::newRow("a byte too long, in 84 letters") << QString(84, QChar(0x20AC));
    }

    void refusedNames()
    {
        QFETCH(QString, newName);
        Profile profile;
        profile.setName(QStringLiteral("Main"));
        profile.setPath(m_folders->writeProfile(QStringLiteral("p.xml"), "x"));
        m_folders->writeProfile(QStringLiteral("taken.xml"), "y");
        QVERIFY(QDir(m_folders->profiles()).mkpath(QStringLiteral("sub")));
        QSignalSpy captionChanged(&profile, &Profile::captionChanged);

        QVERIFY(!profile.rename(newName));

        QCOMPARE(captionChanged.count(), 0);
        QCOMPARE(profile.name(), QStringLiteral("Main"));
        QCOMPARE(profile.path(), pathOf(QStringLiteral("p.xml")));
        QCOMPARE(ProfileFolders::read(profile.path()), QByteArray("x"));
        QCOMPARE(ProfileFolders::read(pathOf(QStringLiteral("taken.xml"))), QByteArray("y"));
    }

    void aFileThatIsGoneCannotBeRenamed()
    {
        Profile profile;
        profile.setPath(pathOf(QStringLiteral("gone.xml")));
        QVERIFY(!profile.rename(QStringLiteral("q")));
        QCOMPARE(profile.path(), pathOf(QStringLiteral("gone.xml")));
    }

    void findParamByKeyValue_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("row"); // -1: none
        QTest::addColumn<int>("skipped");

        QTest::newRow("the first of two") << QStringLiteral("id") << QStringLiteral("7") << 1 << 1;
        QTest::newRow("stored as text") << QStringLiteral("id") << QStringLiteral("8") << 3 << 1;
        QTest::newRow("none") << QStringLiteral("id") << QStringLiteral("9") << -1 << 1;
        QTest::newRow("not by number") << QStringLiteral("id") << QStringLiteral("07") << -1 << 1;
        QTest::newRow("by letter case") << QStringLiteral("text") << QStringLiteral("ab") << 4 << 2;
        QTest::newRow("nothing is never found") << QStringLiteral("text") << QString() << -1 << 2;
    }

    void findParamByKeyValue()
    {
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(int, row);
        QFETCH(int, skipped);
        const QString id = QStringLiteral("id");
        const QString text = QStringLiteral("text");
        Profile profile;
        for (int i = 0; i < 5; ++i)
            profile.elements().append(record(0, i));
        profile.elements()[0].insert(text, QStringLiteral("aB"));
        profile.elements()[1].insert(id, 7);
        profile.elements()[1].insert(text, QString());
        profile.elements()[2].insert(id, 7);
        profile.elements()[2].insert(text, QStringLiteral("AB"));
        profile.elements()[3].insert(id, QStringLiteral("8"));
        profile.elements()[4].insert(id, 10);
        profile.elements()[4].insert(text, QStringLiteral("ab"));

        ElementParam *found = profile.findParamByKeyValue(key, value);

        QCOMPARE(found ? found->value(rowKey).toInt() : -1, row);
        if (found)
            QCOMPARE(found, &profile.elements()[row]);
        QStringList expected;
        for (int i = 0; i < skipped; ++i)
            expected.append(QStringLiteral("4 VideoOverlayLibrary: Empty value found in osd "
                                           "parameters for key:%1 and value: %2")
                                .arg(key, value));
        QCOMPARE(takeLog(), expected);
    }
};

QTEST_MAIN(tst_Profile)
#include "tst_Profile.moc"
