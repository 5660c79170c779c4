// SPDX-License-Identifier: Apache-2.0
#include "host/display/OverlayScene.h"

#include "tests/support/LoggedTest.h"

#include <videooverlay/display/CVideoOverlayCapabilities.h>
#include <videooverlay/display/CVideoOverlayControl.h>
#include <videooverlay/display/VideoOverlaySettings.h>
#include <videooverlay/elements/CVideoOverlayImage.h>
#include <videooverlay/elements/CVideoOverlayText.h>

#include <QSignalSpy>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

using namespace Velmar::Host;
using namespace Velmar::VideoOverlay;

namespace {

/// A display with its grid, as a host has it.
struct Display
{
    std::unique_ptr<OverlayScene> scene = std::make_unique<OverlayScene>(QSize(1920, 1080));
    CVideoOverlayCapabilities capabilities;
    CVideoOverlayControl control;
    std::unique_ptr<VideoOverlaySettings> settings;

    Display()
    {
        capabilities.setBackend(&scene->capabilities());
        control.setBackend(scene.get());
        settings = std::make_unique<VideoOverlaySettings>(capabilities);
        scene->start();
    }

    std::unique_ptr<CVideoOverlayText> text(int id, const QString &content)
    {
        auto element = std::make_unique<CVideoOverlayText>();
        element->setType(CVideoOverlayElement::StaticText);
        element->setSettings(settings.get());
        element->setId(id);
        element->setTransparency(0);
        element->setBackgroundColor(Qt::blue);
        element->setTextColor(Qt::white);
        element->setEnabled(true);
        element->setText(content);
        return element;
    }
};

QVector<int> shownIds(const OverlayScene &scene)
{
    QVector<int> ids;
    for (const OverlayItem &item : scene.snapshot()->items)
        ids.append(item.id);
    return ids;
}

} // namespace

