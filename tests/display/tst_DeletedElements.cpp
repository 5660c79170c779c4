// SPDX-License-Identifier: Apache-2.0
#include "tests/support/LiveOverlay.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/osd/COsdStaticTextDatasource.h"

#include <QEventLoop>
#include <QImage>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>
#include <future>
#include <optional>
#include <utility>
#include <vector>

using namespace Velmar::VideoOverlay;
using Velmar::Test::LiveOverlay;
using Velmar::Test::RecordingAccessor;

using Type = CVideoOverlayElement::Type;
using Step = std::function<void(LiveOverlay &)>;
using TextEdit = std::function<void(CVideoOverlayText &)>;
Q_DECLARE_METATYPE(Step)
Q_DECLARE_METATYPE(TextEdit)

namespace {

void flushDeletions()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void inAnotherThread(const std::function<void()> &edit)
{
    std::async(std::launch::async, edit).get();
}

/// An event loop of its own, as a dialog has it; @p meanwhile runs in it.
void turnEventLoop(const std::function<void()> &meanwhile)
{
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        meanwhile();
        QTimer::singleShot(0, &loop, &QEventLoop::quit); // one turn later, when all has come
    });
    loop.exec();
}

QString displayed(int id)
{
    return QStringLiteral("displayElement %1").arg(id);
}

} // namespace

/// Elements that are deleted at moments when somebody is still at work with them: while a call of
/// another thread waits, inside an event loop of a handler, in the middle of a walk.
class tst_DeletedElements : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { m_overlay.emplace(); }

    CVideoOverlayManager &manager() { return m_overlay->manager; }

    /// Visible, as one of an observation or of an inspection.
    CVideoOverlayText *addText(Type type = CVideoOverlayElement::StaticText,
                               const QString &table = QString())
    {
        CVideoOverlayText *text = manager().createText();
        ElementParam param;
        param.insert(QStringLiteral("TDIR_Key"), table);
        text->setParamObject(param);
        text->setType(type);
        text->setEnabled(true);
        text->setVisible(true);
        return text;
    }

    /// Calls @p follow for every signal of an element.
    void followEverything(CVideoOverlayText &text, const std::function<void()> &follow)
    {
        using Element = CVideoOverlayElement;
        using Text = CVideoOverlayText;
        for (auto signal :
             {&Element::rowChanged, &Element::columnChanged, &Element::visibleChanged,
              &Element::widthChanged, &Element::heightChanged, &Element::captionChanged,
              &Element::timeoutChanged, &Element::enabledChanged, &Element::captionVisibleChanged,
              &Element::typeChanged, &Element::maxlinenumberChanged, &Element::transparencyChanged,
              &Element::timerExpired})
            connect(&text, signal, this, follow);
        connect(&text, &Element::deleteRequest, this, follow);
        connect(&text, &Text::textChanged, this, follow);
        connect(&text, &Text::textColorChanged, this, follow);
        connect(&text, &Text::backgroundColorChanged, this, follow);
    }

    std::optional<LiveOverlay> m_overlay;

