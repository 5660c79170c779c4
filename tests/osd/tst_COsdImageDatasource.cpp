// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdImageDatasource.h"

#include "host/platform/Directories.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/ProfileFolders.h"
#include "videooverlay/elements/CVideoOverlayImage.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#include <sys/stat.h>

using namespace Velmar::VideoOverlay;

namespace {

const QString pathKey = QStringLiteral("imagePath");

class Datasource : public COsdImageDatasource
{
public:
    using COsdImageDatasource::COsdImageDatasource;
    const ElementParam &kept() const { return m_params; }
};

void writePicture(const QString &path, const QColor &color)
{
    QImage image(4, 2, QImage::Format_RGB32);
    image.fill(color);
    if (!image.save(path, "PNG"))
        qFatal("cannot write %s", qPrintable(path));
}

QString missing(const QString &path)
{
    return QStringLiteral("2 VideoOverlayLibrary: COsdElementDatasource ") + path
        + QStringLiteral(" does not exists");
}

QString copyError(const QString &source, const QString &target)
{
    return QStringLiteral("1 VideoOverlayLibrary: COsdElementDatasource file copy error (") + source
        + QStringLiteral(", ") + target + QStringLiteral(")");
}

} // namespace

class tst_COsdImageDatasource : public Velmar::Test::LoggedTest
{
    Q_OBJECT

protected:
    void prepare() override
    {
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("other")));
        m_store = path("deep/store");
        m_source = path("other/pipe.png");
        m_target = m_store + QStringLiteral("/pipe.png");
        writePicture(m_source, Qt::red);
        Velmar::Directories::setSettingsDirectory(m_store);
    }

