// SPDX-License-Identifier: Apache-2.0
#include "platform/shared/QmlStringListModel.h"
#include "tests/osd/TestCatalog.h"
#include "tests/support/LiveOverlay.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/models/VideoOverlayProfilesModel.h"
#include "videooverlay/osd/COsdBuilder.h"
#include "videooverlay/osd/COsdDomainDatasource.h"

#include <QPointer>
#include <QQmlEngine>
#include <QTest>

#include <functional>
#include <memory>

using namespace Velmar::VideoOverlay;
using Velmar::Test::LiveOverlay;
using Velmar::Test::ProfileFolders;

/// A host's object that hands others to QML.
class Giver : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *property READ given CONSTANT)
    Q_PROPERTY(QVariant variant READ variant CONSTANT)
public:
    explicit Giver(QObject *object)
        : m_given(object)
    {
        QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
    }
    Q_INVOKABLE QObject *given() const { return m_given; }
    Q_INVOKABLE QVariant variant() const { return QVariant::fromValue<QObject *>(m_given); }

private:
    QPointer<QObject> m_given;
};

namespace {

/// An overlay with its profiles and the one builder, which has loaded one of them.
struct World
{
    World()
    {
        folders.writeProfile(QStringLiteral("one.xml"),
                             ProfileFolders::profileXml("name=\"one\"",
                                                        "<STATICTEXT><TEXT>a</TEXT></STATICTEXT>"
                                                        "<FREETEXT><TEXT>b</TEXT></FREETEXT>"));
        profiles = std::make_unique<VideoOverlayProfilesModel>(overlay.manager);
        overlay.manager.setProfilesModel(profiles.get());
        builder = COsdBuilder::initialize(templates, overlay.manager);
        profiles->setCurrentProfileByIndex(0);
        builder->load(profiles->currentProfile());
    }

    ~World()
    {
        QObject::disconnect(Velmar::AppState::instance(), nullptr, builder, nullptr);
        COsdDomainDatasource::captionResolver.clear();
    }

    CVideoOverlayElement *watermark()
    {
        CVideoOverlayElement *mark = nullptr;
        overlay.display.whileDisplaying = [&](CVideoOverlayElement &element) { mark = &element; };
        overlay.manager.createWatermark(QStringLiteral(":/general/image_too_large.png"));
        overlay.display.whileDisplaying = nullptr;
        return mark;
    }

    Profile *listed(int row) const
    {
        return profiles->data(profiles->index(row)).value<Profile *>();
    }

    ProfileFolders folders;
    LiveOverlay overlay;
    std::unique_ptr<VideoOverlayProfilesModel> profiles;
    Velmar::Test::TestTemplates templates;
    COsdBuilder *builder = nullptr;
};

void collect(QQmlEngine &engine)
{
    for (int i = 0; i < 2; ++i) { // what is given up is destroyed later
        engine.collectGarbage();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
}

} // namespace

using Select = std::function<QObject *(World &)>;
Q_DECLARE_METATYPE(Select)

/// Nothing of the library belongs to an engine, however QML comes by it: it is not collected, and a
/// script cannot destroy it, because the library goes on using it.
class tst_QmlOwnership : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override
    {
        m_world = nullptr;
        m_world = std::make_unique<World>();
    }

    std::unique_ptr<World> m_world;

private Q_SLOTS:
    void handedOver_data();
    void handedOver();
    void ownOperations_data();
    void ownOperations();
    void theOverlayEndsBeforeTheEngine();
    void theEngineEndsBeforeTheOverlay();
};

void tst_QmlOwnership::handedOver_data()
{
    QTest::addColumn<Select>("select");
    const auto row = [](const char *name, const Select &select) { QTest::newRow(name) << select; };
    row("manager", [](World &world) { return &world.overlay.manager; });
    row("control", [](World &world) { return &world.overlay.control; });
    row("capabilities", [](World &world) { return &world.overlay.capabilities; });
    row("list model", [](World &world) { return &world.overlay.model; });
    row("favourites", [](World &world) { return world.overlay.manager.getFavoritesModel(); });
    row("grid", [](World &world) { return world.overlay.manager.getSettings(); });
    row("profiles model", [](World &world) { return world.profiles.get(); });
    row("listed profile", [](World &world) { return world.listed(0); });
    row("cloned profile", [](World &world) { return world.profiles->clone(world.listed(0)); });
    row("builder", [](World &world) { return world.builder; });
    row("built text", [](World &world) { return world.overlay.manager.getElement(0); });
    row("built free text", [](World &world) { return world.overlay.manager.getElement(1); });
    row("text", [](World &world) { return world.overlay.manager.createText(); });
    row("picture", [](World &world) { return world.overlay.manager.createImage(); });
    row("watermark", [](World &world) { return world.watermark(); });
}

