// SPDX-License-Identifier: Apache-2.0
#include "host/platform/Directories.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "host/qml/EditHistory.h"
#include "host/qml/EditorController.h"
#include "host/qml/LiveApplication.h"
#include "host/qml/LiveCommand.h"
#include "host/qml/LiveOverlay.h"
#include "host/qml/Messages.h"
#include "host/qml/ProjectController.h"
#include "host/qml/VideoController.h"
#include "tests/host/VideoReader.h"
#include "tests/qml/ScreenRobot.h"
#include "tests/support/ProfileFolders.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/models/VideoOverlayElementListModel.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>
#include <videooverlay/profiles/Profile.h>

#include <QDir>
#include <QKeyEvent>
#include <QLocalSocket>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <csignal>
#include <functional>

using namespace Velmar;
using namespace Velmar::Host;
using Test::ScreenRobot;
using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::ElementParam;

namespace {

const QString defaultProfile = QStringLiteral("Halvo push camera system - default");
constexpr double FingerPx = 53.0; ///< 9 mm on 10 inches of 1280x800

/// Two values and what an observation shows, for a second.
QByteArray profileOfTest()
{
    return Test::ProfileFolders::profileXml("readonly=\"false\" name=\"Bench\"", R"(
    <SYSTEMTEXT>
        <COL>10</COL><ROW>20</ROW>
        <FGCOLOR>#ffffe066</FGCOLOR><BGCOLOR>#96000000</BGCOLOR>
        <VISIBLE>true</VISIBLE><SHOWCAPTION>true</SHOWCAPTION>
        <UNIT>4</UNIT><SOURCE>DB</SOURCE><COL_Bound_Column>SPEED</COL_Bound_Column>
        <HEIGHT>1</HEIGHT><WIDTH>10</WIDTH><ALIGN>LEFT</ALIGN>
    </SYSTEMTEXT>
    <SYSTEMTEXT>
        <COL>0</COL><ROW>5</ROW>
        <FGCOLOR>#ffffe066</FGCOLOR><BGCOLOR>#96000000</BGCOLOR>
        <VISIBLE>true</VISIBLE><SHOWCAPTION>false</SHOWCAPTION>
        <UNIT>13</UNIT><SOURCE>DB</SOURCE><COL_Bound_Column>SECTION_DISTANCE_COUNTER</COL_Bound_Column>
        <HEIGHT>1</HEIGHT><WIDTH>8</WIDTH><ALIGN>LEFT</ALIGN>
    </SYSTEMTEXT>
    <INSPTEXT>
        <COL_Bound_Column>OBS_Observation</COL_Bound_Column><TDIR_Key>SECOBS</TDIR_Key>
        <SOURCE>DB</SOURCE><TIMEOUT>1</TIMEOUT><COL>0</COL><ROW>12</ROW>
        <FGCOLOR>#ffffffff</FGCOLOR><BGCOLOR>#c8101820</BGCOLOR>
        <VISIBLE>true</VISIBLE><SHOWCAPTION>false</SHOWCAPTION>
        <HEIGHT>1</HEIGHT><WIDTH>0</WIDTH>
    </INSPTEXT>)");
}

QStringList qtWarnings;

/// A screen with a warning is a screen with a mistake. What the library logs of the operator's
/// profiles is no matter here.
void recordQtWarning(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtInfoMsg)
        fprintf(stdout, "%s\n", qPrintable(message));
    if (type == QtWarningMsg || type == QtCriticalMsg)
        qtWarnings.append(message);
}

double luminance(const QColor &color)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
        + 0.0722 * linear(color.blueF());
}

double contrast(const QColor &one, const QColor &other)
{
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

} // namespace

Q_DECLARE_METATYPE(Velmar::Test::ScreenRobot::Pointer)

class tst_LiveApplication : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void screensLoad_data();
    void screensLoad();
    void theme();
    void keyboardAlone();
    void dragging_data();
    void dragging();
    void draggingStaysOnTheGrid();
    void arrowsAndUndo();
    void addsAndDeletesText();
    void addsPicture();
    void colours();
    void freeTextAndFavourites();
    void warnings();
    void overlayWideSettings();
    void search();
    void savingReadOnlyAsksForAName();
    void savingFails();
    void unsavedChanges_data();
    void unsavedChanges();
    void profiles();
    void refusedNames();
    void recordsWhileThePictureRuns();
    void recordingThatCannotStart();
    void observationAppearsAndExpires();
    void createsProject();
    void language();
    void overlayOff();
    void resizesPicture_data();
    void resizesPicture();
    void heldArrowIsOneStep();
    void textOfSeveralLines();
    void liveInput();
    void closesWhenTheRecordingIsComplete();
    void editorShowsWhatIsRecorded();
    void chosenStaysChosen();
    void heldReturnIsOnePress();
    void trembling();
    void observationOfWhatIsSeen();
    void messageBesideADialog();
    void observationStoredAtLast();
    void projectTouchedAgain();
    void neverHides();
    void unreadableProfile();
    void failureIsToldOnce();
    void smallestWindow_data();
    void smallestWindow();
    void noInspectionIsTold();
    void undoByKeys();
    void picturesOfAFolderThatIsNotThere();
    void longNamesDiffer();
    void renamedToItself();
    void questionAfterQuestion();
    void secondFinger();
    void catalogOfTheLanguage();
    void warningsAreWhole();
    void closingEndsTheProgram();

private:
    using Change = std::function<void(LiveApplication::Setup &)>;
    void start(const Change &change = {});
    void restart(const Change &change = {});
    QImage grabbed(const QQuickItem &item, const QRectF &part) const;
    CVideoOverlayElement *elementOf(const QString &valueName) const;
    QQuickItem *boxOf(const CVideoOverlayElement *element) const;
    QString profilePath(const QString &name) const;
    bool select(const QString &profile);
    bool awaitStage(const QQuickItem &stage) const;
    VideoOverlay::CVideoOverlayManager &manager() const { return m_live->overlay().manager(); }

    std::unique_ptr<QTemporaryDir> m_root;
    std::unique_ptr<LiveApplication> m_live;
    ScreenRobot m_robot;
    QtMessageHandler m_handlerBefore = nullptr;
};

void tst_LiveApplication::init()
{
    m_root = std::make_unique<QTemporaryDir>();
    Directories::setSettingsDirectory(m_root->filePath(QStringLiteral("settings")));
    Directories::setReadonlyConfigDirectory(QStringLiteral(XQ_DATA_DIRECTORY));
    Translation::TranslationStore::instance().setLocale(QLocale(QLocale::English));
    Shared::LocaleSettings::reset();
    qtWarnings.clear();
    m_handlerBefore = qInstallMessageHandler(recordQtWarning);
    start();
}

void tst_LiveApplication::cleanup()
{
    m_live.reset();
    qInstallMessageHandler(m_handlerBefore);
    QVERIFY2(qtWarnings.isEmpty(), qPrintable(qtWarnings.join(QLatin1Char('\n'))));
}

void tst_LiveApplication::restart(const Change &change)
{
    m_live.reset();
    start(change);
}

void tst_LiveApplication::start(const Change &change)
{
    QDir().mkpath(m_root->filePath(QStringLiteral("settings/osd")));
    if (!QFile::exists(profilePath(QStringLiteral("Bench")))) // not at a second start
        Test::ProfileFolders::write(profilePath(QStringLiteral("Bench")), profileOfTest());
    // The other shipped ones were here and have been removed.
    const QDir shipped(QStringLiteral(XQ_DATA_DIRECTORY "/profiles"));
    Test::ProfileFolders::write(m_root->filePath(QStringLiteral("settings/osd/.delivered")),
                                shipped.entryList(QDir::Files).join(QLatin1Char('\n')).toUtf8());
    QFile::copy(QStringLiteral(XQ_DATA_DIRECTORY "/profiles/%1.xml").arg(defaultProfile),
                profilePath(defaultProfile));
    LiveApplication::Setup setup;
    setup.source = SourceSpec::fromText(QStringLiteral("test"));
    setup.source.size = QSize(640, 360);
    setup.telemetryPath = QStringLiteral(XQ_DATA_DIRECTORY "/demo/telemetry.csv");
    setup.projectDirectory = m_root->filePath(QStringLiteral("projects"));
    setup.recordingDirectory = m_root->filePath(QStringLiteral("recordings"));
    setup.pictureDirectory = QStringLiteral(XQ_DATA_DIRECTORY "/demo");
    if (change)
        change(setup);
    m_live = std::make_unique<LiveApplication>();
    QString error;
    QVERIFY2(m_live->start(setup, &error),
             qPrintable((qtWarnings + QStringList(error)).join(QLatin1Char('\n'))));
    m_robot = ScreenRobot(m_live->window());
    m_live->window()->requestActivate(); // nobody else does where there is no window manager
    QVERIFY(QTest::qWaitForWindowActive(m_live->window()));
    QTRY_VERIFY(m_live->video().isRunning());
}

QString tst_LiveApplication::profilePath(const QString &name) const
{
    return m_root->filePath(QStringLiteral("settings/osd/%1.xml").arg(name));
}

bool tst_LiveApplication::select(const QString &name)
{
    const auto &profiles = m_live->overlay().profiles();
    for (int row = 0; row < profiles.rowCount(); ++row) {
        const auto *profile = profiles.data(profiles.index(row)).value<VideoOverlay::Profile *>();
        if (profile->caption() == name)
            return m_robot.click(QStringLiteral("navProfiles"))
                && m_robot.click(QStringLiteral("profile%1").arg(row))
                && m_robot.click(QStringLiteral("profileSelect"));
    }
    return false;
}

CVideoOverlayElement *tst_LiveApplication::elementOf(const QString &valueName) const
{
    const QList<CVideoOverlayElement *> elements = manager().getElementList();
    for (CVideoOverlayElement *element : elements) {
        if (element->getParamObject().value(ElementParam::NAME_COLUMNBOUND) == valueName)
            return element;
    }
    return nullptr;
}

