// SPDX-License-Identifier: Apache-2.0
#include "platform/shared/QmlStringListModel.h"
#include "tests/osd/BuilderWorld.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/ProfileFolders.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/display/IVideoOverlayElementAccessor.h"
#include "videooverlay/osd/COsdBuilder.h"
#include "videooverlay/osd/COsdDomainDatasource.h"
#include "videooverlay/osd/COsdStaticTextDatasource.h"
#include "videooverlay/profiles/COsdSettings.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <memory>
#include <utility>

using namespace Velmar::VideoOverlay;
using Velmar::Test::BuilderWorld;
using Velmar::Test::ColumnSpec;
using Velmar::Test::inspectionRecord;
using Velmar::Test::ProfileFolders;
using Velmar::Test::RecordingDisplayBackend;
using Velmar::Test::recordOfType;
using Velmar::Test::TestFactory;
using Type = CVideoOverlayElement::Type;
using Action = std::function<void()>;

namespace {

QString line(int level, const QString &message)
{
    return QStringLiteral("%1 VideoOverlayLibrary: ").arg(level) + message;
}

const QString saveRefused
    = line(1, QStringLiteral("Cannot save current profile. A profile is being loaded"));
const QString applyRefused
    = line(1, QStringLiteral("Cannot apply changes. A profile is being loaded"));

/// Does one thing, once, at the moment that a test names.
class Moment
{
public:
    void set(const QString &name, Action action, int skip = 0)
    {
        m_name = name;
        m_action = std::move(action);
        m_skip = skip;
    }
    void reach(const QString &name)
    {
        if (name != m_name || !m_action || m_skip-- > 0)
            return;
        std::exchange(m_action, nullptr)();
    }
    bool wasReached() const { return !m_action; }

private:
    QString m_name;
    Action m_action;
    int m_skip = 0;
};

class Display : public RecordingDisplayBackend
{
public:
    explicit Display(Moment &moment)
        : m_moment(moment)
    {
    }
    bool displayElement(CVideoOverlayElement &) override
    {
        m_moment.reach(QStringLiteral("displayed"));
        return true;
    }

private:
    Moment &m_moment;
};

class Accessor : public IVideoOverlayElementAccessor
{
public:
    explicit Accessor(Moment &moment)
        : m_moment(moment)
    {
    }
    QString makeKey(const ElementParam &) override { return {}; }
    void registerElement(const QString &, CVideoOverlayElement *) override
    {
        m_moment.reach(QStringLiteral("registered"));
    }
    void unregisterElement(CVideoOverlayElement *) override { }

private:
    Moment &m_moment;
};

ElementParam staticText(const QString &text)
{
    ElementParam record = recordOfType(int(Type::StaticText));
    record.insert(QStringLiteral("text"), text);
    record.insert(QStringLiteral("row"), 3);
    record.insert(QStringLiteral("col"), 4);
    record.insert(QStringLiteral("enabled"), true);
    return record;
}

ElementParam withColumn(int type, const QString &column)
{
    ElementParam record = recordOfType(type);
    record.insert(ElementParam::NAME_COLUMNBOUND, column);
    return record;
}

ElementParam general(int transparency, int column)
{
    ElementParam record = ElementParam::createGeneralSettingsDefault();
    record.insert(QStringLiteral("globalTransparency"), transparency);
    record.insert(QStringLiteral("analogVideo"), column % 2 == 0);
    record.insert(QStringLiteral("kx70ii_col"), column);
    record.insert(QStringLiteral("kx70ii_row"), column);
    return record;
}

/// General settings in front and behind, static texts, one that nobody serves, a free text.
QList<ElementParam> records(const QString &name, int number)
{
    ElementParam freeText = recordOfType(int(Type::FreeText));
    freeText.insert(QStringLiteral("favorites"), QStringList(name + QStringLiteral(" favourite")));
    freeText.insert(QStringLiteral("row"), number);
    QList<ElementParam> all {general(number, number), staticText(name + QStringLiteral(" one"))};
    all.append(withColumn(Type::SystemText, name + QStringLiteral(" unserved")));
    all.append(withColumn(Type::SystemText, QStringLiteral("served")));
    all.append(freeText);
    all.append(staticText(name + QStringLiteral(" two")));
    return all;
}

/// What the file at @p path holds, one word or two for each record.
QStringList inFile(const QString &path)
{
    Profile profile;
    if (!profile.load(path))
        return {QStringLiteral("unreadable")};
    QStringList found;
    for (const ElementParam &record : qAsConst(profile).elements()) {
        const int type = record.value(QStringLiteral("type")).toInt();
        if (type == Type::Invalid)
            found.append(QStringLiteral("transparency %1 column %2")
                             .arg(record.value(QStringLiteral("globalTransparency")).toInt())
                             .arg(record.value(QStringLiteral("kx70ii_row")).toInt()));
        else if (type == Type::StaticText)
            found.append(record.value(QStringLiteral("text")).toString());
        else if (type == Type::FreeText)
            found.append(
                record.value(QStringLiteral("favorites")).toStringList().join(QLatin1Char(',')));
        else
            found.append(record.value(ElementParam::NAME_COLUMNBOUND).toString());
    }
    return found;
}

/// What a whole profile made of records() has in its file, once it was saved.
QStringList saved(const QString &name, int number)
{
    return {name + QStringLiteral(" one"), name + QStringLiteral(" unserved"),
            QStringLiteral("served"),      name + QStringLiteral(" favourite"),
            name + QStringLiteral(" two"), QStringLiteral("transparency %1 column %1").arg(number)};
}

} // namespace

