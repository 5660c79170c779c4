// SPDX-License-Identifier: Apache-2.0
#include "platform/shared/QmlStringListModel.h"
#include "tests/support/LiveOverlay.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"
#include "tests/support/SignalJournal.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/osd/COsdImageDatasource.h"
#include "videooverlay/osd/COsdStaticTextDatasource.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <limits>
#include <optional>
#include <utility>

using namespace Velmar::VideoOverlay;
using Velmar::Test::LiveOverlay;
using Velmar::Test::RecordingAccessor;
using Velmar::Test::SignalJournal;

namespace {

QStringList deleted(const QList<int> &ids)
{
    QStringList calls;
    for (int id : ids)
        calls.append(QStringLiteral("deleteElement %1").arg(id));
    return calls;
}

void flushDeletions()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// One line per call of the display, change of a row and signal of the manager, in the order in
/// which they come; a change of a row with the place and the size that the element then has.
class Sequence : public QObject
{
public:
    explicit Sequence(LiveOverlay &overlay)
        : m_overlay(overlay)
        , m_journal(overlay.manager, CVideoOverlayManager::staticMetaObject)
    {
        overlay.takeShown();
        m_journal.setObserver([this](const QString &name) { add(name); });
        connect(
            &overlay.model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex &index) {
                CVideoOverlayElement *element = m_overlay.manager.getElement(index.row());
                add(QStringLiteral("row at %1 high %2").arg(element->x()).arg(element->height()));
            });
    }

    QStringList take()
    {
        add({});
        return std::exchange(m_lines, {});
    }

private:
    void add(const QString &line)
    {
        for (const QString &call : m_overlay.takeShown())
            m_lines.append(call.section(QLatin1Char(' '), 0, 0));
        if (!line.isEmpty())
            m_lines.append(line);
    }

    LiveOverlay &m_overlay;
    SignalJournal m_journal;
    QStringList m_lines;
};

} // namespace

Q_DECLARE_METATYPE(std::function<void(CVideoOverlayText &)>)
Q_DECLARE_METATYPE(std::function<void(CVideoOverlayImage &)>)

/// The manager's elements: making, following, deleting them, and what changed of them.
class tst_CVideoOverlayManagerElements : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    using TextEdit = std::function<void(CVideoOverlayText &)>;
    using ImageEdit = std::function<void(CVideoOverlayImage &)>;

    void prepare() override
    {
        m_folders.emplace();
        m_overlay.emplace();
    }

    QString picture(const QString &name) const
    {
        const QString path = m_folders->settings() + QLatin1Char('/') + name;
        QImage image(40, 20, QImage::Format_RGB32);
        image.fill(Qt::blue);
        return image.save(path) ? path : QString();
    }

    std::optional<Velmar::Test::ProfileFolders> m_folders;
    std::optional<LiveOverlay> m_overlay;

