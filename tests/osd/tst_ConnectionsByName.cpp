// SPDX-License-Identifier: Apache-2.0
#include "platform/appstate/AppState.h"
#include "platform/multimedia/CVideoRecorder.h"
#include "platform/shared/GlobalLocaleData.h"
#include "platform/translation/CTranslator.h"
#include "tests/osd/BuilderWorld.h"
#include "tests/support/LoggedTest.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/osd/COsdDomainDatasource.h"
#include "videooverlay/osd/COsdDomainStaticTextDatasource.h"
#include "videooverlay/osd/COsdValueDatasource.h"

#include <QHash>
#include <QMetaMethod>
#include <QTest>

#include <future>
#include <optional>

using namespace Velmar::VideoOverlay;
using Velmar::Test::BuilderWorld;

/// A recorder, as a host may have it.
class Recorder : public QObject
{
    Q_OBJECT
Q_SIGNALS:
    void stateChanged(Velmar::Multimedia::CVideoRecorder::State state);
};

/// Signals and slots that belong together can be connected by their names, as scripts, designers
/// and older hosts do: with the names of types as they stand in the classes, and in full.
class tst_ConnectionsByName : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override
    {
        m_world.emplace();
        m_text = m_world->manager->createText();
        m_image = m_world->manager->createImage();
        m_resolver = QSharedPointer<TemplateCaptionResolver>::create(m_world->templates);
        ElementParam param;
        m_objects = {
            {"display", &m_world->display},
            {"limits", &m_world->capabilitiesBackend},
            {"capabilities", &m_world->capabilities},
            {"control", &m_world->control},
            {"manager", m_world->manager.get()},
            {"grid", m_world->manager->getSettings()},
            {"model", &m_world->model()},
            {"profiles", m_world->profiles.get()},
            {"builder", m_world->builder},
            {"text", m_text},
            {"image", m_image},
            {"resolver", m_resolver.data()},
            {"value", new COsdValueDatasource(m_resolver, m_text, param)},
            {"record", new COsdDomainDatasource(m_resolver, m_text, param)},
            {"project", new COsdDomainStaticTextDatasource(m_text, param)},
            {"state", Velmar::AppState::instance()},
            {"locale", Velmar::Shared::GlobalLocaleData::instance()},
            {"translator", Velmar::Translation::CTranslator::instance()},
            {"recorder", &m_recorder},
        };
    }

    std::optional<BuilderWorld> m_world;
    Recorder m_recorder;
    CVideoOverlayText *m_text = nullptr;
    CVideoOverlayImage *m_image = nullptr;
    QSharedPointer<TemplateCaptionResolver> m_resolver;
    QHash<QByteArray, QObject *> m_objects;

private Q_SLOTS:
    void pairs_data();
    void pairs();
    void callOfAnotherThread();
};