QQuickItem *tst_LiveApplication::boxOf(const CVideoOverlayElement *element) const
{
    return m_robot.await(QStringLiteral("element%1").arg(manager().rowIndexByID(element->id())));
}

/// Frames have come and the screen has its final layout.
bool tst_LiveApplication::awaitStage(const QQuickItem &stage) const
{
    double last = 0.0;
    for (int same = 0; same < 3;) {
        QSignalSpy frames(&m_live->video(), &VideoController::frame);
        if (!frames.wait())
            return false;
        const double now = stage.property("cellWidth").toDouble();
        same = now > 1 && qFuzzyCompare(now, last) ? same + 1 : 0;
        last = now;
    }
    return true;
}

void tst_LiveApplication::screensLoad_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("English") << QStringLiteral("en");
    QTest::newRow("German") << QStringLiteral("de");
}

void tst_LiveApplication::screensLoad()
{
    QFETCH(QString, language);
    m_live->project().setLanguage(language);
    const QStringList screens {QStringLiteral("Live"), QStringLiteral("Editor"),
                               QStringLiteral("Profiles"), QStringLiteral("Project")};
    for (const QString &name : screens) {
        QVERIFY(m_robot.click(QStringLiteral("nav") + name));
        QVERIFY(m_robot.await(name.toLower() + QStringLiteral("Screen")));
        if (name == QLatin1String("Editor")) {
            m_live->editor().select(0);
            for (int panel = 0; panel < 3; ++panel)
                QVERIFY(m_robot.click(QStringLiteral("panel%1").arg(panel)));
        }
        // Everything that can be pressed is as large as a finger, and says what it is for.
        const QVector<QQuickItem *> buttons = m_robot.allWith("down");
        QVERIFY(buttons.size() >= 5);
        for (const QQuickItem *button : buttons) {
            if (!button->property("pressed").isValid() || button->objectName().isEmpty())
                continue;
            QVERIFY2(button->width() >= FingerPx && button->height() >= FingerPx,
                     qPrintable(button->objectName()));
            QVERIFY2(button->activeFocusOnTab(), qPrintable(button->objectName()));
        }
        QCOMPARE(qtWarnings, QStringList());
    }
}

void tst_LiveApplication::theme()
{
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData("import QtQuick 2.15\nimport \"qrc:/xqosd/screens\"\n"
                      "QtObject { readonly property QtObject theme: Theme }",
                      QUrl());
    const std::unique_ptr<QObject> holder(component.create());
    QVERIFY2(holder, qPrintable(component.errorString()));
    const auto *theme = holder->property("theme").value<QObject *>();
    const auto color = [theme](const char *name) { return theme->property(name).value<QColor>(); };
    const std::initializer_list<std::pair<const char *, const char *>> pairs {
        {"text", "ground"},  {"text", "panel"},    {"text", "raised"},      {"text", "pressed"},
        {"muted", "ground"}, {"muted", "panel"},   {"accentInk", "accent"}, {"dangerInk", "danger"},
        {"goodInk", "good"}, {"accent", "ground"}, {"accent", "panel"},
    };
    for (const auto &[ink, ground] : pairs) {
        QVERIFY2(color(ink).isValid() && color(ground).isValid(), ink);
        QVERIFY2(
            contrast(color(ink), color(ground)) >= 7.0,
            qPrintable(QStringLiteral("%1 on %2").arg(QLatin1String(ink), QLatin1String(ground))));
    }
    QVERIFY(theme->property("touch").toInt() >= FingerPx);
}

void tst_LiveApplication::keyboardAlone()
{
    // The second of the navigation's buttons, by keys, and a frame shows where one is.
    QStringList visited;
    for (int i = 0; i < 30 && !visited.contains(QStringLiteral("navEditor")); ++i) {
        m_robot.key(Qt::Key_Tab);
        if (m_live->window()->activeFocusItem())
            visited.append(m_live->window()->activeFocusItem()->objectName());
    }
    QVERIFY2(visited.contains(QStringLiteral("navEditor")),
             qPrintable(visited.join(QLatin1Char(' '))));
    QVERIFY(m_live->window()->activeFocusItem()->property("visualFocus").toBool());
    m_robot.key(Qt::Key_Return);
    QVERIFY(m_robot.await(QStringLiteral("editorScreen")));

    // An element is found, moved and saved there.
    QVERIFY(select(QStringLiteral("Bench")));
    m_live->window()->setProperty("screen", 1);
    m_robot.await(QStringLiteral("stageScope"))->forceActiveFocus();
    CVideoOverlayElement *distance = elementOf(ElementParam::NAME_SECTION_DISTANCE_COUNTER);
    elementOf(QStringLiteral("OBS_Observation"))->setEnabled(false);
    const CVideoOverlayElement *speed = elementOf(ElementParam::NAME_SPEED);
    m_robot.key(Qt::Key_PageDown);
    QCOMPARE(m_live->editor().selected(), speed);
    m_robot.key(Qt::Key_PageDown);
    QCOMPARE(m_live->editor().selected(), distance);
    m_robot.key(Qt::Key_PageDown); // what is switched off is left out
    QCOMPARE(m_live->editor().selected(), speed);
    m_robot.key(Qt::Key_PageUp);
    QCOMPARE(m_live->editor().selected(), distance);
    const int row = distance->row();
    m_robot.key(Qt::Key_Up);
    QCOMPARE(distance->row(), row - 1);
    QTest::keySequence(m_live->window(), QKeySequence(QKeySequence::Save));
    QTRY_VERIFY(!m_live->editor().hasUnsavedChanges());
    QVERIFY(Test::ProfileFolders::read(profilePath(QStringLiteral("Bench")))
                .contains("<ROW>" + QByteArray::number(row - 1) + "</ROW>"));
}

void tst_LiveApplication::dragging_data()
{
    QTest::addColumn<ScreenRobot::Pointer>("pointer");
    QTest::newRow("mouse") << ScreenRobot::Pointer::Mouse;
    QTest::newRow("finger") << ScreenRobot::Pointer::Finger;
}

void tst_LiveApplication::dragging()
{
    QFETCH(ScreenRobot::Pointer, pointer);
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    CVideoOverlayElement *speed = elementOf(ElementParam::NAME_SPEED);
    QVERIFY(speed);
    QCOMPARE(QPoint(speed->column(), speed->row()), QPoint(10, 20));
    const QQuickItem *box = boxOf(speed);
    const QQuickItem *stage = m_robot.find(QStringLiteral("editorStage"));
    QVERIFY(box && stage);
    QVERIFY(awaitStage(*stage));
    QTRY_VERIFY(speed->width() > 0); // a value has come
    const QPointF cell(stage->property("cellWidth").toDouble(),
                       stage->property("cellHeight").toDouble());

    m_robot.drag(box->mapToScene(QPointF(box->width() / 2, box->height() / 2)),
                 QPointF(3 * cell.x(), 2 * cell.y()), pointer);

    QTRY_COMPARE(QPoint(speed->column(), speed->row()), QPoint(13, 22));
    QCOMPARE(m_live->editor().selected(), speed);
    QVERIFY(m_live->editor().history()->isModified());
    const QByteArray before = Test::ProfileFolders::read(profilePath(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("save")));
    const QByteArray after = Test::ProfileFolders::read(profilePath(QStringLiteral("Bench")));
    QVERIFY(before != after);
    QVERIFY(after.contains("<COL>13</COL>"));
    QVERIFY(after.contains("<ROW>22</ROW>"));
    QVERIFY(!m_live->editor().hasUnsavedChanges());
    QVERIFY(!m_live->messages().isError());
}

void tst_LiveApplication::draggingStaysOnTheGrid()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    CVideoOverlayElement *distance = elementOf(ElementParam::NAME_SECTION_DISTANCE_COUNTER);
    QTRY_VERIFY(distance->width() > 0);
    const QQuickItem *stage = m_robot.find(QStringLiteral("editorStage"));
    QVERIFY(awaitStage(*stage));
    const QQuickItem *box = boxOf(distance);
    const QPointF centre = box->mapToScene(QPointF(box->width() / 2, box->height() / 2));
    m_robot.drag(centre, QPointF(-2000, -2000), ScreenRobot::Pointer::Mouse);
    QTRY_COMPARE(QPoint(distance->column(), distance->row()), QPoint(0, 0));
    m_live->editor().nudge(1000, 1000);
    const double right = distance->x() + distance->width();
    const QRectF grid = m_live->editor().grid();
    QVERIFY(right <= grid.right() + 0.5);
    QVERIFY(right > grid.right() - 2 * m_live->editor().cellWidth());
    QCOMPARE(distance->row(), 26);
}

void tst_LiveApplication::arrowsAndUndo()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    CVideoOverlayElement *speed = elementOf(ElementParam::NAME_SPEED);
    const auto cell = [speed] { return QPoint(speed->column(), speed->row()); };
    m_live->editor().select(manager().rowIndexByID(speed->id()));
    m_robot.find(QStringLiteral("stageScope"))->forceActiveFocus();
    m_robot.key(Qt::Key_Right);
    m_robot.key(Qt::Key_Right);
    m_robot.key(Qt::Key_Down);
    QCOMPARE(cell(), QPoint(12, 21));
    QVERIFY(m_robot.click(QStringLiteral("arrowUp")));
    QVERIFY(m_robot.click(QStringLiteral("arrowLeft")));
    QCOMPARE(cell(), QPoint(11, 20));

    QVERIFY(m_robot.click(QStringLiteral("panel1")));
    QVERIFY(m_robot.click(QStringLiteral("propertyCaption")));
    QTRY_VERIFY(!speed->captionVisible());
    QVERIFY(m_robot.click(QStringLiteral("propertyUnit1")));
    QTRY_VERIFY(speed->unit() != QLatin1String("m/min"));

    QVERIFY(m_robot.click(QStringLiteral("undo")));
    QCOMPARE(speed->unit(), QStringLiteral("m/min"));
    QVERIFY(m_robot.click(QStringLiteral("undo")));
    QVERIFY(speed->captionVisible());
    for (int i = 0; i < 5; ++i)
        QVERIFY(m_robot.click(QStringLiteral("undo")));
    QCOMPARE(cell(), QPoint(10, 20));
    QVERIFY(!m_live->editor().hasUnsavedChanges());
    QVERIFY(!m_robot.find(QStringLiteral("undo"))->isEnabled());
    QVERIFY(m_robot.click(QStringLiteral("redo")));
    QCOMPARE(cell(), QPoint(11, 20));
}