private Q_SLOTS:
    /// First, because the ids of this process are counted.
    void idsAreNeverGivenTwice()
    {
        QCOMPARE(m_overlay->manager.createText()->id(), 1);
        LiveOverlay other;
        QCOMPARE(other.manager.createImage()->id(), 2);
        QVERIFY(m_overlay->manager.deleteElement(0));
        QCOMPARE(m_overlay->manager.createText()->id(), 3);
        other.manager.createWatermark(picture(QStringLiteral("mark.png"))); // takes 4
        QCOMPARE(m_overlay->manager.createText()->id(), 5);
    }

    void newElements()
    {
        LiveOverlay &overlay = *m_overlay;
        const VideoOverlaySettings &grid = *overlay.manager.getSettings();
        RecordingAccessor accessor;
        overlay.manager.registerElementAccessor(&accessor);
        CVideoOverlayText *text = overlay.manager.createText();
        CVideoOverlayImage *image = overlay.manager.createImage();
        QCOMPARE(overlay.takeShown(), LiveOverlay::shown(text, 1) + LiveOverlay::shown(image, 1));
        QCOMPARE(overlay.manager.getElementList(), (QList<CVideoOverlayElement *> {text, image}));
        QCOMPARE(overlay.manager.elementsCount(), 2);
        QCOMPARE(overlay.manager.getElement(1), image);
        QVERIFY(!overlay.manager.getElement(2));
        QVERIFY(!overlay.manager.getElement(-1));
        QCOMPARE(overlay.manager.rowIndexByID(image->id()), 1);
        QCOMPARE(overlay.manager.rowIndexByID(-7), -1);
        for (CVideoOverlayElement *element : overlay.manager.getElementList()) {
            QCOMPARE(element->parent(), &overlay.manager);
            QCOMPARE(element->transparency(), 44);
            QCOMPARE(element->x(), grid.leftMargin()); // placed before it was shown
            QCOMPARE(element->y(), grid.topMargin());
        }
        QCOMPARE(text->font(), grid.font());
        QCOMPARE(accessor.takeCalls(), QStringList()); // without a record nobody is registered

        ElementParam param;
        param.insert(QStringLiteral("columnBound"), QStringLiteral("speed"));
        const CVideoOverlayText *bound = overlay.manager.createText(param);
        const CVideoOverlayImage *snip = overlay.manager.createImage(param);
        QCOMPARE(accessor.takeCalls(),
                 (QStringList {QStringLiteral("register speed %1").arg(bound->id()),
                               QStringLiteral("register speed %1").arg(snip->id())}));
        ElementParam empty;
        const int unbound = overlay.manager.createText(empty)->id(); // the key is the accessor's
        QCOMPARE(accessor.takeCalls(), QStringList {QStringLiteral("register  %1").arg(unbound)});
        const QList<int> ids {text->id(), bound->id()};
        QVERIFY(overlay.manager.deleteElement(2));
        QVERIFY(overlay.manager.deleteElement(0)); // unregistered, though it never was registered
        QCOMPARE(accessor.takeCalls(),
                 (QStringList {QStringLiteral("unregister %1").arg(ids.at(1)),
                               QStringLiteral("unregister %1").arg(ids.at(0))}));
        overlay.manager.registerElementAccessor(nullptr);
    }

    void rowsByIdsGivenByOthers_data()
    {
        QTest::addColumn<QVector<int>>("ids");

        QTest::newRow("one among others twice") << QVector<int> {5, 1, 5};
        QTest::newRow("twice at the end") << QVector<int> {1, 5, 5};
        QTest::newRow("twice at the start") << QVector<int> {5, 5, 1};
        QTest::newRow("all the same") << QVector<int> {3, 3, 3, 3, 3};
        QTest::newRow("falling") << QVector<int> {9, 8, 7, 6, 5, 4};
        QTest::newRow("mixed") << QVector<int> {2, 9, 4, 4, 1, 9, 2, 7};
        QTest::newRow("below zero") << QVector<int> {-1, -5, -1};
        QTest::newRow("as they are given") << QVector<int> {1000000, 1000001, 1000002};
    }

    /// The first of equal ids, whatever order they come in; the same for elements that come later
    /// and after some have left.
    void rowsByIdsGivenByOthers()
    {
        QFETCH(QVector<int>, ids);
        CVideoOverlayManager &manager = m_overlay->manager;
        const auto compareAll = [&] {
            QVector<int> live;
            for (int row = 0; row < manager.elementsCount(); ++row)
                live.append(manager.getElement(row)->id());
            for (int wanted : ids + live + QVector<int> {0, -7, 123456789})
                QCOMPARE(manager.rowIndexByID(wanted), live.indexOf(wanted));
        };
        for (int id : qAsConst(ids))
            manager.createText()->setId(id);
        compareAll();
        manager.createText(); // with an id of the manager's own
        compareAll();
        QVERIFY(manager.deleteElement(0));
        compareAll();
        manager.getElement(1)->setId(manager.getElement(0)->id());
        compareAll();
        manager.removeElements();
        QCOMPARE(manager.rowIndexByID(ids.first()), -1);
        const int id = manager.createText()->id();
        manager.createText();
        QCOMPARE(manager.rowIndexByID(id), 0);
        compareAll();
    }

    /// The row of the first one is announced, as that is the one that is found by the id.
    void theChangedRowOfEqualIds()
    {
        LiveOverlay &overlay = *m_overlay;
        CVideoOverlayText *first = overlay.manager.createText();
        overlay.manager.createText();
        CVideoOverlayText *last = overlay.manager.createText();
        last->setId(first->id());
        QSignalSpy changed(&overlay.model, &QAbstractItemModel::dataChanged);
        last->setRow(5);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().toModelIndex().row(), 0);
    }

    void textChanges_data()
    {
        QTest::addColumn<TextEdit>("edit");
        QTest::addColumn<int>("times"); // shown, and announced as a changed row
        const auto row = [](const char *name, int times, const TextEdit &edit) {
            QTest::newRow(name) << edit << times;
        };
        row("textColor", 1, [](CVideoOverlayText &text) { text.setTextColor(Qt::red); });
        row("background", 1, [](CVideoOverlayText &text) { text.setBackgroundColor(Qt::red); });
        // typeset: same width, so the new column alone
        row("column", 1, [](CVideoOverlayText &text) { text.setColumn(7); });
        row("row", 1, [](CVideoOverlayText &text) { text.setRow(7); });
        row("text of the same width", 1,
            [](CVideoOverlayText &text) { text.setText(QStringLiteral("xyz")); });
        row("wider text", 2, [](CVideoOverlayText &text) { text.setText(QStringLiteral("abcd")); });
        row("two wider lines", 3,
            [](CVideoOverlayText &text) { text.setText(QStringLiteral("abcd\nabc")); });
        row("visible", 1, [](CVideoOverlayText &text) { text.setVisible(false); });
        row("temporary hide", 1, [](CVideoOverlayText &text) { text.setTemporaryHide(true); });
        row("transparency", 1, [](CVideoOverlayText &text) { text.setTransparency(3); });
        row("font", 1, [](CVideoOverlayText &text) { text.updateFontsFromSettings(); });
        row("height", 1, [](CVideoOverlayText &text) { text.setHeight(3); });
        row("width", 1, [](CVideoOverlayText &text) { text.setWidth(3); });
        row("alignment", 1,
            [](CVideoOverlayText &text) { text.setAlignment(QStringLiteral("RIGHT")); });
        row("caption", 0, [](CVideoOverlayText &text) { text.setCaption(QStringLiteral("c")); });
        row("id", 0, [](CVideoOverlayText &text) { text.setUnit(QStringLiteral("m")); });
        row("nothing new", 0, [](CVideoOverlayText &text) { text.setText(QStringLiteral("abc")); });
    }

    void textChanges()
    {
        QFETCH(TextEdit, edit);
        QFETCH(int, times);
        LiveOverlay &overlay = *m_overlay;
        overlay.manager.createText();
        CVideoOverlayText *text = overlay.manager.createText();
        text->setEnabled(true);
        text->setText(QStringLiteral("abc"));
        overlay.takeShown();
        QSignalSpy changed(&overlay.model, &QAbstractItemModel::dataChanged);
        edit(*text);
        QCOMPARE(overlay.takeShown(), LiveOverlay::shown(text, times));
        QCOMPARE(changed.count(), times);
        for (const QList<QVariant> &call : qAsConst(changed)) {
            QCOMPARE(call.at(0).toModelIndex(), overlay.model.index(1));
            QCOMPARE(call.at(1).toModelIndex(), overlay.model.index(1));
            QCOMPARE(call.at(2).value<QVector<int>>(), QVector<int>());
        }
        const VideoOverlaySettings &grid = *overlay.manager.getSettings();
        QCOMPARE(text->x(), grid.leftMargin() + text->column() * grid.colWidth());
        QCOMPARE(text->y(), grid.topMargin() + text->row() * grid.rowHeight());
    }

    void imageChanges_data()
    {
        QTest::addColumn<ImageEdit>("edit");
        QTest::addColumn<int>("times");
        const auto row = [](const char *name, int times, const ImageEdit &edit) {
            QTest::newRow(name) << edit << times;
        };
        row("visible", 1, [](CVideoOverlayImage &image) { image.setVisible(true); });
        row("column", 1, [](CVideoOverlayImage &image) { image.setColumn(7); });
        row("row", 1, [](CVideoOverlayImage &image) { image.setRow(7); });
        row("width", 1, [](CVideoOverlayImage &image) { image.setWidth(7); });
        row("height", 1, [](CVideoOverlayImage &image) { image.setHeight(7); });
        row("scale of no picture", 1, [](CVideoOverlayImage &image) { image.setScaleFactor(2); });
        row("picture: width, height, source", 3,
            [](CVideoOverlayImage &image) { image.setImage(QImage(4, 5, QImage::Format_RGB32)); });
        row("transparency", 0, [](CVideoOverlayImage &image) { image.setTransparency(3); });
        row("caption", 0, [](CVideoOverlayImage &image) { image.setCaption(QStringLiteral("c")); });
    }

    void imageChanges()
    {
        QFETCH(ImageEdit, edit);
        QFETCH(int, times);
        LiveOverlay &overlay = *m_overlay;
        CVideoOverlayImage *image = overlay.manager.createImage();
        overlay.takeShown();
        QSignalSpy changed(&overlay.model, &QAbstractItemModel::dataChanged);
        edit(*image);
        QCOMPARE(overlay.takeShown(), LiveOverlay::shown(image, times));
        QCOMPARE(changed.count(), times);
        const VideoOverlaySettings &grid = *overlay.manager.getSettings();
        QCOMPARE(image->x(), grid.leftMargin() + image->column() * grid.colWidth());
        QCOMPARE(image->y(), grid.topMargin() + image->row() * grid.rowHeight());
    }

    void elementsFarOut_data()
    {
        QTest::addColumn<int>("columns");
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("x");

        constexpr int lowest = std::numeric_limits<int>::min();
        QTest::newRow("a row count carries the columns") << 2000000000 << 0 << lowest;
        QTest::newRow("far to the left") << 54 << -100000000 << lowest;
        QTest::newRow("leftmost") << 54 << lowest << lowest;
    }

    /// There is room for all words, and the place is as far left as a whole number tells.
    void elementsFarOut()
    {
        QFETCH(int, columns);
        QFETCH(int, column);
        QFETCH(int, x);
        CVideoOverlayManager &manager = m_overlay->manager;
        CVideoOverlayText *text = manager.createText();
        text->setColumn(column);
        QVERIFY(manager.getSettings()->setGrid(10, columns));
        text->setText(QStringLiteral("a b d"));
        QCOMPARE(text->height(), manager.rowHeight());
        QCOMPARE(text->property("x"), QVariant(x));
        QVERIFY(text->x() < x);
    }

    void oneTextsColourIsAnnouncedAsTheOverlays()
    {
        CVideoOverlayText *text = m_overlay->manager.createText();
        SignalJournal journal(m_overlay->manager, CVideoOverlayManager::staticMetaObject);
        text->setTextColor(Qt::red);
        text->setBackgroundColor(Qt::green);
        QCOMPARE(journal.take(),
                 (QStringList {QStringLiteral("globalTextColorChanged(#ff0000)"),
                               QStringLiteral("globalBackgroundColorChanged(#00ff00)")}));
    }

    /// The element is placed, then its row is announced, then it is displayed, and only then do
    /// others follow: a colour as the overlay's, a column with the lines broken anew.
    void whatFollowsAChangeInOrder()
    {
        LiveOverlay &overlay = *m_overlay;
        const VideoOverlaySettings &grid = *overlay.manager.getSettings();
        CVideoOverlayText *text = overlay.manager.createText();
        text->setText(QStringLiteral("some words that fill one line"));
        const double low = text->height();
        Sequence sequence(overlay);
        const auto row = [&](double height) {
            return QStringLiteral("row at %1 high %2")
                .arg(grid.leftMargin() + text->column() * grid.colWidth())
                .arg(height);
        };
        const QString display = QStringLiteral("displayElement");

        text->setTextColor(Qt::red);
        QCOMPARE(sequence.take(),
                 (QStringList {row(low), display, QStringLiteral("globalTextColorChanged")}));
        text->setBackgroundColor(Qt::red);
        QCOMPARE(sequence.take(),
                 (QStringList {row(low), display, QStringLiteral("globalBackgroundColorChanged")}));
        text->setColumn(40);
        const double high = text->height();
        QVERIFY(high > low);
        const QStringList changes = sequence.take();
        QCOMPARE(changes.size(), 6); // column, width, height
        QCOMPARE(changes.mid(0, 2), (QStringList {row(low), display}));
        QCOMPARE(changes.mid(4, 2), (QStringList {row(high), display}));

        CVideoOverlayImage *image = overlay.manager.createImage();
        sequence.take();
        image->setColumn(9);
        QCOMPARE(
            sequence.take(),
            (QStringList {
                QStringLiteral("row at %1 high 0").arg(grid.leftMargin() + 9 * grid.colWidth()),
                display}));
    }

    /// Lists and screens hear of the overlay's transparency before its texts follow.
    void transparencyIsAnnouncedBeforeTextsFollow()
    {
        LiveOverlay &overlay = *m_overlay;
        CVideoOverlayText *text = overlay.manager.createText();
        QVector<int> before;
        connect(&overlay.model, &VideoOverlayElementListModel::transparencyChanged, this,
                [&] { before.append(text->transparency()); });
        overlay.manager.setGlobalTransparency(7);
        QCOMPARE(before, QVector<int> {44});
        QCOMPARE(text->transparency(), 7);
    }

    /// Where there is less room, a text is typeset anew.
    void anotherColumnBreaksLinesAnew()
    {
        CVideoOverlayText *text = m_overlay->manager.createText();
        text->setText(QStringLiteral("some words that fill one line"));
        const double before = text->height();
        text->setColumn(40);
        QVERIFY(text->height() > before);
    }

    void deleting()
    {
        LiveOverlay &overlay = *m_overlay;
        const QPointer<CVideoOverlayText> text = overlay.manager.createText();
        const int id = text->id();
        overlay.takeShown();
        QVERIFY(!overlay.manager.deleteElement(1));
        QVERIFY(!overlay.manager.deleteElement(-1));
        QCOMPARE(overlay.manager.elementsCount(), 1);
        QCOMPARE(overlay.takeShown(), QStringList());
        QVERIFY(overlay.manager.deleteElement(0));
        QVERIFY(!text); // at once
        QCOMPARE(overlay.manager.elementsCount(), 0);
        QCOMPARE(overlay.takeShown(), deleted({id}));
    }

    /// Off the display and out of the list, then the accessor forgets it, then it is destroyed.
    void deletingInOrder()
    {
        LiveOverlay &overlay = *m_overlay;
        struct Accessor : RecordingAccessor
        {
            explicit Accessor(LiveOverlay &overlay)
                : overlay(overlay)
            {
            }
            void unregisterElement(CVideoOverlayElement *element) override
            {
                RecordingAccessor::unregisterElement(element);
                calls += overlay.takeShown();
                calls.append(QString::number(overlay.manager.rowIndexByID(element->id())));
            }
            LiveOverlay &overlay;
        } accessor(overlay);
        overlay.manager.registerElementAccessor(&accessor);
        const int id = overlay.manager.createText()->id();
        overlay.takeShown();
        QVERIFY(overlay.manager.deleteElement(0));
        QCOMPARE(accessor.takeCalls(),
                 (QStringList {QStringLiteral("unregister %1").arg(id), deleted({id}).first(),
                               QStringLiteral("-1")}));
        overlay.manager.registerElementAccessor(nullptr);
    }

    void deletingThroughTheModel()
    {
        LiveOverlay &overlay = *m_overlay;
        const QPointer<CVideoOverlayText> text = overlay.manager.createText();
        QSignalSpy before(&overlay.manager, &CVideoOverlayManager::beforeRemoveElement);
        QSignalSpy removed(&overlay.model, &QAbstractItemModel::rowsRemoved);
        CVideoOverlayElement *going = nullptr;
        const auto watch = connect(&overlay.manager, &CVideoOverlayManager::beforeRemoveElement,
                                   this, [&](CVideoOverlayElement *element) {
                                       going = element;
                                       QCOMPARE(overlay.manager.rowIndexByID(element->id()), 0);
                                       QCOMPARE(removed.count(), 0);
                                   });
        const CVideoOverlayElement *given = text;
        QVERIFY(overlay.manager.deleteElementFromModel(text));
        disconnect(watch);
        QVERIFY(!text);
        QCOMPARE(going, given);
        QCOMPARE(before.count(), 1);
        QCOMPARE(removed.count(), 1);
        CVideoOverlayText stranger;
        QVERIFY(!overlay.manager.deleteElementFromModel(&stranger));
        QCOMPARE(before.count(), 2);
        QCOMPARE(removed.count(), 1);
    }

    /// Also those that may not be deleted by hand, but not the watermark.
    void removingAll()
    {
        LiveOverlay &overlay = *m_overlay;
        overlay.manager.createWatermark(picture(QStringLiteral("mark.png")));
        ElementParam kept;
        kept.insert(QStringLiteral("canDelete"), true); // refused by the list model
        const QPointer<CVideoOverlayElement> first = overlay.manager.createText();
        const QPointer<CVideoOverlayElement> second = overlay.manager.createImage();
        const QPointer<CVideoOverlayElement> marked = overlay.manager.createImage();
        marked->setType(CVideoOverlayElement::Watermark);
        first->setParamObject(kept);
        const QList<int> ids {first->id(), second->id()};
        overlay.takeShown();
        SignalJournal journal(overlay.manager, CVideoOverlayManager::staticMetaObject);
        QSignalSpy removed(&overlay.model, &QAbstractItemModel::rowsRemoved);
        overlay.manager.removeElements();
        QVERIFY(!first);
        QVERIFY(!second);
        QVERIFY(marked);
        QCOMPARE(overlay.manager.elementsCount(), 1);
        QCOMPARE(removed.count(), 2);
        QCOMPARE(overlay.takeShown(), deleted(ids));
        const QStringList signalled = journal.take();
        QCOMPARE(signalled.size(), 3);
        QCOMPARE(signalled.first(), QStringLiteral("beforeRemoveElements"));
        overlay.manager.showWatermark();
        overlay.manager.hideWatermark();
        QCOMPARE(overlay.takeShown().size(), 1); // it was visible
    }

    void theWatermark()
    {
        LiveOverlay &overlay = *m_overlay;
        overlay.manager.showWatermark(); // there is none
        overlay.manager.hideWatermark();
        const QString path = picture(QStringLiteral("mark.png"));
        QSignalSpy changed(&overlay.model, &QAbstractItemModel::dataChanged);
        const int next = overlay.manager.createText()->id() + 1;
        overlay.takeShown();
        overlay.manager.createWatermark(path);
        const QStringList calls = overlay.takeShown();
        QVERIFY(!calls.isEmpty());
        for (const QString &call : calls)
            QCOMPARE(call, QStringLiteral("displayElement %1").arg(next));
        QCOMPARE(changed.count(), 0); // it has no row
        QCOMPARE(overlay.manager.elementsCount(), 1);
        QCOMPARE(overlay.manager.rowIndexByID(next), -1);
        overlay.manager.hideWatermark();
        overlay.manager.hideWatermark();
        QCOMPARE(overlay.takeShown().size(), 1);
        overlay.manager.showWatermark();
        QCOMPARE(overlay.takeShown().size(), 1);
        QVERIFY(overlay.manager.getSettings()->setGrid(20, 40));
        QVERIFY(!overlay.takeShown().contains(QStringLiteral("displayElement %1").arg(next)));

        overlay.manager.createWatermark(path);
        QCOMPARE(overlay.takeShown().first(), deleted({next}).first());
        flushDeletions();
        QCOMPARE(changed.count(), 1); // the text, by its new font
    }

    void theWatermarkAndItsRecord()
    {
        LiveOverlay &overlay = *m_overlay;
        struct Display : Velmar::Test::RecordingDisplayBackend
        {
            bool displayElement(CVideoOverlayElement &element) override
            {
                const auto *image = qobject_cast<CVideoOverlayImage *>(&element);
                shown.append(QStringLiteral("%1 %2").arg(element.type()).arg(image->imageSrc()));
                rows.append(element.row());
                last = &element;
                return true;
            }
            QStringList shown;
            QVector<int> rows;
            QPointer<CVideoOverlayElement> last;
        } display;
        overlay.control.setBackend(&display);
        const QString path = picture(QStringLiteral("mark.png"));
        overlay.manager.createWatermark(path);
        const QString complete = QStringLiteral("5 ") + path;
        QCOMPARE(display.rows.value(0, -1), 0); // first, and then what its datasource changes
        QCOMPARE(display.rows.value(1), 5);
        for (const QString &shown : qAsConst(display.shown))
            QCOMPARE(shown, complete); // never without picture or type
        const auto *mark = qobject_cast<CVideoOverlayImage *>(display.last);
        QVERIFY(mark);
        QVERIFY(!mark->parent());
        QCOMPARE(mark->row(), 5);
        QCOMPARE(mark->column(), 15);
        QCOMPARE(mark->scaleFactor(), 1.0);
        QCOMPARE(mark->caption(), QStringLiteral("mark.png"));
        QVERIFY(mark->enabled());
        QVERIFY(mark->visible());
        ElementParam expected;
        expected.insert(QStringLiteral("type"), 5);
        expected.insert(QStringLiteral("row"), 5);
        expected.insert(QStringLiteral("col"), 15);
        expected.insert(QStringLiteral("imagePath"), path);
        expected.insert(QStringLiteral("enabled"), true);
        expected.insert(QStringLiteral("scale"), 1.0);
        expected.insert(QStringLiteral("id"), mark->id());
        QCOMPARE(mark->getParamObject(), expected);

        const QPointer<CVideoOverlayElement> first = display.last;
        overlay.manager.createWatermark(path);
        QVERIFY(display.last != first);
        QVERIFY(first); // a screen may still show it
        flushDeletions();
        QVERIFY(!first);
        overlay.control.setBackend(&overlay.display);
    }

    void deletionOfAManagerClearsTheDisplay()
    {
        LiveOverlay &overlay = *m_overlay;
        RecordingAccessor accessor;
        QList<int> ids;
        {
            CVideoOverlayManager manager(overlay.control, overlay.capabilities);
            manager.registerElementAccessor(&accessor);
            ids.append(manager.createText()->id());
            manager.createWatermark(picture(QStringLiteral("mark.png")));
            ids.append(ids.first() + 1);
            overlay.takeShown();
        }
        QCOMPARE(overlay.takeShown(), deleted(ids));
        QCOMPARE(accessor.takeCalls(), QStringList());
    }

    void deletionInsideOwnSignal_data()
    {
        QTest::addColumn<TextEdit>("edit");
        QTest::newRow("text") << TextEdit(
            [](CVideoOverlayText &text) { text.setText(QStringLiteral("new")); });
        QTest::newRow("visible") << TextEdit([](CVideoOverlayText &text) {
            text.setVisible(true);
            text.setVisible(false);
        });
        QTest::newRow("asks itself")
            << TextEdit([](CVideoOverlayText &text) { Q_EMIT text.deleteRequest(&text); });
        QTest::newRow("time is over")
            << TextEdit([](CVideoOverlayText &text) { text.handleTimeout(); });
    }

    /// It leaves at once, but is destroyed when its own operation is over; nothing comes of it.
    void deletionInsideOwnSignal()
    {
        QFETCH(TextEdit, edit);
        LiveOverlay &overlay = *m_overlay;
        const QPointer<CVideoOverlayText> text = overlay.manager.createText();
        ElementParam param;
        param.insert(QStringLiteral("type"), 0);
        auto *source = new COsdStaticTextDatasource(text, param);
        text->setEnabled(true);
        text->setVisible(true);
        const int id = text->id();
        const auto drop = [&] { overlay.manager.deleteElementFromModel(text); };
        connect(text, &CVideoOverlayText::textChanged, this, drop);
        connect(text, &CVideoOverlayElement::visibleChanged, this, drop);
        overlay.takeShown();
        QSignalSpy changed(&overlay.model, &QAbstractItemModel::dataChanged);
        edit(*text);
        QVERIFY(text);
        QCOMPARE(overlay.manager.elementsCount(), 0);
        QCOMPARE(overlay.takeShown().last(), deleted({id}).first());
        changed.clear();
        source->setValue(QStringLiteral("late")); // the datasource outlived its box
        text->setTimeout(3);
        text->setVisible(true);
        QCOMPARE(overlay.takeShown(), QStringList());
        QCOMPARE(changed.count(), 0);
        QCOMPARE(takeLog(), QStringList());
        flushDeletions();
        QVERIFY(!text);
    }

    /// A handler of the row's change deletes the element: its box must not come back.
    void deletionByAFollowerOfTheRows()
    {
        LiveOverlay &overlay = *m_overlay;
        const QPointer<CVideoOverlayText> text = overlay.manager.createText();
        const int id = text->id();
        connect(&overlay.model, &QAbstractItemModel::dataChanged, this,
                [&] { overlay.manager.deleteElement(0); });
        overlay.takeShown();
        text->setTextColor(Qt::red);
        QCOMPARE(overlay.takeShown(), deleted({id}));
        flushDeletions();
        QVERIFY(!text);
    }

    /// A handler that deletes others in the middle of a walk.
    void deletionInTheMiddleOfAWalk()
    {
        LiveOverlay &overlay = *m_overlay;
        overlay.manager.createText();
        overlay.manager.createText();
        overlay.manager.createText();
        connect(overlay.manager.getElement(0), &CVideoOverlayElement::visibleChanged, this,
                [&] { overlay.manager.removeElements(); });
        connect(&overlay.manager, &CVideoOverlayManager::globalTextColorChanged, this,
                [&] { overlay.manager.removeElements(); });
        overlay.manager.setTextColor(Qt::red);
        QCOMPARE(overlay.manager.elementsCount(), 0);
        flushDeletions();
    }

    void changes()
    {
        LiveOverlay &overlay = *m_overlay;
        CVideoOverlayManager &manager = overlay.manager;
        QList<ElementParam> reported = manager.getPropertiesWithChanges();
        QCOMPARE(reported.size(), 1); // all six: nothing is stored
        QCOMPARE(reported.first().size(), 8);
        QCOMPARE(reported.first().value(QStringLiteral("id")).toInt(), 268435455);
        QCOMPARE(reported.first().value(QStringLiteral("general")), QVariant(true));
        manager.resetChanges();
        QVERIFY(manager.getPropertiesWithChanges().isEmpty());

        CVideoOverlayText *text = manager.createText();
        CVideoOverlayImage *image = manager.createImage();
        manager.resetChanges();
        QVERIFY(manager.getPropertiesWithChanges().isEmpty());
        image->setRow(4);
        manager.setKx70iiCol(33);
        reported = manager.getPropertiesWithChanges();
        QCOMPARE(reported.size(), 2);
        ElementParam imageChanges;
        imageChanges.insert(QStringLiteral("row"), 4);
        QCOMPARE(reported.at(0), imageChanges);
        ElementParam generalChanges;
        generalChanges.insert(QStringLiteral("id"), 268435455);
        generalChanges.insert(QStringLiteral("general"), true);
        generalChanges.insert(QStringLiteral("kx70ii_col"), 33);
        QCOMPARE(reported.at(1), generalChanges);
        text->setRow(2);
        QCOMPARE(manager.getPropertiesWithChanges().size(), 3);

        const QList<ElementParam> all = manager.getAllPropertiesWithChanges();
        QCOMPARE(all.size(), 3);
        QCOMPARE(all.at(0), text->getAllProperties());
        QCOMPARE(all.at(1), image->getAllProperties());
        QCOMPARE(all.at(2), manager.generalSettingsGetAllProperties());
        QVERIFY(!all.at(0).contains(QStringLiteral("favorites")));
        manager.resetChanges();
        QVERIFY(manager.getPropertiesWithChanges().isEmpty());
        QCOMPARE(image->getParamObject().value(QStringLiteral("row")).toInt(), 4);
    }

    void generalChangeKeepsItsId()
    {
        CVideoOverlayManager &manager = m_overlay->manager;
        ElementParam general;
        general.insert(QStringLiteral("id"), 17);
        general.insert(QStringLiteral("other"), QStringLiteral("kept"));
        manager.setGeneralSettings(general);
        QCOMPARE(manager.getPropertiesWithChanges().first().value(QStringLiteral("id")).toInt(),
                 17);
        const ElementParam all = manager.generalSettingsGetAllProperties();
        QCOMPARE(all.value(QStringLiteral("other")).toString(), QStringLiteral("kept"));
        QCOMPARE(all.value(QStringLiteral("globalTransparency")), QVariant(44));
        QCOMPARE(all.value(QStringLiteral("analogVideo")), QVariant(false));
        QCOMPARE(all.value(QStringLiteral("kx70ii_state")), QVariant(false));
        QCOMPARE(all.value(QStringLiteral("kx70ii_col")), QVariant(1));
        QCOMPARE(all.value(QStringLiteral("kx70ii_row")), QVariant(1));
        QCOMPARE(all.value(QStringLiteral("kx70ii_units")), QVariant(QStringLiteral("metrics")));
    }

    /// Once they were reported, the favourites count as saved.
    void favoritesAreReportedOnce()
    {
        CVideoOverlayManager &manager = m_overlay->manager;
        CVideoOverlayText *text = manager.createText();
        text->setType(CVideoOverlayElement::FreeText);
        manager.resetChanges();
        QVERIFY(manager.getPropertiesWithChanges().isEmpty());
        QStringList favorites {QStringLiteral("one"), QStringLiteral("two")};
        manager.setFavorites(favorites, 3);
        QCOMPARE(manager.getAllPropertiesWithChanges()
                     .first()
                     .value(QStringLiteral("favorites"))
                     .toStringList(),
                 favorites);
        const QList<ElementParam> reported = manager.getPropertiesWithChanges();
        QCOMPARE(reported.size(), 1);
        ElementParam expected;
        expected.insert(QStringLiteral("favorites"), favorites);
        QCOMPARE(reported.first(), expected);
        QCOMPARE(text->getParamObject().value(QStringLiteral("favorites")).toStringList(),
                 favorites);
        QVERIFY(manager.getPropertiesWithChanges().isEmpty());
    }

    void resetChangesTakesTheFavorites()
    {
        CVideoOverlayManager &manager = m_overlay->manager;
        CVideoOverlayText *text = manager.createText();
        text->setType(CVideoOverlayElement::FreeText);
        CVideoOverlayText *other = manager.createText();
        QStringList favorites {QStringLiteral("one")};
        manager.setFavorites(favorites, 3);

        manager.resetChanges();

        const QString key = QStringLiteral("favorites");
        QCOMPARE(text->getParamObject().value(key).toStringList(), favorites);
        QVERIFY(!other->getParamObject().contains(key));
        QVERIFY(manager.getPropertiesWithChanges().isEmpty());
    }
};

QTEST_MAIN(tst_CVideoOverlayManagerElements)
#include "tst_CVideoOverlayManagerElements.moc"