class tst_OverlayScene : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void capabilities()
    {
        SceneCapabilities capabilities(QSize(1920, 1080));
        QCOMPARE(capabilities.maximumColumnCount(), 54);
        QCOMPARE(capabilities.maximumRowCount(), 27);
        QCOMPARE(capabilities.imageWidth(), 1920);
        QCOMPARE(capabilities.imageHeight(), 1080);
        QSignalSpy width(&capabilities, &SceneCapabilities::imageWidthChanged);
        QSignalSpy height(&capabilities, &SceneCapabilities::imageHeightChanged);
        int heightInsideWidth = 0;
        connect(&capabilities, &SceneCapabilities::imageWidthChanged, this,
                [&] { heightInsideWidth = capabilities.imageHeight(); });

        capabilities.setImageSize(QSize(1280, 720));
        QCOMPARE(width.count(), 1);
        QCOMPARE(height.count(), 1);
        QCOMPARE(heightInsideWidth, 720); // announced only once both are stored
        capabilities.setImageSize(QSize(1280, 1024));
        QCOMPARE(width.count(), 1);
        QCOMPARE(height.count(), 2);
    }

    void comesUpAndGoesDown()
    {
        OverlayScene scene(QSize(640, 480));
        CVideoOverlayControl control;
        control.setBackend(&scene);
        QSignalSpy active(&control, &CVideoOverlayControl::controlActiveChanged);
        QSignalSpy enabled(&control, &CVideoOverlayControl::videoOverlayEnabledChanged);
        QVERIFY(!control.controlActive());

        scene.start();
        QVERIFY(control.controlActive());
        QVERIFY(control.videoOverlayEnabled());
        QCOMPARE(active.count(), 1);
        QCOMPARE(enabled.count(), 1);
        scene.start(); // it is up already
        QCOMPARE(active.count(), 1);

        scene.stop();
        QVERIFY(!control.controlActive());
        QCOMPARE(active.count(), 2);
    }

    void isInactiveWithoutAPicture()
    {
        OverlayScene scene(QSize(0, 0));
        scene.start();
        QVERIFY(scene.isReady());
        QVERIFY(!scene.isActive());
    }

    void takesOnePicturePerTurn()
    {
        Display display;
        const auto element = display.text(1, QStringLiteral("one"));
        QSignalSpy published(display.scene.get(), &OverlayScene::published);
        for (int i = 0; i < 5; ++i) {
            element->setText(QString::number(i));
            QVERIFY(display.control.displayElement(*element));
        }
        QCOMPARE(display.scene->renderCount(), 0);
        QVERIFY(published.wait());
        QCOMPARE(display.scene->renderCount(), 1);
        QCOMPARE(published.count(), 1);
        QCOMPARE(shownIds(*display.scene), QVector<int> {1});
        QCOMPARE(display.scene->snapshot()->items.first().image, element->getElement().getImage());

        QCoreApplication::processEvents(); // nothing is due any more
        QCOMPARE(display.scene->renderCount(), 1);
    }

    void flushDoesNotWaitForTheTurn()
    {
        Display display;
        const auto element = display.text(1, QStringLiteral("now"));
        display.control.displayElement(*element);
        display.scene->flush();
        QCOMPARE(shownIds(*display.scene), QVector<int> {1});
        QCoreApplication::processEvents(); // the queued turn finds nothing to do
        QCOMPARE(display.scene->renderCount(), 1);
    }

    void elementsFarOff_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");

        QTest::newRow("left") << -5.2e10 << 0.0;
        QTest::newRow("right") << 5.2e10 << 0.0;
        QTest::newRow("above") << 0.0 << -8.6e10;
        QTest::newRow("below") << 0.0 << 8.6e10;
    }

    /// A profile may name any row and column; what stands far off is not seen.
    void elementsFarOff()
    {
        QFETCH(double, x);
        QFETCH(double, y);
        Display display;
        const auto element = display.text(1, QStringLiteral("12.5"));
        element->setPosition(x, y);
        element->setVisible(true);
        display.control.displayElement(*element);
        display.scene->flush();
        const OverlayItem item = display.scene->snapshot()->items.first();
        QVERIFY(!QRect(item.position, item.image.size()).intersects({0, 0, 1920, 1080}));
        QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::black);
        const QImage before = image.copy();
        display.scene->paint(image);
        QCOMPARE(image, before);
    }

    void revisionsFollowThePicture()
    {
        Display display;
        const auto element = display.text(1, QStringLiteral("12.5"));
        display.control.displayElement(*element);
        display.scene->flush();
        const OverlayItem first = display.scene->snapshot()->items.first();
        const quint64 overlay = display.scene->snapshot()->revision;

        display.control.displayElement(*element); // announced, but the same letters
        display.scene->flush();
        QCOMPARE(display.scene->snapshot()->items.first().revision, first.revision);
        QCOMPARE(display.scene->snapshot()->revision, overlay);

        element->setPosition(100.4, 50.6); // moved: the same picture elsewhere, on even pixels
        display.control.displayElement(*element);
        display.scene->flush();
        const OverlayItem moved = display.scene->snapshot()->items.first();
        QCOMPARE(moved.revision, first.revision);
        QCOMPARE(moved.position, QPoint(100, 50));
        QVERIFY(display.scene->snapshot()->revision != overlay);

        element->setText(QStringLiteral("12.6"));
        display.control.displayElement(*element);
        display.scene->flush();
        QVERIFY(display.scene->snapshot()->items.first().revision != first.revision);
    }

    void hiddenElementsCostNothing()
    {
        Display display;
        const auto element = display.text(1, QStringLiteral("seen"));
        display.control.displayElement(*element);
        display.scene->flush();
        element->setVisible(false);
        display.control.displayElement(*element);
        display.scene->flush();
        QCOMPARE(shownIds(*display.scene), QVector<int>());
        element->setText(QStringLiteral("changed in hiding"));
        display.control.displayElement(*element);
        display.scene->flush();
        QCOMPARE(display.scene->renderCount(), 1);

        element->setVisible(true);
        display.control.displayElement(*element);
        display.scene->flush();
        QCOMPARE(display.scene->renderCount(), 2);
        QCOMPARE(display.scene->snapshot()->items.first().image, element->getElement().getImage());
    }

    void transparencyIsAnOpacityOfTexts_data()
    {
        QTest::addColumn<int>("transparency");
        QTest::addColumn<int>("opacity");
        QTest::newRow("opaque") << 0 << 255;
        QTest::newRow("half") << 50 << 128;
        QTest::newRow("the list model's start") << 44 << 143;
        QTest::newRow("nearly invisible") << 99 << 3;
        QTest::newRow("below the range") << -20 << 255;
    }

    void transparencyIsAnOpacityOfTexts()
    {
        QFETCH(int, transparency);
        QFETCH(int, opacity);
        Display display;
        const auto element = display.text(1, QStringLiteral("text"));
        element->setTransparency(transparency);
        display.control.displayElement(*element);
        CVideoOverlayImage picture;
        picture.setType(CVideoOverlayElement::Watermark);
        picture.setId(2);
        QImage image(4, 4, QImage::Format_ARGB32);
        image.fill(Qt::red);
        picture.setImage(image);
        picture.setEnabled(true); // its transparency is 100, and a picture does not follow it
        display.control.displayElement(picture);
        display.scene->flush();
        QCOMPARE(shownIds(*display.scene), (QVector<int> {1, 2}));
        QCOMPARE(display.scene->snapshot()->items.at(0).opacity, opacity);
        QCOMPARE(display.scene->snapshot()->items.at(1).opacity, 255);
    }

    void fullyTransparentTextsAreNotShown()
    {
        Display display;
        const auto element = display.text(1, QStringLiteral("text"));
        element->setTransparency(100);
        display.control.displayElement(*element);
        display.scene->flush();
        QCOMPARE(shownIds(*display.scene), QVector<int>());
    }

    void paintsInTheOrderOfIds()
    {
        Display display;
        const auto late = display.text(9, QStringLiteral("b"));
        const auto early = display.text(3, QStringLiteral("a"));
        display.control.displayElement(*late);
        display.control.displayElement(*early);
        display.scene->flush();
        QCOMPARE(shownIds(*display.scene), (QVector<int> {3, 9}));
    }

    void changedPicturesKeepTheirPlaces()
    {
        Display display;
        OverlayScene &scene = *display.scene;
        scene.setVideoOverlayEnabled(true);
        std::vector<std::unique_ptr<CVideoOverlayText>> texts;
        for (int id : {4, 1, 3, 2}) {
            texts.push_back(display.text(id, QStringLiteral("text %1").arg(id)));
            display.control.displayElement(*texts.back());
        }
        scene.flush();
        const OverlaySnapshotPtr before = scene.snapshot();
        QCOMPARE(shownIds(scene), QVector<int>({1, 2, 3, 4}));
        const QVector<OverlayItem> old = before->items;

        QSignalSpy published(&scene, &OverlayScene::published);
        texts[2]->setText(QStringLiteral("other"));
        texts[0]->setText(QStringLiteral("another"));
        for (const int index : {2, 0, 1})
            display.control.displayElement(*texts[size_t(index)]);
        scene.flush();
        QCOMPARE(published.count(), 1);
        QCOMPARE(shownIds(scene), QVector<int>({1, 2, 3, 4}));
        const QVector<OverlayItem> items = scene.snapshot()->items;
        QVERIFY(scene.snapshot()->revision != before->revision);
        QVERIFY(items.at(0) == old.at(0));
        QVERIFY(items.at(1) == old.at(1));
        QCOMPARE(items.at(2).image, texts[2]->getElement().getImage());
        QCOMPARE(items.at(3).image, texts[0]->getElement().getImage());
        QVERIFY(before->items == old); // whoever reads it sees nothing of that

        display.control.displayElement(*texts[1]);
        display.control.displayElement(*texts[2]);
        texts.erase(texts.begin() + 1); // marked, and gone before its picture is taken
        texts[1]->setText(QStringLiteral("last"));
        scene.flush();
        QCOMPARE(shownIds(scene), QVector<int>({2, 3, 4}));
        QCOMPARE(scene.snapshot()->items.at(1).image, texts[1]->getElement().getImage());

        texts[1]->setId(9); // behind all others from now on
        display.control.displayElement(*texts[1]);
        scene.flush();
        QCOMPARE(shownIds(scene), QVector<int>({2, 4, 9}));
    }

    void deletedAndDestroyedElementsLeave()
    {
        Display display;
        auto deleted = display.text(1, QStringLiteral("a"));
        auto destroyed = display.text(2, QStringLiteral("b"));
        const auto stays = display.text(3, QStringLiteral("c"));
        for (CVideoOverlayElement *element : {static_cast<CVideoOverlayElement *>(deleted.get()),
                                              static_cast<CVideoOverlayElement *>(destroyed.get()),
                                              static_cast<CVideoOverlayElement *>(stays.get())})
            display.control.displayElement(*element);
        display.scene->flush();
        QVERIFY(display.control.deleteElement(*deleted));
        QVERIFY(!display.control.deleteElement(*deleted)); // there is nothing left to take off
        destroyed.reset();
        display.scene->flush();
        QCOMPARE(shownIds(*display.scene), QVector<int> {3});

        auto marked = display.text(4, QStringLiteral("d"));
        display.control.displayElement(*marked);
        marked.reset(); // before its picture was taken
        display.scene->flush();
        QCOMPARE(shownIds(*display.scene), QVector<int> {3});
    }

    void switchAndMargins()
    {
        Display display;
        const auto element = display.text(1, QStringLiteral("text"));
        display.control.displayElement(*element);
        display.control.setPaintMargins(QRectF(10.5, 20.0, 100.0, 50.25));
        display.scene->flush();
        QCOMPARE(display.scene->snapshot()->clip, QRect(10, 20, 102, 52));
        display.control.setVideoOverlayEnabled(false);
        display.scene->flush();
        QCOMPARE(shownIds(*display.scene), QVector<int>());
        display.control.setVideoOverlayEnabled(true); // the pictures are still there
        display.scene->flush();
        QCOMPARE(shownIds(*display.scene), QVector<int> {1});
        QCOMPARE(display.scene->renderCount(), 1);
    }

    void startsEmptyAgain()
    {
        Display display;
        const auto element = display.text(1, QStringLiteral("text"));
        display.control.displayElement(*element);
        display.scene->flush();
        display.scene->stop();
        QCOMPARE(shownIds(*display.scene), QVector<int>());
        display.scene->start();
        display.scene->flush();
        QCOMPARE(shownIds(*display.scene), QVector<int>()); // nothing is re-sent by itself
        display.control.displayElement(*element);
        display.scene->flush();
        QCOMPARE(shownIds(*display.scene), QVector<int> {1});
    }

    void paint()
    {
        Display display;
        const auto element = display.text(1, QStringLiteral("X"));
        element->setPosition(20.0, 10.0);
        display.control.displayElement(*element);
        display.control.setPaintMargins(QRectF(0.0, 0.0, 100.0, 30.0));
        display.scene->flush();
        QImage picture(100, 100, QImage::Format_RGB32);
        picture.fill(Qt::gray);
        display.scene->paint(picture);
        QCOMPARE(picture.pixel(19, 12), QColor(Qt::gray).rgb());
        QCOMPARE(picture.pixel(20, 12), QColor(Qt::blue).rgb());
        QCOMPARE(picture.pixel(20, 29), QColor(Qt::blue).rgb());
        QCOMPARE(picture.pixel(20, 30), QColor(Qt::gray).rgb()); // outside the margins

        element->setTransparency(50);
        display.control.displayElement(*element);
        display.scene->flush();
        picture.fill(Qt::black);
        display.scene->paint(picture);
        QVERIFY(qAbs(qBlue(picture.pixel(20, 12)) - 128) <= 1);
    }

    void isReadByAnotherThread()
    {
        Display display;
        const auto element = display.text(1, QStringLiteral("0"));
        display.control.displayElement(*element);
        display.scene->flush();
        std::atomic<bool> stop {false};
        std::atomic<int> frames {0};
        std::thread view([&] {
            QImage picture(200, 100, QImage::Format_ARGB32_Premultiplied);
            while (!stop) {
                picture.fill(Qt::black);
                OverlayScene::paint(picture, *display.scene->overlayAt(0));
                ++frames;
            }
        });
        for (int i = 0; i < 200 || frames < 5; ++i) {
            element->setText(QString::number(i));
            display.control.displayElement(*element);
            display.scene->flush();
        }
        stop = true;
        view.join();
        QVERIFY(display.scene->renderCount() >= 200);
    }
};

QTEST_MAIN(tst_OverlayScene)
#include "tst_OverlayScene.moc"