void tst_LiveApplication::addsAndDeletesText()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    const int before = manager().elementsCount();
    QVERIFY(m_robot.click(QStringLiteral("addText")));
    QVERIFY(m_robot.type(QStringLiteral("newTextField"), QStringLiteral("Manhole 4711")));
    QVERIFY(m_robot.click(QStringLiteral("newTextOk")));
    QCOMPARE(manager().elementsCount(), before + 1);
    const CVideoOverlayElement *added = m_live->editor().selected();
    QVERIFY(added && added->enabled() && added->visible());
    QCOMPARE(added->type(), CVideoOverlayElement::StaticText);
    // The others have several colours: there is none to take over.
    QCOMPARE(added->property("textColor").value<QColor>(), QColor(Qt::white));
    QCOMPARE(added->property("backgroundColor").value<QColor>(), QColor(Qt::black));
    QCOMPARE(m_robot.text(QStringLiteral("propertyText")), QStringLiteral("Manhole 4711"));

    QVERIFY(m_robot.awaitGone(QStringLiteral("newTextField")));
    QVERIFY(m_robot.click(QStringLiteral("deleteElement")));
    QCOMPARE(manager().elementsCount(), before);
    QVERIFY(m_robot.click(QStringLiteral("undo")));
    QCOMPARE(manager().elementsCount(), before + 1);
    QVERIFY(m_robot.click(QStringLiteral("undo")));
    QCOMPARE(manager().elementsCount(), before);
    QVERIFY(m_robot.click(QStringLiteral("redo")));
    QCOMPARE(manager().elementsCount(), before + 1);
    const auto *text
        = qobject_cast<VideoOverlay::CVideoOverlayText *>(manager().getElement(before));
    QVERIFY(text && text->visible());
    QCOMPARE(text->text(), QStringLiteral("Manhole 4711"));
    QVERIFY(m_robot.click(QStringLiteral("save")));
    QVERIFY(
        Test::ProfileFolders::read(profilePath(QStringLiteral("Bench"))).contains("Manhole 4711"));

    // What the operator cannot add again may only be switched off.
    m_live->editor().select(manager().rowIndexByID(elementOf(ElementParam::NAME_SPEED)->id()));
    QVERIFY(!m_robot.find(QStringLiteral("deleteElement"))->isEnabled());
}

void tst_LiveApplication::addsPicture()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    const int before = manager().elementsCount();
    QVERIFY(m_robot.click(QStringLiteral("addPicture")));
    QVERIFY(m_robot.click(QStringLiteral("picturewatermark.png")));
    QTRY_VERIFY(m_robot.find(QStringLiteral("picturePreview"))->property("status").toInt() == 1);
    QVERIFY(m_robot.click(QStringLiteral("pictureAdd")));
    QVERIFY(m_robot.awaitGone(QStringLiteral("pictureAdd")));
    QCOMPARE(manager().elementsCount(), before + 1);
    const auto *image
        = qobject_cast<VideoOverlay::CVideoOverlayImage *>(m_live->editor().selected());
    QVERIFY(image && image->visible() && image->imageSrcHeight() > 0);
    const double scale = image->scaleFactor();
    QVERIFY(m_robot.click(QStringLiteral("panel1")));
    QVERIFY(m_robot.click(QStringLiteral("propertyScaleLess")));
    QTRY_VERIFY(image->scaleFactor() < scale);

    QVERIFY(!m_live->editor().addPicture(profilePath(QStringLiteral("Bench"))));
    QVERIFY(m_robot.await(QStringLiteral("messageText")));
    QVERIFY(m_live->messages().isError());
    QVERIFY(m_robot.click(QStringLiteral("messageClose")));
    QVERIFY(m_robot.awaitGone(QStringLiteral("messageText")));
}

void tst_LiveApplication::colours()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    auto *speed
        = qobject_cast<VideoOverlay::CVideoOverlayText *>(elementOf(ElementParam::NAME_SPEED));
    auto *distance = qobject_cast<VideoOverlay::CVideoOverlayText *>(
        elementOf(ElementParam::NAME_SECTION_DISTANCE_COUNTER));
    m_live->editor().select(manager().rowIndexByID(speed->id()));
    QVERIFY(m_robot.click(QStringLiteral("panel1")));
    const QColor before = speed->textColor();
    QVERIFY(m_robot.click(QStringLiteral("propertyTextColorButton")));
    QVERIFY(m_robot.click(QStringLiteral("propertyTextColorCardColor6"))); // #e02020
    QVERIFY(m_robot.click(QStringLiteral("propertyTextColorCardOk")));
    QTRY_COMPARE(speed->textColor(), QColor(0xe0, 0x20, 0x20));
    QCOMPARE(distance->textColor(), before);
    QVERIFY(m_robot.awaitGone(QStringLiteral("propertyTextColorCardOk")));

    // By its value, with an opacity; and for all texts at once, each of which gets its own back.
    QVERIFY(m_robot.click(QStringLiteral("panel2")));
    QVERIFY(m_robot.click(QStringLiteral("overlayTextColorButton")));
    QVERIFY(m_robot.type(QStringLiteral("overlayTextColorCardValue"), QStringLiteral("#8000ff00")));
    QVERIFY(m_robot.click(QStringLiteral("overlayTextColorCardOk")));
    QTRY_COMPARE(speed->textColor(), QColor(0, 255, 0, 128));
    QCOMPARE(distance->textColor(), QColor(0, 255, 0, 128));
    QVERIFY(m_robot.awaitGone(QStringLiteral("overlayTextColorCardOk")));
    QVERIFY(m_robot.click(QStringLiteral("undo")));
    QCOMPARE(speed->textColor(), QColor(0xe0, 0x20, 0x20));
    QCOMPARE(distance->textColor(), before);
    QVERIFY(m_robot.click(QStringLiteral("undo")));
    QCOMPARE(speed->textColor(), before);
    QVERIFY(!m_live->editor().hasUnsavedChanges());
}

void tst_LiveApplication::freeTextAndFavourites()
{
    const QString notes = QStringLiteral("Pictures and notes");
    QVERIFY(QFile::copy(QStringLiteral(XQ_DATA_DIRECTORY "/profiles/%1.xml").arg(notes),
                        profilePath(notes)));
    restart(); // profiles are read at the start
    QVERIFY(select(notes));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    const auto *freeText = manager().getElementListModel()->freeText();
    QVERIFY(freeText);
    EditorController &editor = m_live->editor();
    const QStringList before = editor.favorites();
    editor.select(manager().rowIndexByID(freeText->id()));
    QVERIFY(m_robot.click(QStringLiteral("panel1")));
    QVERIFY(m_robot.type(QStringLiteral("propertyText"), QStringLiteral("Roots here")));
    QTRY_COMPARE(freeText->text(), QStringLiteral("Roots here"));
    QVERIFY(freeText->visible());
    editor.history()->undo();
    QCOMPARE(freeText->text(), QString());
    QVERIFY(!freeText->visible());
    editor.history()->redo();
    QVERIFY(freeText->visible());
    QVERIFY(m_robot.find(QStringLiteral("favoriteAdd"))->isEnabled());
    QMetaObject::invokeMethod(m_robot.find(QStringLiteral("favoriteAdd")), "clicked");
    QCOMPARE(editor.favorites(), before + QStringList(QStringLiteral("Roots here")));
    editor.history()->undo();
    QCOMPARE(editor.favorites(), before);
    editor.history()->redo();
    QVERIFY(editor.save());
    QVERIFY(Test::ProfileFolders::read(profilePath(notes)).contains("Roots here"));
    editor.removeFavorite(before.size());
    QCOMPARE(editor.favorites(), before);
    QVERIFY(editor.hasUnsavedChanges());
    editor.revert();
    QCOMPARE(editor.favorites(), before + QStringList(QStringLiteral("Roots here")));
}

void tst_LiveApplication::warnings()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    EditorController &editor = m_live->editor();
    CVideoOverlayElement *speed = elementOf(ElementParam::NAME_SPEED);
    CVideoOverlayElement *distance = elementOf(ElementParam::NAME_SECTION_DISTANCE_COUNTER);
    QTRY_VERIFY(speed->width() > 0 && distance->width() > 0);
    QTRY_COMPARE(editor.warnings().size(), 0);
    const auto text = [&editor] {
        return editor.warnings().value(0).toMap().value(QStringLiteral("text")).toString();
    };
    distance->setRow(speed->row());
    distance->setColumn(speed->column() + 2);
    QTRY_VERIFY(text().endsWith(QStringLiteral("overlap")));
    distance->setRow(40);
    QTRY_VERIFY(text().endsWith(QStringLiteral("leaves the grid")));
    distance->setRow(0);
    distance->setColumn(53);
    QTRY_VERIFY(text().endsWith(QStringLiteral("is cut off")));
    QCOMPARE(editor.warnings().value(0).toMap().value(QStringLiteral("index")).toInt(),
             manager().rowIndexByID(distance->id()));
    distance->setEnabled(false);
    QTRY_COMPARE(editor.warnings().size(), 0);
    editor.revert();
}

