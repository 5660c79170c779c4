// SPDX-License-Identifier: Apache-2.0
#include "host/feed/SystemValueDatasourceFactory.h"
#include "host/feed/ValueFeed.h"
#include "host/platform/CatalogStore.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "tests/support/FakeCapabilitiesBackend.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/RecordingDisplayBackend.h"

#include "videooverlay/display/CVideoOverlayCapabilities.h"
#include "videooverlay/display/CVideoOverlayControl.h"
#include "videooverlay/display/CVideoOverlayManager.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/models/VideoOverlayElementListModel.h"
#include "videooverlay/osd/COsdValueDatasource.h"
#include "videooverlay/units/SpeedUnitsConverter.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

using namespace Velmar;
using namespace Velmar::Host;
using namespace Velmar::VideoOverlay;
using Velmar::Test::FakeCapabilitiesBackend;
using Velmar::Test::RecordingDisplayBackend;

namespace {

/// A speed converter that writes down what it was asked.
class WatchedConverter : public SpeedUnitsConverter
{
public:
    QString convert(QVariant value, QString from, QString to) override
    {
        questions.append(QStringLiteral("convert %1 '%2' '%3'").arg(value.toString(), from, to));
        return SpeedUnitsConverter::convert(value, from, to);
    }
    QString getSuffix(QString unit) override
    {
        questions.append(QStringLiteral("suffix '%1'").arg(unit));
        return SpeedUnitsConverter::getSuffix(unit);
    }

    QStringList questions;
};

/// Everything between a crawler's report and the display.
struct World
{
    World()
        : systemValues(CATManagement::CatalogStore::instance())
    {
        capabilities.setBackend(&picture);
        control.setBackend(&display);
        manager = std::make_unique<CVideoOverlayManager>(control, capabilities);
        manager->registerElementAccessor(&feed);
        manager->setGlobalTransparency(0);

        ElementParam record;
        record.insert(QStringLiteral("type"), int(CVideoOverlayElement::SystemText));
        record.insert(QStringLiteral("row"), 2);
        record.insert(QStringLiteral("col"), 3);
        record.insert(QStringLiteral("enabled"), true);
        record.insert(QStringLiteral("captionEnabled"), true);
        record.insert(QStringLiteral("backgroundColor"), QColor(Qt::black));
        record.insert(QStringLiteral("textColor"), QColor(Qt::white));
        record.insert(QStringLiteral("max_width"), 14);
        record.insert(QStringLiteral("unit"), QStringLiteral("ft/min"));
        record.insert(ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_SPEED);
        text = manager->createText(record);
        datasource = qobject_cast<COsdValueDatasource *>(systemValues.getDatasource(text, record));
        datasource->setUnitProvider(&converter);
        text->setVisible(false);
        converter.questions.clear();
        display.takeCalls();
    }

    FakeCapabilitiesBackend picture;
    RecordingDisplayBackend display;
    CVideoOverlayCapabilities capabilities;
    CVideoOverlayControl control;
    ValueFeed feed;
    SystemValueDatasourceFactory systemValues;
    WatchedConverter converter;
    std::unique_ptr<CVideoOverlayManager> manager;
    CVideoOverlayText *text = nullptr;
    COsdValueDatasource *datasource = nullptr;
};

} // namespace

