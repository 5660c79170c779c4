// SPDX-License-Identifier: Apache-2.0
#include "host/platform/Directories.h"
#include "host/platform/LocaleSettings.h"
#include "host/platform/TranslationStore.h"
#include "host/screens/EditorController.h"
#include "host/screens/LiveApplication.h"
#include "host/screens/Messages.h"
#include "host/screens/ProjectController.h"
#include "tests/host/screens/ScreenRobot.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

using namespace Velmar;
using namespace Velmar::Host;
using Test::ScreenRobot;

namespace {

constexpr double FingerPx = 53.0; ///< 9 mm on 10 inches of 1280x800

QStringList qtWarnings;

/// A dictionary for suggestions is not needed; everything else is a mistake in a screen.
void recordQtWarning(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtWarningMsg && !message.startsWith(QLatin1String("Hunspell dictionary")))
        qtWarnings.append(message);
}

QRectF onScreen(const QQuickItem &item)
{
    return item.mapRectToScene(QRectF(0, 0, item.width(), item.height()));
}

} // namespace

/// Runs with QT_IM_MODULE=qtvirtualkeyboard, which is read before there is an application.
class tst_OnScreenKeyboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void typesIntoADialog();
    void leavesTheFieldInSight();
    void isAboveTheScreens();
    void goesWithItsDialog();

private:
    const QQuickItem *keyFor(QChar letter) const;
    bool press(QChar letter) const;

    std::unique_ptr<QTemporaryDir> m_root;
    std::unique_ptr<LiveApplication> m_live;
    ScreenRobot m_robot;
    QtMessageHandler m_handlerBefore = nullptr;
};

void tst_OnScreenKeyboard::init()
{
    QCOMPARE(qgetenv("QT_IM_MODULE"), QByteArray("qtvirtualkeyboard"));
    m_root = std::make_unique<QTemporaryDir>();
    Directories::setSettingsDirectory(m_root->filePath(QStringLiteral("settings")));
    Directories::setReadonlyConfigDirectory(QStringLiteral(XQ_DATA_DIRECTORY));
    Translation::TranslationStore::instance().setLocale(QLocale(QLocale::English));
    Shared::LocaleSettings::reset();
    LiveApplication::Setup setup;
    setup.source = SourceSpec::fromText(QStringLiteral("test"));
    setup.source.size = QSize(640, 360);
    setup.projectDirectory = m_root->filePath(QStringLiteral("projects"));
    setup.recordingDirectory = m_root->filePath(QStringLiteral("recordings"));
    qtWarnings.clear();
    m_handlerBefore = qInstallMessageHandler(recordQtWarning);
    m_live = std::make_unique<LiveApplication>();
    QString error;
    QVERIFY2(m_live->start(setup, &error), qPrintable(error));
    m_robot = ScreenRobot(m_live->window());
    m_live->window()->requestActivate();
    QVERIFY(QTest::qWaitForWindowActive(m_live->window()));
    QVERIFY(!m_live->messages().isError()); // it is installed
    QVERIFY(!m_robot.find(QStringLiteral("keyboard")));
}

void tst_OnScreenKeyboard::cleanup()
{
    m_live.reset();
    qInstallMessageHandler(m_handlerBefore);
    QVERIFY2(qtWarnings.isEmpty(), qPrintable(qtWarnings.join(QLatin1Char('\n'))));
}

/// The smallest item with this letter that is as large as a key.
const QQuickItem *tst_OnScreenKeyboard::keyFor(QChar letter) const
{
    const QQuickItem *found = nullptr;
    const QVector<QQuickItem *> items = m_robot.allWith("displayText");
    for (const QQuickItem *item : items) {
        const QString text = item->property("text").toString();
        if (text.compare(letter, Qt::CaseInsensitive) == 0 && item->width() > 0
            && item->metaObject()->indexOfProperty("keyPanelDelegate") >= 0)
            found = item;
    }
    return found;
}