void tst_LiveApplication::overlayWideSettings()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    QVERIFY(m_robot.click(QStringLiteral("panel2")));
    const int transparency = manager().getGlobalTransparency();
    QVERIFY(m_robot.click(QStringLiteral("overlayTransparencyMore")));
    QTRY_COMPARE(manager().getGlobalTransparency(), transparency + 5);
    QVERIFY(manager().analogVideo()); // what holds for a profile that does not say
    QVERIFY(m_robot.click(QStringLiteral("overlayAnalog")));
    QTRY_VERIFY(!manager().analogVideo());
    QVERIFY(m_robot.click(QStringLiteral("overlayKx70")));
    QTRY_VERIFY(manager().kx70iiState());
    const int row = manager().kx70iiRow();
    QVERIFY(m_robot.click(QStringLiteral("overlayKx70RowMore")));
    QTRY_COMPARE(manager().kx70iiRow(), row + 1);
    QVERIFY(m_robot.click(QStringLiteral("save")));
    const QByteArray file = Test::ProfileFolders::read(profilePath(QStringLiteral("Bench")));
    QVERIFY(file.contains("<ANALOG_VIDEO>false</ANALOG_VIDEO>"));
    QVERIFY(file.contains("<KX70II_STATE>true</KX70II_STATE>"));
    QVERIFY(m_robot.click(QStringLiteral("overlayAnalog")));
    QTRY_VERIFY(manager().analogVideo());
    QVERIFY(m_robot.click(QStringLiteral("revert")));
    QVERIFY(m_robot.click(QStringLiteral("reversionAnswer0")));
    QTRY_VERIFY(!manager().analogVideo());
}

void tst_LiveApplication::search()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    const QQuickItem *list = m_robot.await(QStringLiteral("elementList"));
    QTRY_COMPARE(list->property("count").toInt(), 3);
    QVERIFY(m_robot.type(QStringLiteral("elementSearch"), QStringLiteral("spee")));
    QCOMPARE(list->property("count").toInt(), 1);
    const int row = manager().rowIndexByID(elementOf(ElementParam::NAME_SPEED)->id());
    QVERIFY(m_robot.click(QStringLiteral("listed%1").arg(row)));
    QTRY_COMPARE(m_live->editor().selectedIndex(), row);
    QVERIFY(m_robot.text(QStringLiteral("selectedName")).endsWith(QStringLiteral("Speed")));
}

void tst_LiveApplication::savingReadOnlyAsksForAName()
{
    QCOMPARE(manager().currentProfile()->caption(), defaultProfile);
    const QByteArray before = Test::ProfileFolders::read(profilePath(defaultProfile));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    CVideoOverlayElement *distance = elementOf(ElementParam::NAME_SECTION_DISTANCE_COUNTER);
    m_live->editor().select(manager().rowIndexByID(distance->id()));
    QVERIFY(m_robot.click(QStringLiteral("arrowUp")));
    QVERIFY(m_robot.click(QStringLiteral("save")));
    QVERIFY(m_robot.type(QStringLiteral("saveNameField"), QStringLiteral("Mine")));
    m_robot.key(Qt::Key_Return);
    QTRY_COMPARE(manager().currentProfile()->caption(), QStringLiteral("Mine"));
    QCOMPARE(elementOf(ElementParam::NAME_SECTION_DISTANCE_COUNTER)->row(), 25);
    QVERIFY(QFile::exists(profilePath(QStringLiteral("Mine"))));
    QCOMPARE(Test::ProfileFolders::read(profilePath(defaultProfile)), before);
    QVERIFY(!m_live->editor().hasUnsavedChanges());
}

void tst_LiveApplication::savingFails()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    const QByteArray before = Test::ProfileFolders::read(profilePath(QStringLiteral("Bench")));
    CVideoOverlayElement *speed = elementOf(ElementParam::NAME_SPEED);
    m_live->editor().select(manager().rowIndexByID(speed->id()));
    m_live->editor().nudge(5, 0);
    {
        const Test::FullDisk fullDisk;
        QVERIFY(!m_live->editor().save());
        QVERIFY(!m_live->editor().saveAs(QStringLiteral("Other")));
    }
    QVERIFY(m_robot.await(QStringLiteral("messageText")));
    QVERIFY(m_live->messages().isError());
    QVERIFY(m_live->editor().history()->isModified());
    QCOMPARE(speed->column(), 15);
    QCOMPARE(manager().currentProfile()->caption(), QStringLiteral("Bench"));
    QCOMPARE(Test::ProfileFolders::read(profilePath(QStringLiteral("Bench"))), before);
    QVERIFY(m_robot.click(QStringLiteral("save"))); // there is room again
    QTRY_VERIFY(!m_live->editor().hasUnsavedChanges());
    QVERIFY(
        Test::ProfileFolders::read(profilePath(QStringLiteral("Bench"))).contains("<COL>15</COL>"));
}

void tst_LiveApplication::unsavedChanges_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("switches");
    QTest::addColumn<bool>("isWritten");
    QTest::newRow("save") << 0 << true << true;
    QTest::newRow("discard") << 1 << true << false;
    QTest::newRow("cancel") << 2 << false << false;
}

void tst_LiveApplication::unsavedChanges()
{
    QFETCH(int, answer);
    QFETCH(bool, switches);
    QFETCH(bool, isWritten);
    QVERIFY(select(QStringLiteral("Bench")));
    const QByteArray before = Test::ProfileFolders::read(profilePath(QStringLiteral("Bench")));
    m_live->editor().select(manager().rowIndexByID(elementOf(ElementParam::NAME_SPEED)->id()));
    m_live->editor().nudge(5, 0);
    QVERIFY(select(defaultProfile));
    QVERIFY(m_robot.click(QStringLiteral("unsavedAnswer%1").arg(answer)));
    QTRY_COMPARE(manager().currentProfile()->caption(),
                 switches ? defaultProfile : QStringLiteral("Bench"));
    QCOMPARE(Test::ProfileFolders::read(profilePath(QStringLiteral("Bench"))) != before, isWritten);
    if (!switches)
        QCOMPARE(elementOf(ElementParam::NAME_SPEED)->column(), 15);
    m_live->editor().revert(); // so that nothing asks at the end
}

void tst_LiveApplication::profiles()
{
    QVERIFY(m_robot.click(QStringLiteral("navProfiles")));
    const auto &profiles = m_live->overlay().profiles();
    const int count = profiles.rowCount();
    QCOMPARE(count, 2);
    const int readOnlyRow = profiles.currentProfileIndex();
    QVERIFY(m_robot.click(QStringLiteral("profile%1").arg(readOnlyRow)));
    QTRY_VERIFY(m_robot.find(QStringLiteral("profileClone"))->isEnabled());
    QVERIFY(!m_robot.find(QStringLiteral("profileRemove"))->isEnabled());
    QVERIFY(!m_robot.find(QStringLiteral("profileRename"))->isEnabled());

    QVERIFY(m_robot.click(QStringLiteral("profileClone")));
    QVERIFY(m_robot.type(QStringLiteral("cloneNameField"), QStringLiteral("Second")));
    QVERIFY(m_robot.click(QStringLiteral("cloneNameOk")));
    QTRY_COMPARE(profiles.rowCount(), count + 1);
    QVERIFY(QFile::exists(profilePath(QStringLiteral("Second"))));

    QVERIFY(m_robot.awaitGone(QStringLiteral("cloneNameField")));
    QVERIFY(m_robot.click(QStringLiteral("profileRename")));
    QVERIFY(m_robot.type(QStringLiteral("newNameField"), QStringLiteral("Third")));
    QVERIFY(m_robot.click(QStringLiteral("newNameOk")));
    QTRY_VERIFY(QFile::exists(profilePath(QStringLiteral("Third"))));
    QVERIFY(!QFile::exists(profilePath(QStringLiteral("Second"))));
    QTRY_COMPARE(m_robot.text(QStringLiteral("profile%1").arg(count)), QStringLiteral("Third"));

    QVERIFY(m_robot.awaitGone(QStringLiteral("newNameField")));
    QVERIFY(m_robot.click(QStringLiteral("profileSelect")));
    QTRY_COMPARE(manager().currentProfile()->caption(), QStringLiteral("Third"));
    QTRY_VERIFY(!m_robot.find(QStringLiteral("profileSelect"))->isEnabled());

    QVERIFY(m_robot.click(QStringLiteral("profileRemove")));
    QVERIFY(m_robot.click(QStringLiteral("removalAnswer1"))); // not
    QVERIFY(QFile::exists(profilePath(QStringLiteral("Third"))));
    QVERIFY(m_robot.awaitGone(QStringLiteral("removalAnswer1")));
    QVERIFY(m_robot.click(QStringLiteral("profileRemove")));
    QVERIFY(m_robot.click(QStringLiteral("removalAnswer0")));
    QTRY_COMPARE(profiles.rowCount(), count);
    QVERIFY(!QFile::exists(profilePath(QStringLiteral("Third"))));
    QVERIFY(!m_live->messages().isError());
}

void tst_LiveApplication::refusedNames()
{
    QVERIFY(m_robot.click(QStringLiteral("navProfiles")));
    const auto &profiles = m_live->overlay().profiles();
    const int row = 1 - profiles.currentProfileIndex();
    QVERIFY(m_robot.click(QStringLiteral("profile%1").arg(row)));
    QVERIFY(m_robot.click(QStringLiteral("profileRename")));
    QVERIFY(m_robot.type(QStringLiteral("newNameField"), defaultProfile)); // taken
    QVERIFY(m_robot.click(QStringLiteral("newNameOk")));
    QVERIFY(m_robot.await(QStringLiteral("messageText")));
    QVERIFY(m_live->messages().isError());
    QVERIFY(QFile::exists(profilePath(QStringLiteral("Bench"))));
}