private Q_SLOTS:
    // Edits in other threads, whose followers are called later

    void editElsewhereAndThenDeletion()
    {
        const QPointer<CVideoOverlayText> text = addText();
        inAnotherThread([&] {
            text->setText(QStringLiteral("new"));
            text->setTextColor(Qt::red);
        });
        QVERIFY(manager().deleteElement(0));
        QVERIFY(!text);
        m_overlay->takeShown();
        QSignalSpy changed(&m_overlay->model, &QAbstractItemModel::dataChanged);
        QCoreApplication::processEvents();
        QCOMPARE(m_overlay->takeShown(), QStringList());
        QCOMPARE(changed.count(), 0);
    }

    void editOfAPictureElsewhereAndThenDeletion()
    {
        const QPointer<CVideoOverlayImage> image = manager().createImage();
        inAnotherThread([&] { image->setImage(QImage(4, 5, QImage::Format_RGB32)); });
        QVERIFY(manager().deleteElement(0));
        QVERIFY(!image);
        m_overlay->takeShown();
        QCoreApplication::processEvents();
        QCOMPARE(m_overlay->takeShown(), QStringList());
    }

    void editElsewhereIsFollowed()
    {
        CVideoOverlayText *text = addText();
        m_overlay->takeShown();
        inAnotherThread([&] { text->setTextColor(Qt::red); });
        QCOMPARE(m_overlay->takeShown(), QStringList());
        QCoreApplication::processEvents();
        QCOMPARE(m_overlay->takeShown(), QStringList {displayed(text->id())});
    }

    /// The one that asked is gone; whoever lives at its address now did not ask.
    void requestElsewhereAndThenDeletion()
    {
        CVideoOverlayText *text = addText();
        const void *address = text;
        inAnotherThread([&] { Q_EMIT text->deleteRequest(text); });
        QVERIFY(manager().deleteElement(0));
        std::vector<CVideoOverlayText *> others;
        do // until the address is used again, or long enough
            others.push_back(addText());
        while (others.back() != address && others.size() < 100);
        QCoreApplication::processEvents();
        QCOMPARE(manager().elementsCount(), int(others.size()));
    }

    void requestElsewhere()
    {
        const QPointer<CVideoOverlayText> text = addText();
        inAnotherThread([&] { Q_EMIT text->deleteRequest(text); });
        QCOMPARE(manager().elementsCount(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(manager().elementsCount(), 0);
        flushDeletions();
        QVERIFY(!text);
    }

    /// Deleted while one of its operations runs, so that it still lives when the call arrives: its
    /// box must not come back.
    void editElsewhereAndThenDeletionInsideOwnSignal()
    {
        const QPointer<CVideoOverlayText> text = addText();
        inAnotherThread([&] { text->setText(QStringLiteral("new")); });
        connect(text, &CVideoOverlayElement::captionChanged, this,
                [&] { manager().deleteElement(0); });
        text->setCaption(QStringLiteral("c"));
        QVERIFY(text);
        m_overlay->takeShown();
        turnEventLoop([] {});
        QCOMPARE(m_overlay->takeShown(), QStringList());
        QVERIFY(!text);
    }

    /// A handler of the row's change deletes the element, which is in no operation by then.
    void editElsewhereAndThenDeletionByAFollowerOfTheRows()
    {
        const QPointer<CVideoOverlayText> text = addText();
        const int id = text->id();
        inAnotherThread([&] { text->setTextColor(Qt::red); });
        connect(&m_overlay->model, &QAbstractItemModel::dataChanged, this,
                [&] { manager().deleteElement(0); });
        m_overlay->takeShown();
        QCoreApplication::processEvents();
        QCOMPARE(m_overlay->takeShown(), QStringList {QStringLiteral("deleteElement %1").arg(id)});
        flushDeletions();
        QVERIFY(!text);
    }

    // Event loops inside of handlers

    void deletionInAnEventLoopOfAHandler_data()
    {
        QTest::addColumn<TextEdit>("edit");
        QTest::newRow("text") << TextEdit(
            [](CVideoOverlayText &text) { text.setText(QStringLiteral("new")); });
        QTest::newRow("visible") << TextEdit(
            [](CVideoOverlayText &text) { text.setVisible(false); });
        QTest::newRow("switch") << TextEdit(
            [](CVideoOverlayText &text) { text.setEnabled(false); });
        QTest::newRow("column") << TextEdit([](CVideoOverlayText &text) { text.setColumn(5); });
        QTest::newRow("colour") << TextEdit(
            [](CVideoOverlayText &text) { text.setTextColor(Qt::red); });
        QTest::newRow("temporary hide")
            << TextEdit([](CVideoOverlayText &text) { text.setTemporaryHide(true); });
        QTest::newRow("time is over")
            << TextEdit([](CVideoOverlayText &text) { text.handleTimeout(); });
        QTest::newRow("record") << TextEdit([](CVideoOverlayText &text) {
            ElementParam param;
            param.insert(QStringLiteral("row"), 7);
            param.insert(QStringLiteral("col"), 7);
            param.insert(QStringLiteral("text"), QStringLiteral("new"));
            new COsdStaticTextDatasource(&text, param); // a child of the element
        });
    }

    /// Whatever handler turns an event loop in which the element is deleted: it leaves at once, and
    /// lives until its operation is over. Each handler turns one, also when it has left already.
    void deletionInAnEventLoopOfAHandler()
    {
        QFETCH(TextEdit, edit);
        const QPointer<CVideoOverlayText> text = addText();
        int turns = 0;
        const auto turn = [&] {
            ++turns;
            turnEventLoop([&] { manager().removeElements(); });
            QCOMPARE(manager().elementsCount(), 0);
            QVERIFY(text);
        };
        followEverything(*text, turn);
        edit(*text);
        QVERIFY(turns > 0);
        QTRY_VERIFY(!text);
    }

    /// The same inside another event loop, as in a running program.
    void deletionInAnEventLoopInsideAnother_data() { deletionInAnEventLoopOfAHandler_data(); }
    void deletionInAnEventLoopInsideAnother()
    {
        turnEventLoop([this] { deletionInAnEventLoopOfAHandler(); });
    }

    /// Deleted at once, in the handler; and then the handler turns an event loop.
    void deletionBeforeAnEventLoopOfAHandler()
    {
        const QPointer<CVideoOverlayText> text = addText();
        connect(text, &CVideoOverlayText::textChanged, this, [&] {
            QVERIFY(manager().deleteElement(0));
            turnEventLoop([] {});
            QVERIFY(text);
        });
        text->setText(QStringLiteral("new"));
        QVERIFY(text);
        QTRY_VERIFY(!text);
    }

    /// A host that has it deleted later, by itself, waits as well.
    void laterDeletionInAnEventLoopOfAHandler()
    {
        const QPointer<CVideoOverlayText> text = new CVideoOverlayText; // nobody manages it
        connect(text, &CVideoOverlayText::textChanged, this, [&] {
            turnEventLoop([&] { text->deleteLater(); });
            QVERIFY(text);
        });
        text->setText(QStringLiteral("new"));
        QVERIFY(text);
        QTRY_VERIFY(!text);
    }

    void watermarkReplacedInAnEventLoopOfItsHandler()
    {
        const Velmar::Test::ProfileFolders folders;
        QImage picture(20, 10, QImage::Format_ARGB32);
        picture.fill(Qt::red);
        const QString path = folders.settings() + QStringLiteral("/mark.png");
        QVERIFY(picture.save(path));
        QPointer<CVideoOverlayElement> mark;
        m_overlay->display.whileDisplaying
            = [&](CVideoOverlayElement &element) { mark = &element; };
        manager().createWatermark(path);
        m_overlay->display.whileDisplaying = nullptr;
        const QPointer<CVideoOverlayElement> old = mark;
        connect(mark, &CVideoOverlayElement::visibleChanged, this, [&] {
            turnEventLoop([&] { manager().createWatermark(path); });
            QVERIFY(old);
        });
        manager().hideWatermark();
        QVERIFY(old);
        QTRY_VERIFY(!old);
    }

    // Walks

    void deletionInAWalk_data()
    {
        QTest::addColumn<Type>("type");
        QTest::addColumn<QString>("table");
        QTest::addColumn<Step>("before");
        QTest::addColumn<Step>("walk");
        const QString observation = QStringLiteral("SECOBS");
        const QString section = QStringLiteral("SECTION");
        const auto row
            = [](const char *name, Type type, const QString &table, const Step &before,
                 const Step &walk) { QTest::newRow(name) << type << table << before << walk; };
        const Step nothing = [](LiveOverlay &) {};
        const Step hideAll = [](LiveOverlay &overlay) {
            const QList<CVideoOverlayElement *> elements = overlay.manager.getElementList();
            for (CVideoOverlayElement *element : elements)
                element->setVisible(false);
        };
        const Type fixed = CVideoOverlayElement::StaticText;
        const Type inspection = CVideoOverlayElement::InspText;
        row("grid", fixed, {}, nothing,
            [](LiveOverlay &overlay) { overlay.manager.onSettingsChanged(); });
        row("text colour", fixed, {}, nothing,
            [](LiveOverlay &overlay) { overlay.manager.setTextColor(Qt::red); });
        row("background", fixed, {}, nothing,
            [](LiveOverlay &overlay) { overlay.manager.setBackgroundColor(Qt::red); });
        row("transparency", fixed, {}, nothing,
            [](LiveOverlay &overlay) { overlay.manager.setGlobalTransparency(7); });
        row("temporary hide", CVideoOverlayElement::InspStaticText, {}, nothing,
            [](LiveOverlay &overlay) { overlay.manager.temporaryHideInspTexts(true); });
        row("hide what is not permanent", inspection, {}, nothing,
            [](LiveOverlay &overlay) { overlay.model.hideNotPermanentElements(); });
        row("hide at start-up", inspection, {}, nothing,
            [](LiveOverlay &overlay) { overlay.model.hideStartUpInspElements(); });
        row("show observation", inspection, observation, hideAll,
            [](LiveOverlay &overlay) { overlay.model.showObservationElements(); });
        row("show inspection", inspection, section, hideAll,
            [](LiveOverlay &overlay) { overlay.model.showSecInspElements(); });
    }

    /// The display has an element deleted while it shows another one: the rest of the walk leaves
    /// it out, and comes to all others.
    void deletionInAWalk()
    {
        QFETCH(Type, type);
        QFETCH(QString, table);
        QFETCH(Step, before);
        QFETCH(Step, walk);
        LiveOverlay &overlay = *m_overlay;
        QList<int> ids;
        for (int i = 0; i < 5; ++i)
            ids.append(addText(type, table)->id());
        before(overlay);
        overlay.takeShown();
        overlay.display.whileDisplaying = [&](CVideoOverlayElement &element) {
            if (element.id() == ids.at(1)) {
                manager().deleteElement(2); // the next one
                manager().deleteElement(0); // one that was shown already
            } else if (element.id() == ids.at(3)) {
                manager().deleteElement(manager().rowIndexByID(ids.at(3))); // the very one
            }
        };
        walk(overlay);
        overlay.display.whileDisplaying = nullptr;
        QStringList shown = overlay.takeShown().filter(QStringLiteral("displayElement"));
        QCOMPARE(shown,
                 (QStringList {displayed(ids.at(0)), displayed(ids.at(1)), displayed(ids.at(3)),
                               displayed(ids.at(4))}));
        QCOMPARE(manager().elementsCount(), 2);
        flushDeletions();
        QCOMPARE(manager().getElement(0)->id(), ids.at(1));
        QCOMPARE(manager().getElement(1)->id(), ids.at(4));
        takeLog(); // the model's lines
    }

    /// It is in the middle of an operation and lives on, but a walk that begins meanwhile is not to
    /// bring it back to the display.
    void walkOverOneThatHasLeft()
    {
        LiveOverlay &overlay = *m_overlay;
        CVideoOverlayText *first = addText();
        CVideoOverlayText *second = addText();
        const int id = second->id();
        overlay.display.whileDisplaying = [&](CVideoOverlayElement &element) {
            if (&element == first)
                manager().deleteElement(1);
        };
        connect(second, &CVideoOverlayElement::captionChanged, this, [&] {
            overlay.takeShown();
            manager().onSettingsChanged();
        });
        second->setCaption(QStringLiteral("c"));
        QVERIFY(!overlay.takeShown().contains(displayed(id)));
        overlay.display.whileDisplaying = nullptr;
        flushDeletions();
    }

    void removalOfAllWithDeletionsInBetween()
    {
        for (int i = 0; i < 5; ++i)
            addText();
        ElementParam kept;
        kept.insert(QStringLiteral("canDelete"), true); // not to be deleted by hand
        manager().getElement(0)->setParamObject(kept);
        bool isFirst = true;
        connect(&manager(), &CVideoOverlayManager::beforeRemoveElement, this,
                [&](const CVideoOverlayElement *element) {
                    if (std::exchange(isFirst, false)) {
                        QCOMPARE(manager().getElement(0), element);
                        manager().deleteElement(0);
                        manager().deleteElement(1);
                    }
                });
        manager().removeElements();
        QCOMPARE(manager().elementsCount(), 0);
        flushDeletions();
    }

    // Displays that delete what they are told of

    void deletionWhileItIsMade_data()
    {
        QTest::addColumn<Step>("make");
        QTest::newRow("text") << Step([](LiveOverlay &overlay) {
            overlay.manager.createText()->setText(QStringLiteral("x"));
        });
        QTest::newRow("picture") << Step(
            [](LiveOverlay &overlay) { overlay.manager.createImage()->setRow(3); });
        QTest::newRow("text of a record") << Step([](LiveOverlay &overlay) {
            ElementParam param;
            overlay.manager.createText(param)->setText(QStringLiteral("x"));
        });
        QTest::newRow("by hand") << Step(
            [](LiveOverlay &overlay) { overlay.model.createStaticText(QStringLiteral("x")); });
        QTest::newRow("picture by hand")
            << Step([](LiveOverlay &overlay) { overlay.model.createImage(QString()); });
    }

    /// Who made it gets an element that lives until the event loop turns.
    void deletionWhileItIsMade()
    {
        QFETCH(Step, make);
        LiveOverlay &overlay = *m_overlay;
        RecordingAccessor accessor;
        manager().registerElementAccessor(&accessor);
        QPointer<CVideoOverlayElement> made;
        overlay.display.whileDisplaying = [&](CVideoOverlayElement &element) {
            made = &element;
            manager().deleteElement(0);
        };
        make(overlay);
        overlay.display.whileDisplaying = nullptr;
        QCOMPARE(manager().elementsCount(), 0);
        flushDeletions();
        QVERIFY(!made);
        manager().registerElementAccessor(nullptr);
        takeLog(); // there is no picture
    }

    /// Told to take one off, the display has it deleted once more: nobody else goes for it.
    void deletionInsideADeletion()
    {
        LiveOverlay &overlay = *m_overlay;
        RecordingAccessor accessor;
        manager().registerElementAccessor(&accessor);
        const QPointer<CVideoOverlayText> first = addText();
        const int id = first->id();
        const int next = addText()->id();
        const int last = addText()->id();
        bool isFirst = true;
        overlay.display.whileDeleting = [&](CVideoOverlayElement &) {
            if (std::exchange(isFirst, false))
                QVERIFY(manager().deleteElement(0));
        };
        QVERIFY(manager().deleteElement(0));
        QCOMPARE(manager().elementsCount(), 2);
        QCOMPARE(manager().getElement(0)->id(), next);
        QCOMPARE(accessor.takeCalls(), QStringList {QStringLiteral("unregister %1").arg(id)});
        flushDeletions();
        QVERIFY(!first);

        isFirst = true; // another one, before it
        QVERIFY(manager().deleteElement(1));
        QCOMPARE(manager().elementsCount(), 0);
        QCOMPARE(accessor.takeCalls(),
                 (QStringList {QStringLiteral("unregister %1").arg(next),
                               QStringLiteral("unregister %1").arg(last)}));
        overlay.display.whileDeleting = nullptr;
        manager().registerElementAccessor(nullptr);
    }
};

QTEST_MAIN(tst_DeletedElements)
#include "tst_DeletedElements.moc"
