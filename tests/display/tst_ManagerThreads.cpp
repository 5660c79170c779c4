// SPDX-License-Identifier: Apache-2.0
#include "tests/support/LiveOverlay.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/osd/COsdImageDatasource.h"

#include <QMutexLocker>
#include <QTest>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <vector>

using namespace Velmar::VideoOverlay;
using Velmar::Test::LiveOverlay;

/// The GUI thread edits while others read under the manager's lock. A wrong order of locks ends in
/// a deadlock (and in the test's time limit), a missing one in a report of the thread sanitizer.
class tst_ManagerThreads : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    static constexpr int Rounds = 300;

    /// Reads everything of every element.
    static int readAll(CVideoOverlayManager &manager)
    {
        QMutexLocker lock(manager.mutex());
        int sum = manager.getGlobalTransparency();
        const QList<CVideoOverlayElement *> elements = manager.getElementList();
        for (CVideoOverlayElement *element : elements) {
            const RenderedElement rendered = element->getElement();
            sum += rendered.id() + element->row() + element->column() + int(element->width());
            sum += element->getAllProperties().size() + element->getChangedProperties().size();
            sum += manager.rowIndexByID(element->id());
        }
        sum += int(manager.getTextColor().rgba());
        sum += int(manager.colWidth() + manager.rowHeight());
        return sum + manager.elementsCount();
    }

    /// Reads everything of the grid; whoever lays out frames holds no lock for that.
    static int readGrid(const CVideoOverlayManager &manager)
    {
        const VideoOverlaySettings &grid = *manager.getSettings();
        return grid.width() + grid.height() + grid.font().pixelSize()
            + int(grid.colWidth() + grid.rowHeight() + grid.leftMargin() + grid.topMargin())
            + int(grid.marginRect().width());
    }

    /// The display changes, the host chooses another part of it, and another font.
    static void changeGeometry(LiveOverlay &overlay, int round)
    {
        VideoOverlaySettings &grid = *overlay.manager.getSettings();
        overlay.limits.width = 1280 + round % 2 * 640;
        overlay.limits.columns = 40 + round % 3;
        Q_EMIT overlay.limits.imageWidthChanged();
        grid.setGrid(20 + round % 5, 30);
        grid.setResolution(640, 360 + round % 3);
        QFont font = grid.font();
        font.setPixelSize(20 + round % 10);
        grid.setFont(font);
    }

    /// A datasource writes into the record of an element that others read already.
    static void addPicture(CVideoOverlayManager &manager, const QString &path)
    {
        ElementParam param;
        param.insert(QStringLiteral("type"), int(CVideoOverlayElement::FreePicture));
        param.insert(QStringLiteral("imagePath"), path);
        new COsdImageDatasource(manager.createImage(param), param); // a child of the element
    }

    static void edit(LiveOverlay &overlay, int round)
    {
        CVideoOverlayManager &manager = overlay.manager;
        auto *text = qobject_cast<CVideoOverlayText *>(manager.getElement(0));
        auto *image = qobject_cast<CVideoOverlayImage *>(manager.getElement(1));
        text->setText(QString::number(round * 37));
        text->setRow(round % 20);
        text->setColumn(round % 30);
        text->setEnabled(round % 3 != 0);
        text->setVisible(round % 5 != 0);
        text->setTimeout(round % 7 == 0 ? 100 : 0);
        text->expireTimer();
        image->setScaleFactor(1.0 + round % 2);
        image->setCaption(QString::number(round));
        manager.setTextColor(QColor(round % 256, 0, 0));
        manager.setBackgroundColor(QColor(0, round % 256, 0));
        manager.setGlobalTransparency(round % 100);
        manager.temporaryHideInspTexts(round % 2 == 0);
        overlay.model.createStaticText(QString::number(round));
        if (round % 3 == 0)
            manager.getPropertiesWithChanges();
        if (round % 4 == 0)
            manager.resetChanges();
        overlay.model.hideNotPermanentElements();
        changeGeometry(overlay, round);
        while (manager.elementsCount() > 4)
            overlay.model.remove(2);
        QStringList favorites {QString::number(round)};
        manager.setFavorites(favorites, 3);
        overlay.display.takeCalls();
    }

private Q_SLOTS:
    void editingWhileOthersRead()
    {
        const Velmar::Test::ProfileFolders folders;
        LiveOverlay overlay;
        overlay.manager.createText();
        QImage picture(20, 10, QImage::Format_ARGB32);
        picture.fill(Qt::red);
        overlay.manager.createImage()->setImage(picture);
        const QString path = folders.settings() + QStringLiteral("/picture.png");
        QVERIFY(picture.save(path));

        std::atomic<bool> done {false};
        std::atomic<int> reads {0};
        std::vector<std::future<void>> readers;
        for (int i = 0; i < 2; ++i) {
            readers.push_back(std::async(std::launch::async, [&] {
                while (!done) {
                    readAll(overlay.manager);
                    ++reads;
                }
            }));
        }
        readers.push_back(std::async(std::launch::async, [&] {
            while (!done)
                readGrid(overlay.manager);
        }));
        // Bounded, but long enough that readers were at it.
        for (int round = 0; round < Rounds || (reads < Rounds && round < 100 * Rounds); ++round) {
            edit(overlay, round);
            if (round % 10 == 0)
                addPicture(overlay.manager, path);
        }
        done = true;
        for (std::future<void> &reader : readers)
            reader.get();
        QVERIFY(reads > 0);
        takeLog(); // the model's lines
    }

    /// Whoever follows the grid may ask it, and may wait for others who do.
    void theGridIsNotLockedWhileItAnnounces()
    {
        LiveOverlay overlay;
        int announced = 0;
        const auto askElsewhere = [&] {
            ++announced;
            auto answer = std::async(std::launch::async, readGrid, std::cref(overlay.manager));
            QCOMPARE(answer.wait_for(std::chrono::seconds(20)), std::future_status::ready);
        };
        VideoOverlaySettings &grid = *overlay.manager.getSettings();
        connect(&grid, &VideoOverlaySettings::settingsChanged, this, askElsewhere);
        connect(&grid, &VideoOverlaySettings::settingsError, this, askElsewhere);
        QVERIFY(grid.setGrid(10, 10));
        QVERIFY(grid.setResolution(640, 360));
        overlay.limits.columns = 5;
        overlay.limits.rows = 5;
        Q_EMIT overlay.limits.maximumRowCountChanged();
        QCOMPARE(announced, 5);
    }

    /// A plain getter is not kept waiting by whoever holds the manager's lock.
    void gettersTakeTheElementsLockAlone()
    {
        LiveOverlay overlay;
        CVideoOverlayText *text = overlay.manager.createText();
        QMutexLocker lock(overlay.manager.mutex());
        std::async(std::launch::async, [text] {
            text->row();
            text->getElement();
            text->getAllProperties();
        }).get();
    }

    /// An operation that can emit waits for the manager's lock before it takes the element's own,
    /// so that a reader with the manager's lock still gets at the element.
    void editsWaitForTheManagersLock()
    {
        LiveOverlay overlay;
        CVideoOverlayText *text = overlay.manager.createText();
        std::future<void> edit;
        {
            QMutexLocker lock(overlay.manager.mutex());
            edit
                = std::async(std::launch::async, [text] { text->setCaption(QStringLiteral("c")); });
            QCOMPARE(edit.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
            QCOMPARE(text->caption(), QString()); // not locked meanwhile
        }
        edit.get();
        QCOMPARE(text->caption(), QStringLiteral("c"));
    }
};

QTEST_MAIN(tst_ManagerThreads)
#include "tst_ManagerThreads.moc"
