// SPDX-License-Identifier: Apache-2.0
#include "host/commands/OverlayMaker.h"

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
    void freeTextAndSnip();
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

/// From the live input and from a run; the picture is named, and an unreadable one is told of.
void tst_OverlayMaker::freeTextAndSnip()
{
    m_folders->writeProfile(
        QStringLiteral("Notes.xml"),
        Test::ProfileFolders::profileXml(
            "name=\"Notes\"",
            "<FREETEXT><COL>0</COL><ROW>0</ROW><FGCOLOR>#ffffffff</FGCOLOR>"
            "<BGCOLOR>#ff000000</BGCOLOR><VISIBLE>true</VISIBLE><TIMEOUT>2</TIMEOUT>"
            "<DEFAULT_LINE_NUMBER>2</DEFAULT_LINE_NUMBER></FREETEXT>"
            "<IMAGE><COL>0</COL><ROW>10</ROW><VISIBLE>true</VISIBLE><SCALE>0.5</SCALE>"
            "<SCREENSNIP>true</SCREENSNIP></IMAGE>"));
    const QString run = QDir(m_folders->settings()).filePath(QStringLiteral("run.csv"));
    Test::ProfileFolders::write(run, "t_ms,OSD_FREE_TEXT_BOX\n0,\n1000,roots\n");
    Options options;
    options.profile = QStringLiteral("Notes");
    options.telemetryPath = run;
    OverlayMaker maker;
    QString error;
    QVERIFY2(maker.load(options, Actual, &error), qPrintable(error));
    QVERIFY(takeLog().filter(QStringLiteral("no text shows")).isEmpty());
    const auto sizes = [&maker](qint64 ms) {
        QVector<QSize> list;
        for (const OverlayItem &item : maker.at(ms * 1000000, Actual).overlay->items)
            list.append(item.image.size());
        return list;
    };
    QCOMPARE(sizes(0), QVector<QSize>());
    QCOMPARE(sizes(1000).size(), 1);
    QCOMPARE(sizes(3000), QVector<QSize>()); // its two seconds are over

    maker.setLiveValue(QStringLiteral("OSD_FREE_TEXT_BOX"), QStringLiteral("one\ntwo\nthree"));
    const QVector<QSize> twoLines = sizes(3000);
    QCOMPARE(twoLines.size(), 1);
    QCOMPARE(twoLines.first().height() % 2, 0);
    maker.setLiveValue(QStringLiteral("SCREEN_SNIP"), picturePath());
    QCOMPARE(sizes(3100), (twoLines + QVector<QSize> {QSize(100, 50)}));
    QCOMPARE(takeLog().filter(QStringLiteral("2 Host")), QStringList());
    maker.setLiveValue(QStringLiteral("SCREEN_SNIP"), run);
    QCOMPARE(takeLog().filter(QStringLiteral("2 Host")),
             QStringList(QStringLiteral("2 Host: %1: cannot be read as a picture").arg(run)));
    QCOMPARE(sizes(3200).size(), 2);
    maker.setLiveValue(QStringLiteral("SCREEN_SNIP"), QString::fromLatin1(""));
    QCOMPARE(sizes(3300), twoLines);
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
