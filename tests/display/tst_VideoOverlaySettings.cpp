// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/display/VideoOverlaySettings.h"

#include "tests/support/FakeCapabilitiesBackend.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/SignalJournal.h"
#include "videooverlay/display/CVideoOverlayCapabilities.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QMetaMethod>
#include <QTest>

using Velmar::Test::FakeCapabilitiesBackend;
using Velmar::Test::methodsOf;
using Velmar::Test::propertiesOf;
using Velmar::Test::SignalJournal;
using Velmar::VideoOverlay::CVideoOverlayCapabilities;
using Velmar::VideoOverlay::VideoOverlaySettings;

namespace {

const char loweringColumns[]
    = "settingsError(VideoOverlaySettings::onCapabilitiesChanged() error: lowering column count to "
      "current possible maximum.)";
const char loweringRows[]
    = "settingsError(VideoOverlaySettings::onCapabilitiesChanged() error: lowering row count to "
      "current possible maximum.)";

/// A display and what tells of it.
struct Display
{
    Display(int width, int height)
        : backend(54, 27, width, height)
    {
        capabilities.setBackend(&backend);
    }

    FakeCapabilitiesBackend backend;
    CVideoOverlayCapabilities capabilities;
};

/// A grid on a display.
struct Grid : Display
{
    explicit Grid(int width = 1920, int height = 1080)
        : Display(width, height)
        , settings(capabilities)
    {
    }

    int columns() const { return qRound(settings.marginRect().width() / settings.colWidth()); }
    int rows() const { return qRound(settings.marginRect().height() / settings.rowHeight()); }

    VideoOverlaySettings settings;
};

QStringList announced(std::initializer_list<const char *> entries)
{
    QStringList list;
    for (const char *entry : entries)
        list.append(QString::fromLatin1(entry));
    return list;
}

} // namespace