void tst_ConnectionsByName::pairs_data()
{
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QByteArray>("to");
    QTest::addColumn<QByteArray>("follower");
    const auto pair = [](const char *from, const char *signal, const char *to,
                         const char *follower) {
        QTest::addRow("%s %s to %s %s", from, signal, to, follower)
            << QByteArray(from) << QByteArray(signal) << QByteArray(to) << QByteArray(follower);
    };

    for (const char *limit : {"maximumColumnCountChanged()", "maximumRowCountChanged()",
                              "imageWidthChanged()", "imageHeightChanged()"})
        pair("limits", limit, "capabilities", "capabilitiesChanged()");
    pair("capabilities", "capabilitiesChanged()", "grid", "onCapabilitiesChanged()");

    pair("display", "initialized()", "control", "onBackendInitialized()");
    pair("display", "finalized()", "control", "onBackendFinalized()");
    pair("display", "videoOverlayEnabledChanged()", "control", "videoOverlayEnabledChanged()");

    pair("control", "controlActiveChanged()", "manager", "videoOverlayAvailableChanged()");
    pair("control", "videoOverlayEnabledChanged()", "manager", "videoOverlayEnabledChanged()");
    pair("grid", "settingsChanged()", "manager", "onSettingsChanged()");
    pair("grid", "settingsChanged()", "manager", "settingsChanged()");
    pair("recorder", "stateChanged(Velmar::Multimedia::CVideoRecorder::State)", "manager",
         "onRecordingStateChanged(State)");
    pair("recorder", "stateChanged(Velmar::Multimedia::CVideoRecorder::State)", "manager",
         "onRecordingStateChanged(Velmar::VideoOverlay::CVideoOverlayManager::State)");

    for (const char *element : {"text", "image"}) {
        pair(element, "deleteRequest(CVideoOverlayElement*)", "manager",
             "onChildDestroyed(CVideoOverlayElement*)");
        pair(element, "deleteRequest(Velmar::VideoOverlay::CVideoOverlayElement*)", "manager",
             "onChildDestroyed(Velmar::VideoOverlay::CVideoOverlayElement*)");
    }
    for (const char *change :
         {"textColorChanged(QColor)", "backgroundColorChanged(QColor)", "columnChanged()",
          "rowChanged()", "textChanged()", "visibleChanged()", "transparencyChanged()",
          "fontChanged()", "heightChanged()", "widthChanged()", "alignmentChanged()"})
        pair("text", change, "manager", "onTextChanged()");
    pair("text", "textColorChanged(QColor)", "manager", "globalTextColorChanged(QColor)");
    pair("text", "backgroundColorChanged(QColor)", "manager",
         "globalBackgroundColorChanged(QColor)");
    pair("text", "columnChanged()", "text", "typeset()");
    for (const char *change :
         {"imageSrcChanged()", "visibleChanged()", "scaleFactorChanged()", "columnChanged()",
          "rowChanged()", "widthChanged()", "heightChanged()"})
        pair("image", change, "manager", "onImageChanged()");

    pair("manager", "globalTransparencyChanged(int)", "model", "transparencyChanged(int)");
    pair("manager", "globalTextColorChanged(QColor)", "model", "textColorChanged(QColor)");
    pair("manager", "globalBackgroundColorChanged(QColor)", "model",
         "backgroundColorChanged(QColor)");
    pair("manager", "analogVideoChanged(bool)", "model", "analogVideoChanged(bool)");
    pair("manager", "kx70iiChanged()", "model", "kx70Changed()");

    pair("profiles", "currentProfileChanged(Profile*)", "builder", "load(Profile*)");
    pair("profiles", "currentProfileChanged(Velmar::VideoOverlay::Profile*)", "builder",
         "load(Velmar::VideoOverlay::Profile*)");
    pair("profiles", "currentProfileChanged(Profile*)", "manager", "currentProfileChanged()");
    pair("builder", "profileLoaded()", "manager", "profileLoaded()");
    pair("builder", "profileLoaded()", "profiles", "profileLoaded()");
    pair("builder", "profileLoaded()", "profiles", "forwardProfileLoaded()");

    for (const char *source : {"value", "record"}) {
        pair("resolver", "resolverReady()", source, "calculateCaption()");
        pair("locale", "localeChanged()", source, "update()");
        pair("translator", "currentLocaleChanged()", source, "renewCaption()");
        pair("text", "captionVisibleChanged()", source, "update()");
        pair("text", "unitChanged()", source, "update()");
    }
    for (const char *change : {"activeInspectionChanged", "observationCreated"}) {
        const QByteArray signal(change);
        pair("state", signal + "(Velmar::Database::CDomainObjectPointer)", "record",
             "calculateValue(Velmar::Database::CDomainObjectPointer)");
    }
    pair("state", "activeProjectChanged(QSharedPointer<Database::CDomainObject>)", "project",
         "onProjectChanged(QSharedPointer<Database::CDomainObject>)");
    pair("state", "activeProjectChanged(QSharedPointer<Velmar::Database::CDomainObject>)",
         "project", "onProjectChanged(QSharedPointer<Velmar::Database::CDomainObject>)");
    pair("state", "templateLoadCompleted(QString)", "resolver",
         "templateLoadCompleted(Velmar::Base::GUID)");
}

void tst_ConnectionsByName::pairs()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, signal);
    QFETCH(QByteArray, to);
    QFETCH(QByteArray, follower);
    const QObject *sender = m_objects.value(from);
    const QObject *receiver = m_objects.value(to);
    QVERIFY(sender && receiver);
    const int method = receiver->metaObject()->indexOfMethod(follower);
    QVERIFY2(method >= 0, "no such follower");
    const bool isSlot = receiver->metaObject()->method(method).methodType() == QMetaMethod::Slot;
    const QMetaObject::Connection made
        = connect(sender, '2' + signal, receiver, (isSlot ? '1' : '2') + follower);
    QVERIFY(made);
    QVERIFY(disconnect(made));
}

/// By name, from another thread: the arguments are known by their names, too.
void tst_ConnectionsByName::callOfAnotherThread()
{
    CVideoOverlayText stranger; // of no manager, so that nobody else follows it
    QVERIFY(connect(&stranger, SIGNAL(deleteRequest(CVideoOverlayElement *)),
                    m_world->manager.get(), SLOT(onChildDestroyed(CVideoOverlayElement *))));
    const QPointer<CVideoOverlayElement> text(m_text);
    std::async(std::launch::async, [&] { Q_EMIT stranger.deleteRequest(m_text); }).get();
    QCOMPARE(m_world->manager->elementsCount(), 2);
    QCoreApplication::processEvents();
    QCOMPARE(m_world->manager->elementsCount(), 1);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!text);
}

QTEST_MAIN(tst_ConnectionsByName)
#include "tst_ConnectionsByName.moc"