void tst_LiveApplication::recordsWhileThePictureRuns()
{
    QVERIFY(m_robot.await(QStringLiteral("liveScreen")));
    QSignalSpy frames(&m_live->video(), &VideoController::frame);
    QSignalSpy finished(&m_live->video(), &VideoController::recordingFinished);
    QSignalSpy recording(&manager(), &VideoOverlay::CVideoOverlayManager::videoRecording);
    QSignalSpy notRecording(&manager(), &VideoOverlay::CVideoOverlayManager::videoNotRecording);
    QVERIFY(m_robot.click(QStringLiteral("recordButton")));
    QTRY_COMPARE(m_live->video().recordState(), VideoController::Recording);
    QCOMPARE(recording.count(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(m_live->video().recordedTime() == QLatin1String("00:05"), 20000);
    const int before = frames.count();
    QVERIFY(before > 50);
    QVERIFY(m_robot.click(QStringLiteral("recordButton")));
    QVERIFY(finished.count() > 0 || finished.wait(20000));
    QCOMPARE(m_live->video().recordState(), VideoController::Idle);
    QVERIFY(notRecording.count() >= 1);
    QVERIFY(frames.wait()); // the picture still runs

    const MediaFacts facts = readFacts(m_live->video().recordingPath());
    QCOMPARE(facts.problem, QString());
    QCOMPARE(facts.size, QSize(640, 360));
    QVERIFY(facts.seconds >= 4.5);
    // Burned in: the text's place differs from the bars of the test picture.
    const QVector<DecodedFrame> pictures = readFrames(m_live->video().recordingPath());
    QVERIFY(pictures.size() >= 100);
}

void tst_LiveApplication::recordingThatCannotStart()
{
    QFile inTheWay(m_root->filePath(QStringLiteral("recordings")));
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    inTheWay.close();
    QVERIFY(m_robot.click(QStringLiteral("recordButton")));
    QVERIFY(m_robot.await(QStringLiteral("messageText")));
    QVERIFY(m_live->messages().isError());
    QCOMPARE(m_live->video().recordState(), VideoController::Idle);
    QSignalSpy frames(&m_live->video(), &VideoController::frame);
    QVERIFY(frames.wait());
}

void tst_LiveApplication::observationAppearsAndExpires()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navLive")));
    QVERIFY(!m_robot.find(QStringLiteral("observationButton"))->isEnabled());
    QVERIFY(m_live->project().create(QStringLiteral("Town"), QStringLiteral("1-2"),
                                     QStringLiteral("EN13508-2-ENG-GB")));
    auto *text = qobject_cast<VideoOverlay::CVideoOverlayText *>(
        elementOf(QStringLiteral("OBS_Observation")));
    QVERIFY(text && !text->visible());
    QVERIFY(m_robot.click(QStringLiteral("observationButton")));
    QVERIFY(m_robot.type(QStringLiteral("observationSearch"), QStringLiteral("crack")));
    QVERIFY(m_robot.click(QStringLiteral("codeBAB")));
    QVERIFY(m_robot.type(QStringLiteral("observationRemark"), QStringLiteral("at the joint")));
    QSignalSpy visible(text, &CVideoOverlayElement::visibleChanged);
    QVERIFY(m_robot.click(QStringLiteral("observationSave")));
    QVERIFY(m_robot.awaitGone(QStringLiteral("observationSave")));
    QVERIFY(visible.count() > 0);
    QVERIFY(text->text().contains(QStringLiteral("Crack")));
    QTRY_VERIFY(!text->visible()); // after its second
    QVERIFY(!m_live->messages().isError());
}

void tst_LiveApplication::createsProject()
{
    QVERIFY(m_robot.click(QStringLiteral("navProject")));
    QVERIFY(m_robot.click(QStringLiteral("projectNew")));
    QVERIFY(m_robot.type(QStringLiteral("projectName"), QStringLiteral("Hill Road")));
    QVERIFY(m_robot.type(QStringLiteral("sectionName"), QStringLiteral("12-13")));
    QVERIFY(m_robot.click(QStringLiteral("projectCreate")));
    QVERIFY(m_robot.awaitGone(QStringLiteral("projectCreate")));
    QCOMPARE(m_live->project().projectName(), QStringLiteral("Hill Road"));
    QCOMPARE(m_live->project().inspectionName(), QStringLiteral("12-13"));
    QVERIFY(m_live->project().observationCodes().size() > 10);
    QVERIFY(!m_live->editor().hasUnsavedChanges()); // what the template added is nobody's edit
    QCOMPARE(m_live->project().files().size(), 1);

    // Its name is taken now, and some are no names of files.
    QVERIFY(!m_live->project().create(QStringLiteral("Hill Road"), QStringLiteral("1"), QString()));
    QVERIFY(m_live->messages().isError());
    QVERIFY(!m_live->project().create(QStringLiteral("../out"), QStringLiteral("1"), QString()));
    QCOMPARE(m_live->project().files().size(), 1);
    QCOMPARE(m_live->project().projectName(), QStringLiteral("Hill Road"));
    QVERIFY(!m_live->project().open(profilePath(QStringLiteral("Bench"))));
    QCOMPARE(m_live->project().projectName(), QStringLiteral("Hill Road"));
}

void tst_LiveApplication::language()
{
    QVERIFY(select(QStringLiteral("Bench")));
    auto *speed
        = qobject_cast<VideoOverlay::CVideoOverlayText *>(elementOf(ElementParam::NAME_SPEED));
    QTRY_VERIFY(speed->text().startsWith(QStringLiteral("Speed: ")));
    QVERIFY(m_robot.click(QStringLiteral("navProject")));
    QCOMPARE(m_robot.text(QStringLiteral("navProfiles")), QStringLiteral("Profiles"));
    QVERIFY(m_robot.click(QStringLiteral("language0")));
    QTRY_COMPARE(m_robot.text(QStringLiteral("navProfiles")), QStringLiteral("Profile"));
    QVERIFY(speed->text().startsWith(QStringLiteral("Geschwindigkeit: ")));
    const auto readings = [this] { return m_live->video().speed() + m_live->video().distance(); };
    QVERIFY2(readings().count(QLatin1Char(',')) == 2, qPrintable(readings()));
    QVERIFY2(!readings().contains(QLatin1Char('.')), qPrintable(readings()));
    QVERIFY(m_robot.click(QStringLiteral("units1")));
    QVERIFY(m_live->video().speed().endsWith(QStringLiteral(" ft/min")));
    QVERIFY(m_robot.click(QStringLiteral("units0")));
    QVERIFY(m_robot.click(QStringLiteral("language1")));
    QTRY_COMPARE(m_robot.text(QStringLiteral("navProfiles")), QStringLiteral("Profiles"));
}

void tst_LiveApplication::overlayOff()
{
    QVERIFY(m_live->video().overlayEnabled());
    QVERIFY(m_robot.click(QStringLiteral("osdSwitch")));
    QVERIFY(!manager().videoOverlayEnabled());
    QVERIFY(m_robot.click(QStringLiteral("osdSwitch")));
    QVERIFY(manager().videoOverlayEnabled());
}

void tst_LiveApplication::resizesPicture_data()
{
    dragging_data();
}

void tst_LiveApplication::resizesPicture()
{
    QFETCH(ScreenRobot::Pointer, pointer);
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    EditorController &editor = m_live->editor();
    QVERIFY(editor.addPicture(QStringLiteral(XQ_DATA_DIRECTORY "/demo/watermark.png")));
    auto *image = qobject_cast<VideoOverlay::CVideoOverlayImage *>(editor.selected());
    QVERIFY(image);
    const QQuickItem *stage = m_robot.find(QStringLiteral("editorStage"));
    QVERIFY(awaitStage(*stage));
    const QQuickItem *handle = m_robot.await(QStringLiteral("resizeHandle"));
    QVERIFY(handle);
    QVERIFY(handle->width() >= FingerPx && handle->height() >= FingerPx);
    const double before = image->scaleFactor();
    const QSizeF size(image->width(), image->height());
    const double scaling = stage->property("scaling").toDouble();

    // Along the diagonal by half of the picture; it stays where it is and keeps its shape.
    const QPoint cell(image->column(), image->row());
    m_robot.drag(handle->mapToScene(QPointF(handle->width() / 2, handle->height() / 2)),
                 QPointF(size.width(), size.height()) / 2 * scaling, pointer);

    QTRY_VERIFY(image->scaleFactor() > before);
    QVERIFY(std::abs(image->scaleFactor() - 1.5 * before) <= 0.03);
    QCOMPARE(QPoint(image->column(), image->row()), cell);
    QVERIFY(std::abs(image->width() / image->height() - size.width() / size.height()) < 0.05);
    QVERIFY(m_robot.click(QStringLiteral("undo")));
    QCOMPARE(image->scaleFactor(), before);

    // Not beyond the grid, not to nothing, not beyond the limit.
    editor.beginDrag();
    editor.pullCornerTo(100000, 100000);
    editor.endDrag();
    const QRectF grid = editor.grid();
    QVERIFY(image->x() + image->width() <= grid.right() + 1);
    QVERIFY(image->y() + image->height() <= grid.bottom() + 1);
    QVERIFY(image->scaleFactor() > before);
    editor.beginDrag();
    editor.pullCornerTo(-100000, -100000);
    editor.endDrag();
    QCOMPARE(image->scaleFactor(), editor.property("smallestScale").toInt() / 100.0);

    // By keys, and not of what has no size of its own.
    m_robot.find(QStringLiteral("stageScope"))->forceActiveFocus();
    m_robot.key(Qt::Key_Plus);
    QCOMPARE(image->scaleFactor(), editor.property("smallestScale").toInt() / 100.0 + 0.05);
    m_robot.key(Qt::Key_Minus);
    QCOMPARE(image->scaleFactor(), editor.property("smallestScale").toInt() / 100.0);
    editor.select(manager().rowIndexByID(elementOf(ElementParam::NAME_SPEED)->id()));
    QVERIFY(m_robot.awaitGone(QStringLiteral("resizeHandle")));
    editor.revert();
}

void tst_LiveApplication::heldArrowIsOneStep()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    const CVideoOverlayElement *speed = elementOf(ElementParam::NAME_SPEED);
    EditorController &editor = m_live->editor();
    editor.select(manager().rowIndexByID(speed->id()));
    m_robot.find(QStringLiteral("stageScope"))->forceActiveFocus();
    const auto right = [this](bool isRepeated) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, QString(), isRepeated);
        QCoreApplication::sendEvent(m_live->window(), &event);
    };
    right(false);
    right(true);
    right(true);
    QCOMPARE(speed->column(), 13);
    right(false);
    right(true);
    QCOMPARE(speed->column(), 15);
    editor.history()->undo();
    QCOMPARE(speed->column(), 13);
    // What was changed in between is a step of its own, also while the key is held.
    editor.set(QStringLiteral("timeout"), 5);
    right(true);
    QCOMPARE(speed->column(), 14);
    editor.history()->undo();
    editor.history()->undo();
    QCOMPARE(speed->column(), 10);
    QVERIFY(!editor.history()->canUndo());

    // The arrow buttons repeat, too.
    const QQuickItem *arrow = m_robot.await(QStringLiteral("arrowRight"));
    const QPoint centre
        = arrow->mapToScene(QPointF(arrow->width() / 2, arrow->height() / 2)).toPoint();
    QTest::mousePress(m_live->window(), Qt::LeftButton, Qt::NoModifier, centre);
    QTRY_VERIFY(speed->column() >= 13);
    QTest::mouseRelease(m_live->window(), Qt::LeftButton, Qt::NoModifier, centre);
    editor.history()->undo();
    QCOMPARE(speed->column(), 10);
    QVERIFY(!editor.history()->canUndo());
}

