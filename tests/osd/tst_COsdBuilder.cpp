// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdBuilder.h"

#include "platform/shared/QmlStringListModel.h"
#include "tests/osd/BuilderWorld.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/display/IVideoOverlayElementAccessor.h"
#include "videooverlay/osd/COsdDomainDatasource.h"
#include "videooverlay/osd/COsdDomainDatasourceFactory.h"
#include "videooverlay/osd/COsdDomainStaticTextDatasource.h"
#include "videooverlay/osd/COsdStaticTextDatasource.h"
#include "videooverlay/osd/COsdValueDatasource.h"

#include <QDir>
#include <QFile>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <stdexcept>

using namespace Velmar::VideoOverlay;
using Velmar::AppStateControl;
using Velmar::Test::BuilderWorld;
using Velmar::Test::datasourceOf;
using Velmar::Test::inspectionRecord;
using Velmar::Test::methodsOf;
using Velmar::Test::propertiesOf;
using Velmar::Test::recordOfType;
using Velmar::Test::TestFactory;
using Velmar::Test::TestRecord;
using Type = CVideoOverlayElement::Type;
using Kind = Velmar::Database::DomainRecord::Kind;

namespace {

const QString category = QStringLiteral("VideoOverlayLibrary: ");

QString noDatasource(const QString &type)
{
    return QStringLiteral("1 ") + category
        + QStringLiteral("OSD builder cannot find datasource for '") + type + QLatin1Char('\'');
}

COsdElementDatasource *makeStatic(CVideoOverlayElement *element, ElementParam &record)
{
    return new COsdStaticTextDatasource(static_cast<CVideoOverlayText *>(element), record);
}

/// Knows which elements were registered, by their record's column.
class Accessor : public IVideoOverlayElementAccessor
{
public:
    QString makeKey(const ElementParam &param) override
    {
        return param.value(ElementParam::NAME_COLUMNBOUND).toString();
    }
    void registerElement(const QString &key, CVideoOverlayElement *) override { keys.append(key); }
    void unregisterElement(CVideoOverlayElement *) override { }

    QStringList keys;
};

} // namespace

