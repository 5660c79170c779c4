// SPDX-License-Identifier: Apache-2.0
#include "platform/directories/CApplicationDirectories.h"

#include "host/platform/Directories.h"

#include <QDir>
#include <QStandardPaths>
#include <QTest>

using Velmar::CApplicationDirectories;
using Velmar::Directories;

class tst_CApplicationDirectories : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        Directories::setSettingsDirectory(QString());
        Directories::setReadonlyConfigDirectory(QString());
    }

    void defaults()
    {
        QCOMPARE(CApplicationDirectories::settingsDirectory(),
                 QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
                     + QStringLiteral("/xqosd"));
        QVERIFY(QDir::isAbsolutePath(CApplicationDirectories::settingsDirectory()));
        QVERIFY(QDir::isAbsolutePath(CApplicationDirectories::readonlyConfigDirectory()));
        QVERIFY(CApplicationDirectories::readonlyConfigDirectory().endsWith(
            QStringLiteral("/share/xqosd")));
    }

    void setDirectories_data()
    {
        QTest::addColumn<QString>("set");
        QTest::addColumn<QString>("expected");
        QTest::newRow("absolute") << "/somewhere/else"
                                  << "/somewhere/else";
        QTest::newRow("not clean") << "/somewhere//a/../else/"
                                   << "/somewhere/else";
        QTest::newRow("relative") << "else" << QDir::currentPath() + QStringLiteral("/else");
    }

    void setDirectories()
    {
        QFETCH(QString, set);
        QFETCH(QString, expected);
        const QString readonlyBefore = CApplicationDirectories::readonlyConfigDirectory();
        Directories::setSettingsDirectory(set);
        QCOMPARE(CApplicationDirectories::settingsDirectory(), expected);
        QCOMPARE(CApplicationDirectories::readonlyConfigDirectory(), readonlyBefore);
        Directories::setReadonlyConfigDirectory(set);
        QCOMPARE(CApplicationDirectories::readonlyConfigDirectory(), expected);
    }

    /// A later change of the working directory moves nothing.
    void relativeToWhereItWasSet()
    {
        const QString start = QDir::currentPath();
        Directories::setSettingsDirectory(QStringLiteral("else"));
        QVERIFY(QDir::setCurrent(QDir::tempPath()));
        const QString afterwards = CApplicationDirectories::settingsDirectory();
        QVERIFY(QDir::setCurrent(start));
        QCOMPARE(afterwards, start + QStringLiteral("/else"));
    }
};

QTEST_GUILESS_MAIN(tst_CApplicationDirectories)
#include "tst_CApplicationDirectories.moc"
