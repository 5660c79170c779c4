// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/CVideoOverlayElement.h"

#include "tests/support/FakeCapabilitiesBackend.h"
#include "tests/support/LockProbe.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/SignalJournal.h"
#include "videooverlay/display/CVideoOverlayCapabilities.h"
#include "videooverlay/display/VideoOverlaySettings.h"

#include <QMetaEnum>
#include <QMetaProperty>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <functional>
#include <future>
#include <limits>
#include <memory>

using Velmar::Test::FakeCapabilitiesBackend;
using Velmar::Test::LockProbe;
using Velmar::Test::methodsOf;
using Velmar::Test::propertiesOf;
using Velmar::Test::SignalJournal;
using Velmar::Test::waitsForLock;
using Velmar::VideoOverlay::CVideoOverlayCapabilities;
using Velmar::VideoOverlay::CVideoOverlayElement;
using Velmar::VideoOverlay::ElementParam;
using Velmar::VideoOverlay::VideoOverlaySettings;

using Type = CVideoOverlayElement::Type;
using Action = std::function<void(CVideoOverlayElement &)>;
Q_DECLARE_METATYPE(Action)

namespace {

/// An element kind that asks for its deletion when its time is over.
class MortalElement : public LockProbe<CVideoOverlayElement>
{
public:
    MortalElement() { m_deleteOnExpiry = true; }
};

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QTimer *timerOf(const QObject &element)
{
    return element.findChild<QTimer *>();
}

/// The longest whole number of seconds that a timer can run, in milliseconds. It rounds long times
/// to seconds, and beyond this one what is left no longer fits its answer.
constexpr int LongestInterval = 2147483000;

/// Enabled, with a timeout, and shown: its timer runs.
void startTimeout(CVideoOverlayElement &element, int seconds)
{
    element.setEnabled(true);
    element.setTimeout(seconds);
    element.setVisible(true);
}

/// Leaves the element suspended with exactly @p ms left.
void suspendWithLeft(CVideoOverlayElement &element, int ms)
{
    QTimer *timer = timerOf(element);
    timer->setTimerType(Qt::PreciseTimer);
    const qint64 resumed = std::min<qint64>(qint64(ms) * 1000, LongestInterval);
    do { // again, where a tick of the clock fell in between
        timer->start(ms);
        element.suspendTimer();
        element.startTimer(); // tells by its interval what was left, and keeps it
        timer->stop();
    } while (timer->interval() != resumed);
}

} // namespace