void tst_LiveApplication::textOfSeveralLines()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    EditorController &editor = m_live->editor();
    editor.addText(QStringLiteral("one"));
    editor.nudge(5, 10);
    auto *text = qobject_cast<VideoOverlay::CVideoOverlayText *>(editor.selected());
    QVERIFY(text);
    const double height = text->height();
    QVERIFY(m_robot.click(QStringLiteral("panel1")));
    QVERIFY(m_robot.type(QStringLiteral("propertyText"), QStringLiteral("two")));
    QCOMPARE(text->text(), QStringLiteral("two")); // on the picture while it is typed
    m_robot.key(Qt::Key_Return);
    m_robot.key(Qt::Key_X);
    QCOMPARE(text->text(), QStringLiteral("two\nx"));
    QTRY_COMPARE(text->height(), 2 * height);
    editor.history()->undo(); // all that was typed
    QCOMPARE(text->text(), QStringLiteral("one"));
    QCOMPARE(m_robot.text(QStringLiteral("propertyText")), QStringLiteral("one"));
    editor.history()->redo();
    QVERIFY(editor.save());
    restart();
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    const QList<CVideoOverlayElement *> elements = manager().getElementList();
    QVERIFY(std::any_of(elements.begin(), elements.end(), [](CVideoOverlayElement *element) {
        const auto *loaded = qobject_cast<VideoOverlay::CVideoOverlayText *>(element);
        return loaded && loaded->text() == QLatin1String("two\nx");
    }));
}

void tst_LiveApplication::liveInput()
{
    const QString path = m_root->filePath(QStringLiteral("values"));
    restart([&](LiveApplication::Setup &setup) {
        setup.telemetryPath.clear();
        setup.inputSocket = path;
    });
    QVERIFY(select(QStringLiteral("Bench")));
    const auto *speed
        = qobject_cast<VideoOverlay::CVideoOverlayText *>(elementOf(ElementParam::NAME_SPEED));
    QVERIFY(!speed->visible());
    QLocalSocket client;
    client.connectToServer(path);
    QVERIFY(client.waitForConnected());
    client.write("{\"SPEED\": 6.5, \"SECTION_DISTANCE_COUNTER\": 12.25}\n");
    QTRY_VERIFY(speed->visible());
    QVERIFY2(speed->text().contains(QStringLiteral("6.50 m/min")), qPrintable(speed->text()));
    QVERIFY(m_robot.click(QStringLiteral("navLive")));
    QTRY_COMPARE(m_robot.text(QStringLiteral("distance")), QStringLiteral("12.25 m"));

    client.write("this is none\n"); // is told, and stops nothing
    QTRY_VERIFY(m_live->messages().isError());
    client.write("{\"SPEED\": 7}\n");
    QTRY_VERIFY(speed->text().contains(QStringLiteral("7.00 m/min")));

    // A place where there can be no socket.
    LiveApplication::Setup setup;
    setup.source = SourceSpec::fromText(QStringLiteral("test"));
    setup.projectDirectory = setup.recordingDirectory = m_root->path();
    setup.inputSocket = m_root->filePath(QStringLiteral("missing/values"));
    m_live.reset();
    QString error;
    QVERIFY(!LiveApplication().start(setup, &error));
    QVERIFY(!error.isEmpty());
}

void tst_LiveApplication::closesWhenTheRecordingIsComplete()
{
    QPointer<QQuickWindow> window = m_live->window();
    QSignalSpy finished(&m_live->video(), &VideoController::recordingFinished);
    QVERIFY(m_robot.click(QStringLiteral("recordButton")));
    QTRY_VERIFY_WITH_TIMEOUT(m_live->video().recordedTime() == QLatin1String("00:01"), 20000);
    window->close();
    QVERIFY(window->isVisible()); // the file is not complete
    QCOMPARE(m_live->video().recordState(), VideoController::Finishing);
    QTRY_VERIFY_WITH_TIMEOUT(!window->isVisible(), 20000);
    QCOMPARE(finished.count(), 1);
    const MediaFacts facts = readFacts(m_live->video().recordingPath());
    QCOMPARE(facts.problem, QString());
    QVERIFY(facts.seconds >= 0.9);
}

QImage tst_LiveApplication::grabbed(const QQuickItem &item, const QRectF &part) const
{
    QQuickWindow *window = m_live->window();
    QImage all = window->screen()->grabWindow(window->winId()).toImage();
    return all.copy(item.mapRectToScene(part).toRect()).convertToFormat(QImage::Format_RGB888);
}

void tst_LiveApplication::editorShowsWhatIsRecorded()
{
    // One to one on the editor's stage, so that no scaling blurs the comparison.
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    const QQuickItem *stage = m_robot.await(QStringLiteral("editorStage"));
    QVERIFY(awaitStage(*stage));
    const int width = int(stage->width());
    const QSize size(width / 16 * 16, width / 16 * 9);
    QVERIFY(size.width() >= 640);

    // A picture that stands still, so that what is on the screen is what was recorded before.
    const QString still = m_root->filePath(QStringLiteral("still.png"));
    QImage drawn(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            drawn.setPixel(x, y,
                           qRgb(60 + x * 120 / size.width(), 90, 150 - y * 90 / size.height()));
    }
    QVERIFY(drawn.save(still));
    const QString film = m_root->filePath(QStringLiteral("still.mkv"));
    QVERIFY(runPipeline(
        QStringLiteral("filesrc location=%1 ! pngdec ! imagefreeze num-buffers=500 "
                       "! video/x-raw,framerate=25/1 ! videoconvert ! "
                       "video/x-raw,format=I420 ! x264enc speed-preset=ultrafast "
                       "qp-min=1 quantizer=4 pass=quant ! matroskamux ! filesink location=%2")
            .arg(still, film)));
    restart([&](LiveApplication::Setup &setup) {
        setup.source = SourceSpec::fromText(film);
        setup.telemetryPath.clear();
    });
    m_live->window()->resize(1280 - (width - size.width()), 800);
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    EditorController &editor = m_live->editor();
    editor.addText(QStringLiteral("Manhole 4711 \u00C4\u00D6\u00DC \u00B0"));
    editor.set(QStringLiteral("backgroundColor"), QColor(20, 30, 60, 150));
    editor.nudge(4, 3);
    editor.addText(QStringLiteral("opaque"));
    editor.set(QStringLiteral("textColor"), QColor(0xff, 0xe0, 0x66));
    editor.nudge(20, 10);
    QVERIFY(editor.addPicture(QStringLiteral(XQ_DATA_DIRECTORY "/demo/watermark.png")));
    editor.nudge(30, 15);
    editor.setForAll(QStringLiteral("transparency"), 20);

    QSignalSpy finished(&m_live->video(), &VideoController::recordingFinished);
    m_live->video().startRecording();
    QSignalSpy frames(&m_live->video(), &VideoController::frame);
    QTRY_VERIFY_WITH_TIMEOUT(frames.count() >= 30, 20000);
    m_live->video().stopRecording();
    QVERIFY(finished.count() > 0 || finished.wait(20000));
    const QVector<DecodedFrame> recorded = readFrames(m_live->video().recordingPath());
    QVERIFY(recorded.size() >= 20);
    const QImage expected = recorded.last().image;

    stage = m_robot.find(QStringLiteral("editorStage"));
    QVERIFY(awaitStage(*stage));
    m_robot.find(QStringLiteral("editorStage"))->setProperty("showMarks", false);
    m_live->messages().dismiss();
    const auto pictureRect = [stage] { return stage->property("pictureRect").toRectF(); };
    QTRY_COMPARE(pictureRect().size().toSize(), size);
    QSignalSpy swapped(m_live->window(), &QQuickWindow::frameSwapped);
    QTRY_VERIFY(swapped.count() >= 3);
    const QImage shown = grabbed(*stage, pictureRect());
    QCOMPARE(shown.size(), expected.size());

    // What a recording changes: its colours are of every second pixel, and its compression is
    // lossy. So brightness is compared, pixel by pixel: within 12 of 255 for 999 of 1000 of them.
    int covered = 0;
    int different = 0;
    qint64 sum = 0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int away = std::abs(qGray(shown.pixel(x, y)) - qGray(expected.pixel(x, y)));
            sum += away;
            different += away > 12;
            covered += std::abs(qGray(shown.pixel(x, y)) - qGray(drawn.pixel(x, y))) > 30;
        }
    }
    const int pixels = size.width() * size.height();
    const double mean = double(sum) / pixels;
    qInfo("mean difference %.2f, more than 12: %.2f %%", mean, 100.0 * different / pixels);
    if (mean > 0.5 || different > pixels / 1000) {
        shown.save(QStringLiteral("editor-shown.png"));
        expected.save(QStringLiteral("editor-recorded.png"));
    }
    QVERIFY(mean <= 0.5);
    QVERIFY(different <= pixels / 1000);
    QVERIFY(covered > pixels / 200); // there is an overlay
    editor.revert();
}

