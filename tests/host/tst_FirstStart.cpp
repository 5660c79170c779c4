// SPDX-License-Identifier: Apache-2.0
#include "host/platform/Directories.h"
#include "host/profiles/FirstStart.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace Velmar;
using namespace Velmar::Host;
using Test::ProfileFolders;

namespace {

const QString defaultFile = QStringLiteral("Halvo push camera system - default.xml");

} // namespace

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
    QString profile(const QString &name) const
    {
        return settings() + QLatin1String("/osd/") + name;
    }

private Q_SLOTS:
    void everythingIsCopiedOnce();
    void whatTheOperatorRemovedStaysRemoved();
    void failuresAreTold();
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
             (QStringList {defaultFile, QStringLiteral("Other.xml")}));
}

void tst_FirstStart::whatTheOperatorRemovedStaysRemoved()
{
    QString error;
    QVERIFY(prepareProfiles(shipped(), &error));
    QVERIFY(QFile::remove(profile(QStringLiteral("Other.xml"))));
    ProfileFolders::write(profile(defaultFile), "changed");
    QVERIFY(prepareProfiles(shipped(), &error));
    QVERIFY(!QFile::exists(profile(QStringLiteral("Other.xml"))));
    QCOMPARE(ProfileFolders::read(profile(defaultFile)), QByteArray("changed"));

    // Without the default profile there is nothing to fall back on.
    QVERIFY(QFile::remove(profile(defaultFile)));
    QVERIFY(prepareProfiles(shipped(), &error));
    QCOMPARE(ProfileFolders::read(profile(defaultFile)), QByteArray("<PROFILE name=\"d\"/>"));
}

void tst_FirstStart::failuresAreTold()
{
    QString error;
    ProfileFolders::write(settings(), "a file where the directory should be");
    QVERIFY(!prepareProfiles(shipped(), &error));
    QCOMPARE(error, settings() + QStringLiteral("/osd: cannot be made"));
    QVERIFY(QFile::remove(settings()));

    QVERIFY(QFile::remove(shipped(defaultFile)));
    QVERIFY(prepareProfiles(shipped(), &error)); // the rest is copied
    QVERIFY(!prepareProfiles(shipped(), &error));
    QVERIFY(error.startsWith(shipped(defaultFile) + QLatin1String(": ")));
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