class tst_CVideoOverlayElement : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void propertyOrder()
    {
        const QStringList expected = {
            QStringLiteral("int id write idChanged()"),
            QStringLiteral("int row write rowChanged()"),
            QStringLiteral("int column write columnChanged()"),
            QStringLiteral("int x rowChanged()"),
            QStringLiteral("int y columnChanged()"),
            QStringLiteral("double height heightChanged()"),
            QStringLiteral("double width write widthChanged()"),
            QStringLiteral("bool visible write visibleChanged()"),
            QStringLiteral("bool enabled write enabledChanged()"),
            QStringLiteral("bool captionVisible write captionVisibleChanged()"),
            QStringLiteral("QString caption write captionChanged()"),
            QStringLiteral("Type type write typeChanged()"),
            QStringLiteral("int timeout write timeoutChanged()"),
            QStringLiteral("int maxlinenumber write maxlinenumberChanged()"),
            QStringLiteral("bool timeoutDisabled write timeoutDisabledChanged()"),
            QStringLiteral("QString unit write unitChanged()"),
            QStringLiteral("int transparency write"),
            QStringLiteral("bool canDelete constant"),
        };
        QStringList actual = propertiesOf(CVideoOverlayElement::staticMetaObject);
        // How the enumeration is spelled out is the meta-object compiler's choice.
        actual.replaceInStrings(QStringLiteral("Velmar::VideoOverlay::"), QString());
        actual.replaceInStrings(QStringLiteral("CVideoOverlayElement::Type"),
                                QStringLiteral("Type"));
        QCOMPARE(actual, expected);
    }

    void signalAndSlotOrder()
    {
        const QStringList expected = {
            QStringLiteral("signal rowChanged()"),
            QStringLiteral("signal columnChanged()"),
            QStringLiteral("signal visibleChanged()"),
            QStringLiteral("signal idChanged()"),
            QStringLiteral("signal widthChanged()"),
            QStringLiteral("signal heightChanged()"),
            QStringLiteral("signal captionChanged()"),
            QStringLiteral("signal timeoutChanged()"),
            QStringLiteral("signal enabledChanged()"),
            QStringLiteral("signal captionVisibleChanged()"),
            QStringLiteral("signal unitChanged()"),
            QStringLiteral("signal typeChanged()"),
            QStringLiteral("signal timeoutDisabledChanged()"),
            QStringLiteral("signal maxlinenumberChanged()"),
            QStringLiteral("signal transparencyChanged()"),
            QStringLiteral("signal timerExpired()"),
            QStringLiteral("signal canDeleteChanged()"),
            QStringLiteral("signal deleteRequest(CVideoOverlayElement*)"),
            QStringLiteral("signal settingsChanged()"),
            QStringLiteral("slot startTimer()"),
            QStringLiteral("slot suspendTimer()"),
            QStringLiteral("slot stopTimer()"),
            QStringLiteral("slot expireTimer()"),
            QStringLiteral("slot determineVisibility()"),
            QStringLiteral("slot handleTimeout()"),
        };
        QCOMPARE(methodsOf(CVideoOverlayElement::staticMetaObject), expected);
    }

    void typeEnumeration()
    {
        const QMetaObject &meta = CVideoOverlayElement::staticMetaObject;
        QCOMPARE(meta.enumeratorCount() - meta.enumeratorOffset(), 1);
        const QMetaEnum type = meta.enumerator(meta.indexOfEnumerator("Type"));
        const char *names[] = {"StaticText", "SystemText", "FreePicture",    "InspText",
                               "FreeText",   "Watermark",  "InspStaticText", "Invalid"};
        QCOMPARE(type.keyCount(), 8);
        for (int i = 0; i < type.keyCount(); ++i) {
            QCOMPARE(type.key(i), names[i]);
            QCOMPARE(type.value(i), i);
        }
    }

    void initialValues()
    {
        CVideoOverlayElement element;
        QCOMPARE(element.id(), -1);
        QCOMPARE(element.row(), 0);
        QCOMPARE(element.column(), 0);
        QCOMPARE(element.x(), 0.0);
        QCOMPARE(element.y(), 0.0);
        QCOMPARE(element.visible(), false);
        QCOMPARE(element.captionVisible(), true);
        QCOMPARE(element.caption(), QString());
        QCOMPARE(element.type(), CVideoOverlayElement::Invalid);
        QCOMPARE(element.width(), 0.0);
        QCOMPARE(element.height(), 0.0);
        QCOMPARE(element.timeout(), 0);
        QCOMPARE(element.enabled(), false);
        QCOMPARE(element.timeoutDisabled(), false);
        QCOMPARE(element.transparency(), 100);
        QCOMPARE(element.getMaxLineNumber(), 3);
        QCOMPARE(element.unit(), QString());
        QVERIFY(element.getParamObject().isEmpty());
        QTimer *timer = timerOf(element);
        QVERIFY(timer);
        QVERIFY(timer->isSingleShot());
        QVERIFY(!timer->isActive());
    }

    /// The visible flag is false at first: switching an element on that decides by itself whether
    /// it is shown does not show it.
    void visibleFlagIsFalseAtFirst()
    {
        CVideoOverlayElement element;
        element.setType(CVideoOverlayElement::InspText);
        element.setEnabled(true);
        QCOMPARE(element.visible(), false);
    }

    void setterEmitsOncePerChange_data()
    {
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("value");

        QTest::newRow("id") << QByteArray("id") << QVariant(7);
        QTest::newRow("row") << QByteArray("row") << QVariant(3);
        QTest::newRow("column") << QByteArray("column") << QVariant(-3);
        QTest::newRow("width") << QByteArray("width") << QVariant(12.5);
        QTest::newRow("captionVisible") << QByteArray("captionVisible") << QVariant(false);
        QTest::newRow("caption") << QByteArray("caption") << QVariant(QStringLiteral("Speed"));
        QTest::newRow("timeout") << QByteArray("timeout") << QVariant(9);
        QTest::newRow("maxlinenumber") << QByteArray("maxlinenumber") << QVariant(5);
        QTest::newRow("timeoutDisabled") << QByteArray("timeoutDisabled") << QVariant(true);
    }

    void setterEmitsOncePerChange()
    {
        QFETCH(QByteArray, property);
        QFETCH(QVariant, value);
        LockProbe<CVideoOverlayElement> element;
        const QMetaObject *meta = element.metaObject();
        const QMetaProperty p = meta->property(meta->indexOfProperty(property.constData()));
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        bool lockedInSignal = false;
        QVariant valueInSignal;
        journal.setObserver([&](const QString &) {
            lockedInSignal = element.isLocked();
            valueInSignal = p.read(&element);
        });

        QVERIFY(p.write(&element, value));
        QVERIFY(p.write(&element, value)); // the same value again: silent
        QCOMPARE(p.read(&element), value);
        QCOMPARE(journal.entries(), QStringList(QString::fromLatin1(p.notifySignal().name())));
        QVERIFY(lockedInSignal);
        QCOMPARE(valueInSignal, value);
        QVERIFY(!element.isLocked());
    }

    void settersWithoutProperty_data()
    {
        QTest::addColumn<Action>("change");
        QTest::addColumn<QString>("signalName");

        QTest::newRow("height") << Action([](CVideoOverlayElement &e) { e.setHeight(42.5); })
                                << "heightChanged";
        QTest::newRow("transparency")
            << Action([](CVideoOverlayElement &e) { e.setTransparency(30); })
            << "transparencyChanged";
    }

    void settersWithoutProperty()
    {
        QFETCH(Action, change);
        QFETCH(QString, signalName);
        LockProbe<CVideoOverlayElement> element;
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        bool lockedInSignal = false;
        journal.setObserver([&](const QString &) { lockedInSignal = element.isLocked(); });

        change(element);
        change(element);
        QCOMPARE(journal.entries(), QStringList(signalName));
        QVERIFY(lockedInSignal);
    }

    void heightAndTransparencyAreStored()
    {
        CVideoOverlayElement element;
        element.setHeight(42.5);
        QCOMPARE(element.height(), 42.5);
        QCOMPARE(element.property("height").toDouble(), 42.5);
        QVERIFY(!element.setProperty("height", 1.0));
        QVERIFY(element.setProperty("transparency", 30)); // written through the property as well
        QCOMPARE(element.transparency(), 30);
    }

    /// A value and its signal are one step for another thread.
    void readerWaitsUntilTheSlotEnds()
    {
        CVideoOverlayElement element;
        std::future<int> reader;
        bool waited = false;
        connect(&element, &CVideoOverlayElement::rowChanged, &element, [&] {
            reader = std::async(std::launch::async, [&] { return element.row(); });
            waited = reader.wait_for(std::chrono::milliseconds(100)) == std::future_status::timeout;
        });
        element.setRow(8);
        QVERIFY(waited);
        QCOMPARE(reader.get(), 8);
    }

    void slotMayReenter()
    {
        CVideoOverlayElement element;
        connect(&element, &CVideoOverlayElement::rowChanged, &element,
                [&] { element.setColumn(element.row() + 1); });
        element.setRow(8);
        QCOMPARE(element.column(), 9);
    }

    void setTypeAlwaysEmits()
    {
        LockProbe<CVideoOverlayElement> element;
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        bool locked = false;
        journal.setObserver([&](const QString &) { locked = element.isLocked(); });
        element.setType(CVideoOverlayElement::FreeText);
        element.setType(CVideoOverlayElement::FreeText);
        QCOMPARE(journal.take(), words("typeChanged typeChanged"));
        QCOMPARE(element.type(), CVideoOverlayElement::FreeText);
        QVERIFY(locked);
    }

    void baseHasNoUnit()
    {
        CVideoOverlayElement element;
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        element.setUnit(QStringLiteral("m/min"));
        QCOMPARE(element.unit(), QString());
        QCOMPARE(journal.take(), QStringList());
    }

    void baseDrawsNothing()
    {
        CVideoOverlayElement element;
        QImage image(4, 4, QImage::Format_ARGB32);
        image.fill(0x12345678);
        const QImage before = image.copy();
        element.renderInto(image);
        QCOMPARE(image, before);
    }

    void positionHasNoSignalAndNeedsNoLock()
    {
        LockProbe<CVideoOverlayElement> element;
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        element.setPosition(12.75, -3.75);
        QCOMPARE(journal.take(), QStringList());
        QCOMPARE(element.x(), 12.75);
        QCOMPARE(element.y(), -3.75);
        QCOMPARE(element.property("x"), QVariant(12)); // truncated, not rounded
        QCOMPARE(element.property("y"), QVariant(-3));
        QVERIFY(!element.setProperty("x", 1));
        QVERIFY(!element.setProperty("y", 1));

        bool finished = false;
        connect(&element, &CVideoOverlayElement::rowChanged, &element, [&] {
            auto placed = std::async(std::launch::async, [&] { element.setPosition(1.0, 2.0); });
            finished = placed.wait_for(std::chrono::seconds(10)) == std::future_status::ready;
        });
        element.setRow(4);
        QVERIFY(finished);
        QCOMPARE(element.x(), 1.0);
    }

    void positionBeyondTheProperty_data()
    {
        QTest::addColumn<double>("position");
        QTest::addColumn<int>("shown");

        const double infinite = std::numeric_limits<double>::infinity();
        QTest::newRow("largest") << 2147483647.75 << std::numeric_limits<int>::max();
        QTest::newRow("beyond") << 2147483648.0 << std::numeric_limits<int>::max();
        QTest::newRow("endless") << infinite << std::numeric_limits<int>::max();
        QTest::newRow("smallest") << -2147483648.75 << std::numeric_limits<int>::min();
        QTest::newRow("below") << -2.6e9 << std::numeric_limits<int>::min();
        QTest::newRow("endlessly left") << -infinite << std::numeric_limits<int>::min();
        QTest::newRow("nowhere") << std::numeric_limits<double>::quiet_NaN() << 0;
    }

    /// The position is a double, the properties are whole numbers.
    void positionBeyondTheProperty()
    {
        QFETCH(double, position);
        QFETCH(int, shown);
        CVideoOverlayElement element;
        element.setPosition(position, 7.0);
        QCOMPARE(element.property("x"), QVariant(shown));
        QCOMPARE(element.property("y"), QVariant(7));
        element.setPosition(7.0, position);
        QCOMPARE(element.property("x"), QVariant(7));
        QCOMPARE(element.property("y"), QVariant(shown));
        if (!std::isnan(position))
            QCOMPARE(element.y(), position);
    }

    void rowAnnouncesXAndColumnAnnouncesY()
    {
        const QMetaObject &meta = CVideoOverlayElement::staticMetaObject;
        const auto notify = [&](const char *name) {
            return meta.property(meta.indexOfProperty(name)).notifySignal().name();
        };
        QCOMPARE(notify("x"), QByteArray("rowChanged"));
        QCOMPARE(notify("y"), QByteArray("columnChanged"));
    }

    void temporaryHideAlwaysEmits()
    {
        LockProbe<CVideoOverlayElement> element;
        element.setType(CVideoOverlayElement::StaticText);
        element.setEnabled(true);
        QVERIFY(element.visible());
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        bool locked = false;
        journal.setObserver([&](const QString &) { locked = element.isLocked(); });

        element.setTemporaryHide(true);
        QVERIFY(!element.visible());
        element.setTemporaryHide(true);
        element.setVisible(true); // the flag is still set: nothing to change
        QCOMPARE(journal.take(), words("visibleChanged visibleChanged"));
        element.setTemporaryHide(false);
        QVERIFY(element.visible());
        element.setTemporaryHide(false);
        QCOMPARE(journal.take(), words("visibleChanged visibleChanged"));
        QVERIFY(locked);
    }

    void effectiveVisibility_data()
    {
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<bool>("hidden");
        for (int i = 0; i < 8; ++i) {
            const bool enabled = i & 1;
            const bool shown = i & 2;
            const bool hidden = i & 4;
            QTest::addRow("enabled %d, shown %d, hidden %d", enabled, shown, hidden)
                << enabled << shown << hidden;
        }
    }

    void effectiveVisibility()
    {
        QFETCH(bool, enabled);
        QFETCH(bool, shown);
        QFETCH(bool, hidden);
        CVideoOverlayElement element;
        element.setType(CVideoOverlayElement::InspText); // keeps its own visibility
        element.setEnabled(enabled);
        element.setVisible(shown);
        element.setTemporaryHide(hidden);
        QCOMPARE(element.visible(), enabled && shown && !hidden);
    }

    void settingsPointer()
    {
        FakeCapabilitiesBackend backend;
        CVideoOverlayCapabilities capabilities;
        capabilities.setBackend(&backend);
        auto settings = std::make_unique<VideoOverlaySettings>(capabilities);
        LockProbe<CVideoOverlayElement> element;
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        bool locked = false;
        journal.setObserver([&](const QString &) { locked = element.isLocked(); });

        element.setSettings(nullptr);
        QCOMPARE(journal.take(), QStringList());
        element.setSettings(settings.get());
        element.setSettings(settings.get());
        QCOMPARE(journal.take(), words("settingsChanged"));
        QVERIFY(locked);
        settings->calculateSettings(); // a change within the grid is none of the pointer
        QCOMPARE(journal.take(), QStringList());
        element.setSettings(nullptr);
        QCOMPARE(journal.take(), words("settingsChanged"));
        element.setSettings(settings.get());
        settings.reset(); // dies before the element
        QVERIFY(element.getElement().getImage().isNull());
    }

    void determineVisibility_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("timeout");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<bool>("shownAfterwards");

        const char *names[] = {"StaticText", "SystemText", "FreePicture",    "InspText",
                               "FreeText",   "Watermark",  "InspStaticText", "Invalid"};
        for (int type = 0; type < 8; ++type) {
            const bool keeps
                = type == CVideoOverlayElement::InspText || type == CVideoOverlayElement::FreeText;
            for (const bool shown : {false, true}) {
                QTest::addRow("%s, %s", names[type], shown ? "shown" : "hidden")
                    << type << 0 << shown << (keeps ? shown : true);
                QTest::addRow("%s, %s, with timeout", names[type], shown ? "shown" : "hidden")
                    << type << 5 << shown << false;
            }
        }
    }

    void determineVisibility()
    {
        QFETCH(int, type);
        QFETCH(int, timeout);
        QFETCH(bool, shown);
        QFETCH(bool, shownAfterwards);
        CVideoOverlayElement element;
        element.setType(Type(type));
        element.setEnabled(true);
        element.setTimeout(timeout);
        element.setVisible(shown);
        QCOMPARE(element.visible(), shown);
        element.determineVisibility();
        QCOMPARE(element.visible(), shownAfterwards);
    }

    void setEnabled_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("timeout");
        QTest::addColumn<bool>("visible");
        QTest::addColumn<QString>("emitted");

        QTest::newRow("static text follows the switch")
            << 0 << 0 << true << "visibleChanged enabledChanged visibleChanged";
        QTest::newRow("inspection text waits for its datasource")
            << 3 << 0 << false << "enabledChanged visibleChanged";
        QTest::newRow("free text waits for its datasource")
            << 4 << 0 << false << "enabledChanged visibleChanged";
        QTest::newRow("hidden while it has a timeout")
            << 0 << 5 << false << "enabledChanged visibleChanged";
    }

    void setEnabled()
    {
        QFETCH(int, type);
        QFETCH(int, timeout);
        QFETCH(bool, visible);
        QFETCH(QString, emitted);
        LockProbe<CVideoOverlayElement> element;
        element.setType(Type(type));
        element.setTimeout(timeout);
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        bool alwaysLocked = true;
        journal.setObserver(
            [&](const QString &) { alwaysLocked = alwaysLocked && element.isLocked(); });

        element.setEnabled(true);
        element.setEnabled(true); // silent
        QCOMPARE(element.visible(), visible);
        QCOMPARE(element.enabled(), true);
        QCOMPARE(journal.take().join(QLatin1Char(' ')), emitted);
        QVERIFY(alwaysLocked);
    }

    void disablingHides()
    {
        CVideoOverlayElement element;
        element.setType(CVideoOverlayElement::StaticText);
        element.setEnabled(true);
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        element.setEnabled(false);
        QVERIFY(!element.visible());
        QCOMPARE(journal.take(), words("visibleChanged enabledChanged visibleChanged"));
    }

    void setTimeout()
    {
        LockProbe<CVideoOverlayElement> element;
        element.setType(CVideoOverlayElement::StaticText);
        element.setEnabled(true);
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        bool alwaysLocked = true;
        journal.setObserver(
            [&](const QString &) { alwaysLocked = alwaysLocked && element.isLocked(); });
        element.setTimeout(5);
        element.setTimeout(5);
        QCOMPARE(element.timeout(), 5);
        QVERIFY(!element.visible());
        QVERIFY(!timerOf(element)->isActive());
        QCOMPARE(journal.take(), words("visibleChanged timeoutChanged"));
        QVERIFY(alwaysLocked);
    }

    void timeoutHidesAtOnceAndShowingStartsTheTimer()
    {
        CVideoOverlayElement element;
        element.setId(7);
        element.setType(CVideoOverlayElement::StaticText);
        element.setEnabled(true);
        QVERIFY(element.visible());
        element.setTimeout(5);
        QVERIFY(!element.visible());
        QCOMPARE(takeLog(), QStringList());

        element.setVisible(true);
        QVERIFY(element.visible());
        QVERIFY(timerOf(element)->isActive());
        QCOMPARE(timerOf(element)->interval(), 5000);
        QCOMPARE(takeLog(),
                 QStringList(QStringLiteral(
                     "4 VideoOverlayLibrary: ID 7 timeout scheduled to 5 seconds ")));

        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        element.expireTimer();
        QVERIFY(!element.visible());
        QCOMPARE(journal.take(), words("visibleChanged timerExpired"));
    }

    void setTimeoutZero_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<bool>("visible");

        QTest::newRow("static text is shown") << 0 << false << true;
        QTest::newRow("inspection text stays hidden") << 3 << false << false;
        QTest::newRow("inspection text stays shown") << 3 << true << true;
        QTest::newRow("free text stays hidden") << 4 << false << false;
        QTest::newRow("free text stays shown") << 4 << true << true;
    }

    void setTimeoutZero()
    {
        QFETCH(int, type);
        QFETCH(bool, shown);
        QFETCH(bool, visible);
        CVideoOverlayElement element;
        element.setType(Type(type));
        element.setEnabled(true);
        element.setTimeout(5);
        element.setVisible(shown);
        element.setTimeout(0);
        QCOMPARE(element.visible(), visible);
    }

    void setVisible()
    {
        LockProbe<CVideoOverlayElement> element;
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        bool locked = false;
        journal.setObserver([&](const QString &) { locked = element.isLocked(); });
        element.setVisible(false);
        QCOMPARE(journal.take(), QStringList());
        element.setVisible(true);
        element.setVisible(true);
        QCOMPARE(journal.take(), words("visibleChanged")); // announced although still switched off
        QVERIFY(!element.visible());
        QVERIFY(locked);
    }

    /// Whoever hears of the change finds the timer in its new state.
    void timerChangesBeforeTheSignal()
    {
        CVideoOverlayElement element;
        element.setEnabled(true);
        element.setTimeout(5);
        bool running = false;
        connect(&element, &CVideoOverlayElement::visibleChanged, &element,
                [&] { running = timerOf(element)->isActive(); });
        element.setVisible(true);
        QVERIFY(running);
        element.setVisible(false);
        QVERIFY(!running);
    }

    void startTimerNeeds_data()
    {
        QTest::addColumn<int>("timeout");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("disabled");
        QTest::addColumn<bool>("started");

        QTest::newRow("everything there") << 5 << true << false << true;
        QTest::newRow("no timeout") << 0 << true << false << false;
        QTest::newRow("switched off") << 5 << false << false << false;
        QTest::newRow("timeout disabled") << 5 << true << true << false;
    }

    void startTimerNeeds()
    {
        QFETCH(int, timeout);
        QFETCH(bool, enabled);
        QFETCH(bool, disabled);
        QFETCH(bool, started);
        CVideoOverlayElement element;
        element.setTimeout(timeout);
        element.setEnabled(enabled);
        element.setTimeoutDisabled(disabled);
        takeLog();
        element.startTimer();
        QCOMPARE(timerOf(element)->isActive(), started);
        QCOMPARE(takeLog().size(), started ? 1 : 0);
    }

    void startTimerInterval_data()
    {
        QTest::addColumn<int>("timeout");
        QTest::addColumn<int>("interval");

        QTest::newRow("one second") << 1 << 1000;
        QTest::newRow("negative: over at once") << -5 << 0;
        QTest::newRow("longest that fits") << 2147483 << 2147483000;
        QTest::newRow("one too long") << 2147484 << LongestInterval;
        QTest::newRow("largest") << std::numeric_limits<int>::max() << LongestInterval;
        QTest::newRow("smallest") << std::numeric_limits<int>::min() << 0;
    }

    void startTimerInterval()
    {
        QFETCH(int, timeout);
        QFETCH(int, interval);
        CVideoOverlayElement element;
        element.setId(12);
        startTimeout(element, timeout);
        QCOMPARE(timerOf(element)->interval(), interval);
        QCOMPARE(takeLog(),
                 QStringList(
                     QStringLiteral("4 VideoOverlayLibrary: ID 12 timeout scheduled to %1 seconds ")
                         .arg(timeout)));
    }

    void resumeTakesMillisecondsForSeconds()
    {
        CVideoOverlayElement element;
        element.setId(7);
        startTimeout(element, 5);
        suspendWithLeft(element, 1500);
        QVERIFY(!timerOf(element)->isActive());
        takeLog();
        element.startTimer();
        QVERIFY(timerOf(element)->isActive());
        QCOMPARE(timerOf(element)->interval(), 1500000);
        const QStringList resumed(QStringLiteral(
            "4 VideoOverlayLibrary: ID 7 timeout scheduled to remaining1500 seconds "));
        QCOMPARE(takeLog(), resumed);

        element.startTimer(); // what was left is kept after a resume
        QCOMPARE(timerOf(element)->interval(), 1500000);
        QCOMPARE(takeLog(), resumed);
    }

    void resumeTwiceStaysWithinTheTimer()
    {
        CVideoOverlayElement element;
        element.setId(7);
        startTimeout(element, 5);
        suspendWithLeft(element, 4000000);
        takeLog();
        element.startTimer();
        QCOMPARE(timerOf(element)->interval(), LongestInterval);
        QCOMPARE(
            takeLog(),
            QStringList(QStringLiteral(
                "4 VideoOverlayLibrary: ID 7 timeout scheduled to remaining4000000 seconds ")));
        element.suspendTimer();
        takeLog();
        element.startTimer(); // now with about 2147483000 ms left
        QCOMPARE(timerOf(element)->interval(), LongestInterval);
        QVERIFY(takeLog().value(0).startsWith(
            QStringLiteral("4 VideoOverlayLibrary: ID 7 timeout scheduled to remaining21474")));
    }

    void resumeAgainAndAgain_data()
    {
        QTest::addColumn<int>("timeout");

        QTest::newRow("five seconds") << 5;
        QTest::newRow("more than an hour") << 4000;
        QTest::newRow("longest that fits") << 2147483;
        QTest::newRow("largest") << std::numeric_limits<int>::max();
    }

    /// Each round takes a thousand times what was left, until no more fits; none forgets it and
    /// schedules the plain timeout.
    void resumeAgainAndAgain()
    {
        QFETCH(int, timeout);
        CVideoOverlayElement element;
        element.setId(7);
        startTimeout(element, timeout);
        int interval = timerOf(element)->interval();
        for (int round = 0; round < 20; ++round) {
            element.suspendTimer();
            QVERIFY(!timerOf(element)->isActive());
            takeLog();
            element.startTimer();
            const QString line = takeLog().join(QLatin1Char('\n'));
            QVERIFY2(line.contains(QLatin1String("scheduled to remaining")), qPrintable(line));
            QVERIFY(timerOf(element)->remainingTime() > 0);
            QVERIFY(timerOf(element)->interval() >= interval);
            interval = timerOf(element)->interval();
        }
        QCOMPARE(interval, LongestInterval);
    }

    /// A timer whose answer has overflown has much left, not nothing.
    void suspendOfATimerThatAnswersWithANegativeTime()
    {
        CVideoOverlayElement element;
        element.setId(7);
        startTimeout(element, 5);
        QTimer *timer = timerOf(element);
        const auto overflows = [timer] {
            timer->start(std::numeric_limits<int>::max());
            return timer->remainingTime() < 0;
        };
        QTRY_VERIFY(overflows()); // in some parts of a second it does not
        element.suspendTimer();
        takeLog();
        element.startTimer();
        QCOMPARE(
            takeLog(),
            QStringList(QStringLiteral(
                "4 VideoOverlayLibrary: ID 7 timeout scheduled to remaining2147483000 seconds ")));
        QCOMPARE(timer->interval(), LongestInterval);
    }

    void suspendNeedsARunningTimer()
    {
        CVideoOverlayElement element;
        startTimeout(element, 5);
        element.stopTimer();
        element.suspendTimer(); // not running: nothing is remembered
        takeLog();
        element.startTimer();
        QCOMPARE(timerOf(element)->interval(), 5000);

        QTimer *timer = timerOf(element);
        CVideoOverlayElement withoutTimeout;
        withoutTimeout.setEnabled(true);
        timerOf(withoutTimeout)->start(5000);
        withoutTimeout.suspendTimer(); // no timeout: not ours to suspend
        QVERIFY(timerOf(withoutTimeout)->isActive());
        QVERIFY(timer->isActive());
    }

    void suspendNeedsTheSwitch()
    {
        CVideoOverlayElement element;
        element.setTimeout(5);
        timerOf(element)->start(5000);
        element.suspendTimer();
        QVERIFY(timerOf(element)->isActive());
    }

    void stopForgetsWhatWasLeft()
    {
        CVideoOverlayElement element;
        startTimeout(element, 5);
        suspendWithLeft(element, 1500);
        element.startTimer();
        element.stopTimer();
        QVERIFY(!timerOf(element)->isActive());
        element.startTimer();
        QCOMPARE(timerOf(element)->interval(), 5000);
    }

    void stopOfAStoppedTimerKeepsWhatWasLeft()
    {
        CVideoOverlayElement element;
        startTimeout(element, 5);
        suspendWithLeft(element, 1500);
        element.stopTimer();
        element.startTimer();
        QCOMPARE(timerOf(element)->interval(), 1500000);
    }

    void hidingASuspendedElementKeepsWhatWasLeft()
    {
        CVideoOverlayElement element;
        startTimeout(element, 5);
        suspendWithLeft(element, 1500);
        element.setVisible(false);
        element.setVisible(true);
        QCOMPARE(timerOf(element)->interval(), 1500000);
    }

    /// A single-shot timer no longer runs in its own slot, so nothing is written there.
    void naturalExpiryKeepsWhatWasLeft()
    {
        CVideoOverlayElement element;
        startTimeout(element, 5);
        suspendWithLeft(element, 1500);
        QSignalSpy expired(&element, &CVideoOverlayElement::timerExpired);
        timerOf(element)->start(1);
        QVERIFY(expired.wait());
        QVERIFY(!element.visible());
        element.setVisible(true);
        QCOMPARE(timerOf(element)->interval(), 1500000);
    }

    void expireForgetsWhatWasLeft()
    {
        CVideoOverlayElement element;
        startTimeout(element, 5);
        suspendWithLeft(element, 1500);
        element.startTimer();
        element.expireTimer();
        element.setVisible(true);
        QCOMPARE(timerOf(element)->interval(), 5000);
    }

    void expireNeedsARunningTimer()
    {
        CVideoOverlayElement element;
        startTimeout(element, 5);
        suspendWithLeft(element, 1500);
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        element.expireTimer();
        QVERIFY(element.visible());
        QCOMPARE(journal.take(), QStringList());
    }

    void showingAShownElementDoesNotRestartTheTimer()
    {
        CVideoOverlayElement element;
        startTimeout(element, 5);
        timerOf(element)->start(3000);
        takeLog();
        element.setVisible(true);
        QCOMPARE(timerOf(element)->interval(), 3000);
        QCOMPARE(takeLog(), QStringList());
    }

    void timerExpiresByItself()
    {
        CVideoOverlayElement element;
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        QSignalSpy expired(&element, &CVideoOverlayElement::timerExpired);
        startTimeout(element, 1);
        QVERIFY(element.visible());
        journal.take();
        QVERIFY(expired.wait(10000));
        QVERIFY(!element.visible());
        QCOMPARE(journal.take(), words("visibleChanged timerExpired"));
        QVERIFY(!timerOf(element)->isActive());
    }

    void handleTimeoutCalledByHand()
    {
        CVideoOverlayElement element;
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        element.handleTimeout(); // already hidden, and no deletion asked for
        QCOMPARE(journal.take(), words("timerExpired"));
    }

    void deleteOnExpiryAsksBetweenHidingAndExpiring()
    {
        MortalElement element;
        startTimeout(element, 5);
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        QSignalSpy request(&element, &CVideoOverlayElement::deleteRequest);
        QHash<QString, bool> locked;
        journal.setObserver([&](const QString &name) { locked.insert(name, element.isLocked()); });

        element.expireTimer();
        QCOMPARE(journal.take().replaceInStrings(QRegularExpression(QStringLiteral("\\(.*")), {}),
                 words("visibleChanged deleteRequest timerExpired"));
        QCOMPARE(request.first().first().value<CVideoOverlayElement *>(), &element);
        QCOMPARE(locked.value(QStringLiteral("visibleChanged")), true);
        // a receiver may destroy the element here, and with it the lock
        QCOMPARE(locked.value(QStringLiteral("deleteRequest")), false);
        QCOMPARE(locked.value(QStringLiteral("timerExpired")), false);
    }

    void receiverDestroysTheElement_data()
    {
        QTest::addColumn<bool>("naturally");
        QTest::newRow("when the timer fires") << true;
        QTest::newRow("when it is made to expire") << false;
    }

    void receiverDestroysTheElement()
    {
        QFETCH(bool, naturally);
        auto element = std::make_unique<MortalElement>();
        startTimeout(*element, 5);
        int expired = 0;
        int hidden = 0;
        connect(element.get(), &CVideoOverlayElement::visibleChanged, this, [&] { ++hidden; });
        connect(element.get(), &CVideoOverlayElement::timerExpired, this, [&] { ++expired; });
        connect(element.get(), &CVideoOverlayElement::deleteRequest, this,
                [&](CVideoOverlayElement *dying) {
                    QCOMPARE(dying, element.get());
                    element.reset();
                });
        if (naturally) {
            QSignalSpy destroyed(element.get(), &QObject::destroyed);
            timerOf(*element)->start(1);
            QTRY_VERIFY(!element);
        } else {
            element->expireTimer();
        }
        QVERIFY(!element);
        QCOMPARE(hidden, 1);
        QCOMPARE(expired, 0); // only while alive
    }

    void destroyingStopsTheTimer()
    {
        auto element = std::make_unique<CVideoOverlayElement>();
        startTimeout(*element, 5);
        QPointer<QTimer> timer = timerOf(*element);
        QVERIFY(timer);
        element.reset();
        QVERIFY(!timer);
    }

    /// The timer fires on the element's thread, also after the element has moved.
    void timerMovesWithTheElement()
    {
        QThread thread;
        CVideoOverlayElement element;
        QThread *firedOn = nullptr;
        // What a thread hands over at its start and end happens inside Qt, where the thread
        // sanitizer sees nothing. These say the same where it does.
        std::atomic<bool> isHandedOver {false};
        std::atomic<bool> isHandedBack {false};
        connect(&element, &CVideoOverlayElement::timerExpired, &element, [&] {
            firedOn = QThread::currentThread();
            element.moveToThread(QCoreApplication::instance()->thread());
            thread.quit();
        });
        element.moveToThread(&thread);
        QCOMPARE(timerOf(element)->thread(), &thread);
        connect(&thread, &QThread::started, &element, [&] {
            if (!isHandedOver)
                return;
            startTimeout(element, 5);
            timerOf(element)->start(1);
        });
        connect(
            &thread, &QThread::finished, &thread, [&] { isHandedBack = true; },
            Qt::DirectConnection);
        isHandedOver = true;
        thread.start();
        QVERIFY(thread.wait(10000));
        QVERIFY(isHandedBack);
        QCOMPARE(firedOn, &thread);
    }

    void changesOfANewElement()
    {
        const CVideoOverlayElement element;
        const ElementParam changed = element.getChangedProperties();
        QCOMPARE(changed.size(), 2);
        QCOMPARE(changed.value(QStringLiteral("captionEnabled")), QVariant(true));
        QCOMPARE(changed.value(QStringLiteral("maxLineNumber")), QVariant(3));
    }

    void changedProperty_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<Action>("edit");
        QTest::addColumn<QVariant>("expected"); // invalid: not changed

        const Action none = [](CVideoOverlayElement &) {};
        const Action column = [](CVideoOverlayElement &e) { e.setColumn(5); };
        const Action row = [](CVideoOverlayElement &e) { e.setRow(6); };
        const Action enable = [](CVideoOverlayElement &e) { e.setEnabled(true); };
        const Action timeout = [](CVideoOverlayElement &e) { e.setTimeout(9); };
        const Action caption = [](CVideoOverlayElement &e) { e.setCaptionVisible(false); };
        const Action lines = [](CVideoOverlayElement &e) { e.setMaxLineNumber(1); };
        const QVariant absent;
        const QVariant unchanged;

        QTest::newRow("col, absent reads as 0") << "col" << absent << none << unchanged;
        QTest::newRow("col, absent") << "col" << absent << column << QVariant(5);
        QTest::newRow("col, the same") << "col" << QVariant(5) << column << unchanged;
        QTest::newRow("col, converted")
            << "col" << QVariant(QStringLiteral("5")) << column << unchanged;
        QTest::newRow("col, back at 0") << "col" << QVariant(5) << none << QVariant(0);
        QTest::newRow("row, absent reads as 0") << "row" << absent << none << unchanged;
        QTest::newRow("row, other") << "row" << QVariant(1) << row << QVariant(6);
        QTest::newRow("row, converted")
            << "row" << QVariant(QStringLiteral("6")) << row << unchanged;
        QTest::newRow("enabled, absent reads as false") << "enabled" << absent << none << unchanged;
        QTest::newRow("enabled, switched on")
            << "enabled" << QVariant(false) << enable << QVariant(true);
        QTest::newRow("enabled, converted")
            << "enabled" << QVariant(QStringLiteral("true")) << enable << unchanged;
        QTest::newRow("timeout, absent reads as 0") << "timeout" << absent << none << unchanged;
        QTest::newRow("timeout, other") << "timeout" << QVariant(0) << timeout << QVariant(9);
        QTest::newRow("captionEnabled, the same")
            << "captionEnabled" << QVariant(true) << none << unchanged;
        QTest::newRow("captionEnabled, absent reads as false")
            << "captionEnabled" << absent << caption << unchanged;
        QTest::newRow("captionEnabled, switched off")
            << "captionEnabled" << QVariant(true) << caption << QVariant(false);
        QTest::newRow("maxLineNumber, the same")
            << "maxLineNumber" << QVariant(3) << none << unchanged;
        QTest::newRow("maxLineNumber, other")
            << "maxLineNumber" << QVariant(3) << lines << QVariant(1);
    }

    void changedProperty()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, stored);
        QFETCH(Action, edit);
        QFETCH(QVariant, expected);
        CVideoOverlayElement element;
        ElementParam record;
        if (stored.isValid())
            record.insert(key, stored);
        element.setParamObject(record);
        edit(element);
        const QVariant changed = element.getChangedProperties().value(key);
        QCOMPARE(changed, expected);
        QCOMPARE(changed.userType(), expected.userType());
    }

    /// What is compared is the element's own state, and these are no part of it.
    void otherKeysAreNoChanges()
    {
        CVideoOverlayElement element;
        ElementParam record;
        record.insert(QStringLiteral("id"), 99);
        record.insert(QStringLiteral("type"), 1);
        record.insert(QStringLiteral("caption"), QStringLiteral("Other"));
        record.insert(QStringLiteral("captionEnabled"), true);
        record.insert(QStringLiteral("maxLineNumber"), 3);
        element.setParamObject(record);
        QVERIFY(element.getChangedProperties().isEmpty());
        QCOMPARE(element.getAllProperties(), record);
    }

    void allPropertiesLetTheChangedValueWin()
    {
        CVideoOverlayElement element;
        ElementParam record;
        record.insert(QStringLiteral("row"), 1);
        record.insert(QStringLiteral("align"), QStringLiteral("RIGHT"));
        element.setParamObject(record);
        element.setRow(6);

        const ElementParam all = element.getAllProperties();
        QCOMPARE(all.value(QStringLiteral("row")), QVariant(6));
        QCOMPARE(all.keys().count(QStringLiteral("row")), 1); // one value, not both
        QCOMPARE(all.value(QStringLiteral("align")), QVariant(QStringLiteral("RIGHT")));
        QCOMPARE(all.size(), 4);                    // also the caption and the number of lines
        QCOMPARE(element.getParamObject(), record); // reading stores nothing
    }

    void applyChangesMakesTheLiveStateTheRecord()
    {
        CVideoOverlayElement element;
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        element.setRow(6);
        journal.take();
        element.applyChangesToOrigParams();
        QVERIFY(element.getChangedProperties().isEmpty());
        QCOMPARE(element.getParamObject().value(QStringLiteral("row")), QVariant(6));
        element.setRow(7);
        QCOMPARE(element.getChangedProperties().keys(), words("row"));
        journal.take();
        element.applyChangesToOrigParams();
        element.applyChangesToOrigParams();
        QCOMPARE(element.getParamObject().size(), 3); // grows by no second value of a key
        QCOMPARE(journal.take(), QStringList());
    }

    void paramObject()
    {
        CVideoOverlayElement element;
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        ElementParam record = ElementParam::createInspTextDefault();
        element.setParamObject(record);
        QVERIFY(element.getParamObject().isSharedWith(record));
        QCOMPARE(element.row(), 0); // the properties are the live state: they stay
        record.insert(QStringLiteral("row"), 3);
        QCOMPARE(element.getParamObject().value(QStringLiteral("row")), QVariant(11));

        ElementParam copy = element.getParamObject();
        copy.insert(QStringLiteral("row"), 4);
        QCOMPARE(element.getParamObject().value(QStringLiteral("row")), QVariant(11));
        element.getParamObjectRef().insert(QStringLiteral("row"), 5);
        QCOMPARE(element.getParamObject().value(QStringLiteral("row")), QVariant(5));
        element.storeParam(QStringLiteral("row"), 6);
        QCOMPARE(element.getParamObject().value(QStringLiteral("row")), QVariant(6));
        QCOMPARE(element.getParamObject().size(), record.size());
        QCOMPARE(journal.take(), QStringList());
    }

    void canDelete_data()
    {
        QTest::addColumn<bool>("present");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<bool>("canDelete");

        QTest::newRow("absent") << false << QVariant() << true;
        QTest::newRow("true") << true << QVariant(true) << true;
        QTest::newRow("false") << true << QVariant(false) << false;
        QTest::newRow("text") << true << QVariant(QStringLiteral("false")) << false;
        QTest::newRow("present but invalid") << true << QVariant() << false;
    }

    void canDelete()
    {
        QFETCH(bool, present);
        QFETCH(QVariant, stored);
        QFETCH(bool, canDelete);
        CVideoOverlayElement element;
        ElementParam record = ElementParam::createInspTextDefault();
        if (present)
            record.insert(QStringLiteral("canDelete"), stored);
        element.setParamObject(record);
        QCOMPARE(element.canDelete(), canDelete);
        QCOMPARE(element.property("canDelete"), QVariant(canDelete));
    }

    void accessorsWaitForTheLock_data()
    {
        QTest::addColumn<Action>("access");
        QTest::newRow("id") << Action([](CVideoOverlayElement &e) { e.id(); });
        QTest::newRow("column") << Action([](CVideoOverlayElement &e) { e.column(); });
        QTest::newRow("row") << Action([](CVideoOverlayElement &e) { e.row(); });
        QTest::newRow("y") << Action([](CVideoOverlayElement &e) { e.y(); });
        QTest::newRow("enabled") << Action([](CVideoOverlayElement &e) { e.enabled(); });
        QTest::newRow("captionVisible")
            << Action([](CVideoOverlayElement &e) { e.captionVisible(); });
        QTest::newRow("caption") << Action([](CVideoOverlayElement &e) { e.caption(); });
        QTest::newRow("type") << Action([](CVideoOverlayElement &e) { e.type(); });
        QTest::newRow("timeout") << Action([](CVideoOverlayElement &e) { e.timeout(); });
        QTest::newRow("timeoutDisabled")
            << Action([](CVideoOverlayElement &e) { e.timeoutDisabled(); });
        QTest::newRow("getMaxLineNumber")
            << Action([](CVideoOverlayElement &e) { e.getMaxLineNumber(); });
        QTest::newRow("transparency") << Action([](CVideoOverlayElement &e) { e.transparency(); });
        QTest::newRow("getParamObject")
            << Action([](CVideoOverlayElement &e) { e.getParamObject(); });
        QTest::newRow("getParamObjectRef")
            << Action([](CVideoOverlayElement &e) { e.getParamObjectRef(); });
        QTest::newRow("storeParam")
            << Action([](CVideoOverlayElement &e) { e.storeParam(QStringLiteral("a"), 1); });
        QTest::newRow("setParamObject")
            << Action([](CVideoOverlayElement &e) { e.setParamObject({}); });
        QTest::newRow("x") << Action([](CVideoOverlayElement &e) { e.x(); });
        QTest::newRow("width") << Action([](CVideoOverlayElement &e) { e.width(); });
        QTest::newRow("height") << Action([](CVideoOverlayElement &e) { e.height(); });
        QTest::newRow("visible") << Action([](CVideoOverlayElement &e) { e.visible(); });
        QTest::newRow("canDelete") << Action([](CVideoOverlayElement &e) { e.canDelete(); });
        QTest::newRow("getElement") << Action([](CVideoOverlayElement &e) { e.getElement(); });
        QTest::newRow("getAllProperties")
            << Action([](CVideoOverlayElement &e) { e.getAllProperties(); });
        QTest::newRow("getChangedProperties")
            << Action([](CVideoOverlayElement &e) { e.getChangedProperties(); });
        QTest::newRow("applyChangesToOrigParams")
            << Action([](CVideoOverlayElement &e) { e.applyChangesToOrigParams(); });
        QTest::newRow("setCaption")
            << Action([](CVideoOverlayElement &e) { e.setCaption(QStringLiteral("a")); });
    }

    void accessorsWaitForTheLock()
    {
        QFETCH(Action, access);
        CVideoOverlayElement element;
        QVERIFY(waitsForLock(element, access));
    }

    void runningTimerIsLeftAlone()
    {
        CVideoOverlayElement element;
        element.setType(CVideoOverlayElement::InspText);
        startTimeout(element, 5);
        element.setTimeoutDisabled(true); // keeps it from being started, no more
        QVERIFY(timerOf(element)->isActive());
        element.setTemporaryHide(true);
        QVERIFY(timerOf(element)->isActive());
        element.setTemporaryHide(false);
        element.setTimeout(0);
        QVERIFY(element.visible());
        QVERIFY(timerOf(element)->isActive());
        element.stopTimer(); // needs neither timeout nor switch
        QVERIFY(!timerOf(element)->isActive());
    }

    void expiryNeedsARunningTimerOnly()
    {
        CVideoOverlayElement element;
        element.setType(CVideoOverlayElement::InspText);
        startTimeout(element, 5);
        element.setTimeout(0);
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        element.expireTimer();
        QCOMPARE(journal.take(), words("visibleChanged timerExpired"));
    }

    void switchingOffKeepsTheOwnVisibility_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("inspection text") << int(CVideoOverlayElement::InspText);
        QTest::newRow("free text") << int(CVideoOverlayElement::FreeText);
    }

    void switchingOffKeepsTheOwnVisibility()
    {
        QFETCH(int, type);
        CVideoOverlayElement element;
        element.setType(CVideoOverlayElement::Type(type));
        element.setEnabled(true);
        element.setVisible(true);
        SignalJournal journal(element, CVideoOverlayElement::staticMetaObject);
        element.setEnabled(false);
        QVERIFY(!element.visible());
        QCOMPARE(journal.take(), words("enabledChanged visibleChanged"));
        element.setEnabled(true);
        QVERIFY(element.visible());
    }
};

QTEST_MAIN(tst_CVideoOverlayElement)
#include "tst_CVideoOverlayElement.moc"
