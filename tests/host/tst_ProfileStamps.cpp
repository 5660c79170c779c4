// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/ProfileStamps.h"

#include "tests/support/ProfileFolders.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using Velmar::Host::ProfileStamps;
using Velmar::Test::ProfileFolders;

class tst_ProfileStamps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void changedByAnother()
    {
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("a.xml"));
        ProfileFolders::write(path, "one");
        ProfileStamps stamps;
        QVERIFY(stamps.isChanged(path)); // nobody has read it
        stamps.note(path);
        QVERIFY(!stamps.isChanged(path));
        ProfileFolders::write(path, "one"); // the same again
        QVERIFY(!stamps.isChanged(path));
        ProfileFolders::write(path, "two");
        QVERIFY(stamps.isChanged(path));
        stamps.note(path);
        QVERIFY(!stamps.isChanged(path));
        QVERIFY(QFile::remove(path)); // saving makes it anew, and loses nothing
        QVERIFY(!stamps.isChanged(path));
        stamps.note(path);
        ProfileFolders::write(path, "");
        QVERIFY(stamps.isChanged(path));
    }
};

QTEST_GUILESS_MAIN(tst_ProfileStamps)
#include "tst_ProfileStamps.moc"
