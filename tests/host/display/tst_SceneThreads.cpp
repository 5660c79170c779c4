// SPDX-License-Identifier: Apache-2.0
#include "host/display/OverlayScene.h"
#include "tests/support/LoggedTest.h"

#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/CVideoOverlayControl.h>
#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/display/VideoOverlaySettings.h>

#include <QImage>
#include <QTest>

#include <atomic>
#include <future>
#include <vector>

using namespace Velmar::VideoOverlay;
using Velmar::Host::OverlayItem;
using Velmar::Host::OverlayScene;
using Velmar::Host::OverlaySnapshotPtr;

/// A streaming thread takes what is shown while the GUI thread edits elements, grid and display.
/// What is missing in the locking shows as a report of the thread sanitizer.
class tst_SceneThreads : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    static constexpr int Rounds = 200;

    /// Reads every pixel of what is shown.
    static quint64 readSnapshot(const OverlayScene &scene)
    {
        const OverlaySnapshotPtr shown = scene.snapshot();
        quint64 sum = shown->revision + quint64(shown->clip.width());
        for (const OverlayItem &item : shown->items) {
            sum += quint64(item.id + item.position.x() + item.opacity) + item.revision;
            for (int y = 0; y < item.image.height(); ++y) {
                const auto *line = reinterpret_cast<const QRgb *>(item.image.constScanLine(y));
                for (int x = 0; x < item.image.width(); ++x)
                    sum += line[x];
            }
        }
        return sum;
    }

private Q_SLOTS:
    void editingWhileFramesAreMade()
    {
        OverlayScene scene(QSize(640, 360));
        CVideoOverlayCapabilities capabilities;
        CVideoOverlayControl control;
        capabilities.setBackend(&scene.capabilities());
        control.setBackend(&scene);
        scene.start();
        CVideoOverlayManager manager(control, capabilities);
        manager.setVideoOverlayEnabled(true);
        CVideoOverlayText *text = manager.createText();
        text->setEnabled(true);
        text->setVisible(true);
        CVideoOverlayImage *image = manager.createImage();
        QImage picture(20, 10, QImage::Format_ARGB32);
        picture.fill(Qt::red);
        image->setImage(picture);
        image->setEnabled(true);
        image->setVisible(true);

        std::atomic<bool> done {false};
        std::atomic<int> reads {0};
        std::vector<std::future<void>> readers;
        for (int i = 0; i < 2; ++i) {
            readers.push_back(std::async(std::launch::async, [&] {
                while (!done) {
                    readSnapshot(scene);
                    ++reads;
                }
            }));
        }
        // Bounded, but long enough that readers were at it.
        for (int round = 0; round < Rounds || (reads < Rounds && round < 50 * Rounds); ++round) {
            text->setText(QString::number(round * 37));
            text->setRow(round % 5);
            manager.setTextColor(QColor(round % 256, 0, 0));
            manager.setGlobalTransparency(round % 90);
            image->setScaleFactor(1.0 + round % 3);
            if (round % 10 == 0)
                scene.capabilities().setImageSize(QSize(640 + round % 4 * 2, 360));
            if (round % 7 == 0) {
                QFont font = manager.getSettings()->font();
                font.setPixelSize(12 + round % 9);
                manager.getSettings()->setFont(font);
            }
            if (round % 5 == 0) {
                manager.createText()->setEnabled(true);
                manager.deleteElement(2);
            }
            scene.flush();
        }
        QCOMPARE(scene.snapshot()->items.size(), 2);
        done = true;
        for (std::future<void> &reader : readers)
            reader.get();
        QVERIFY(reads > 0);
    }
};

QTEST_MAIN(tst_SceneThreads)
#include "tst_SceneThreads.moc"