bool tst_OnScreenKeyboard::press(QChar letter) const
{
    if (!QTest::qWaitFor([&] { return keyFor(letter) != nullptr; }))
        return false;
    const QPoint centre = onScreen(*keyFor(letter)).center().toPoint();
    QTest::mouseClick(m_live->window(), Qt::LeftButton, Qt::NoModifier, centre);
    return true;
}

void tst_OnScreenKeyboard::typesIntoADialog()
{
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    QVERIFY(m_robot.click(QStringLiteral("addText")));
    const QQuickItem *field = m_robot.await(QStringLiteral("newTextField"));
    const QQuickItem *keyboard = m_robot.await(QStringLiteral("keyboard"));
    QVERIFY(field && keyboard);
    const QRectF window(QPointF(0, 0), QSizeF(m_live->window()->size()));
    QTRY_VERIFY(window.contains(onScreen(*keyboard)));
    QVERIFY(keyboard->height() <= window.height() / 2);
    // The dialog with its buttons is above the keyboard, and nothing of it is out of sight.
    const QQuickItem *ok = m_robot.await(QStringLiteral("newTextOk"));
    QVERIFY(ok);
    QTRY_VERIFY(onScreen(*ok).bottom() < onScreen(*keyboard).top());
    QVERIFY(window.contains(onScreen(*field)));

    QVERIFY(press(QLatin1Char('h')));
    const QRectF key = onScreen(*keyFor(QLatin1Char('h')));
    QVERIFY(key.width() >= FingerPx && key.height() >= FingerPx);
    QVERIFY(press(QLatin1Char('i')));
    QTRY_COMPARE(field->property("text").toString().toLower(), QStringLiteral("hi"));
    QVERIFY(m_robot.click(QStringLiteral("newTextOk")));
    QVERIFY(m_robot.awaitGone(QStringLiteral("newTextField")));
    QVERIFY(m_robot.awaitGone(QStringLiteral("keyboard")));
    QCOMPARE(m_robot.text(QStringLiteral("propertyText")).toLower(), QStringLiteral("hi"));
}

void tst_OnScreenKeyboard::leavesTheFieldInSight()
{
    QVERIFY(m_robot.click(QStringLiteral("navProject")));
    QVERIFY(m_robot.click(QStringLiteral("projectNew")));
    const QQuickItem *keyboard = m_robot.await(QStringLiteral("keyboard"));
    QVERIFY(keyboard);
    for (const QString &name : {QStringLiteral("projectName"), QStringLiteral("sectionName")}) {
        QVERIFY(m_robot.click(name));
        const QQuickItem *field = m_robot.find(name);
        QTRY_VERIFY(field->hasActiveFocus());
        QTRY_VERIFY(onScreen(*field).bottom() <= onScreen(*keyboard).top());
        QVERIFY(onScreen(*field).top() >= 0);
    }
    m_robot.key(Qt::Key_Escape);
    QVERIFY(m_robot.awaitGone(QStringLiteral("projectName")));

    // A field far down in the window moves up with all that is around it, and back again.
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    EditorController &editor = m_live->editor();
    editor.addText(QStringLiteral("one\ntwo\nthree"));
    QVERIFY(m_robot.click(QStringLiteral("panel1")));
    const QQuickItem *field = m_robot.await(QStringLiteral("propertyText"));
    const double before = onScreen(*field).bottom();
    const_cast<QQuickItem *>(field)->forceActiveFocus();
    QVERIFY(m_robot.await(QStringLiteral("keyboard")));
    QTRY_VERIFY(onScreen(*field).top() < onScreen(*keyboard).top());
    m_robot.find(QStringLiteral("stageScope"))->forceActiveFocus();
    QVERIFY(m_robot.awaitGone(QStringLiteral("keyboard")));
    QTRY_COMPARE(onScreen(*field).bottom(), before);
    editor.revert();
}

