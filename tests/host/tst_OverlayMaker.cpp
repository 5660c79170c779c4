// SPDX-License-Identifier: Apache-2.0
#include "host/cli/OverlayMaker.h"

#include "host/platform/CatalogStore.h"
#include "host/platform/Directories.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"

#include <QDir>
#include <QImage>
#include <QtTest>

using namespace Velmar;
using namespace Velmar::Host;

namespace {

constexpr QSize Expected {1920, 1080};
constexpr QSize Actual {640, 480};

/// What is shown on a picture of @p size, in the order in which it was made.
QVector<OverlayItem> shown(OverlayMaker &maker, QSize size)
{
    return maker.at(0, size).overlay->items;
}

QRect boxOf(const OverlayItem &item)
{
    return QRect(item.position, item.image.size());
}

} // namespace

/// A video's size is known with its first frame only.
class tst_OverlayMaker : public Velmar::Test::LoggedTest
{
    Q_OBJECT

public:
    tst_OverlayMaker() { allow(QStringLiteral("2 VideoOverlayLibrary: Invalid project.")); }

protected:
    void prepare() override
    {
        m_folders = std::make_unique<Test::ProfileFolders>();
        const QDir data(QStringLiteral(DATA_DIRECTORY));
        CATManagement::CatalogStore::instance().setDirectory(
            data.filePath(QStringLiteral("catalogs")));
        Translation::TranslationStore::instance().setDirectory(
            data.filePath(QStringLiteral("translations")));
        Shared::LocaleSettings::reset();
        m_folders->writeProfile(QStringLiteral("Bare.xml"),
                                Test::ProfileFolders::profileXml("name=\"Bare\""));
        QImage picture(200, 100, QImage::Format_ARGB32);
        picture.fill(Qt::red);
        QVERIFY(picture.save(picturePath()));
    }

    QString picturePath() const
    {
        return QDir(m_folders->settings()).filePath(QStringLiteral("picture.png"));
    }

private Q_SLOTS:
    void liveValuesStay();
    void picturesFitTheVideo_data();
    void picturesFitTheVideo();
    void projectIsOpenedAfterTheProfile();

private:
    std::unique_ptr<Test::ProfileFolders> m_folders;
};

void tst_OverlayMaker::liveValuesStay()
{
    OverlayMaker maker;
    QString error;
    QVERIFY2(maker.load(Options(), Expected, &error), qPrintable(error));
    maker.setLiveValue(QStringLiteral("SPEED"), 6.5);
    QCOMPARE(shown(maker, Expected).size(), 3); // with the heading and the time
    QCOMPARE(shown(maker, Actual).size(), 3);
}

void tst_OverlayMaker::picturesFitTheVideo_data()
{
    QTest::addColumn<QString>("profile");
    QTest::addColumn<QSize>("size");
    QTest::newRow("demonstration") << QString() << Actual;
    QTest::newRow("profile") << QStringLiteral("Bare") << Actual;
    QTest::newRow("profile, other margins alone") << QStringLiteral("Bare") << QSize(1920, 1088);
}

/// Whatever the overlay was laid out for before.
void tst_OverlayMaker::picturesFitTheVideo()
{
    QFETCH(QString, profile);
    QFETCH(QSize, size);
    Options options;
    options.profile = profile;
    options.picturePath = picturePath();
    options.watermarkPath = picturePath();
    QString error;
    OverlayMaker direct;
    QVERIFY2(direct.load(options, size, &error), qPrintable(error));
    const QVector<OverlayItem> wanted = shown(direct, size);
    direct = OverlayMaker(); // there may be one session only

    OverlayMaker maker;
    QVERIFY2(maker.load(options, Expected, &error), qPrintable(error));
    const QVector<OverlayItem> items = shown(maker, size);
    QCOMPARE(items.size(), wanted.size());
    for (int i = 0; i < items.size(); ++i)
        QCOMPARE(boxOf(items.at(i)), boxOf(wanted.at(i)));
    QVERIFY(QRect(QPoint(0, 0), size).contains(boxOf(items.last())));
    takeLog();
}

/// Its catalog is announced once, and whoever is not there yet never hears of it.
void tst_OverlayMaker::projectIsOpenedAfterTheProfile()
{
    m_folders->writeProfile(
        QStringLiteral("Material.xml"),
        Test::ProfileFolders::profileXml(
            "name=\"Material\"",
            "<INSPSTATICTEXT><COL_Bound_Column>OBJ_Material</COL_Bound_Column>"
            "<TDIR_Key>SECTION</TDIR_Key><SOURCE>DB</SOURCE><COL>0</COL><ROW>0</ROW>"
            "<FGCOLOR>#ffffffff</FGCOLOR><BGCOLOR>#ff000000</BGCOLOR><VISIBLE>true</VISIBLE>"
            "<SHOWCAPTION>false</SHOWCAPTION></INSPSTATICTEXT>"));
    Options options;
    options.profile = QStringLiteral("Material");
    options.projectPath = QDir(m_folders->settings()).filePath(QStringLiteral("project"));
    ProjectSession demo;
    QVERIFY(demo.createDemo(options.projectPath,
                            QStringLiteral(DATA_DIRECTORY "/demo/project/demo.json")));
    OverlayMaker maker;
    QString error;
    QVERIFY2(maker.load(options, Expected, &error), qPrintable(error));
    const QVector<OverlayItem> items = shown(maker, Expected);
    QCOMPARE(items.size(), 1);
    const int cells = qRound(items.first().image.width() / 25.6875);
    QCOMPARE(cells, QStringLiteral("Concrete").size()); // not the "CO" of the record
    takeLog();
}

QTEST_MAIN(tst_OverlayMaker)
#include "tst_OverlayMaker.moc"