/// Loading is one walk that tells about each of its steps, and whoever hears of them may want to
/// save, to go back, or to have another profile.
class tst_NestedLoads : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override
    {
        m_world.reset();
        m_moment = std::make_unique<Moment>();
        m_display = std::make_unique<Display>(*m_moment);
        m_accessor = std::make_unique<Accessor>(*m_moment);
        m_world = std::make_unique<BuilderWorld>();
        m_world->control.setBackend(m_display.get());
        CVideoOverlayManager &manager = *m_world->manager;
        manager.registerElementAccessor(m_accessor.get());
        m_factory = std::make_unique<TestFactory>(
            [this](CVideoOverlayElement *element, ElementParam &record) {
                const QPointer<CVideoOverlayElement> alive(element);
                m_moment->reach(QStringLiteral("factory asked"));
                const QString column = record.value(ElementParam::NAME_COLUMNBOUND).toString();
                COsdElementDatasource *made = nullptr;
                if (alive && !column.endsWith(QLatin1String("unserved")))
                    made = new COsdStaticTextDatasource(static_cast<CVideoOverlayText *>(element),
                                                        record);
                m_moment->reach(QStringLiteral("factory done"));
                return made;
            });
        m_world->builder->registerFactory(m_factory.get());
        const auto reach = [this](const char *name) {
            return [this, name] { m_moment->reach(QString::fromLatin1(name)); };
        };
        const VideoOverlayElementListModel &list = m_world->model();
        connect(&list, &QAbstractItemModel::rowsAboutToBeRemoved, this, reach("row to remove"));
        connect(&manager, &CVideoOverlayManager::beforeRemoveElements, this, reach("removal"));
        connect(&manager, &CVideoOverlayManager::beforeRemoveElement, this, reach("one removal"));
        connect(&list, &QAbstractItemModel::rowsRemoved, this, reach("row removed"));
        connect(&manager, &CVideoOverlayManager::globalTransparencyChanged, this,
                reach("transparency"));
        connect(&manager, &CVideoOverlayManager::kx70iiChanged, this, reach("general settings"));
        connect(&list, &QAbstractItemModel::dataChanged, this, reach("row changed"));
        connect(manager.getFavoritesModel(), &Velmar::Shared::QmlStringListModel::stringListChanged,
                this, reach("favourites"));
        connect(&list, &QAbstractItemModel::modelReset, this, reach("reset"));
    }

    /// As the host connects them.
    void connectBuilder(Qt::ConnectionType type)
    {
        VideoOverlayProfilesModel *profiles = m_world->profiles.get();
        connect(profiles, &VideoOverlayProfilesModel::currentProfileChanged, m_world->builder,
                &COsdBuilder::load, type);
        connect(m_world->builder, &COsdBuilder::profileLoaded, profiles,
                &VideoOverlayProfilesModel::profileLoaded);
    }

    void make(Profile &profile, const QString &name, int number)
    {
        profile.setName(name);
        profile.setPath(m_world->directory.filePath(name + QStringLiteral(".xml")));
        profile.elements() = records(name, number);
        QVERIFY(profile.save());
    }

    /// Makes it current, and waits until it is loaded.
    void select(Profile &profile)
    {
        m_world->profiles->setCurrentProfile(&profile);
        QCoreApplication::sendPostedEvents(m_world->builder);
    }

    void revert()
    {
        m_world->profiles->revertCurrentProfile();
        QCoreApplication::sendPostedEvents(m_world->builder);
    }

    static void addMoments()
    {
        QTest::addColumn<QString>("moment");
        QTest::addColumn<int>("skip");
        QTest::addColumn<bool>("queued");
        for (const bool queued : {false, true}) {
            const char *how = queued ? "queued" : "direct";
            for (const char *name :
                 {"removal", "one removal", "row to remove", "row removed", "transparency",
                  "general settings", "row changed", "displayed", "registered", "factory asked",
                  "factory done", "favourites", "reset"}) {
                QTest::addRow("%s, %s", name, how) << QString::fromLatin1(name) << 0 << queued;
            }
            for (const int skip : {1, 4, 9})
                QTest::addRow("row changed after %d, %s", skip, how)
                    << QStringLiteral("row changed") << skip << queued;
            QTest::addRow("general settings of the record, %s", how)
                << QStringLiteral("general settings") << 1 << queued;
            QTest::addRow("the last is displayed, %s", how)
                << QStringLiteral("displayed") << 20 << queued;
        }
    }

    /// The overlay is that of a profile made of records(), and nothing else is there.
    void verifyShown(const Profile &profile, const QString &name, int number)
    {
        QStringList shown;
        CVideoOverlayManager &manager = *m_world->manager;
        const QList<CVideoOverlayElement *> elements = manager.getElementList();
        for (const CVideoOverlayElement *element : elements) {
            const auto *text = qobject_cast<const CVideoOverlayText *>(element);
            QVERIFY(text);
            shown.append(text->text());
        }
        QCOMPARE(shown,
                 QStringList({name + QStringLiteral(" one"), QString(), QString(), QString(),
                              name + QStringLiteral(" two")}));
        QCOMPARE(elements.at(3)->row(), number);
        QCOMPARE(m_world->model().freeText(), elements.at(3));
        QCOMPARE(manager.getFavoritesModel()->stringList(),
                 QStringList(name + QStringLiteral(" favourite")));
        QCOMPARE(manager.getGlobalTransparency(), number);
        QCOMPARE(manager.analogVideo(), number % 2 == 0);
        QCOMPARE(manager.kx70iiCol(), number);
        QCOMPARE(manager.findChildren<CVideoOverlayElement *>().size(), 5);
        QCOMPARE(profile.elements().size(), 6);
        for (const int i : {0, 2, 3, 4}) {
            QCOMPARE(profile.elements().at(i + 1).contains(QStringLiteral("id")), i != 1);
            if (i != 1)
                QCOMPARE(profile.elements().at(i + 1).value(QStringLiteral("id")).toInt(),
                         elements.at(i)->id());
        }
    }

    std::unique_ptr<Moment> m_moment;
    std::unique_ptr<Display> m_display;
    std::unique_ptr<Accessor> m_accessor;
    std::unique_ptr<BuilderWorld> m_world;
    std::unique_ptr<TestFactory> m_factory;