void tst_QmlOwnership::handedOver()
{
    QFETCH(Select, select);
    const QPointer<QObject> object(select(*m_world));
    QVERIFY(object);
    QQmlEngine engine;
    Giver giver(object);
    QJSValue global = engine.globalObject();
    global.setProperty(QStringLiteral("giver"), engine.newQObject(&giver));
    for (const char *way :
         {"giver.given()", "giver.variant()", "giver.property", "giver.variant"}) {
        const QString script = QString::fromLatin1(way);
        const QJSValue found
            = engine.evaluate(QStringLiteral("(function() { return %1 !== null; })()").arg(script));
        QVERIFY2(found.toBool(), way);
        collect(engine);
        QVERIFY2(object, way);
        const QJSValue destroyed = engine.evaluate(script + QStringLiteral(".destroy()"));
        collect(engine);
        QVERIFY2(object, way);
        QVERIFY2(destroyed.isError(), way);
    }
    global.setProperty(QStringLiteral("given"), engine.newQObject(object));
    global.deleteProperty(QStringLiteral("given"));
    collect(engine);
    QVERIFY(object);
    takeLog();
}

void tst_QmlOwnership::ownOperations_data()
{
    QTest::addColumn<QString>("script");
    for (const char *script :
         {"manager.getElement(0)", "manager.getElement(1)", "manager.currentProfile",
          "model.freeText", "model.createStaticText('x')", "model.createImage('')",
          "profiles.currentProfile", "profiles.currentProfile", "profiles.clone(profile)",
          "profiles.clone(profile, 'x')", "profiles.applyChanges(profile)"})
        QTest::newRow(script) << QString::fromLatin1(script);
}

/// What QML gets from the library's own properties and operations.
void tst_QmlOwnership::ownOperations()
{
    QFETCH(QString, script);
    QQmlEngine engine;
    QJSValue global = engine.globalObject();
    global.setProperty(QStringLiteral("manager"), engine.newQObject(&m_world->overlay.manager));
    global.setProperty(QStringLiteral("model"), engine.newQObject(&m_world->overlay.model));
    global.setProperty(QStringLiteral("profiles"), engine.newQObject(m_world->profiles.get()));
    global.setProperty(QStringLiteral("profile"), engine.newQObject(m_world->listed(0)));
    QPointer<QObject> object = engine.evaluate(script).toQObject();
    QVERIFY(object);
    collect(engine);
    QVERIFY(object);
    global.setProperty(QStringLiteral("object"), engine.newQObject(object));
    QVERIFY(engine.evaluate(QStringLiteral("object.destroy()")).isError());
    global.deleteProperty(QStringLiteral("object"));
    collect(engine);
    QVERIFY(object);
    takeLog();
}

void tst_QmlOwnership::theOverlayEndsBeforeTheEngine()
{
    QQmlEngine engine;
    QJSValue global = engine.globalObject();
    global.setProperty(QStringLiteral("manager"), engine.newQObject(&m_world->overlay.manager));
    global.setProperty(QStringLiteral("model"), engine.newQObject(&m_world->overlay.model));
    global.setProperty(QStringLiteral("profiles"), engine.newQObject(m_world->profiles.get()));
    engine.evaluate(QStringLiteral("var kept = [manager.getElement(0), manager.currentProfile]"));
    m_world = nullptr;
    collect(engine);
    QVERIFY(engine.evaluate(QStringLiteral("manager.transparency")).isUndefined());
    global.deleteProperty(QStringLiteral("manager"));
    collect(engine);
}

void tst_QmlOwnership::theEngineEndsBeforeTheOverlay()
{
    {
        QQmlEngine engine;
        for (const auto &[name, object] :
             {std::pair<const char *, QObject *>("manager", &m_world->overlay.manager),
              {"model", &m_world->overlay.model},
              {"favorites", m_world->overlay.manager.getFavoritesModel()},
              {"grid", m_world->overlay.manager.getSettings()},
              {"profiles", m_world->profiles.get()},
              {"profile", m_world->listed(0)},
              {"element", m_world->overlay.manager.getElement(0)}})
            engine.globalObject().setProperty(QLatin1String(name), engine.newQObject(object));
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_world->overlay.manager.onSettingsChanged();
    m_world->builder->load(m_world->profiles->currentProfile());
    QCOMPARE(m_world->overlay.manager.elementsCount(), 2);
    QCOMPARE(m_world->profiles->rowCount(), 1);
    m_world = nullptr;
    takeLog(); // what is said about a free text without a caption
}

QTEST_MAIN(tst_QmlOwnership)
#include "tst_QmlOwnership.moc"
