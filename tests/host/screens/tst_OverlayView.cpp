// SPDX-License-Identifier: Apache-2.0
#include "host/display/GridFit.h"
#include "host/display/OverlayScene.h"
#include "host/screens/OverlayView.h"
#include "host/screens/VideoView.h"
#include "tests/support/LoggedTest.h"

#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/VideoOverlaySettings.h>
#include <videooverlay/elements/CVideoOverlayText.h>

#include <QQuickWindow>
#include <QScreen>
#include <QtTest>

#include <cstdlib>

using namespace Velmar;
using namespace Velmar::Host;
using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::CVideoOverlayText;

namespace {

constexpr QSize PictureSize {640, 360};

/// The largest difference of a colour channel between two pictures of the same size.
int largestDifference(const QImage &one, const QImage &other)
{
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QColor a = one.pixelColor(x, y);
            const QColor b = other.pixelColor(x, y);
            largest = std::max({largest, std::abs(a.red() - b.red()),
                                std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())});
        }
    }
    return largest;
}

} // namespace

class tst_OverlayView : public Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void showsWhatIsRecorded();
    void followsTheScene();
    void keepsTheOrderOfPainting();
    void fitsIntoTheItem();
    void clipsToTheMargins();
    void videoAlone();

private:
    /// A window with a video of one colour and an overlay over it.
    struct Screen
    {
        explicit Screen(QSize size = PictureSize)
            : scene(std::make_shared<OverlayScene>(PictureSize))
        {
            capabilities.setBackend(&scene->capabilities());
            grid = std::make_unique<VideoOverlay::VideoOverlaySettings>(capabilities);
            fitGrid(*grid);
            scene->start();
            scene->setVideoOverlayEnabled(true);
            video.setParentItem(window.contentItem());
            overlay.setParentItem(window.contentItem());
            for (QQuickItem *item :
                 {static_cast<QQuickItem *>(&video), static_cast<QQuickItem *>(&overlay)})
                item->setSize(size);
            overlay.setScene(scene);
            QImage frame(PictureSize, QImage::Format_RGB32);
            frame.fill(videoColor);
            video.showFrame(frame);
            window.setColor(Qt::black);
            window.resize(size);
            window.show();
        }

        /// What is on the screen once everything was drawn.
        QImage grab()
        {
            scene->flush();
            // Counted, not waited for: another thread may have drawn before the waiting begins.
            QSignalSpy swapped(&window, &QQuickWindow::frameSwapped);
            window.update();
            if (!QTest::qWaitFor([&swapped] { return swapped.count() > 0; }))
                return QImage();
            return window.screen()
                ->grabWindow(window.winId())
                .toImage()
                .convertToFormat(QImage::Format_RGB32);
        }

        const QColor videoColor {40, 90, 140};
        std::shared_ptr<OverlayScene> scene;
        VideoOverlay::CVideoOverlayCapabilities capabilities;
        std::unique_ptr<VideoOverlay::VideoOverlaySettings> grid;
        QQuickWindow window;
        VideoView video;
        OverlayView overlay;
    };

    static std::unique_ptr<CVideoOverlayText> box(Screen &screen, int id, QPoint position,
                                                  QColor background)
    {
        auto text = std::make_unique<CVideoOverlayText>();
        text->setSettings(screen.grid.get());
        text->setId(id);
        text->setTransparency(0);
        text->setBackgroundColor(background);
        text->setTextColor(Qt::white);
        text->setPosition(position.x(), position.y());
        text->setText(QStringLiteral("  12.5 m"));
        text->setEnabled(true);
        screen.scene->displayElement(*text);
        return text;
    }
};

void tst_OverlayView::showsWhatIsRecorded()
{
    Screen screen;
    const auto opaque = box(screen, 1, QPoint(20, 40), Qt::red);
    const auto translucent = box(screen, 2, QPoint(24, 70), QColor(0, 0, 0, 150));
    const auto faded = box(screen, 3, QPoint(200, 100), Qt::blue);
    faded->setTransparency(44);
    screen.scene->displayElement(*faded);
    screen.scene->flush();
    QImage expected(PictureSize, QImage::Format_RGB32);
    expected.fill(screen.videoColor);
    screen.scene->paint(expected);

    const QImage shown = screen.grab();

    QCOMPARE(shown.size(), PictureSize);
    QVERIFY(largestDifference(shown, expected) <= 3); // rounding of opacities
    QCOMPARE(shown.pixelColor(21, 41), QColor(Qt::red));
}