private Q_SLOTS:
    void savingWhileItLoads_data() { addMoments(); }

    void savingWhileItLoads()
    {
        QFETCH(QString, moment);
        QFETCH(int, skip);
        QFETCH(bool, queued);
        connectBuilder(queued ? Qt::QueuedConnection : Qt::DirectConnection);
        Profile first;
        Profile profile;
        make(first, QStringLiteral("first"), 3);
        make(profile, QStringLiteral("second"), 8);
        select(first);
        const QByteArray before = ProfileFolders::read(profile.path());
        takeLog();
        QSignalSpy loaded(m_world->builder, &COsdBuilder::profileLoaded);
        QStringList logged;
        bool applied = true;
        m_moment->set(
            moment,
            [&] {
                takeLog();
                m_world->profiles->saveCurrentProfile();
                applied = m_world->profiles->applyChanges(&profile) != nullptr;
                logged = takeLog();
            },
            skip);

        select(profile);

        QVERIFY(m_moment->wasReached());
        QCOMPARE(logged, QStringList({saveRefused, applyRefused}));
        QVERIFY(!applied);
        QCOMPARE(ProfileFolders::read(profile.path()), before);
        QCOMPARE(loaded.count(), 1);
        verifyShown(profile, QStringLiteral("second"), 8);

        takeLog();
        m_world->profiles->saveCurrentProfile();
        QCOMPARE(takeLog(), QStringList(line(3, QStringLiteral("Saving profile: second"))));
        QCOMPARE(inFile(profile.path()), saved(QStringLiteral("second"), 8));
    }

    void savingACopyWhileItLoads()
    {
        connectBuilder(Qt::DirectConnection);
        Profile profile;
        make(profile, QStringLiteral("only"), 3);
        profile.setReadOnly(true);
        QSignalSpy inserted(m_world->profiles.get(), &QAbstractItemModel::rowsInserted);
        m_moment->set(QStringLiteral("transparency"), [&] {
            takeLog();
            m_world->profiles->saveCurrentProfile(QStringLiteral("copy"));
            QCOMPARE(takeLog(), QStringList(saveRefused));
        });
        select(profile);
        QVERIFY(m_moment->wasReached());
        QCOMPARE(inserted.count(), 0);
        takeLog();
    }

    void savingWhenItIsLoaded()
    {
        connectBuilder(Qt::DirectConnection);
        Profile profile;
        make(profile, QStringLiteral("only"), 3);
        QStringList logged;
        connect(m_world->builder, &COsdBuilder::profileLoaded, m_world->profiles.get(), [&] {
            takeLog();
            m_world->profiles->saveCurrentProfile();
            logged = takeLog();
        });
        select(profile);
        QCOMPARE(logged, QStringList(line(3, QStringLiteral("Saving profile: only"))));
        QCOMPARE(inFile(profile.path()), saved(QStringLiteral("only"), 3));
        takeLog();
    }

    void savingWhileATemplateIsTakenIn()
    {
        connectBuilder(Qt::DirectConnection);
        Profile profile;
        make(profile, QStringLiteral("only"), 3);
        select(profile);
        const QByteArray before = ProfileFolders::read(profile.path());
        for (const char *moment : {"displayed", "factory asked", "row changed", "row removed"}) {
            QStringList logged;
            m_moment->set(QString::fromLatin1(moment), [&] {
                takeLog();
                m_world->profiles->saveCurrentProfile();
                logged = takeLog();
            });
            m_world->templates.load({{QStringLiteral("SECTION"),
                                      QStringLiteral("OBJ_%1").arg(QString::fromLatin1(moment)),
                                      {}}});
            QVERIFY2(m_moment->wasReached(), moment);
            QCOMPARE(logged, QStringList(saveRefused));
            QCOMPARE(ProfileFolders::read(profile.path()), before);
            QCOMPARE(profile.elements().size(), 8);
            QCOMPARE(m_world->manager->elementsCount(), 7);
        }
        m_world->profiles->saveCurrentProfile();
        QCOMPARE(inFile(profile.path()).size(), 8);
        takeLog();
    }

    void selectingAnotherWhileOneLoads_data() { addMoments(); }

    void selectingAnotherWhileOneLoads()
    {
        QFETCH(QString, moment);
        QFETCH(int, skip);
        QFETCH(bool, queued);
        connectBuilder(queued ? Qt::QueuedConnection : Qt::DirectConnection);
        Profile first;
        Profile older;
        Profile newer;
        make(first, QStringLiteral("first"), 3);
        make(older, QStringLiteral("older"), 8);
        make(newer, QStringLiteral("newer"), 15);
        const QByteArray before = ProfileFolders::read(older.path());
        select(first);
        takeLog();
        QSignalSpy loaded(m_world->builder, &COsdBuilder::profileLoaded);
        m_moment->set(
            moment, [&] { select(newer); }, skip);

        select(older);

        QVERIFY(m_moment->wasReached());
        QCOMPARE(m_world->manager->currentProfile(), &newer);
        verifyShown(newer, QStringLiteral("newer"), 15);
        // Only what was completed is announced.
        QCOMPARE(loaded.count(), 1);
        QCOMPARE(takeLog().filter(QStringLiteral("OSD profile loaded")),
                 QStringList(line(3, QStringLiteral("OSD profile loaded: 'newer'"))));
        QVERIFY(COsdSettings::getDefaultProfile().endsWith(QLatin1String("newer.xml")));

        m_world->profiles->saveCurrentProfile();
        QCOMPARE(inFile(newer.path()), saved(QStringLiteral("newer"), 15));
        QCOMPARE(ProfileFolders::read(older.path()), before);
        QCOMPARE(older.elements().size(), 6);

        // What was left on the way is whole.
        select(older);
        verifyShown(older, QStringLiteral("older"), 8);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        verifyShown(older, QStringLiteral("older"), 8);
        takeLog();
    }

    void revertingWhileItLoads_data() { addMoments(); }

    void revertingWhileItLoads()
    {
        QFETCH(QString, moment);
        QFETCH(int, skip);
        QFETCH(bool, queued);
        connectBuilder(queued ? Qt::QueuedConnection : Qt::DirectConnection);
        Profile first;
        Profile profile;
        make(first, QStringLiteral("first"), 3);
        make(profile, QStringLiteral("second"), 8);
        select(first);
        QSignalSpy loaded(m_world->builder, &COsdBuilder::profileLoaded);
        m_moment->set(
            moment, [&] { revert(); }, skip);

        select(profile);

        QVERIFY(m_moment->wasReached());
        QCOMPARE(loaded.count(), 1);
        verifyShown(profile, QStringLiteral("second"), 8);
        m_world->profiles->saveCurrentProfile();
        QCOMPARE(inFile(profile.path()), saved(QStringLiteral("second"), 8));
        takeLog();
    }

    void selectingWhileATemplateIsTakenIn_data()
    {
        QTest::addColumn<QString>("moment");
        for (const char *name : {"displayed", "factory asked", "factory done", "row changed",
                                 "one removal", "row to remove", "row removed", "reset"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void selectingWhileATemplateIsTakenIn()
    {
        QFETCH(QString, moment);
        connectBuilder(Qt::DirectConnection);
        Profile older;
        Profile newer;
        make(older, QStringLiteral("older"), 8);
        make(newer, QStringLiteral("newer"), 15);
        for (Profile *profile : {&older, &newer})
            profile->elements().append(
                inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Old"), 3));
        select(older);
        m_moment->set(moment, [&] { select(newer); });

        m_world->templates.load({{QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"), {}}});

        QVERIFY(m_moment->wasReached());
        QCOMPARE(Velmar::Test::inspectionKeys(newer),
                 QStringList(
                     {QStringLiteral("SECTION.OBJ_Key.6"), QStringLiteral("SECTION.OBJ_Key.3")}));
        QCOMPARE(newer.elements().size(), 8);
        QCOMPARE(m_world->manager->elementsCount(), 7);
        QCOMPARE(m_world->manager->findChildren<CVideoOverlayElement *>().size(), 7);
        m_world->profiles->saveCurrentProfile();
        QCOMPARE(inFile(newer.path()).size(), 8);
        select(older);
        QCOMPARE(m_world->manager->elementsCount(), 7);
        takeLog();
    }

    void aTemplateThatComesWhileItLoads_data() { addMoments(); }

    void aTemplateThatComesWhileItLoads()
    {
        QFETCH(QString, moment);
        QFETCH(int, skip);
        QFETCH(bool, queued);
        connectBuilder(queued ? Qt::QueuedConnection : Qt::DirectConnection);
        Profile first;
        Profile profile;
        make(first, QStringLiteral("first"), 3);
        make(profile, QStringLiteral("second"), 8);
        select(first);
        m_moment->set(
            moment,
            [&] {
                m_world->templates.load(
                    {{QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"), {}}});
            },
            skip);

        select(profile);

        QVERIFY(m_moment->wasReached());
        QCOMPARE(Velmar::Test::inspectionKeys(profile),
                 QStringList(
                     {QStringLiteral("SECTION.OBJ_Key.6"), QStringLiteral("SECTION.OBJ_Key.3")}));
        QCOMPARE(profile.elements().size(), 8);
        QCOMPARE(m_world->manager->elementsCount(), 7);
        for (const CVideoOverlayElement *element : m_world->manager->getElementList())
            QCOMPARE(element->findChildren<COsdElementDatasource *>().size(),
                     element == m_world->manager->getElement(1) ? 0 : 1);
        takeLog();
    }

    void aTemplateThatComesWhileOneIsTakenIn_data()
    {
        QTest::addColumn<QString>("moment");
        for (const char *name : {"displayed", "factory asked", "factory done", "row changed",
                                 "one removal", "row removed"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void aTemplateThatComesWhileOneIsTakenIn()
    {
        QFETCH(QString, moment);
        connectBuilder(Qt::DirectConnection);
        Profile profile;
        make(profile, QStringLiteral("only"), 3);
        for (const char *column : {"OBJ_Old", "OBJ_Newer"})
            profile.elements().append(
                inspectionRecord(QStringLiteral("SECTION"), QString::fromLatin1(column), 3));
        select(profile);
        m_moment->set(moment, [&] {
            m_world->templates.load({{QStringLiteral("SECTION"), QStringLiteral("OBJ_Newer"), {}},
                                     {QStringLiteral("SECTION"), QStringLiteral("OBJ_Old"), {}}});
        });

        m_world->templates.load({{QStringLiteral("SECTION"), QStringLiteral("OBJ_Older"), {}}});

        QVERIFY(m_moment->wasReached());
        QStringList keys = Velmar::Test::inspectionKeys(profile);
        keys.sort();
        QCOMPARE(keys,
                 QStringList(
                     {QStringLiteral("SECTION.OBJ_Newer.3"), QStringLiteral("SECTION.OBJ_Newer.6"),
                      QStringLiteral("SECTION.OBJ_Old.3"), QStringLiteral("SECTION.OBJ_Old.6")}));
        QStringList shown;
        for (const CVideoOverlayElement *element : m_world->manager->getElementList()) {
            const ElementParam record = element->getParamObject();
            if (record.contains(QStringLiteral("TDIR_Key")))
                shown.append(COsdBuilder::generateOsdColumnsKey(
                    record.value(QStringLiteral("TDIR_Key")).toString(),
                    record.value(ElementParam::NAME_COLUMNBOUND).toString(), element->type()));
        }
        shown.sort();
        QCOMPARE(shown, keys);
        takeLog();
    }

    void selectingBeforeTheBuilderHears_data()
    {
        QTest::addColumn<bool>("queued");
        QTest::newRow("direct") << false;
        QTest::newRow("queued") << true;
    }

    void selectingBeforeTheBuilderHears()
    {
        // Whoever is connected before the builder: the builder hears of the newer profile first.
        QFETCH(bool, queued);
        Profile older;
        Profile newer;
        make(older, QStringLiteral("older"), 8);
        make(newer, QStringLiteral("newer"), 15);
        connect(m_world->profiles.get(), &VideoOverlayProfilesModel::currentProfileChanged, this,
                [&](Profile *profile) {
                    if (profile == &older)
                        m_world->profiles->setCurrentProfile(&newer);
                });
        connectBuilder(queued ? Qt::QueuedConnection : Qt::DirectConnection);

        select(older);

        QCOMPARE(m_world->manager->currentProfile(), &newer);
        verifyShown(newer, QStringLiteral("newer"), 15);
        m_world->profiles->saveCurrentProfile();
        QCOMPARE(inFile(newer.path()), saved(QStringLiteral("newer"), 15));
        takeLog();
    }

    void savingBeforeAQueuedLoad()
    {
        connectBuilder(Qt::QueuedConnection);
        Profile first;
        Profile second;
        Profile empty;
        make(first, QStringLiteral("first"), 3);
        make(second, QStringLiteral("second"), 8);
        make(empty, QStringLiteral("empty"), 9);
        empty.elements().clear();
        QVERIFY(empty.save());
        select(first);
        for (Profile *profile : {&second, &empty}) {
            const QByteArray before = ProfileFolders::read(profile->path());
            const QList<ElementParam> own = profile->elements();
            m_world->profiles->setCurrentProfile(profile);
            takeLog();

            m_world->profiles->saveCurrentProfile();
            QCOMPARE(m_world->profiles->applyChanges(profile), nullptr);

            QCOMPARE(
                takeLog(),
                QStringList(
                    {line(1, QStringLiteral("Cannot save current profile. It was not loaded")),
                     line(1, QStringLiteral("Cannot apply changes. The profile was not loaded"))}));
            QCOMPARE(ProfileFolders::read(profile->path()), before);
            QCOMPARE(profile->elements(), own);
            QCoreApplication::sendPostedEvents(m_world->builder);
            m_world->profiles->saveCurrentProfile();
            QVERIFY(ProfileFolders::read(profile->path()) != before);
        }
        takeLog();
    }

    void ofTwoQueuedLoadsTheNewerIsMade()
    {
        connectBuilder(Qt::QueuedConnection);
        Profile first;
        Profile second;
        make(first, QStringLiteral("first"), 3);
        make(second, QStringLiteral("second"), 8);
        QSignalSpy loaded(m_world->builder, &COsdBuilder::profileLoaded);
        m_world->profiles->setCurrentProfile(&first);
        m_world->profiles->setCurrentProfile(&second);
        QCoreApplication::sendPostedEvents(m_world->builder);
        QCOMPARE(loaded.count(), 1);
        verifyShown(second, QStringLiteral("second"), 8);
        takeLog();
    }

    void aProfileThatDiesWhileItLoads()
    {
        for (const char *moment :
             {"transparency", "row changed", "factory asked", "displayed", "favourites", "reset"}) {
            auto profile = std::make_unique<Profile>();
            make(*profile, QStringLiteral("only"), 3);
            m_world->manager->setGlobalTransparency(50);
            m_world->manager->getFavoritesModel()->setStringList({});
            QSignalSpy loaded(m_world->builder, &COsdBuilder::profileLoaded);
            m_moment->set(QString::fromLatin1(moment), [&] { profile.reset(); });
            m_world->builder->load(profile.get());
            QVERIFY2(!profile, moment);
            QCOMPARE(loaded.count(), 0);
        }
        takeLog();
    }

    void removingTheProfileThatLoads()
    {
        ProfileFolders folders;
        const QString path = folders.writeProfile(
            QStringLiteral("a.xml"),
            ProfileFolders::profileXml("name=\"a\"",
                                       "<STATICTEXT><TEXT>a</TEXT></STATICTEXT>"
                                       "<STATICTEXT><TEXT>b</TEXT></STATICTEXT>"));
        auto profiles = std::make_unique<VideoOverlayProfilesModel>(*m_world->manager);
        m_world->manager->setProfilesModel(profiles.get());
        connect(profiles.get(), &VideoOverlayProfilesModel::currentProfileChanged, m_world->builder,
                &COsdBuilder::load);
        QSignalSpy loaded(m_world->builder, &COsdBuilder::profileLoaded);
        m_moment->set(QStringLiteral("row changed"), [&] {
            QObject *const profile = profiles->currentProfile();
            profiles->remove(0);
            QCoreApplication::sendPostedEvents(profile, QEvent::DeferredDelete);
        });
        QVERIFY(profiles->setCurrentProfileByIndex(0));
        QVERIFY(m_moment->wasReached());
        QCOMPARE(m_world->manager->elementsCount(), 0);
        QCOMPARE(loaded.count(), 0);
        m_world->manager->setProfilesModel(nullptr);
        takeLog();
    }
};

QTEST_MAIN(tst_NestedLoads)
#include "tst_NestedLoads.moc"