void tst_LiveApplication::chosenStaysChosen()
{
    const QStringList path {QStringLiteral("navProfiles"), QStringLiteral("profile1"),
                            QStringLiteral("navEditor"),   QStringLiteral("panel2"),
                            QStringLiteral("navProject"),  QStringLiteral("units0")};
    for (const QString &name : path) {
        for (int times = 1; times <= 3; ++times) {
            QVERIFY(m_robot.click(name));
            QVERIFY2(m_robot.find(name)->property("checked").toBool(), qPrintable(name));
        }
    }
    QVERIFY(m_robot.click(QStringLiteral("units1")));
    QVERIFY(!m_robot.find(QStringLiteral("units0"))->property("checked").toBool());
    m_live->project().setImperial(false);
}

void tst_LiveApplication::heldReturnIsOnePress()
{
    const auto pressReturn = [this](bool isRepeated) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), isRepeated);
        QCoreApplication::sendEvent(m_live->window(), &event);
    };
    m_robot.await(QStringLiteral("osdSwitch"))->forceActiveFocus();
    pressReturn(false);
    pressReturn(true);
    QVERIFY(!m_live->video().overlayEnabled());
    m_robot.find(QStringLiteral("navEditor"))->forceActiveFocus();
    pressReturn(true); // held since it was elsewhere
    QVERIFY(m_robot.find(QStringLiteral("liveScreen")));
    pressReturn(false);
    QVERIFY(m_robot.await(QStringLiteral("editorScreen")));
}

void tst_LiveApplication::trembling()
{
    // Two quick touches begin one recording, and two end it.
    QVERIFY(m_robot.tap(QStringLiteral("recordButton"), 2));
    QCOMPARE(m_live->video().recordState(), VideoController::Recording);
    QTRY_VERIFY_WITH_TIMEOUT(m_live->video().recordedTime() == QLatin1String("00:02"), 20000);
    QSignalSpy finished(&m_live->video(), &VideoController::recordingFinished);
    QVERIFY(m_robot.tap(QStringLiteral("recordButton")));
    QVERIFY(finished.count() > 0 || finished.wait(20000));
    QVERIFY(m_robot.tap(QStringLiteral("recordButton")));
    QCOMPARE(m_live->video().recordState(), VideoController::Idle);
}

void tst_LiveApplication::observationOfWhatIsSeen()
{
    QVERIFY(m_live->project().create(QStringLiteral("Town"), QStringLiteral("1-2"),
                                     QStringLiteral("EN13508-2-ENG-GB")));
    QVERIFY(m_robot.click(QStringLiteral("observationButton")));
    QVERIFY(m_robot.click(QStringLiteral("codeBAB")));
    QVERIFY(m_robot.find(QStringLiteral("observationSave"))->isEnabled());
    QVERIFY(m_robot.type(QStringLiteral("observationSearch"), QStringLiteral("BAB")));
    QVERIFY(m_robot.find(QStringLiteral("observationSave"))->isEnabled()); // still there
    QVERIFY(m_robot.type(QStringLiteral("observationSearch"), QStringLiteral("BAA")));
    QVERIFY(!m_robot.find(QStringLiteral("observationSave"))->isEnabled());
}

void tst_LiveApplication::messageBesideADialog()
{
    QVERIFY(m_robot.click(QStringLiteral("navProject")));
    QVERIFY(m_robot.click(QStringLiteral("projectNew")));
    QVERIFY(m_robot.type(QStringLiteral("projectName"), QStringLiteral("a/b")));
    QVERIFY(m_robot.type(QStringLiteral("sectionName"), QStringLiteral("1-2")));
    QVERIFY(m_robot.click(QStringLiteral("projectCreate")));
    const QQuickItem *bar = m_robot.await(QStringLiteral("messageBar"));
    QVERIFY(bar);
    const QColor ground = bar->property("color").value<QColor>();
    const auto shown = [&] { return grabbed(*bar, QRectF(1, 1, 1, 1)).pixelColor(0, 0); };
    QTRY_COMPARE(shown().name(), ground.name()); // not in the dialog's shadow
    const QQuickItem *create = m_robot.find(QStringLiteral("projectCreate"));
    QVERIFY(create->mapToScene(QPointF(0, create->height())).y() < bar->mapToScene(QPointF()).y());
    QVERIFY(m_robot.click(QStringLiteral("messageClose")));
    QVERIFY(m_robot.awaitGone(QStringLiteral("messageText")));
    QVERIFY(m_robot.find(QStringLiteral("projectCreate"))); // it is still open, and still modal
    QVERIFY(m_robot.click(QStringLiteral("navLive")));
    QVERIFY(!m_robot.find(QStringLiteral("liveScreen")));
}

void tst_LiveApplication::observationStoredAtLast()
{
    ProjectController &project = m_live->project();
    QVERIFY(project.create(QStringLiteral("Town"), QStringLiteral("1-2"),
                           QStringLiteral("EN13508-2-ENG-GB")));
    m_live->messages().error(QStringLiteral("That was not stored"));
    QVERIFY(project.addObservation(QStringLiteral("BAB"), 1.0, QString()));
    QCOMPARE(m_live->messages().text(), QString());
}

void tst_LiveApplication::projectTouchedAgain()
{
    QVERIFY(m_live->project().create(QStringLiteral("Town"), QStringLiteral("1-2"),
                                     QStringLiteral("EN13508-2-ENG-GB")));
    QVERIFY(m_robot.click(QStringLiteral("navProject")));
    QVERIFY(m_robot.click(QStringLiteral("projectFile0")));
    QCOMPARE(m_live->project().inspectionName(), QStringLiteral("1-2")); // goes on
}

void tst_LiveApplication::neverHides()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    m_live->editor().select(manager().rowIndexByID(elementOf(ElementParam::NAME_SPEED)->id()));
    QVERIFY(m_robot.click(QStringLiteral("panel1")));
    const QQuickItem *row = m_robot.find(QStringLiteral("propertyTimeout"));
    QVERIFY(row);
    QCOMPARE(row->property("label").toString(), QStringLiteral("Never hide"));
    QVERIFY(m_robot.click(QStringLiteral("propertyTimeoutMore")));
    QTRY_COMPARE(row->property("label").toString(), QStringLiteral("Hide after"));
    m_live->editor().revert();
}

void tst_LiveApplication::unreadableProfile()
{
    Test::ProfileFolders::write(profilePath(QStringLiteral("Torn")), profileOfTest().left(900));
    restart();
    QVERIFY(select(QStringLiteral("Torn")));
    QTRY_COMPARE(manager().currentProfile()->caption(), QStringLiteral("Torn"));
    QVERIFY(m_live->messages().isError());
    const QString told
        = QStringLiteral("The profile “Torn” cannot be read to its end: unexpected end of file");
    QCOMPARE(m_live->messages().text(), told);
    restart(); // with that profile
    QVERIFY(m_live->messages().isError());
    QCOMPARE(m_live->messages().text(), told);
    QVERIFY(select(QStringLiteral("Bench")));
    QTRY_COMPARE(m_live->messages().text(), QString());
}

void tst_LiveApplication::failureIsToldOnce()
{
    m_live.reset();
    LiveApplication::Setup setup;
    setup.source = SourceSpec::fromText(m_root->filePath(QStringLiteral("missing.mkv")));
    setup.projectDirectory = setup.recordingDirectory = m_root->path();
    m_live = std::make_unique<LiveApplication>();
    QString error;
    QVERIFY(m_live->start(setup, &error));
    m_robot = ScreenRobot(m_live->window());
    QTRY_VERIFY(m_live->messages().isError());
    // What is asked of the operator can be read over whatever the overlay shows.
    const QQuickItem *ground = m_robot.await(QStringLiteral("noPicture"));
    QVERIFY(ground);
    QVERIFY(ground->property("color").value<QColor>().alpha() == 255);
    QVERIFY(m_robot.click(QStringLiteral("messageClose")));
    QSignalSpy again(&m_live->messages(), &Messages::changed);
    QVERIFY2(!again.wait(4000), "the same failure is told again"); // it is tried every three
    QVERIFY(!m_live->video().isRunning());
}

void tst_LiveApplication::smallestWindow_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("English") << QStringLiteral("en");
    QTest::newRow("German") << QStringLiteral("de");
}

void tst_LiveApplication::smallestWindow()
{
    QFETCH(QString, language);
    m_live->project().setLanguage(language);
    QVERIFY(select(QStringLiteral("Bench")));
    elementOf(ElementParam::NAME_SPEED)->setRow(5); // German says more of what is modified
    m_live->editor().select(0);
    m_live->editor().nudge(1, 0);
    m_live->messages().error(QStringLiteral("Something has failed"));
    QQuickWindow *window = m_live->window();
    window->resize(window->minimumSize());
    QVERIFY(window->minimumWidth() <= 1280 && window->minimumHeight() <= 800);
    const QStringList wanted {QStringLiteral("recordButton"),  QStringLiteral("save"),
                              QStringLiteral("deleteElement"), QStringLiteral("panel2"),
                              QStringLiteral("profileRemove"), QStringLiteral("units1")};
    const QStringList screens {QStringLiteral("navLive"),     QStringLiteral("navEditor"),
                               QStringLiteral("navEditor"),   QStringLiteral("navEditor"),
                               QStringLiteral("navProfiles"), QStringLiteral("navProject")};
    for (int i = 0; i < wanted.size(); ++i) {
        QVERIFY(m_robot.click(screens.at(i)));
        const QQuickItem *item = m_robot.await(wanted.at(i));
        QVERIFY(item);
        const QQuickItem *bar = m_robot.find(QStringLiteral("messageBar"));
        const auto corner
            = [&] { return item->mapToScene(QPointF(item->width(), item->height())); };
        QTRY_VERIFY2(corner().x() <= window->width()
                         && corner().y() <= bar->mapToScene(QPointF()).y(),
                     qPrintable(QStringLiteral("%1: %2, %3")
                                    .arg(wanted.at(i))
                                    .arg(corner().x())
                                    .arg(corner().y())));
    }
    m_live->editor().revert();
}

void tst_LiveApplication::noInspectionIsTold()
{
    const QStringList languages {QStringLiteral("en"), QStringLiteral("de")};
    for (const QString &language : languages) {
        m_live->project().setLanguage(language);
        const QQuickItem *name = m_robot.await(QStringLiteral("inspectionName"));
        QVERIFY(name);
        QTRY_VERIFY2(!name->property("truncated").toBool(), qPrintable(language));
    }
}

