// SPDX-License-Identifier: Apache-2.0
#include "host/display/PngFile.h"

#include "tests/support/ProfileFolders.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

using namespace Velmar::Host;
using Velmar::Test::FullDisk;

class tst_PngFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// The older picture is worth more than half of a newer one.
    void aFullDiskKeepsTheOlderPicture()
    {
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("picture.png"));
        QImage picture(300, 200, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QString error;
        QVERIFY(savePng(picture, path, &error));
        {
            const FullDisk full;
            picture.fill(Qt::blue);
            QVERIFY(!savePng(picture, path, &error));
        }
        QCOMPARE(error, path + QStringLiteral(": cannot be written: File too large"));
        QCOMPARE(QImage(path).pixelColor(0, 0), QColor(Qt::red));
        QCOMPARE(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList(QStringLiteral("picture.png")));
    }
};

QTEST_GUILESS_MAIN(tst_PngFile)
#include "tst_PngFile.moc"