void tst_OnScreenKeyboard::isAboveTheScreens()
{
    QVERIFY(m_robot.click(QStringLiteral("navEditor")));
    QVERIFY(m_robot.click(QStringLiteral("elementSearch")));
    const QQuickItem *keyboard = m_robot.await(QStringLiteral("keyboard"));
    QVERIFY(keyboard);
    const QQuickItem *covered = m_robot.find(QStringLiteral("addText"));
    QVERIFY(covered);
    const QRectF button = onScreen(*covered);
    QVERIFY(onScreen(*keyboard).contains(button));
    // One of these keys is where the button is, which must not take the touch.
    const QString letters = QStringLiteral("ouik");
    bool isOverTheButton = false;
    for (const QChar letter : letters) {
        QVERIFY(press(letter));
        isOverTheButton = isOverTheButton || button.contains(onScreen(*keyFor(letter)).center());
    }
    QVERIFY(isOverTheButton);
    QTRY_COMPARE(m_robot.text(QStringLiteral("elementSearch")).toLower(), letters);
    QVERIFY(!m_robot.find(QStringLiteral("newTextField")));
}

void tst_OnScreenKeyboard::goesWithItsDialog()
{
    QVERIFY(m_live->project().create(QStringLiteral("Town"), QStringLiteral("1-2"),
                                     QStringLiteral("EN13508-2-ENG-GB")));
    QVERIFY(m_robot.click(QStringLiteral("navLive"))); // once everything rests
    const QQuickItem *button = m_robot.await(QStringLiteral("observationButton"));
    QVERIFY(button);
    const QRectF place = onScreen(*button);
    const QPoint onButton = place.center().toPoint();
    QTest::mousePress(m_live->window(), Qt::LeftButton, Qt::NoModifier, onButton);
    QTest::qWait(100); // for nothing that could be awaited
    QCOMPARE(onScreen(*button), place);
    QTest::mouseRelease(m_live->window(), Qt::LeftButton, Qt::NoModifier, onButton);
    QVERIFY(m_robot.await(QStringLiteral("observationCancel")));
    m_robot.key(Qt::Key_Escape);
    QVERIFY(m_robot.awaitGone(QStringLiteral("observationCancel")));
    QVERIFY(m_robot.click(QStringLiteral("observationButton")));
    QVERIFY(m_robot.click(QStringLiteral("observationRemark")));
    QVERIFY(m_robot.await(QStringLiteral("keyboard")));
    const QQuickItem *cancel = m_robot.find(QStringLiteral("observationCancel"));
    QVERIFY(cancel);
    // As long as a finger is on a button, that stays where it is.
    const QPoint finger = onScreen(*cancel).center().toPoint();
    QTest::mousePress(m_live->window(), Qt::LeftButton, Qt::NoModifier, finger);
    QVERIFY(QTest::qWaitFor([cancel] { return cancel->property("pressed").toBool(); }));
    QTest::qWait(200); // for nothing that could be awaited
    QVERIFY(onScreen(*cancel).contains(finger));
    QTest::mouseRelease(m_live->window(), Qt::LeftButton, Qt::NoModifier, finger);
    QVERIFY(m_robot.awaitGone(QStringLiteral("observationRemark")));
    QVERIFY(m_robot.awaitGone(QStringLiteral("keyboard")));
    QTRY_COMPARE(onScreen(*button), place);

    QVERIFY(m_robot.click(QStringLiteral("observationButton")));
    QVERIFY(m_robot.click(QStringLiteral("observationRemark")));
    QVERIFY(m_robot.await(QStringLiteral("keyboard")));
    m_robot.key(Qt::Key_Escape);
    QVERIFY(m_robot.awaitGone(QStringLiteral("observationRemark")));
    QVERIFY(m_robot.awaitGone(QStringLiteral("keyboard")));
    QTRY_COMPARE(onScreen(*button), place);
}

QTEST_MAIN(tst_OnScreenKeyboard)
#include "tst_OnScreenKeyboard.moc"
