// SPDX-License-Identifier: Apache-2.0
#include "host/check/ProfileProblem.h"

#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"

#include <videooverlay/profiles/Profile.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Velmar::Host;
using Velmar::Test::ProfileFolders;
using Velmar::VideoOverlay::Profile;

class tst_ProfileProblem : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void file_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("problem"); // behind the path
        QTest::newRow("fine") << QByteArray("<PROFILE/>") << QString();
        QTest::newRow("cut") << QByteArray("<PROFILE>\n  <IMAGE>\n  </IMAGE>\n</PROF")
                             << QStringLiteral(":4:7: unexpected end of file");
        QTest::newRow("empty") << QByteArray() << QStringLiteral(":1:1: unexpected end of file");
        QTest::newRow("crossed") << QByteArray("<PROFILE>\n<A></B></A></PROFILE>")
                                 << QStringLiteral(":2:8: tag mismatch");
        QTest::newRow("no profile")
            << QByteArray("<OSD/>") << QStringLiteral(": does not hold one profile");
        QTest::newRow("two") << QByteArray("<A><PROFILE/><PROFILE/></A>")
                             << QStringLiteral(": does not hold one profile");
        QTest::newRow("too deep") << QByteArray("<A>").repeated(300)
                + QByteArray("</A>").repeated(300)
                                  << QStringLiteral(":1:193: nested deeper than 200 levels");
        QTest::newRow("too many") << "<PROFILE>" + QByteArray("<A/>").repeated(500001)
                + "</PROFILE>"
                                  << QStringLiteral(
                                         ": more than 500000 tags, attributes and references");
    }

    void file()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, problem);
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("a.xml"));
        ProfileFolders::write(path, content);
        QCOMPARE(profileProblem(path), problem.isEmpty() ? QString() : path + problem);
        takeLog();
    }

    void missing()
    {
        QCOMPARE(profileProblem(QStringLiteral("/none/a.xml")),
                 QStringLiteral("/none/a.xml: No such file or directory"));
        takeLog();
    }

    /// What it was when it was read counts: the records come from then.
    void profile()
    {
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("a.xml"));
        ProfileFolders::write(path, "<PROFILE");
        Profile damaged;
        damaged.load(path);
        QCOMPARE(profileProblem(damaged), profileProblem(path));
        QVERIFY(!profileProblem(path).isEmpty());
        ProfileFolders::write(path, "<PROFILE/>");
        QCOMPARE(profileProblem(damaged),
                 path + QStringLiteral(": could not be read when the program started"));
        Profile fine;
        fine.load(path);
        ProfileFolders::write(path, "<PROFILE");
        QCOMPARE(profileProblem(fine), QString());
        takeLog();
    }
};

QTEST_GUILESS_MAIN(tst_ProfileProblem)
#include "tst_ProfileProblem.moc"