void tst_LiveApplication::undoByKeys()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    EditorController &editor = m_live->editor();
    editor.addText(QStringLiteral("one"));
    auto *text = qobject_cast<VideoOverlay::CVideoOverlayText *>(editor.selected());
    QVERIFY(text);
    QVERIFY(m_robot.click(QStringLiteral("panel1")));
    QVERIFY(m_robot.type(QStringLiteral("propertyText"), QStringLiteral("two")));
    const auto press = [this](QKeySequence::StandardKey key) {
        QTest::keySequence(m_live->window(), QKeySequence(key));
    };
    press(QKeySequence::Undo); // in the field: what the button does, not one more change
    QCOMPARE(text->text(), QStringLiteral("one"));
    QVERIFY(editor.history()->canRedo());
    press(QKeySequence::Redo);
    QCOMPARE(text->text(), QStringLiteral("two"));
    QVERIFY(!editor.history()->canRedo());

    const int row = text->row();
    QVERIFY(m_robot.click(QStringLiteral("arrowDown")));
    QCOMPARE(text->row(), row + 1);
    press(QKeySequence::Undo); // wherever the focus is
    QCOMPARE(text->row(), row);
    press(QKeySequence::Redo);
    QCOMPARE(text->row(), row + 1);
    m_robot.find(QStringLiteral("stageScope"))->forceActiveFocus();
    press(QKeySequence::Undo);
    QCOMPARE(text->row(), row);
    QCOMPARE(text->text(), QStringLiteral("two")); // one step for one press
    QVERIFY(m_robot.click(QStringLiteral("addText")));
    QVERIFY(m_robot.await(QStringLiteral("newTextField")));
    press(QKeySequence::Undo); // not below a dialog
    QCOMPARE(text->text(), QStringLiteral("two"));
    editor.revert();
}

void tst_LiveApplication::picturesOfAFolderThatIsNotThere()
{
    restart([this](LiveApplication::Setup &setup) {
        setup.pictureDirectory = m_root->filePath(QStringLiteral("no/such"));
    });
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    QVERIFY(m_robot.click(QStringLiteral("addPicture")));
    QVERIFY(m_robot.await(QStringLiteral("picturesettings"))); // a folder beside
    QCOMPARE(m_robot.text(QStringLiteral("pictureFolder")), m_root->path());
}

void tst_LiveApplication::longNamesDiffer()
{
    const QString stem(76, QLatin1Char('W'));
    const QByteArray nameless = Test::ProfileFolders::profileXml("readonly=\"false\" name=\"\"");
    for (const char last : {'1', '2'})
        Test::ProfileFolders::write(profilePath(stem + QLatin1Char(last)), nameless);
    restart();
    QVERIFY(m_robot.click(QStringLiteral("navProfiles")));
    QVERIFY(m_robot.await(QStringLiteral("profile3")));
    QSignalSpy swapped(m_live->window(), &QQuickWindow::frameSwapped);
    for (int i = 0; i < 2; ++i) { // without a picture nothing else asks for it
        const int before = swapped.count();
        m_live->window()->update();
        QTRY_VERIFY(swapped.count() > before);
    }
    QVector<QImage> rows;
    for (const char last : {'1', '2'}) {
        const QString name = stem + QLatin1Char(last);
        for (int row = 0; row < 4; ++row) {
            const QQuickItem *item = m_robot.await(QStringLiteral("profile%1").arg(row));
            QVERIFY(item);
            if (item->property("text") == name)
                rows.append(grabbed(*item, QRectF(8, 8, item->width() - 16, item->height() - 16)));
        }
    }
    QCOMPARE(rows.size(), 2);
    QVERIFY(!rows.first().isNull());
    QVERIFY(rows.first() != rows.last());
}

void tst_LiveApplication::renamedToItself()
{
    QVERIFY(m_robot.click(QStringLiteral("navProfiles")));
    const int row = 1 - m_live->overlay().profiles().currentProfileIndex();
    QVERIFY(m_robot.click(QStringLiteral("profile%1").arg(row)));
    QVERIFY(m_robot.click(QStringLiteral("profileRename")));
    QVERIFY(m_robot.click(QStringLiteral("newNameOk"))); // as it was offered
    QVERIFY(m_robot.awaitGone(QStringLiteral("newNameOk")));
    QCOMPARE(m_live->messages().text(), QString());
    QVERIFY(QFile::exists(profilePath(QStringLiteral("Bench"))));
}

void tst_LiveApplication::questionAfterQuestion()
{
    QVERIFY(select(QStringLiteral("Bench")));
    m_live->editor().select(manager().rowIndexByID(elementOf(ElementParam::NAME_SPEED)->id()));
    m_live->editor().nudge(5, 0);
    QVERIFY(m_robot.click(QStringLiteral("profileRemove")));
    QVERIFY(m_robot.await(QStringLiteral("removalAnswer0")));
    QVERIFY(m_robot.awaitGone(QStringLiteral("settling")));
    QVERIFY(m_robot.tap(QStringLiteral("removalAnswer0")));
    QVERIFY(m_robot.tap(QStringLiteral("unsavedAnswer1"))); // where the first answer was
    QVERIFY(m_robot.find(QStringLiteral("unsavedAnswer1")));
    QVERIFY(m_live->editor().hasUnsavedChanges());
    QVERIFY(m_robot.awaitGone(QStringLiteral("settling")));
    QVERIFY(m_robot.tap(QStringLiteral("unsavedAnswer1")));
    QTRY_VERIFY(!QFile::exists(profilePath(QStringLiteral("Bench"))));
}

void tst_LiveApplication::secondFinger()
{
    QVERIFY(select(QStringLiteral("Bench")));
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    CVideoOverlayElement *speed = elementOf(ElementParam::NAME_SPEED);
    CVideoOverlayElement *distance = elementOf(ElementParam::NAME_SECTION_DISTANCE_COUNTER);
    EditorController &editor = m_live->editor();
    editor.select(manager().rowIndexByID(speed->id()));
    editor.beginDrag();
    editor.dragTo(2, 0);
    QCOMPARE(speed->column(), 12);
    const QPoint before(distance->column(), distance->row());
    editor.select(manager().rowIndexByID(distance->id())); // by another finger, in the list
    editor.dragTo(3, 1);
    QCOMPARE(QPoint(distance->column(), distance->row()), before);
    editor.endDrag();
    editor.revert();
}

void tst_LiveApplication::catalogOfTheLanguage()
{
    const auto create = [this](const QString &name) {
        return m_robot.click(QStringLiteral("projectNew"))
            && m_robot.type(QStringLiteral("projectName"), name)
            && m_robot.type(QStringLiteral("sectionName"), QStringLiteral("1-2"))
            && m_robot.click(QStringLiteral("projectCreate"))
            && m_robot.awaitGone(QStringLiteral("projectCreate"));
    };
    const auto isEnglish = [this] {
        const QVariantList codes = m_live->project().observationCodes();
        return codes.contains(QVariantMap {{QStringLiteral("code"), QStringLiteral("BAB")},
                                           {QStringLiteral("caption"), QStringLiteral("Crack")}});
    };
    QVERIFY(m_robot.click(QStringLiteral("navProject")));
    QVERIFY(create(QStringLiteral("One")));
    QVERIFY(isEnglish());
    m_live->project().setLanguage(QStringLiteral("de"));
    QVERIFY(create(QStringLiteral("Two")));
    QVERIFY(!isEnglish());

    QVERIFY(m_robot.click(QStringLiteral("projectNew")));
    QVERIFY(m_robot.click(QStringLiteral("catalog1")));
    m_robot.key(Qt::Key_Escape);
    QVERIFY(m_robot.awaitGone(QStringLiteral("projectCreate")));
    QVERIFY(create(QStringLiteral("Three")));
    QVERIFY(isEnglish());
}

void tst_LiveApplication::warningsAreWhole()
{
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    CVideoOverlayElement *distance = elementOf(ElementParam::NAME_SECTION_DISTANCE_COUNTER);
    const CVideoOverlayElement *time = elementOf(ElementParam::NAME_VIDEO_TIME_COUNTER);
    QVERIFY(distance && time);
    QTRY_VERIFY(distance->visible() && time->visible());
    distance->setColumn(time->column());
    distance->setRow(time->row());
    const QStringList languages {QStringLiteral("en"), QStringLiteral("de")};
    for (const QString &language : languages) {
        m_live->project().setLanguage(language);
        QTRY_VERIFY(m_robot.text(QStringLiteral("warning0"))
                        .contains(language == QLatin1String("de") ? QStringLiteral("überlappen")
                                                                  : QStringLiteral("overlap")));
        const auto *text = m_robot.find(QStringLiteral("warning0"))
                               ->property("contentItem")
                               .value<QQuickItem *>();
        QTRY_VERIFY2(!text->property("truncated").toBool(), qPrintable(language));
        QVERIFY(text->property("contentHeight").toDouble() <= text->height());
    }
    m_live->editor().revert();
}

void tst_LiveApplication::closingEndsTheProgram()
{
    m_live.reset();
    Options options;
    options.command = Options::Command::Live;
    options.source = SourceSpec::fromText(QStringLiteral("test"));
    options.source.size = QSize(640, 360);
    options.projectDirectory = m_root->filePath(QStringLiteral("projects"));
    options.recordingDirectory = m_root->filePath(QStringLiteral("recordings"));
    QTimer::singleShot(0, this, [] {
        const QWindowList windows = QGuiApplication::topLevelWindows();
        for (QWindow *window : windows)
            window->close();
    });
    QTimer lastResort; // the test would never end otherwise
    lastResort.setSingleShot(true);
    connect(&lastResort, &QTimer::timeout, this, [] { std::raise(SIGINT); });
    lastResort.start(10000);
    QCOMPARE(runLive(options), 0);
}

QTEST_MAIN(tst_LiveApplication)
#include "tst_LiveApplication.moc"