class tst_VideoOverlaySettings : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void metaObject()
    {
        QCOMPARE(methodsOf(VideoOverlaySettings::staticMetaObject),
                 announced({"signal settingsChanged()", "signal settingsError(QString)",
                            "slot calculateSettings()", "slot onCapabilitiesChanged()"}));
        QCOMPARE(propertiesOf(VideoOverlaySettings::staticMetaObject), QStringList());
        const QMetaMethod error = VideoOverlaySettings::staticMetaObject.method(
            VideoOverlaySettings::staticMetaObject.indexOfSignal("settingsError(QString)"));
        QCOMPARE(error.parameterNames(), QList<QByteArray>({"errMsg"}));
    }

    void defaultFont()
    {
        const Grid grid;
        const QFont font = grid.settings.font();
        QCOMPARE(font.family(), QStringLiteral("DejaVu Sans Mono"));
        QCOMPARE(font.pixelSize(), 35);
        QCOMPARE(font.weight(), int(QFont::Normal));
        QCOMPARE(font.italic(), false);
        QCOMPARE(font.fixedPitch(), true);
        QCOMPARE(font.letterSpacingType(), QFont::PercentageSpacing);
        QCOMPARE(font.letterSpacing(), 122.0);
        QCOMPARE(takeLog(), QStringList());
    }

    void substitutedFontIsLogged()
    {
        const QString family = QStringLiteral("DejaVu Sans Mono");
        QFont::insertSubstitution(family, QStringLiteral("Another Mono"));
        CVideoOverlayCapabilities noDisplay;
        const VideoOverlaySettings settings(noDisplay);
        QFont::removeSubstitutions(family);
        QCOMPARE(takeLog(),
                 QStringList(QStringLiteral("2 VideoOverlayLibrary: Cannot find font familly "
                                            "DejaVu Sans Mono. ")));
        QCOMPARE(settings.font().family(), family); // and goes on with it
        QCOMPARE(settings.font().pixelSize(), 35);
    }

    void defaultGrid()
    {
        const Grid grid;
        const VideoOverlaySettings &settings = grid.settings;
        QCOMPARE(settings.width(), 1920);
        QCOMPARE(settings.height(), 1080);
        QCOMPARE(settings.colWidth(), 25.6875);
        QCOMPARE(settings.rowHeight(), 40.0);
        QCOMPARE(settings.leftMargin(), (1920 - 54 * 25.6875) * 0.5);
        QCOMPARE(settings.topMargin(), 0.0);
        QCOMPARE(settings.marginRect(),
                 QRectF(settings.leftMargin(), 0.0, 54 * 25.6875, 27 * 40.0));
    }

    void cellSizeComesFromTheMetricsOnThePicture()
    {
        Grid grid;
        QFont font = grid.settings.font();
        font.setPixelSize(19);
        QVERIFY(grid.settings.setFont(font));
        QImage picture(1920, 1080, QImage::Format_ARGB32);
        const QFontMetricsF metrics(font, &picture);
        QCOMPARE(grid.settings.colWidth(), metrics.horizontalAdvance(QStringLiteral("X")));
        QCOMPARE(grid.settings.rowHeight(), metrics.height() - 2.0);
    }

    void marginsAreNegativeWhereTheGridIsLarger()
    {
        const Grid grid(1280, 720);
        QCOMPARE(grid.settings.leftMargin(), (1280 - 54 * 25.6875) * 0.5);
        QVERIFY(grid.settings.leftMargin() < 0.0);
        QCOMPARE(grid.settings.topMargin(), (720 - 27 * 40.0) * 0.5);
        QVERIFY(grid.settings.topMargin() < 0.0);
        QCOMPARE(grid.settings.marginRect().topLeft(),
                 QPointF(grid.settings.leftMargin(), grid.settings.topMargin()));
    }

    void withoutPictureEverythingIsZero()
    {
        CVideoOverlayCapabilities capabilities;
        VideoOverlaySettings settings(capabilities);
        QCOMPARE(settings.width(), 0);
        QCOMPARE(settings.height(), 0);
        QCOMPARE(settings.colWidth(), 0.0);
        QCOMPARE(settings.rowHeight(), 0.0);
        QCOMPARE(settings.leftMargin(), 0.0);
        QCOMPARE(settings.topMargin(), 0.0);
        QCOMPARE(settings.marginRect(), QRectF(0.0, 0.0, 0.0, 0.0));
    }

    void emptyPictureKeepsTheCellsAndStillEmits_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::newRow("0 x 0") << 0 << 0;
        QTest::newRow("no width") << 0 << 1080;
        QTest::newRow("no height") << 1920 << 0;
        QTest::newRow("negative") << -1 << -1;
        QTest::newRow("absurd") << 2000000000 << 2000000000;
    }

    void emptyPictureKeepsTheCellsAndStillEmits()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        Grid grid;
        const QRectF before = grid.settings.marginRect();
        SignalJournal journal(grid.settings, VideoOverlaySettings::staticMetaObject);
        grid.backend.width = width;
        grid.backend.height = height;
        Q_EMIT grid.backend.imageWidthChanged();
        QCOMPARE(journal.take(), announced({"settingsChanged"}));
        QCOMPARE(grid.settings.width(), width);
        QCOMPARE(grid.settings.height(), height);
        QCOMPARE(grid.settings.colWidth(), 25.6875);
        QCOMPARE(grid.settings.rowHeight(), 40.0);
        QCOMPARE(grid.settings.marginRect(), before);
    }

    void calculateSettingsAlwaysEmits()
    {
        Grid grid;
        SignalJournal journal(grid.settings, VideoOverlaySettings::staticMetaObject);
        grid.settings.calculateSettings();
        grid.settings.calculateSettings();
        QCOMPARE(journal.take(), announced({"settingsChanged", "settingsChanged"}));
    }

    void setGrid_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("columns");
        QTest::addColumn<bool>("accepted");

        QTest::newRow("both in range") << 10 << 20 << true;
        QTest::newRow("smallest") << 1 << 1 << true;
        QTest::newRow("largest") << 27 << 54 << true;
        QTest::newRow("row count carries the column count") << 10 << 1000 << true;
        QTest::newRow("row count carries a negative one") << 27 << -4 << true;
        QTest::newRow("column count carries the row count") << -5 << 54 << true;
        QTest::newRow("column count carries zero rows") << 0 << 1 << true;
        QTest::newRow("column count carries a large one") << 28 << 1 << true;
        QTest::newRow("both zero") << 0 << 0 << false;
        QTest::newRow("both one too many") << 28 << 55 << false;
        QTest::newRow("both negative") << -1 << -1 << false;
        QTest::newRow("the limits are not exchanged") << 54 << 55 << false;
    }

    void setGrid()
    {
        QFETCH(int, rows);
        QFETCH(int, columns);
        QFETCH(bool, accepted);
        Grid grid;
        const QRectF before = grid.settings.marginRect();
        const QRectF expected((1920 - columns * 25.6875) * 0.5, (1080 - rows * 40.0) * 0.5,
                              columns * 25.6875, rows * 40.0);
        SignalJournal journal(grid.settings, VideoOverlaySettings::staticMetaObject);

        QCOMPARE(grid.settings.setGrid(rows, columns), accepted);
        QCOMPARE(journal.take(), accepted ? announced({"settingsChanged"}) : QStringList());
        QCOMPARE(grid.settings.marginRect(), accepted ? expected : before);
    }

    void setResolution_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<bool>("accepted");

        QTest::newRow("both in range") << 1280 << 720 << true;
        QTest::newRow("smallest") << 1 << 1 << true;
        QTest::newRow("largest") << 1920 << 1080 << true;
        QTest::newRow("width carries the height") << 640 << 2000 << true;
        QTest::newRow("height carries the width") << 4000 << 480 << true;
        QTest::newRow("height carries zero width") << 0 << 480 << true;
        QTest::newRow("both zero") << 0 << 0 << false;
        QTest::newRow("both one too many") << 1921 << 1081 << false;
        QTest::newRow("both negative") << -1 << -1 << false;
    }

    void setResolution()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(bool, accepted);
        Grid grid;
        SignalJournal journal(grid.settings, VideoOverlaySettings::staticMetaObject);

        QCOMPARE(grid.settings.setResolution(width, height), accepted);
        QCOMPARE(journal.take(), accepted ? announced({"settingsChanged"}) : QStringList());
        QCOMPARE(grid.settings.width(), accepted ? width : 1920);
        QCOMPARE(grid.settings.height(), accepted ? height : 1080);
        if (accepted && width > 0)
            QCOMPARE(grid.settings.leftMargin(), (width - 54 * 25.6875) * 0.5);
    }

    void setFontRefusesWhatDoesNotAskForFixedPitch()
    {
        Grid grid;
        SignalJournal journal(grid.settings, VideoOverlaySettings::staticMetaObject);
        // A fixed-pitch family, but a font that does not ask for it: what it asks for decides.
        QFont font(QStringLiteral("DejaVu Sans Mono"));
        font.setPixelSize(20);
        QVERIFY(QFontInfo(font).fixedPitch());
        QCOMPARE(grid.settings.setFont(font), false);
        QCOMPARE(grid.settings.font().pixelSize(), 35);
        QCOMPARE(journal.take(), QStringList());
    }

    void setFontTakesOneThatAsks()
    {
        Grid grid;
        SignalJournal journal(grid.settings, VideoOverlaySettings::staticMetaObject);
        QFont font(QStringLiteral("No Such Family"));
        font.setPixelSize(20);
        font.setFixedPitch(true);
        QCOMPARE(grid.settings.setFont(font), true);
        QCOMPARE(grid.settings.font(), font);
        QCOMPARE(journal.take(), announced({"settingsChanged"}));
        QVERIFY(grid.settings.colWidth() > 0.0 && grid.settings.colWidth() < 25.0);
        QCOMPARE(grid.columns(), 54); // the counts stay
        QCOMPARE(grid.rows(), 27);

        QCOMPARE(grid.settings.setFont(font), true); // the current one: silent
        QCOMPARE(journal.take(), QStringList());
    }

    void applyVideoSettingsComputesNothing()
    {
        Grid grid;
        SignalJournal journal(grid.settings, VideoOverlaySettings::staticMetaObject);
        const QRectF before = grid.settings.marginRect();
        grid.backend.width = 1280;
        grid.backend.height = 720;
        grid.settings.applyVideoSettings();
        QCOMPARE(grid.settings.width(), 1280);
        QCOMPARE(grid.settings.height(), 720);
        QCOMPARE(grid.settings.marginRect(), before);
        QCOMPARE(journal.take(), QStringList());
    }

    void capabilitiesChanged_data()
    {
        QTest::addColumn<int>("maximumColumns");
        QTest::addColumn<int>("maximumRows");
        QTest::addColumn<int>("columns");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QStringList>("signalsInOrder");

        QTest::newRow("still enough") << 54 << 27 << 54 << 27 << announced({"settingsChanged"});
        QTest::newRow("more than enough") << 80 << 40 << 54 << 27 << announced({"settingsChanged"});
        QTest::newRow("fewer columns")
            << 53 << 27 << 53 << 27 << announced({loweringColumns, "settingsChanged"});
        QTest::newRow("fewer rows")
            << 54 << 20 << 54 << 20 << announced({loweringRows, "settingsChanged"});
        QTest::newRow("fewer of both")
            << 30 << 20 << 30 << 20
            << announced({loweringColumns, loweringRows, "settingsChanged"});
    }

    void capabilitiesChanged()
    {
        QFETCH(int, maximumColumns);
        QFETCH(int, maximumRows);
        QFETCH(int, columns);
        QFETCH(int, rows);
        QFETCH(QStringList, signalsInOrder);
        Grid grid;
        SignalJournal journal(grid.settings, VideoOverlaySettings::staticMetaObject);
        grid.backend.columns = maximumColumns;
        grid.backend.rows = maximumRows;
        grid.backend.width = 1280;
        Q_EMIT grid.backend.maximumColumnCountChanged();
        QCOMPARE(journal.take(), signalsInOrder);
        QCOMPARE(grid.columns(), columns);
        QCOMPARE(grid.rows(), rows);
        QCOMPARE(grid.settings.width(), 1280);
        QCOMPARE(grid.settings.leftMargin(), (1280 - columns * 25.6875) * 0.5);
        QCOMPARE(takeLog(), QStringList()); // announced, not logged as well
    }

    /// Each count is lowered before its error, the picture size is taken before both.
    void stateInsideTheErrors()
    {
        Grid grid;
        QVector<QRectF> rects;
        QVector<int> widths;
        connect(&grid.settings, &VideoOverlaySettings::settingsError, &grid.settings, [&] {
            rects.append(grid.settings.marginRect());
            widths.append(grid.settings.width());
        });
        grid.backend.columns = 30;
        grid.backend.rows = 20;
        grid.backend.width = 1280;
        Q_EMIT grid.backend.imageWidthChanged();
        QCOMPARE(widths, QVector<int>({1280, 1280}));
        QCOMPARE(rects.at(0).size(), QSizeF(30 * 25.6875, 27 * 40.0));
        QCOMPARE(rects.at(1).size(), QSizeF(30 * 25.6875, 20 * 40.0));
    }

    void loweredForGood()
    {
        Grid grid;
        grid.backend.columns = 30;
        Q_EMIT grid.backend.maximumColumnCountChanged();
        grid.backend.columns = 54;
        Q_EMIT grid.backend.maximumColumnCountChanged();
        QCOMPARE(grid.columns(), 30);
    }

    void withoutBackendNothingIsAllowed()
    {
        Grid grid;
        SignalJournal journal(grid.settings, VideoOverlaySettings::staticMetaObject);
        grid.capabilities.setBackend(nullptr);
        QCOMPARE(journal.take(), announced({loweringColumns, loweringRows, "settingsChanged"}));
        QCOMPARE(grid.settings.width(), 0);
        QCOMPARE(grid.settings.marginRect().size(), QSizeF(0.0, 0.0)); // no columns, no rows
        QCOMPARE(grid.settings.colWidth(), 25.6875); // while a cell keeps its size

        QCOMPARE(grid.settings.setGrid(1, 1), false);
        QCOMPARE(grid.settings.setGrid(27, 54), false);
        QCOMPARE(grid.settings.setGrid(0, 0), false);
        QCOMPARE(grid.settings.setResolution(1, 1), false);
        QCOMPARE(grid.settings.setResolution(0, 0), false);
        QCOMPARE(journal.take(), QStringList());
    }

    /// Creating the settings before there is a display does not lower the grid by itself.
    void displayAttachedLater()
    {
        CVideoOverlayCapabilities capabilities;
        VideoOverlaySettings settings(capabilities);
        FakeCapabilitiesBackend backend;
        SignalJournal journal(settings, VideoOverlaySettings::staticMetaObject);
        capabilities.setBackend(&backend);
        QCOMPARE(journal.take(), announced({"settingsChanged"}));
        QCOMPARE(settings.marginRect().size(), QSizeF(54 * 25.6875, 27 * 40.0));
    }
};

QTEST_MAIN(tst_VideoOverlaySettings)
#include "tst_VideoOverlaySettings.moc"