class tst_COsdBuilder : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void metaObject()
    {
        const QMetaObject &meta = COsdBuilder::staticMetaObject;
        QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
        QCOMPARE(propertiesOf(meta), QStringList());
        QCOMPARE(methodsOf(meta),
                 QStringList({QStringLiteral("signal profileLoaded()"),
                              QStringLiteral("slot load(Velmar::VideoOverlay::Profile*)")}));
    }

    void oneInstance()
    {
        QCOMPARE(COsdBuilder::instance(), COsdBuilder::instance());
        QCOMPARE(m_world->builder, COsdBuilder::instance());
        QVERIFY(!COsdBuilder::instance()->parent());
    }

    void keys()
    {
        QCOMPARE(COsdBuilder::generateOsdColumnsKey(QStringLiteral("SECTION"),
                                                    QStringLiteral("OBJ_Key"), 3),
                 QStringLiteral("SECTION.OBJ_Key.3"));
        QCOMPARE(COsdBuilder::generateOsdColumnsKey(QString(), QStringLiteral("A.B"), 6),
                 QStringLiteral(".A.B.6"));
    }

    void dispatch_data()
    {
        QTest::addColumn<QVariant>("type");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QByteArray>("element");
        QTest::addColumn<QByteArray>("datasource"); // "factory": one of the registered ones
        QTest::addColumn<bool>("registered");
        const QByteArray text("Velmar::VideoOverlay::CVideoOverlayText");
        const QByteArray image("Velmar::VideoOverlay::CVideoOverlayImage");
        const QByteArray factory("factory");
        const QByteArray plain("Velmar::VideoOverlay::COsdStaticTextDatasource");
        const QByteArray domain("Velmar::VideoOverlay::COsdDomainStaticTextDatasource");
        const QByteArray value("Velmar::VideoOverlay::COsdValueDatasource");
        const QString none;
        const QString project = QStringLiteral("PRJ_Name");

        QTest::newRow("static text") << QVariant(0) << none << text << plain << true;
        QTest::newRow("static text of the project")
            << QVariant(0) << project << text << domain << true;
        QTest::newRow("lower case")
            << QVariant(0) << QStringLiteral("prj_Name") << text << plain << true;
        QTest::newRow("not at the start")
            << QVariant(0) << QStringLiteral("XPRJ_Name") << text << plain << true;
        QTest::newRow("prefix alone")
            << QVariant(0) << QStringLiteral("PRJ_") << text << domain << true;
        QTest::newRow("system text") << QVariant(1) << project << text << factory << true;
        QTest::newRow("free picture") << QVariant(2) << project << image << factory << false;
        QTest::newRow("inspection text") << QVariant(3) << project << text << factory << false;
        QTest::newRow("free text") << QVariant(4) << project << text << value << true;
        QTest::newRow("watermark") << QVariant(5) << none << text << plain << true;
        QTest::newRow("watermark of the project")
            << QVariant(5) << project << text << domain << true;
        QTest::newRow("inspection static text")
            << QVariant(6) << project << text << factory << false;
        QTest::newRow("invalid") << QVariant(7) << none << text << plain << true;
        QTest::newRow("invalid of the project") << QVariant(7) << project << text << domain << true;
        QTest::newRow("unknown number") << QVariant(99) << none << text << plain << true;
        QTest::newRow("negative") << QVariant(-1) << none << text << plain << true;
        QTest::newRow("no type") << QVariant() << none << text << plain << true;
        QTest::newRow("number as text")
            << QVariant(QStringLiteral("2")) << none << image << factory << false;
        QTest::newRow("name") << QVariant(QStringLiteral("FreePicture")) << none << image << factory
                              << false;
        QTest::newRow("no name") << QVariant(QStringLiteral("picture")) << none << text << plain
                                 << true;
        QTest::newRow("the type itself")
            << QVariant::fromValue(Type::InspText) << none << text << factory << false;
    }

    void dispatch()
    {
        QFETCH(QVariant, type);
        QFETCH(QString, column);
        QFETCH(QByteArray, element);
        QFETCH(QByteArray, datasource);
        QFETCH(bool, registered);
        ElementParam record = recordOfType(type);
        record.insert(ElementParam::NAME_COLUMNBOUND, column);
        QList<ElementParam> records {record};
        COsdElementDatasource *made = nullptr;
        TestFactory factory([&made](CVideoOverlayElement *parent, ElementParam &param) {
            return made = new COsdElementDatasource(parent, param);
        });
        m_world->builder->registerFactory(&factory);
        Accessor accessor;
        m_world->manager->registerElementAccessor(&accessor);

        m_world->builder->createElements(*m_world->manager, records);

        QCOMPARE(m_world->manager->elementsCount(), 1);
        const CVideoOverlayElement *const created = m_world->manager->getElement(0);
        QCOMPARE(QByteArray(created->metaObject()->className()), element);
        QVERIFY(datasourceOf(created));
        if (datasource == "factory")
            QCOMPARE(datasourceOf(created), made);
        else
            QCOMPARE(QByteArray(datasourceOf(created)->metaObject()->className()), datasource);
        QCOMPARE(factory.asked.size(), datasource == "factory" ? 1 : 0);
        QCOMPARE(accessor.keys, registered ? QStringList(column) : QStringList());
        QCOMPARE(records.first().value(QStringLiteral("id")).toInt(), created->id());
        // A value datasource asks for its caption, although there is no template.
        QCOMPARE(takeLog().size(), type == QVariant(4) ? 1 : 0);
        m_world->manager->registerElementAccessor(nullptr);
    }

    void generalRecord_data()
    {
        QTest::addColumn<QVariant>("general");
        QTest::addColumn<int>("elements");
        QTest::newRow("true") << QVariant(true) << 0;
        QTest::newRow("true as text") << QVariant(QStringLiteral("true")) << 0;
        QTest::newRow("false") << QVariant(false) << 1;
        QTest::newRow("absent") << QVariant() << 1;
    }

    void generalRecord()
    {
        QFETCH(QVariant, general);
        QFETCH(int, elements);
        ElementParam record = recordOfType(int(Type::Invalid));
        record.insert(QStringLiteral("globalTransparency"), 12);
        record.insert(QStringLiteral("kx70ii_units"), QStringLiteral("imperial"));
        if (general.isValid())
            record.insert(QStringLiteral("general"), general);
        QList<ElementParam> records {record};

        m_world->builder->createElements(*m_world->manager, records);

        const bool applied = elements == 0;
        QCOMPARE(m_world->manager->elementsCount(), elements);
        QCOMPARE(m_world->manager->getGlobalTransparency(), applied ? 12 : 44);
        QCOMPARE(m_world->manager->kx70iiUnits(),
                 applied ? QStringLiteral("imperial") : QStringLiteral("metric"));
    }

    void generalSettingsAreResetFirst()
    {
        CVideoOverlayManager &manager = *m_world->manager;
        manager.setAnalogVideo(false);
        manager.setKx70iiState(true);
        manager.setKx70iiCol(30);
        manager.setKx70iiRow(40);
        manager.setKx70iiUnits(QStringLiteral("imperial"));
        manager.setGlobalTransparency(7);
        QSignalSpy changed(&manager, &CVideoOverlayManager::kx70iiChanged);
        QList<ElementParam> none;

        m_world->builder->createElements(manager, none);

        QCOMPARE(changed.count(), 1);
        QVERIFY(manager.analogVideo());
        QVERIFY(!manager.kx70iiState());
        QCOMPARE(manager.kx70iiCol(), 0);
        QCOMPARE(manager.kx70iiRow(), 0);
        QCOMPARE(manager.kx70iiUnits(), QStringLiteral("metric"));
        QCOMPARE(manager.getGlobalTransparency(), 7); // no record said otherwise
    }

    void elementsComeInTheOrderOfTheRecords()
    {
        QList<ElementParam> records;
        for (int row = 0; row < 5; ++row) {
            ElementParam record = recordOfType(int(Type::StaticText));
            record.insert(QStringLiteral("row"), row);
            records.append(record);
        }
        m_world->builder->createElements(*m_world->manager, records);
        for (int row = 0; row < 5; ++row) {
            QCOMPARE(m_world->manager->getElement(row)->row(), row);
            QCOMPARE(m_world->manager->getElement(row)->id(),
                     records.at(row).value(QStringLiteral("id")).toInt());
        }
    }

    void freeText()
    {
        ElementParam record = recordOfType(int(Type::FreeText));
        record.insert(QStringLiteral("textDatasource"), QStringLiteral("DB"));
        record.insert(QStringLiteral("favorites"),
                      QStringList({QStringLiteral("one"), QStringLiteral("two\nlines")}));
        record.insert(QStringLiteral("maxLineNumber"), 2);
        Profile profile;
        profile.elements().append(record);
        // Would take it, if it were asked.
        COsdDomainDatasourceFactory domain({});
        m_world->builder->registerFactory(&domain);

        m_world->load(profile);

        CVideoOverlayElement *const element = m_world->manager->getElement(0);
        QVERIFY(qobject_cast<COsdValueDatasource *>(datasourceOf(element)));
        QCOMPARE(m_world->model().freeText(), element);
        const auto *const favorites = m_world->manager->getFavoritesModel();
        QCOMPARE(favorites->stringList(),
                 QStringList({QStringLiteral("one"), QStringLiteral("two\nlines")}));
        QCOMPARE(favorites->maxLineNumber(), 2);
        takeLog();
    }

    void theFreeTextIsAnnouncedWhenItIsComplete()
    {
        QString state;
        QObject context;
        connect(m_world->manager->getFavoritesModel(),
                &Velmar::Shared::QmlStringListModel::stringListChanged, &context, [&] {
                    const CVideoOverlayElement *const element = m_world->manager->getElement(0);
                    state = QStringLiteral("%1 datasource, %2 free text")
                                .arg(element && datasourceOf(element) ? 1 : 0)
                                .arg(m_world->model().freeText() ? 1 : 0);
                });
        Profile profile;
        profile.elements().append(recordOfType(int(Type::FreeText)));
        profile.elements().last().insert(QStringLiteral("favorites"),
                                         QStringList(QStringLiteral("one")));
        m_world->load(profile);
        QCOMPARE(state, QStringLiteral("1 datasource, 0 free text"));
        takeLog();
    }

    void generalSettingsComeInTheirTurn()
    {
        ElementParam general = ElementParam::createGeneralSettingsDefault();
        general.insert(QStringLiteral("kx70ii_col"), 12);
        QList<ElementParam> records {recordOfType(0), general, recordOfType(0)};
        QStringList applied;
        QObject context;
        connect(m_world->manager.get(), &CVideoOverlayManager::kx70iiChanged, &context, [&] {
            applied.append(QStringLiteral("%1 after %2")
                               .arg(m_world->manager->kx70iiCol())
                               .arg(m_world->manager->elementsCount()));
        });
        m_world->builder->createElements(*m_world->manager, records);
        QCOMPARE(applied, QStringList({QStringLiteral("0 after 0"), QStringLiteral("12 after 1")}));
    }

    void theLastFreeTextCounts()
    {
        Profile profile;
        profile.elements().append(recordOfType(int(Type::FreeText)));
        profile.elements().append(recordOfType(int(Type::FreeText)));
        m_world->load(profile);
        QCOMPARE(m_world->model().freeText(), m_world->manager->getElement(1));
        takeLog();
    }

    void constructDatasource()
    {
        CVideoOverlayText element;
        ElementParam record = recordOfType(3);
        TestFactory refusing;
        TestFactory empty([](CVideoOverlayElement *, ElementParam &) { return nullptr; });
        TestFactory making(makeStatic);
        TestFactory late(makeStatic);
        m_world->builder->registerFactory(&refusing);
        m_world->builder->registerFactory(nullptr);
        m_world->builder->registerFactory(&empty);
        m_world->builder->registerFactory(&making);
        m_world->builder->registerFactory(&late);

        COsdElementDatasource *const made = m_world->builder->constructDatasource(&element, record);

        QVERIFY(made);
        QCOMPARE(made->parent(), &element);
        QCOMPARE(refusing.asked, QStringList(QStringLiteral("3")));
        QCOMPARE(empty.asked, QStringList(QStringLiteral("3")));
        QCOMPARE(making.asked, QStringList(QStringLiteral("3")));
        QCOMPARE(late.asked, QStringList());
        QCOMPARE(takeLog(), QStringList());
    }

    void noDatasource_data()
    {
        QTest::addColumn<QVariant>("type");
        QTest::addColumn<QString>("named");
        QTest::newRow("number") << QVariant(3) << QStringLiteral("3");
        QTest::newRow("text") << QVariant(QStringLiteral("InspText")) << QStringLiteral("InspText");
        QTest::newRow("absent") << QVariant() << QString();
    }

    void noDatasource()
    {
        QFETCH(QVariant, type);
        QFETCH(QString, named);
        CVideoOverlayText element;
        ElementParam record = recordOfType(type);
        QVERIFY(!m_world->builder->constructDatasource(&element, record));
        QCOMPARE(takeLog(), QStringList(::noDatasource(named)));
    }

    void withoutFactories()
    {
        Profile profile;
        for (int type : {1, 2, 3, 6, 0})
            profile.elements().append(recordOfType(type));
        m_world->load(profile);

        QCOMPARE(m_world->manager->elementsCount(), 5);
        for (int i = 0; i < 4; ++i) {
            const CVideoOverlayElement *const element = m_world->manager->getElement(i);
            QVERIFY(!datasourceOf(element));
            QCOMPARE(element->type(), Type::Invalid); // as it was made
        }
        for (int i = 0; i < 5; ++i) // only a datasource writes an id into its record
            QCOMPARE(profile.elements().at(i).contains(QStringLiteral("id")), i == 4);
        const QStringList log = takeLog();
        for (const char *type : {"1", "2", "3", "6"})
            QCOMPARE(log.count(::noDatasource(QString::fromLatin1(type))), 1);
    }

    void whatNobodyServesStandsInForItself()
    {
        Profile profile;
        for (const char *name : {"SPEED", "DATE", "TIME"}) {
            profile.elements().append(recordOfType(int(Type::SystemText)));
            profile.elements().last().insert(ElementParam::NAME_COLUMNBOUND,
                                             QString::fromLatin1(name));
        }
        const QList<ElementParam> before = profile.elements();
        m_world->load(profile);
        QCOMPARE(profile.elements(), before);
        // Removed before anything was saved: no other may lose its record for that.
        QVERIFY(m_world->manager->deleteElement(1));

        m_world->profiles->applyChanges(&profile);

        QCOMPARE(profile.elements().mid(0, 2), (QList<ElementParam> {before[0], before[2]}));
        QCOMPARE(profile.elements().size(), 3);

        // And again, with what was put into the profile meanwhile, and what is new.
        profile.elements()[1].insert(QStringLiteral("row"), 5);
        QVERIFY(m_world->manager->deleteElement(0));
        m_world->model().createStaticText(QStringLiteral("new"));
        m_world->profiles->applyChanges(&profile);
        QCOMPARE(profile.elements().size(), 3);
        QCOMPARE(profile.elements().at(0).value(ElementParam::NAME_COLUMNBOUND).toString(),
                 QStringLiteral("TIME"));
        QCOMPARE(profile.elements().at(0).value(QStringLiteral("row")).toInt(), 5);
        QVERIFY(!profile.elements().at(0).contains(QStringLiteral("id")));
        QCOMPARE(profile.elements().at(1).value(QStringLiteral("text")).toString(),
                 QStringLiteral("new"));
        takeLog();
    }

    void whatNobodyServesIsMatchedInAnyOrder()
    {
        // Those of the template are added in front of the profile and behind the elements; two are
        // alike.
        Profile profile;
        for (const char *name : {"SPEED", "SPEED", "DATE"}) {
            profile.elements().append(recordOfType(int(Type::SystemText)));
            profile.elements().last().insert(ElementParam::NAME_COLUMNBOUND,
                                             QString::fromLatin1(name));
        }
        const auto reset = [this] { m_world->manager->resetChanges(); }; // as every host does
        connect(m_world->builder, &COsdBuilder::profileLoaded, m_world->manager.get(), reset);
        connect(m_world->builder, &COsdBuilder::profileLoaded, m_world->profiles.get(),
                &VideoOverlayProfilesModel::profileLoaded);
        m_world->load(profile);
        QVERIFY(!m_world->profiles->isCurrentProfileChanged());
        m_world->templates.load({{QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"), {}}});
        reset();
        QVERIFY(!m_world->profiles->isCurrentProfileChanged()); // they came with their records
        QCOMPARE(profile.elements().size(), 5);
        const QList<ElementParam> before = profile.elements();
        QVERIFY(m_world->manager->deleteElement(0)); // one SPEED
        QVERIFY(m_world->profiles->isCurrentProfileChanged());
        QVERIFY(m_world->manager->deleteElement(3)); // the last text of the template
        m_world->manager->createText();              // nobody's

        m_world->profiles->applyChanges(&profile);

        // In the order of the elements; the last text of the template is the profile's first.
        QCOMPARE(profile.elements().mid(0, 3),
                 (QList<ElementParam> {before[2], before[4], before[1]}));
        QCOMPARE(profile.elements().size(), 4);
        takeLog();
    }

    void whatNobodyServesIsInACopy()
    {
        Profile profile;
        for (const char *name : {"SPEED", "DATE"}) {
            profile.elements().append(recordOfType(int(Type::SystemText)));
            profile.elements().last().insert(ElementParam::NAME_COLUMNBOUND,
                                             QString::fromLatin1(name));
        }
        m_world->load(profile);
        const std::unique_ptr<Profile> copy(profile.clone());
        QVERIFY(m_world->manager->deleteElement(0));
        QCOMPARE(m_world->profiles->applyChanges(copy.get()), copy.get());
        QCOMPARE(copy->elements().size(), 2);
        QCOMPARE(copy->elements().first(), profile.elements().last());
        takeLog();
    }

    void constructDatasourceAloneLeavesTheRecord()
    {
        CVideoOverlayText element;
        ElementParam record = recordOfType(3);
        const ElementParam before = record;
        QVERIFY(!m_world->builder->constructDatasource(&element, record));
        QCOMPARE(record, before);
        takeLog();
    }

    void aDestroyedFactoryIsNotAsked()
    {
        CVideoOverlayText element;
        ElementParam record = recordOfType(3);
        auto gone = std::make_unique<TestFactory>(makeStatic);
        TestFactory making(makeStatic);
        m_world->builder->registerFactory(gone.get());
        m_world->builder->registerFactory(&making);
        m_world->builder->registerFactory(gone.get()); // twice: both entries go
        gone.reset();

        QVERIFY(m_world->builder->constructDatasource(&element, record));
        QCOMPARE(making.asked.size(), 1);
    }

    void aFactoryMayDestroyAnotherWhileAsked()
    {
        CVideoOverlayText element;
        ElementParam record = recordOfType(3);
        auto next = std::make_unique<TestFactory>(makeStatic);
        TestFactory first([&next](CVideoOverlayElement *, ElementParam &) {
            next.reset();
            return nullptr;
        });
        m_world->builder->registerFactory(&first);
        m_world->builder->registerFactory(next.get());
        QVERIFY(!m_world->builder->constructDatasource(&element, record));
        QCOMPARE(takeLog().size(), 1);
    }

    void loadStepsInOrder()
    {
        Profile profile;
        profile.setName(QStringLiteral("Main"));
        profile.elements().append(recordOfType(int(Type::FreeText)));
        profile.elements().append(
            inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"), 6));
        profile.elements().last().insert(QStringLiteral("enabled"), true);
        TestFactory making(makeStatic);
        m_world->builder->registerFactory(&making);
        m_world->load(profile);
        m_world->templates.load({{QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"), {}}});
        AppStateControl::setActiveProject(QSharedPointer<TestRecord>::create(Kind::Project));
        CVideoOverlayManager &manager = *m_world->manager;
        takeLog();
        QStringList steps;
        const auto note = [&](const char *step) {
            int hidden = 0;
            for (const CVideoOverlayElement *element : manager.getElementList())
                hidden += element->type() == Type::InspStaticText && !element->visible() ? 1 : 0;
            steps.append(
                QStringLiteral("%1: %2 elements, %3 free text, %4 hidden, %5 records")
                    .arg(QString::fromLatin1(step), QString::number(manager.elementsCount()),
                         m_world->model().freeText() ? QStringLiteral("a") : QStringLiteral("no"),
                         QString::number(hidden), QString::number(profile.elements().size())));
        };
        QObject context;
        connect(&manager, &CVideoOverlayManager::beforeRemoveElements, &context,
                [&] { note("remove"); });
        connect(&manager, &CVideoOverlayManager::kx70iiChanged, &context,
                [&] { note("general settings"); });
        connect(&m_world->model(), &QAbstractItemModel::modelReset, &context,
                [&] { note("reset"); });
        connect(m_world->builder, &COsdBuilder::profileLoaded, &context, [&] {
            note("loaded");
            QVERIFY(!takeLog().contains(QStringLiteral("3 ") + category
                                        + QStringLiteral("OSD profile loaded: 'Main'")));
        });
        AppStateControl::setActiveProject({});

        m_world->builder->load(&profile);

        // The template offers the column as a text too: it was added before the reset.
        QCOMPARE(
            steps,
            QStringList(
                {QStringLiteral("remove: 3 elements, no free text, 1 hidden, 3 records"),
                 QStringLiteral("general settings: 0 elements, no free text, 0 hidden, 3 records"),
                 QStringLiteral("reset: 3 elements, a free text, 1 hidden, 3 records"),
                 QStringLiteral("loaded: 3 elements, a free text, 1 hidden, 3 records")}));
        QCOMPARE(takeLog(),
                 QStringList(QStringLiteral("3 ") + category
                             + QStringLiteral("OSD profile loaded: 'Main'")));
    }

    void loadReplacesAllElements()
    {
        Profile first;
        first.elements() = {recordOfType(0), recordOfType(0)};
        Profile second;
        second.elements() = {recordOfType(0)};
        m_world->load(first);
        QPointer<CVideoOverlayElement> old = m_world->manager->getElement(0);
        QPointer<COsdElementDatasource> oldDatasource = datasourceOf(old);
        m_world->manager->createWatermark(QStringLiteral(":/general/image_too_large.png"));
        m_world->load(second);
        QCOMPARE(m_world->manager->elementsCount(), 1);
        QVERIFY(!old);
        QVERIFY(!oldDatasource);
        m_world->load(first);
        QCOMPARE(m_world->manager->elementsCount(), 2);
        takeLog();
    }

    void profileLoadedOncePerLoad()
    {
        QSignalSpy loaded(m_world->builder, &COsdBuilder::profileLoaded);
        Profile profile;
        profile.setPath(QStringLiteral("/profiles/Main.xml")); // not what people call it: its name
        m_world->load(profile);
        QCOMPARE(loaded.count(), 1);
        m_world->builder->load(&profile);
        QCOMPARE(loaded.count(), 2);
        QCOMPARE(takeLog().last(),
                 QStringLiteral("3 ") + category + QStringLiteral("OSD profile loaded: ''"));
    }

    void loadNull()
    {
        Profile profile;
        profile.elements() = {recordOfType(0), recordOfType(int(Type::FreeText))};
        m_world->load(profile);
        m_world->manager->setKx70iiCol(55);
        takeLog();
        QSignalSpy loaded(m_world->builder, &COsdBuilder::profileLoaded);

        m_world->builder->load(nullptr);

        QCOMPARE(m_world->manager->elementsCount(), 0);
        QVERIFY(!m_world->model().freeText());
        QCOMPARE(m_world->manager->kx70iiCol(), 55);
        QCOMPARE(loaded.count(), 0);
        QCOMPARE(profile.elements().size(), 2);
        QCOMPARE(takeLog(), QStringList());
    }

    void aProfileThatDiesWhileItIsLoaded()
    {
        auto profile = std::make_unique<Profile>();
        profile->elements() = {recordOfType(0)};
        QObject context;
        connect(m_world->manager.get(), &CVideoOverlayManager::beforeRemoveElements, &context,
                [&] { profile.reset(); });
        m_world->builder->load(profile.get());
        QCOMPARE(m_world->manager->elementsCount(), 0);

        profile = std::make_unique<Profile>();
        QObject other;
        context.disconnect();
        disconnect(m_world->manager.get(), nullptr, &context, nullptr);
        connect(m_world->builder, &COsdBuilder::profileLoaded, &other, [&] { profile.reset(); });
        m_world->builder->load(profile.get());
        takeLog();
    }

    void afterTheManager()
    {
        Profile profile;
        profile.elements() = {recordOfType(0)};
        m_world->profiles.reset();
        m_world->manager.reset();
        QSignalSpy loaded(m_world->builder, &COsdBuilder::profileLoaded);

        m_world->builder->load(&profile);

        QCOMPARE(loaded.count(), 0);
        QCOMPARE(takeLog(),
                 QStringList(QStringLiteral("1 ") + category
                             + QStringLiteral("OSD builder is not initialized")));
        m_world->builder->loadInspectionTexts();
        m_world->builder->templateChanged();
        m_world->builder->hideInspTextsForSimpleProjectOrNoActiveProject();
        QSet<QString> keys {QStringLiteral("SECTION.OBJ_Key.3")};
        m_world->builder->overridingWithNewColumns(keys, {}, &profile);
        m_world->builder->removeUnusedElements(&profile, {}, keys);
        QCOMPARE(profile.elements().size(), 1);
        m_world->templates.load({{QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"), {}}});
        AppStateControl::setActiveProject({});
        QCOMPARE(takeLog(), QStringList());
    }

    void aThrowingFactoryDoesNotEndTheLoad()
    {
        TestFactory throwing([](CVideoOverlayElement *, ElementParam &) -> COsdElementDatasource * {
            throw std::runtime_error("no");
        });
        m_world->builder->registerFactory(&throwing);
        Profile profile;
        profile.elements() = {recordOfType(1), recordOfType(0)};
        QSignalSpy loaded(m_world->builder, &COsdBuilder::profileLoaded);

        m_world->load(profile);

        QCOMPARE(loaded.count(), 1);
        QCOMPARE(profile.elements().size(), 2);
        QCOMPARE(m_world->manager->elementsCount(), 2);
        QVERIFY(!datasourceOf(m_world->manager->getElement(0)));
        QVERIFY(datasourceOf(m_world->manager->getElement(1)));
        QVERIFY(!profile.elements().first().contains(QStringLiteral("id")));
        QVERIFY(takeLog().contains(QStringLiteral("1 ") + category
                                   + QStringLiteral("OSD builder: a factory failed for '1'")));
    }

    void getDefaultProfilePath()
    {
        QCOMPARE(COsdBuilder::getDefaultProfilePath(), QString());
        QStringList log = takeLog();
        QCOMPARE(log.last(),
                 QStringLiteral("1 ") + category
                     + QStringLiteral("Cannot read OSD default profile path form OsdSettings.xml"));

        QFile file(QDir(m_world->directory.path()).filePath(QStringLiteral("OsdSettings.xml")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<OSD><PROFILES><CURRENT>../osd/Main.xml</CURRENT></PROFILES></OSD>");
        file.close();
        QCOMPARE(COsdBuilder::getDefaultProfilePath(), QStringLiteral("../osd/Main.xml"));
        QCOMPARE(takeLog().last(),
                 QStringLiteral("3 ") + category
                     + QStringLiteral("OSD profile selected to load: ../osd/Main.xml"));
    }

protected:
    void prepare() override
    {
        m_world.reset();
        m_world = std::make_unique<BuilderWorld>();
    }

private:
    std::unique_ptr<BuilderWorld> m_world;
};

QTEST_MAIN(tst_COsdBuilder)
#include "tst_COsdBuilder.moc"
