// SPDX-License-Identifier: Apache-2.0
#include "host/display/GridFit.h"

#include "host/display/OverlayScene.h"

#include "videooverlay/display/CVideoOverlayCapabilities.h"
#include "videooverlay/display/VideoOverlaySettings.h"

#include <QFont>
#include <QtTest>

#include <cmath>

using namespace Velmar::Host;
using namespace Velmar::VideoOverlay;

namespace {

/// A grid on a picture that may change its size.
struct Grid
{
    explicit Grid(QSize size)
        : backend(size)
    {
        capabilities.setBackend(&backend);
    }

    SceneCapabilities backend;
    CVideoOverlayCapabilities capabilities;
    VideoOverlaySettings settings {capabilities};
};

bool fits(const VideoOverlaySettings &settings)
{
    return settings.rowHeight() >= 1.0
        && QRectF(0, 0, settings.width(), settings.height()).contains(settings.marginRect());
}

/// The best size of all, found by trying each; 0 when none fits.
int bestPixelSize(QSize picture)
{
    Grid grid(picture);
    QFont font = grid.settings.font();
    int largest = 0;
    int largestEven = 0;
    for (int size = 1; size <= picture.height() / 27 + 40; ++size) {
        font.setPixelSize(size);
        if (!grid.settings.setFont(font) || !fits(grid.settings))
            continue;
        largest = size;
        if (std::fmod(grid.settings.rowHeight(), 2.0) == 0.0)
            largestEven = size;
    }
    return largestEven > 0 ? largestEven : largest;
}

} // namespace

class tst_GridFit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void largestThatFits_data();
    void largestThatFits();
    void fillsThePicture_data();
    void fillsThePicture();
    void sizesOneAfterTheOther();
    void noRoom();
};

void tst_GridFit::largestThatFits_data()
{
    QTest::addColumn<QSize>("size");
    const QVector<QSize> sizes {{640, 360},   {640, 480},   {720, 480},   {704, 576},  {720, 576},
                                {768, 576},   {800, 600},   {960, 540},   {1024, 768}, {1280, 720},
                                {1280, 960},  {1280, 1024}, {1440, 1080}, {1600, 900}, {1600, 1200},
                                {1920, 1080}, {2560, 1440}, {3840, 2160}, {480, 800},  {1080, 1920},
                                {2000, 200},  {200, 2000},  {320, 240},   {176, 144},  {160, 120}};
    for (const QSize &size : sizes)
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
}

void tst_GridFit::largestThatFits()
{
    QFETCH(QSize, size);
    Grid grid(size);
    const int best = bestPixelSize(size);
    QCOMPARE(fitGrid(grid.settings), best > 0);
    if (best == 0)
        return;
    QVERIFY(fits(grid.settings));
    QCOMPARE(grid.settings.font().pixelSize(), best);
}

void tst_GridFit::fillsThePicture_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("rowHeight");
    QTest::newRow("PAL") << QSize(720, 576) << 20.0;
    QTest::newRow("PAL, square pixels") << QSize(768, 576) << 20.0;
    QTest::newRow("as designed") << QSize(1920, 1080) << 40.0;
}

void tst_GridFit::fillsThePicture()
{
    QFETCH(QSize, size);
    QFETCH(double, rowHeight);
    Grid grid(size);
    QVERIFY(fitGrid(grid.settings));
    QCOMPARE(grid.settings.rowHeight(), rowHeight);
}

/// Another source, another size: what was there before leaves no trace.
void tst_GridFit::sizesOneAfterTheOther()
{
    const QVector<QSize> sizes {{160, 120}, {3840, 2160}, {720, 576}, {1920, 1080},
                                {640, 480}, {768, 576},   {320, 240}, {1280, 1024}};
    Grid grid(sizes.first());
    for (const QSize &size : sizes) {
        grid.backend.setImageSize(size);
        QVERIFY(fitGrid(grid.settings));
        QCOMPARE(grid.settings.font().pixelSize(), bestPixelSize(size));
    }
}

void tst_GridFit::noRoom()
{
    Grid grid(QSize(20, 10));
    QVERIFY(!fitGrid(grid.settings));
    QCOMPARE(grid.settings.font().pixelSize(), 35);
}

QTEST_MAIN(tst_GridFit)
#include "tst_GridFit.moc"