private Q_SLOTS:
    void cleanupTestCase() { Velmar::Directories::setSettingsDirectory(QString()); }

    void hasNoMembersForQml()
    {
        const QMetaObject &meta = COsdImageDatasource::staticMetaObject;
        QCOMPARE(Velmar::Test::methodsOf(meta), QStringList());
        QCOMPARE(Velmar::Test::propertiesOf(meta), QStringList());
        QCOMPARE(meta.superClass(), &COsdElementDatasource::staticMetaObject);
    }

    void showsACopyOfTheFile()
    {
        ElementParam param = record(m_source);
        const ElementParam given = param;
        CVideoOverlayImage image;

        const Datasource datasource(&image, param);

        QCOMPARE(image.imageSrc(), m_target);
        QCOMPARE(image.caption(), QStringLiteral("pipe.png"));
        QCOMPARE(image.imageSrcWidth(), 4);
        QVERIFY(QFileInfo::exists(m_source)); // copied, not moved
        QCOMPARE(image.getParamObject().value(pathKey), QVariant(m_target));
        QCOMPARE(param.value(pathKey), QVariant(m_source));
        QCOMPARE(datasource.kept(), given);
        QCOMPARE(storedFiles(), QStringList {QStringLiteral("pipe.png")});
    }

    void appliesTheRecordInOrder()
    {
        ElementParam param = record(m_source);
        param.insert(QStringLiteral("timeout"), 5); // hides, so that setVisible() is seen
        param.insert(QStringLiteral("scale"), 2.5);
        CVideoOverlayImage image;
        QStringList order;
        connect(&image, &CVideoOverlayElement::timeoutChanged, this,
                [&] { order.append(QStringLiteral("base")); });
        connect(&image, &CVideoOverlayImage::scaleFactorChanged, this,
                [&] { order.append(QStringLiteral("scale")); });
        connect(&image, &CVideoOverlayElement::visibleChanged, this, [&] {
            if (!order.isEmpty())
                order.append(QStringLiteral("visible"));
        });
        connect(&image, &CVideoOverlayImage::imageSrcChanged, this, [&] {
            order.append(QStringLiteral("source"));
            QCOMPARE(image.getParamObject().value(pathKey), QVariant(m_target));
        });
        connect(&image, &CVideoOverlayElement::captionChanged, this,
                [&] { order.append(image.caption()); });

        const Datasource datasource(&image, param);

        QCOMPARE(order,
                 (QStringList {QStringLiteral("base"), QStringLiteral("scale"),
                               QStringLiteral("visible"), QStringLiteral("source"), m_target,
                               QStringLiteral("pipe.png")}));
        QCOMPARE(image.scaleFactor(), 2.5);
    }

    void readsWhatIsMissingAsNothing()
    {
        ElementParam param;
        CVideoOverlayImage image;
        image.setEnabled(true);
        image.setCaption(QStringLiteral("old"));
        const Datasource datasource(&image, param);
        QCOMPARE(image.scaleFactor(), 0.0);
        QVERIFY(!image.visible());
        QCOMPARE(image.caption(), QString());
        QVERIFY(!image.getParamObject().contains(pathKey));
        QCOMPARE(takeLog(), QStringList {missing(QString())});
    }

    void keepsTheElementOfAMissingFile_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("absolute") << QStringLiteral("/none/gone.png");
        QTest::newRow("relative") << QStringLiteral("none/gone.png");
    }

    void keepsTheElementOfAMissingFile()
    {
        QFETCH(QString, file);
        ElementParam param = record(file);
        CVideoOverlayImage image;
        const Datasource datasource(&image, param);
        QCOMPARE(takeLog(), QStringList {missing(file)}); // as it stands
        QCOMPARE(image.imageSrc(), file);
        QCOMPARE(image.caption(), QStringLiteral("gone.png"));
        QCOMPARE(image.getParamObject().value(pathKey), QVariant(file));
        QVERIFY(image.createScaledImage().isNull());
        QVERIFY(!QFileInfo::exists(m_store));
    }

    void keepsTheElementOfAFileThatCannotBeCopied()
    {
        // A directory stands where the copy should go.
        QVERIFY(QDir().mkpath(m_target + QStringLiteral("/full")));
        ElementParam param = record(m_source);
        CVideoOverlayImage image;
        const Datasource datasource(&image, param);
        QCOMPARE(takeLog(), (QStringList {copyError(m_source, m_target), missing(m_source)}));
        QCOMPARE(image.imageSrc(), QString());
        QCOMPARE(image.caption(), QStringLiteral("pipe.png"));
        QCOMPARE(image.getParamObject().value(pathKey), QVariant(m_source));
        QCOMPARE(storedFiles(), QStringList {QStringLiteral("pipe.png")});
        QVERIFY(QFileInfo(m_target).isDir());
    }

    void namesTheAbsolutePathOfAFileThatCannotBeCopied()
    {
        QVERIFY(QDir().mkpath(m_target + QStringLiteral("/full")));
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_directory->path()));
        ElementParam param = record(QStringLiteral("other/pipe.png"));
        CVideoOverlayImage image;
        const Datasource datasource(&image, param);
        const QString absolute = QDir::currentPath() + QStringLiteral("/other/pipe.png");
        QDir::setCurrent(before);
        QCOMPARE(takeLog(),
                 (QStringList {copyError(QStringLiteral("other/pipe.png"), m_target),
                               missing(absolute)}));
    }

    void aRelativePathStartsInTheWorkingDirectory()
    {
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_directory->path()));
        const QFileInfo stored
            = COsdImageDatasource::storeFile(QFileInfo(QStringLiteral("other/pipe.png")));
        QDir::setCurrent(before);
        QCOMPARE(stored.absoluteFilePath(), m_target);
        QVERIFY(QFileInfo::exists(m_target));
    }

    void aSecondFileOfTheNameReplacesTheCopy()
    {
        COsdImageDatasource::storeFile(QFileInfo(m_source));
        // Not even a copy that cannot be written stands in the way.
        QVERIFY(QFile::setPermissions(m_target, QFile::ReadOwner));
        QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("third")));
        const QString second = path("third/pipe.png");
        writePicture(second, Qt::blue);
        QCOMPARE(COsdImageDatasource::storeFile(QFileInfo(second)).absoluteFilePath(), m_target);
        QCOMPARE(QImage(m_target).pixelColor(0, 0), QColor(Qt::blue));
        QCOMPARE(storedFiles(), QStringList {QStringLiteral("pipe.png")});
    }

    void theOlderCopyOutlivesAFailure_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("pipe") << QStringLiteral("pipe");
        QTest::newRow("directory") << QStringLiteral("directory");
        QTest::newRow("gone") << QStringLiteral("gone");
    }

    void theOlderCopyOutlivesAFailure()
    {
        QFETCH(QString, kind);
        COsdImageDatasource::storeFile(QFileInfo(m_source));
        QVERIFY(QFile::remove(m_source));
        if (kind == QLatin1String("pipe"))
            QCOMPARE(mkfifo(QFile::encodeName(m_source).constData(), 0600), 0);
        else if (kind == QLatin1String("directory"))
            QVERIFY(QDir().mkdir(m_source));
        const QFileInfo stored = COsdImageDatasource::storeFile(QFileInfo(m_source));
        QVERIFY(stored.filePath().isEmpty());
        QVERIFY(!stored.exists());
        QCOMPARE(takeLog(), QStringList {copyError(m_source, m_target)});
        QCOMPARE(QImage(m_target).pixelColor(0, 0), QColor(Qt::red));
        QCOMPARE(storedFiles(), QStringList {QStringLiteral("pipe.png")});
    }

    void aFullDiskLeavesNoPartOfACopy()
    {
        for (bool isThere : {false, true}) {
            if (isThere)
                COsdImageDatasource::storeFile(QFileInfo(m_source));
            const QStringList before = storedFiles();
            {
                const Velmar::Test::FullDisk full;
                QVERIFY(!COsdImageDatasource::storeFile(QFileInfo(m_source)).exists());
            }
            QCOMPARE(takeLog(), QStringList {copyError(m_source, m_target)});
            QCOMPARE(storedFiles(), before);
        }
        QCOMPARE(QImage(m_target).pixelColor(0, 0), QColor(Qt::red));
    }

    void whatIsNoPictureKeepsItsName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("settings file") << QStringLiteral("OsdSettings.xml");
        QTest::newRow("where letter case does not count") << QStringLiteral("osdsettings.XML");
        QTest::newRow("folder of profiles") << QStringLiteral("osd");
    }

    /// The settings file is in the same directory, and the profiles' folder comes there.
    void whatIsNoPictureKeepsItsName()
    {
        QFETCH(QString, name);
        QVERIFY(QDir().mkpath(m_store));
        const QString settings = m_store + QStringLiteral("/OsdSettings.xml");
        Velmar::Test::ProfileFolders::write(settings, "the settings");
        const QString source = m_directory->filePath(QStringLiteral("other/") + name);
        writePicture(source, Qt::red);
        ElementParam param = record(source);
        CVideoOverlayImage image;

        const Datasource datasource(&image, param);

        QCOMPARE(
            takeLog(),
            (QStringList {copyError(source, m_store + QLatin1Char('/') + name), missing(source)}));
        QCOMPARE(Velmar::Test::ProfileFolders::read(settings), QByteArray("the settings"));
        QCOMPARE(storedFiles(), QStringList {QStringLiteral("OsdSettings.xml")});
        QCOMPARE(image.imageSrc(), QString());
        QCOMPARE(image.getParamObject().value(pathKey), QVariant(source)); // nothing is lost
    }

    void aStoredCopyIsNotCopiedAgain_data()
    {
        QTest::addColumn<QString>("store");  // as the settings directory is named
        QTest::addColumn<QString>("source"); // in the directory of the test
        QTest::newRow("plain") << "deep/store"
                               << "deep/store/pipe.png";
        QTest::newRow("slash at the end") << "deep/store/"
                                          << "deep/store/pipe.png";
        QTest::newRow("detour to the file") << "deep/store"
                                            << "deep/../deep/store/pipe.png";
        QTest::newRow("file through a linked directory") << "deep/store"
                                                         << "linked/pipe.png";
        QTest::newRow("store through a linked directory") << "linked"
                                                          << "deep/store/pipe.png";
        QTest::newRow("link to the file") << "deep/store"
                                          << "links/pipe.png";
    }

    void aStoredCopyIsNotCopiedAgain()
    {
        QFETCH(QString, store);
        QFETCH(QString, source);
        COsdImageDatasource::storeFile(QFileInfo(m_source));
        QVERIFY(QFile::link(m_store, path("linked")));
        QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("links")));
        QVERIFY(QFile::link(m_target, path("links/pipe.png")));
        Velmar::Directories::setSettingsDirectory(m_directory->filePath(store));
        struct stat before = {};
        QCOMPARE(stat(QFile::encodeName(m_target).constData(), &before), 0);

        const QFileInfo given(m_directory->filePath(source));
        QCOMPARE(COsdImageDatasource::storeFile(given).filePath(), given.filePath());

        struct stat after = {};
        QCOMPARE(stat(QFile::encodeName(m_target).constData(), &after), 0);
        QCOMPARE(after.st_ino, before.st_ino);
        QCOMPARE(QImage(m_target).pixelColor(0, 0), QColor(Qt::red));
    }

private:
    QString path(const char *name) const
    {
        return m_directory->filePath(QString::fromLatin1(name));
    }

    QStringList storedFiles() const
    {
        return QDir(m_store).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    static ElementParam record(const QString &file)
    {
        ElementParam param;
        param.insert(QStringLiteral("type"), 2);
        param.insert(QStringLiteral("enabled"), true);
        param.insert(QStringLiteral("scale"), 1.5);
        param.insert(pathKey, file);
        return param;
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_store;
    QString m_source;
    QString m_target;
};

QTEST_MAIN(tst_COsdImageDatasource)
#include "tst_COsdImageDatasource.moc"