/// One new speed, from the feed to what the display takes.
class tst_SpeedEvent : public Velmar::Test::LoggedTest
{
    Q_OBJECT

public:
    tst_SpeedEvent()
    {
        allow(QStringLiteral("2 VideoOverlayLibrary: Invalid project.")); // there is none here
    }

private Q_SLOTS:
    void everyStep()
    {
        World world;
        CVideoOverlayText *text = world.text;
        QSignalSpy textChanged(text, &CVideoOverlayText::textChanged);
        QSignalSpy rowsChanged(world.manager->getElementListModel(),
                               &QAbstractItemModel::dataChanged);
        QVERIFY(!text->visible());

        world.feed.setValue(ElementParam::NAME_SPEED, 12.5);

        // The datasource converts into the element's unit and asks for that unit's suffix.
        world.converter.questions.sort(); // which of the two comes first is nobody's business
        QCOMPARE(world.converter.questions,
                 QStringList({QStringLiteral("convert 12.5 '' 'ft/min'"),
                              QStringLiteral("suffix 'ft/min'")}));
        // A blank and the suffix, right-justified, behind the caption in the user's language.
        QCOMPARE(world.datasource->appendCaption(), QStringLiteral("Geschwindigkeit: "));
        QCOMPARE(world.datasource->appendValue(), QStringLiteral("41.01"));
        QCOMPARE(world.datasource->appendUnit(), QStringLiteral(" ft/min"));
        QCOMPARE(text->text(), QStringLiteral("Geschwindigkeit:   41.01 ft/min"));
        QCOMPARE(textChanged.count(), 1);
        QVERIFY(text->visible());

        // The manager places it on the grid, tells the list and hands it to the display.
        const VideoOverlaySettings &grid = *world.manager->getSettings();
        QCOMPARE(text->getElement().x(), grid.leftMargin() + 3 * grid.colWidth());
        QCOMPARE(text->getElement().y(), grid.topMargin() + 2 * grid.rowHeight());
        QVERIFY(rowsChanged.count() >= 2); // the text, and that it is visible
        for (const QList<QVariant> &change : qAsConst(rowsChanged)) {
            QCOMPARE(change.at(0).toModelIndex().row(), 0);
            QCOMPARE(change.at(1).toModelIndex().row(), 0);
            QVERIFY(change.at(2).value<QVector<int>>().isEmpty());
        }
        const QString call = QStringLiteral("displayElement %1").arg(text->id());
        QCOMPARE(world.display.takeCalls().filter(call).size(), rowsChanged.count());

        // What the display takes.
        const RenderedElement rendered = text->getElement();
        QCOMPARE(rendered.id(), text->id());
        QVERIFY(rendered.visible());
        QVERIFY(!rendered.getImage().isNull());
        // One line, as wide as its 31 characters and no wider than their cells.
        QVERIFY(rendered.getImage().height() <= int(grid.rowHeight()) + 1);
        QVERIFY(rendered.getImage().width() > 28 * grid.colWidth());
        QVERIFY(rendered.getImage().width() < 34 * grid.colWidth());
        // Letters at both ends, none in the three blanks after the colon.
        const auto brightest = [&](double fromCell, double toCell) {
            int most = 0;
            const double cell = rendered.getImage().width() / 31.0;
            for (int x = int(fromCell * cell); x < int(toCell * cell); ++x) {
                for (int y = 0; y < rendered.getImage().height(); ++y)
                    most = qMax(most, qGray(rendered.getImage().pixel(x, y)));
            }
            return most;
        };
        QVERIFY(brightest(0, 1) > 200);
        QVERIFY(brightest(30, 31) > 200);
        QVERIFY(brightest(16.3, 18.7) < 60);
    }

    void aSecondValueOnlyChangesTheText()
    {
        World world;
        world.feed.setValue(ElementParam::NAME_SPEED, 1.0);
        QSignalSpy visibleChanged(world.text, &CVideoOverlayElement::visibleChanged);
        world.feed.setValue(ElementParam::NAME_SPEED, 2.0);
        QCOMPARE(world.text->text(), QStringLiteral("Geschwindigkeit:    6.56 ft/min"));
        QCOMPARE(visibleChanged.count(), 0);
        world.display.takeCalls();
        world.feed.setValue(ElementParam::NAME_SPEED, 2.0); // the same again costs nothing
        QCOMPARE(world.display.takeCalls(), QStringList());
    }

    void hiddenCaption()
    {
        World world;
        world.text->setCaptionVisible(false);
        world.feed.setValue(ElementParam::NAME_SPEED, 12.5);
        QCOMPARE(world.text->text(), QStringLiteral("  41.01 ft/min"));
    }

    void renderingSwitchedOff()
    {
        qputenv("NQ5_DISABLE_OSD_RENDER", "1");
        World world;
        qunsetenv("NQ5_DISABLE_OSD_RENDER");
        world.feed.setValue(ElementParam::NAME_SPEED, 12.5);
        QCOMPARE(world.text->text(), QStringLiteral("Geschwindigkeit:   41.01 ft/min"));
        QCOMPARE(world.display.takeCalls().filter(QStringLiteral("displayElement")), QStringList());
    }

protected:
    void prepare() override
    {
        Translation::TranslationStore::instance().setDirectory(
            QStringLiteral(TRANSLATIONS_DIRECTORY));
        Translation::TranslationStore::instance().setLocale(QLocale(QStringLiteral("de_DE")));
    }
};

QTEST_MAIN(tst_SpeedEvent)
#include "tst_SpeedEvent.moc"
