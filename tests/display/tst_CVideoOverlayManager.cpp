// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/display/CVideoOverlayManager.h"

#include "platform/shared/QmlStringListModel.h"
#include "tests/support/LiveOverlay.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/ProfileFolders.h"
#include "tests/support/SignalJournal.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/models/VideoOverlayProfilesModel.h"

#include <QSignalSpy>
#include <QTest>

#include <initializer_list>
#include <memory>
#include <optional>

using namespace Velmar::VideoOverlay;
using Velmar::Test::LiveOverlay;
using Velmar::Test::SignalJournal;

namespace {

QStringList lines(std::initializer_list<const char *> entries)
{
    QStringList list;
    for (const char *entry : entries)
        list.append(QString::fromLatin1(entry));
    return list;
}

} // namespace

/// What holds for the whole overlay: settings, switches and signals of the manager.
class tst_CVideoOverlayManager : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override { m_overlay.emplace(); }

    std::optional<LiveOverlay> m_overlay;

private Q_SLOTS:
    void metaObject()
    {
        const QMetaObject &meta = CVideoOverlayManager::staticMetaObject;
        QCOMPARE(
            Velmar::Test::propertiesOf(meta),
            lines({"bool videoOverlayAvailable videoOverlayAvailableChanged()",
                   "bool videoOverlayEnabled write videoOverlayEnabledChanged()",
                   "Velmar::VideoOverlay::Profile* currentProfile write "
                   "currentProfileChanged()",
                   "int transparency write globalTransparencyChanged(int)",
                   "QColor textColor write globalTextColorChanged(QColor)",
                   "QColor backgroundColor write globalBackgroundColorChanged(QColor)",
                   "double colWidth settingsChanged()", "double rowHeight settingsChanged()"}));
        QCOMPARE(
            Velmar::Test::methodsOf(meta),
            lines(
                {"signal videoOverlayAvailableChanged()",
                 "signal videoOverlayEnabledChanged()",
                 "signal videoRecording()",
                 "signal videoNotRecording()",
                 "signal globalTransparencyChanged(int)",
                 "signal globalTextColorChanged(QColor)",
                 "signal globalBackgroundColorChanged(QColor)",
                 "signal currentProfileChanged()",
                 "signal analogVideoChanged(bool)",
                 "signal kx70iiChanged()",
                 "signal settingsChanged()",
                 "signal beforeRemoveElement(Velmar::VideoOverlay::CVideoOverlayElement*)",
                 "signal beforeRemoveElements()",
                 "signal profileLoaded()",
                 "slot onRecordingStateChanged(Velmar::VideoOverlay::CVideoOverlayManager::State)",
                 "slot onSettingsChanged()",
                 "slot onTextChanged()",
                 "slot onImageChanged()",
                 "slot onChildDestroyed(CVideoOverlayElement*)",
                 "method Velmar::VideoOverlay::CVideoOverlayElement* getElement(int)"}));
    }

    void initialValues()
    {
        CVideoOverlayManager &manager = m_overlay->manager;
        QCOMPARE(manager.getGlobalTransparency(), 44); // the list model's doing
        QCOMPARE(manager.analogVideo(), false);
        QCOMPARE(manager.kx70iiState(), false);
        QCOMPARE(manager.kx70iiCol(), 1);
        QCOMPARE(manager.kx70iiRow(), 1);
        QCOMPARE(manager.kx70iiUnits(), QStringLiteral("metrics"));
        QCOMPARE(manager.elementsCount(), 0);
        QVERIFY(manager.getElementList().isEmpty());
        QVERIFY(!manager.getElement(0));
        QVERIFY(!manager.getProfilesModel());
        QVERIFY(!manager.currentProfile());
        manager.setCurrentProfile(nullptr);
        QVERIFY(manager.getElementListModel());
        QCOMPARE(manager.getFavoritesModel()->stringList(), QStringList());
        QVERIFY(!manager.getTextColor().isValid());
        QVERIFY(!manager.getBackgroundColor().isValid());
        QColor common(Qt::red);
        QVERIFY(!manager.textsHaveSameColors(common)); // no texts have no colour in common
        QVERIFY(!manager.backgroundsHaveSameColors(common));
        QCOMPARE(common, QColor(Qt::red));
        QVERIFY(manager.mutex()->isRecursive());
        QCOMPARE(manager.colWidth(), manager.getSettings()->colWidth());
        QCOMPARE(manager.rowHeight(), manager.getSettings()->rowHeight());
    }

    void switchAndAvailability()
    {
        LiveOverlay &overlay = *m_overlay;
        SignalJournal journal(overlay.manager, CVideoOverlayManager::staticMetaObject);
        QVERIFY(overlay.manager.videoOverlayAvailable());
        QVERIFY(!overlay.manager.videoOverlayEnabled());
        overlay.manager.setVideoOverlayEnabled(true);
        QVERIFY(overlay.display.enabled);
        QVERIFY(overlay.manager.videoOverlayEnabled());
        Q_EMIT overlay.display.videoOverlayEnabledChanged();
        QCOMPARE(journal.take(), lines({"videoOverlayEnabledChanged"}));
        overlay.display.ready = false;
        Q_EMIT overlay.display.finalized();
        QCOMPARE(journal.take(), lines({"videoOverlayAvailableChanged"}));
        QVERIFY(!overlay.manager.videoOverlayAvailable());
        QVERIFY(!overlay.manager.videoOverlayEnabled());
    }

    void recorderStates_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("announced");
        const QString yes = QStringLiteral("videoRecording");
        const QString no = QStringLiteral("videoNotRecording");
        QTest::newRow("idle") << 0 << no;
        QTest::newRow("starting") << 1 << no;
        QTest::newRow("recording") << 2 << yes;
        QTest::newRow("stopping") << 3 << no;
        QTest::newRow("failed") << 4 << no;
        QTest::newRow("unknown") << 99 << no;
        QTest::newRow("negative") << -1 << no;
    }

    void recorderStates()
    {
        QFETCH(int, state);
        QFETCH(QString, announced);
        SignalJournal journal(m_overlay->manager, CVideoOverlayManager::staticMetaObject);
        m_overlay->manager.onRecordingStateChanged(CVideoOverlayManager::State(state));
        QCOMPARE(journal.take(), QStringList {announced});
        QVERIFY(QMetaType::type("State") != QMetaType::UnknownType);
        // A recorder in another thread announces it through the event loop.
        QVERIFY(QMetaObject::invokeMethod(&m_overlay->manager, "onRecordingStateChanged",
                                          Qt::QueuedConnection,
                                          Q_ARG(Velmar::VideoOverlay::CVideoOverlayManager::State,
                                                CVideoOverlayManager::State(state))));
        QCoreApplication::processEvents();
        QCOMPARE(journal.take(), QStringList {announced});
    }

    void transparencyReachesTexts()
    {
        CVideoOverlayManager &manager = m_overlay->manager;
        CVideoOverlayText *text = manager.createText();
        CVideoOverlayImage *image = manager.createImage();
        QCOMPARE(text->transparency(), 44);
        QCOMPARE(image->transparency(), 44);
        m_overlay->takeShown();
        SignalJournal journal(manager, CVideoOverlayManager::staticMetaObject);
        manager.setGlobalTransparency(44);
        QCOMPARE(journal.take(), QStringList());
        journal.setObserver(
            [&](const QString &) { QCOMPARE(manager.getGlobalTransparency(), 10); });
        manager.setGlobalTransparency(10);
        QCOMPARE(journal.take(), lines({"globalTransparencyChanged(10)"}));
        QCOMPARE(manager.getGlobalTransparency(), 10);
        QCOMPARE(text->transparency(), 10);
        QCOMPARE(image->transparency(), 44); // pictures keep their own alpha
        QCOMPARE(m_overlay->takeShown(), LiveOverlay::shown(text, 1));
    }

    void colours()
    {
        CVideoOverlayManager &manager = m_overlay->manager;
        CVideoOverlayText *one = manager.createText();
        CVideoOverlayText *other = manager.createText();
        manager.createImage();
        one->setTextColor(Qt::red);
        other->setTextColor(Qt::green);
        one->setBackgroundColor(Qt::red);
        other->setBackgroundColor(Qt::green);
        QColor common(Qt::yellow);
        QVERIFY(!manager.textsHaveSameColors(common));
        QVERIFY(!manager.backgroundsHaveSameColors(common));
        QCOMPARE(common, QColor(Qt::yellow));
        QVERIFY(!manager.getTextColor().isValid());
        QVERIFY(!manager.getBackgroundColor().isValid());

        SignalJournal journal(manager, CVideoOverlayManager::staticMetaObject);
        const QColor half(1, 2, 3, 128);
        manager.setTextColor(half); // one of each text, one of the manager's own
        const QString announced = QStringLiteral("globalTextColorChanged(#80010203)");
        QCOMPARE(journal.take(), (QStringList {announced, announced, announced}));
        QCOMPARE(manager.getTextColor(), half);
        QVERIFY(manager.textsHaveSameColors(common));
        QCOMPARE(common, half);
        manager.setTextColor(half);
        QCOMPARE(journal.take(), QStringList {announced});

        manager.setBackgroundColor(half);
        QCOMPARE(journal.take().size(), 3);
        QCOMPARE(manager.getBackgroundColor(), half);
        manager.setBackgroundColor(half);
        QCOMPARE(journal.take(), lines({"globalBackgroundColorChanged(#80010203)"}));
    }

    /// Screens show the colour that was chosen, though no text takes it.
    void coloursWithoutTexts()
    {
        SignalJournal journal(m_overlay->manager, CVideoOverlayManager::staticMetaObject);
        m_overlay->manager.setTextColor(Qt::red);
        m_overlay->manager.setBackgroundColor(Qt::red);
        QCOMPARE(
            journal.take(),
            lines({"globalTextColorChanged(#ff0000)", "globalBackgroundColorChanged(#ff0000)"}));
        QVERIFY(!m_overlay->manager.getTextColor().isValid());
    }

    /// Alpha counts; an invalid colour has the name of opaque black and stays invalid.
    void coloursAreNotMadeFromNames()
    {
        CVideoOverlayManager &manager = m_overlay->manager;
        CVideoOverlayText *one = manager.createText();
        CVideoOverlayText *other = manager.createText();
        one->setTextColor(QColor(1, 2, 3, 4));
        other->setTextColor(QColor(1, 2, 3, 5));
        QVERIFY(!manager.getTextColor().isValid());
        one->setTextColor(QColor());
        other->setTextColor(QColor());
        QColor common(Qt::red);
        QVERIFY(manager.textsHaveSameColors(common));
        QVERIFY(!common.isValid());
    }

    void analogVideo()
    {
        SignalJournal journal(m_overlay->manager, CVideoOverlayManager::staticMetaObject);
        journal.setObserver([&](const QString &) { QVERIFY(m_overlay->manager.analogVideo()); });
        m_overlay->manager.setAnalogVideo(false);
        m_overlay->manager.setAnalogVideo(true);
        m_overlay->manager.setAnalogVideo(true);
        QCOMPARE(journal.take(), lines({"analogVideoChanged(true)"}));
        QVERIFY(m_overlay->manager.analogVideo());
    }

    void kx70()
    {
        CVideoOverlayManager &manager = m_overlay->manager;
        QSignalSpy changed(&manager, &CVideoOverlayManager::kx70iiChanged);
        manager.setKx70iiState(false);
        manager.setKx70iiCol(1);
        manager.setKx70iiRow(1);
        manager.setKx70iiUnits(QStringLiteral("metrics"));
        QCOMPARE(changed.count(), 0);
        manager.setKx70iiState(true);
        QCOMPARE(changed.count(), 1);
        manager.setKx70iiCol(20);
        QCOMPARE(changed.count(), 2);
        manager.setKx70iiRow(30);
        QCOMPARE(changed.count(), 3);
        manager.setKx70iiUnits(QStringLiteral("feet"));
        QCOMPARE(changed.count(), 4);
        QCOMPARE(manager.kx70iiState(), true);
        QCOMPARE(manager.kx70iiCol(), 20);
        QCOMPARE(manager.kx70iiRow(), 30);
        QCOMPARE(manager.kx70iiUnits(), QStringLiteral("feet"));
    }

    void favorites()
    {
        QStringList favorites {QStringLiteral("a"), QStringLiteral("b\nc")};
        m_overlay->manager.setFavorites(favorites, 5);
        QCOMPARE(m_overlay->manager.getFavoritesModel()->stringList(), favorites);
        QCOMPARE(m_overlay->manager.getFavoritesModel()->maxLineNumber(), 5);
    }

    void generalSettings()
    {
        CVideoOverlayManager &manager = m_overlay->manager;
        SignalJournal journal(manager, CVideoOverlayManager::staticMetaObject);
        bool complete = false;
        journal.setObserver([&](const QString &name) {
            if (name == QLatin1String("kx70iiChanged"))
                complete = manager.kx70iiState() && manager.kx70iiCol() == 7
                    && manager.kx70iiRow() == 8 && manager.kx70iiUnits() == QLatin1String("feet");
        });
        ElementParam param;
        param.insert(QStringLiteral("globalTransparency"), 12);
        param.insert(QStringLiteral("analogVideo"), true);
        param.insert(QStringLiteral("kx70ii_col"), 7);
        param.insert(QStringLiteral("kx70ii_row"), 8);
        param.insert(QStringLiteral("kx70ii_units"), QStringLiteral("feet"));
        param.insert(QStringLiteral("kx70ii_state"), true);
        manager.setGeneralSettings(param);
        QCOMPARE(
            journal.take(),
            lines({"globalTransparencyChanged(12)", "analogVideoChanged(true)", "kx70iiChanged"}));
        QVERIFY(complete);
        manager.setKx70iiCol(9); // announced again
        QCOMPARE(journal.take(), lines({"kx70iiChanged"}));

        // Also what a follower of that one announcement changes.
        connect(&manager, &CVideoOverlayManager::kx70iiChanged, this,
                [&] { manager.setKx70iiCol(11); });
        manager.setGeneralSettings(param);
        QCOMPARE(manager.kx70iiCol(), 11);
        QCOMPARE(journal.take(), lines({"kx70iiChanged", "kx70iiChanged"}));
    }

    void generalSettingsAreTakenAtOnce()
    {
        // A record of a profile, which a handler replaces.
        CVideoOverlayManager &manager = m_overlay->manager;
        ElementParam record;
        record.insert(QStringLiteral("globalTransparency"), 3);
        record.insert(QStringLiteral("kx70ii_col"), 7);
        connect(&manager, &CVideoOverlayManager::globalTransparencyChanged, this,
                [&record] { record = ElementParam(); });
        manager.setGeneralSettings(record);
        QVERIFY(record.isEmpty());
        QCOMPARE(manager.getGlobalTransparency(), 3);
        QCOMPARE(manager.kx70iiCol(), 7);
    }

    void generalSettingsThatAHandlerAppliesWin()
    {
        CVideoOverlayManager &manager = m_overlay->manager;
        ElementParam older = ElementParam::createGeneralSettingsDefault();
        older.insert(QStringLiteral("globalTransparency"), 3);
        older.insert(QStringLiteral("kx70ii_col"), 7);
        older.insert(QStringLiteral("kx70ii_state"), true);
        ElementParam newer = ElementParam::createGeneralSettingsDefault();
        newer.insert(QStringLiteral("globalTransparency"), 4);
        newer.insert(QStringLiteral("analogVideo"), false);
        newer.insert(QStringLiteral("kx70ii_col"), 8);
        connect(&manager, &CVideoOverlayManager::globalTransparencyChanged, this,
                [&](int transparency) {
                    if (transparency == 3)
                        manager.setGeneralSettings(newer);
                });
        QSignalSpy kx70(&manager, &CVideoOverlayManager::kx70iiChanged);

        manager.setGeneralSettings(older);

        QCOMPARE(manager.generalSettingsGetAllProperties(), newer);
        QCOMPARE(manager.getPropertiesWithChanges(), QList<ElementParam>());
        QCOMPARE(kx70.count(), 2); // once per record
        manager.setKx70iiCol(9);   // announced again
        QCOMPARE(kx70.count(), 3);
    }

    void generalSettingsWithoutKeys()
    {
        SignalJournal journal(m_overlay->manager, CVideoOverlayManager::staticMetaObject);
        m_overlay->manager.setGeneralSettings(ElementParam());
        QCOMPARE(journal.take(), lines({"kx70iiChanged"}));
        QCOMPARE(m_overlay->manager.getGlobalTransparency(), 44);
        QCOMPARE(m_overlay->manager.kx70iiUnits(), QStringLiteral("metrics"));
    }

    void inspectionTextsHideForAWhile()
    {
        CVideoOverlayManager &manager = m_overlay->manager;
        CVideoOverlayText *bound = manager.createText();
        CVideoOverlayText *fixed = manager.createText();
        CVideoOverlayText *untyped = manager.createText();
        for (CVideoOverlayText *text : {bound, fixed, untyped}) {
            text->setEnabled(true);
            text->setVisible(true);
        }
        bound->setType(CVideoOverlayElement::InspStaticText);
        fixed->setType(CVideoOverlayElement::InspText);
        manager.temporaryHideInspTexts(true);
        QVERIFY(!bound->visible());
        QVERIFY(fixed->visible());
        QVERIFY(untyped->visible());
        manager.temporaryHideInspTexts(false);
        QVERIFY(bound->visible());
    }

    /// All elements with the old font first, then the texts once more with the new one.
    void anotherGeometry()
    {
        LiveOverlay &overlay = *m_overlay;
        CVideoOverlayText *text = overlay.manager.createText();
        CVideoOverlayImage *image = overlay.manager.createImage();
        text->setRow(2);
        text->setColumn(3);
        overlay.takeShown();
        SignalJournal journal(overlay.manager, CVideoOverlayManager::staticMetaObject);
        QStringList calls;
        journal.setObserver([&](const QString &) {
            calls = overlay.takeShown();
            QCOMPARE(calls.size(), 3); // the display comes before whoever follows the manager
        });
        QVERIFY(overlay.manager.getSettings()->setGrid(20, 40));
        calls += overlay.takeShown();
        QCOMPARE(calls.size(), 4);
        QVERIFY(calls.at(0).startsWith(QLatin1String("setPaintMargins ")));
        QCOMPARE(calls.mid(1),
                 LiveOverlay::shown(text, 1) + LiveOverlay::shown(image, 1)
                     + LiveOverlay::shown(text, 1));
        QCOMPARE(journal.take(), lines({"settingsChanged"}));
        const VideoOverlaySettings &grid = *overlay.manager.getSettings();
        QCOMPARE(text->x(), grid.leftMargin() + 3 * grid.colWidth());
        QCOMPARE(text->y(), grid.topMargin() + 2 * grid.rowHeight());
    }

    void currentProfile()
    {
        const Velmar::Test::ProfileFolders folders;
        for (const char *name : {"a", "b"})
            folders.writeProfile(QString::fromLatin1(name) + QStringLiteral(".xml"),
                                 folders.profileXml("name=\"" + QByteArray(name) + '"'));
        CVideoOverlayManager &manager = m_overlay->manager;
        auto profiles = std::make_unique<VideoOverlayProfilesModel>(manager);
        QVERIFY(!manager.currentProfile()); // the manager does not know the model yet
        takeLog();
        manager.setProfilesModel(profiles.get());
        QCOMPARE(manager.getProfilesModel(), profiles.get());
        QVERIFY(!manager.currentProfile());
        auto *a = profiles->data(profiles->index(0), Qt::DisplayRole).value<Profile *>();
        auto *b = profiles->data(profiles->index(1), Qt::DisplayRole).value<Profile *>();
        QVERIFY(a && b && a != b);

        SignalJournal journal(manager, CVideoOverlayManager::staticMetaObject);
        Profile *announced = nullptr;
        journal.setObserver([&](const QString &) { announced = manager.currentProfile(); });
        QSignalSpy selected(profiles.get(), &VideoOverlayProfilesModel::currentProfileChanged);
        manager.setCurrentProfile(b);
        QCOMPARE(journal.take(), lines({"currentProfileChanged"}));
        QCOMPARE(announced, b); // selected before it is announced
        QCOMPARE(selected.count(), 1);
        QCOMPARE(profiles->currentProfile(), b);
        QCOMPARE(manager.property("currentProfile").value<Profile *>(), b);
        manager.setCurrentProfile(b); // is current
        QCOMPARE(journal.take(), QStringList());
        QCOMPARE(selected.count(), 1);
        QVERIFY(manager.setProperty("currentProfile", QVariant::fromValue(a)));
        QCOMPARE(journal.take(), lines({"currentProfileChanged"}));
        QCOMPARE(manager.currentProfile(), a);

        profiles.reset(); // dies first, and its profiles with it
        QVERIFY(!manager.getProfilesModel());
        QVERIFY(!manager.currentProfile());
        Profile other;
        manager.setCurrentProfile(&other);
        QVERIFY(!manager.currentProfile());
        QCOMPARE(journal.take(), QStringList());
        takeLog(); // the model's lines
    }

    void modelsMayDieFirst()
    {
        CVideoOverlayText stranger;
        m_overlay->manager.adjustElementPosition(nullptr);
        m_overlay->manager.onChildDestroyed(nullptr);
        QVERIFY(!m_overlay->manager.deleteElementFromModel(&stranger));
        QVERIFY(!m_overlay->manager.deleteElementFromModel(nullptr));
    }
};

QTEST_MAIN(tst_CVideoOverlayManager)
#include "tst_CVideoOverlayManager.moc"