void tst_OverlayView::followsTheScene()
{
    Screen screen;
    const auto text = box(screen, 1, QPoint(20, 40), Qt::red);
    QCOMPARE(screen.grab().pixelColor(22, 42), QColor(Qt::red));

    text->setBackgroundColor(Qt::green);
    screen.scene->displayElement(*text);
    QCOMPARE(screen.grab().pixelColor(22, 42), QColor(Qt::green));

    text->setPosition(60, 40);
    screen.scene->displayElement(*text);
    const QImage moved = screen.grab();
    QCOMPARE(moved.pixelColor(22, 42), screen.videoColor);
    QCOMPARE(moved.pixelColor(62, 42), QColor(Qt::green));

    text->setVisible(false);
    screen.scene->displayElement(*text);
    QCOMPARE(screen.grab().pixelColor(62, 42), screen.videoColor);

    text->setVisible(true);
    screen.scene->displayElement(*text);
    QCOMPARE(screen.grab().pixelColor(62, 42), QColor(Qt::green));
    screen.scene->setVideoOverlayEnabled(false);
    QCOMPARE(screen.grab().pixelColor(62, 42), screen.videoColor);

    screen.scene->setVideoOverlayEnabled(true);
    screen.overlay.setScene(nullptr);
    QCOMPARE(screen.grab().pixelColor(62, 42), screen.videoColor);
    QCOMPARE(screen.overlay.pictureSize(), QSize());
}

void tst_OverlayView::keepsTheOrderOfPainting()
{
    Screen screen;
    const auto later = box(screen, 2, QPoint(20, 40), Qt::green);
    QCOMPARE(screen.grab().pixelColor(22, 42), QColor(Qt::green));
    const auto earlier = box(screen, 1, QPoint(20, 40), Qt::red);
    QCOMPARE(screen.grab().pixelColor(22, 42), QColor(Qt::green));
}

void tst_OverlayView::fitsIntoTheItem()
{
    Screen screen(QSize(640, 640)); // 140 pixels stay free above and below
    const auto text = box(screen, 1, QPoint(0, 0), Qt::red);
    const QImage shown = screen.grab();
    QCOMPARE(screen.video.pictureRect(), QRectF(0, 140, 640, 360));
    QCOMPARE(shown.pixelColor(2, 138), QColor(Qt::black));
    QCOMPARE(shown.pixelColor(2, 142), QColor(Qt::red));

    for (QQuickItem *item :
         {static_cast<QQuickItem *>(&screen.video), static_cast<QQuickItem *>(&screen.overlay)})
        item->setSize(QSizeF(320, 180)); // half as large, in the upper left corner
    const QImage half = screen.grab();
    QCOMPARE(half.pixelColor(2, 2), QColor(Qt::red));
    QCOMPARE(half.pixelColor(318, 178), screen.videoColor);
    QCOMPARE(half.pixelColor(322, 182), QColor(Qt::black));
}

void tst_OverlayView::clipsToTheMargins()
{
    Screen screen;
    screen.scene->setPaintMargins(QRectF(0, 0, 40, 360));
    const auto text = box(screen, 1, QPoint(20, 40), Qt::red);
    const QImage shown = screen.grab();
    QCOMPARE(shown.pixelColor(38, 41), QColor(Qt::red));
    QCOMPARE(shown.pixelColor(42, 41), screen.videoColor);
}

void tst_OverlayView::videoAlone()
{
    Screen screen;
    QSignalSpy resized(&screen.video, &VideoView::pictureSizeChanged);
    QImage frame(PictureSize, QImage::Format_RGB32);
    frame.fill(Qt::yellow);
    screen.video.showFrame(frame);
    QCOMPARE(screen.grab().pixelColor(5, 5), QColor(Qt::yellow));
    QCOMPARE(resized.count(), 0);
    QVERIFY(!screen.video.isEmpty());
    screen.video.showFrame(QImage());
    QCOMPARE(screen.grab().pixelColor(5, 5), QColor(Qt::black));
    QCOMPARE(resized.count(), 1);
    QVERIFY(screen.video.isEmpty());
}

QTEST_MAIN(tst_OverlayView)
#include "tst_OverlayView.moc"
