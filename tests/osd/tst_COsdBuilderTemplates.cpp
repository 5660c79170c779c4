// SPDX-License-Identifier: Apache-2.0
#include "host/platform/AppStateControl.h"
#include "tests/osd/BuilderWorld.h"
#include "tests/support/LiveOverlay.h"
#include "tests/support/LoggedTest.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/osd/COsdBuilder.h"
#include "videooverlay/osd/COsdDomainDatasource.h"
#include "videooverlay/osd/COsdDomainDatasourceFactory.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <stdexcept>

using namespace Velmar::VideoOverlay;
using Velmar::AppState;
using Velmar::AppStateControl;
using Velmar::Test::BuilderWorld;
using Velmar::Test::ColumnSpec;
using Velmar::Test::datasourceOf;
using Velmar::Test::inspectionKeys;
using Velmar::Test::inspectionRecord;
using Velmar::Test::recordOfType;
using Velmar::Test::TestFactory;
using Velmar::Test::TestRecord;
using ColumnType = Velmar::Templates::CTemplateColumn::Type;
using Kind = Velmar::Database::DomainRecord::Kind;
using ProjectKind = AppStateControl::ProjectKind;

namespace {

const QString category = QStringLiteral("VideoOverlayLibrary: ");

QString trace(const QString &message)
{
    return QStringLiteral("4 ") + category + message;
}

QString adding(const QString &key)
{
    return trace(QStringLiteral("insp. text ") + key
                 + QStringLiteral(" missing in profile xml will be added."));
}

ColumnSpec column(const char *table, const char *name)
{
    return {QString::fromLatin1(table),
            QString::fromLatin1(name),
            QStringLiteral("Caption"),
            ColumnType::Text,
            {}};
}

/// What the builder itself logged about the texts that it keeps in step.
QStringList aboutTexts(const QStringList &log)
{
    return log.filter(QRegularExpression(QStringLiteral("insp\\. text|Deleting unused element")));
}

} // namespace

Q_DECLARE_METATYPE(ProjectKind)

class tst_COsdBuilderTemplates : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void lookupHash()
    {
        Profile profile;
        profile.elements() = {recordOfType(0),
                              inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("A"), 3),
                              inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("A"), 6),
                              recordOfType(7),
                              recordOfType(1),
                              recordOfType(3),
                              inspectionRecord(QStringLiteral("NODE"), QStringLiteral("B"), 3),
                              inspectionRecord(QStringLiteral("NODE"), QStringLiteral("B"), 3),
                              recordOfType(QStringLiteral("InspStaticText"))};
        profile.elements()[2].insert(QStringLiteral("type"), QStringLiteral("6"));
        QHash<QString, const ElementParam *> existing;

        m_world->builder->createLookupHashFromExistingColumns(&profile, existing);

        QCOMPARE(existing.size(), 5);
        QCOMPARE(existing.value(QStringLiteral("SECTION.A.3")), &profile.elements()[1]);
        QCOMPARE(existing.value(QStringLiteral("SECTION.A.6")), &profile.elements()[2]);
        QCOMPARE(existing.value(QStringLiteral("..3")), &profile.elements()[5]);
        QCOMPARE(existing.value(QStringLiteral("NODE.B.3")), &profile.elements()[7]); // the last
        QCOMPARE(existing.value(QStringLiteral("..6")), &profile.elements()[8]);      // by its name
    }

    void missingColumnsAreAdded()
    {
        Profile profile;
        profile.elements() = {recordOfType(0)};
        m_world->load(profile);
        takeLog();
        QSignalSpy reset(&m_world->model(), &QAbstractItemModel::modelReset);

        m_world->templates.load({column("SECTION", "OBJ_Key"), column("SECOBS", "OBS_OpCode")});

        // Added in the order of their keys, each at the front.
        QCOMPARE(
            inspectionKeys(profile),
            QStringList({QStringLiteral("SECTION.OBJ_Key.6"), QStringLiteral("SECTION.OBJ_Key.3"),
                         QStringLiteral("SECOBS.OBS_OpCode.3")}));
        QCOMPARE(profile.elements().size(), 4);
        QCOMPARE(m_world->manager->elementsCount(), 4);
        QCOMPARE(aboutTexts(takeLog()),
                 QStringList({adding(QStringLiteral("SECOBS.OBS_OpCode.3")),
                              adding(QStringLiteral("SECTION.OBJ_Key.3")),
                              adding(QStringLiteral("SECTION.OBJ_Key.6"))}));
        QCOMPARE(reset.count(), 1);

        const QList<CVideoOverlayElement *> elements = m_world->manager->getElementList();
        for (int i = 0; i < 3; ++i) {
            // The first record belongs to the last element.
            const ElementParam &record = profile.elements().at(i);
            const CVideoOverlayElement *const element = elements.at(3 - i);
            QCOMPARE(record.value(QStringLiteral("id")).toInt(), element->id());
            QCOMPARE(element->getParamObject(), record);
            QVERIFY(qobject_cast<COsdDomainDatasource *>(datasourceOf(element)));
            QVERIFY(!element->enabled());
            ElementParam expected = inspectionRecord(
                record.value(QStringLiteral("TDIR_Key")).toString(),
                record.value(QStringLiteral("columnBound")).toString(), element->type());
            expected.insert(QStringLiteral("id"), element->id());
            QCOMPARE(record, expected);
        }
        QCOMPARE(elements.at(3)->row(), 10);
        QCOMPARE(elements.at(2)->row(), 11);

        // Once they are there, nothing more is done.
        m_world->templates.load({column("SECTION", "OBJ_Key"), column("SECOBS", "OBS_OpCode")});
        QCOMPARE(m_world->manager->elementsCount(), 4);
        QCOMPARE(aboutTexts(takeLog()), QStringList());
        QCOMPARE(reset.count(), 2);
    }

    void eachIsNamedBeforeItIsAdded()
    {
        m_domainFactory.reset();
        QStringList said;
        TestFactory making([&](CVideoOverlayElement *element, ElementParam &record) {
            said += aboutTexts(takeLog());
            said.append(record.value(QStringLiteral("type")).toString());
            return new COsdElementDatasource(element, record);
        });
        m_world->builder->registerFactory(&making);
        Profile profile;
        m_world->load(profile);
        m_world->templates.load({column("SECTION", "OBJ_Key")});
        QCOMPARE(said,
                 QStringList({adding(QStringLiteral("SECTION.OBJ_Key.3")), QStringLiteral("3"),
                              adding(QStringLiteral("SECTION.OBJ_Key.6")), QStringLiteral("6")}));
        takeLog();
    }

    void loadAddsToo()
    {
        m_world->templates.load({column("SECTION", "OBJ_Key")});
        Profile profile;
        m_world->load(profile);
        QCOMPARE(profile.elements().size(), 2);
        QCOMPARE(m_world->manager->elementsCount(), 2);
        m_world->load(profile);
        QCOMPARE(profile.elements().size(), 2);
        QCOMPARE(m_world->manager->elementsCount(), 2);
        takeLog();
    }

    void aColumnWithDots()
    {
        Profile profile;
        m_world->load(profile);
        m_world->templates.load({column("SECINSP", "INS_A_FK.B..INS_C.")});
        QCOMPARE(profile.elements().size(), 2);
        for (const ElementParam &record : profile.elements()) {
            QCOMPARE(record.value(QStringLiteral("TDIR_Key")).toString(),
                     QStringLiteral("SECINSP"));
            QCOMPARE(record.value(QStringLiteral("columnBound")).toString(),
                     QStringLiteral("INS_A_FK.B..INS_C."));
        }
        QCOMPARE(profile.elements().first().value(QStringLiteral("type")).toInt(), 6);
        QCOMPARE(profile.elements().last().value(QStringLiteral("type")).toInt(), 3);
        takeLog();
    }

    void unusedTextsAreDeleted()
    {
        Profile profile;
        profile.elements()
            = {inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Old"), 3),
               recordOfType(0),
               inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"), 3),
               inspectionRecord(QStringLiteral("NODE"), QStringLiteral("OBJ_Key"), 3),
               inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Old"), 6),
               inspectionRecord(QStringLiteral("SECOBS"), QStringLiteral("OBS_OpCode"), 6)};
        m_world->load(profile);
        QCOMPARE(m_world->manager->elementsCount(), 6);
        takeLog();
        QSignalSpy removed(m_world->manager.get(), &CVideoOverlayManager::beforeRemoveElement);

        m_world->templates.load({column("SECTION", "OBJ_Key"), column("SECOBS", "OBS_OpCode")});

        QCOMPARE(
            inspectionKeys(profile),
            QStringList({QStringLiteral("SECTION.OBJ_Key.6"), QStringLiteral("SECOBS.OBS_OpCode.3"),
                         QStringLiteral("SECTION.OBJ_Key.3")}));
        QCOMPARE(profile.elements().size(), 4);
        QCOMPARE(m_world->manager->elementsCount(), 4);
        QCOMPARE(removed.count(), 4);
        QCOMPARE(aboutTexts(takeLog()),
                 QStringList({adding(QStringLiteral("SECOBS.OBS_OpCode.3")),
                              adding(QStringLiteral("SECTION.OBJ_Key.6")),
                              trace(QStringLiteral("Deleting unused element OBJ_Old SECTION")),
                              trace(QStringLiteral("Deleting unused element OBJ_Key NODE")),
                              trace(QStringLiteral("Deleting unused element OBJ_Old SECTION")),
                              trace(QStringLiteral("Deleting unused element OBS_OpCode SECOBS"))}));
        // What is left are the elements of the records that are left.
        QSet<int> ids;
        for (const ElementParam &record : profile.elements())
            ids.insert(record.value(QStringLiteral("id")).toInt());
        for (const CVideoOverlayElement *element : m_world->manager->getElementList())
            QVERIFY(ids.contains(element->id()));
    }

    void eachIsNamedWhenItGoes()
    {
        Profile profile;
        for (const char *name : {"OBJ_A", "OBJ_B", "OBJ_C"})
            profile.elements().append(
                inspectionRecord(QStringLiteral("SECTION"), QString::fromLatin1(name), 3));
        m_world->load(profile);
        CVideoOverlayManager &manager = *m_world->manager;
        const int first = manager.getElement(0)->id();
        takeLog();
        QStringList going;
        QObject context;
        connect(&manager, &CVideoOverlayManager::beforeRemoveElement, &context,
                [&](CVideoOverlayElement *element) {
                    going.append(QString::number(element->id() - first));
                    going += aboutTexts(takeLog());
                    if (element->id() == first + 1) // takes the last one along
                        manager.deleteElement(1);
                });

        m_world->templates.load({});

        QCOMPARE(going,
                 QStringList({QStringLiteral("0"),
                              trace(QStringLiteral("Deleting unused element OBJ_A SECTION")),
                              QStringLiteral("1"),
                              trace(QStringLiteral("Deleting unused element OBJ_B SECTION"))}));
        QCOMPARE(manager.elementsCount(), 0);
        QCOMPARE(profile.elements().size(), 0);
        QCOMPARE(aboutTexts(takeLog()), QStringList());
    }

    void twoRecordsOfOneKey()
    {
        Profile profile;
        for (int i = 0; i < 2; ++i)
            profile.elements().append(
                inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Old"), 3));
        profile.elements().append(recordOfType(0));
        m_world->load(profile);
        m_world->templates.load({});
        QCOMPARE(profile.elements().size(), 1);
        QCOMPARE(m_world->manager->elementsCount(), 1);
        QCOMPARE(aboutTexts(takeLog()).size(), 2);
    }

    void aSharedListOfRecords()
    {
        // A copy of the list makes the records move when they are next written.
        Profile profile;
        profile.elements()
            = {inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Old"), 3)};
        m_world->load(profile);
        const QList<ElementParam> copy = profile.elements();
        m_world->templates.load({column("SECTION", "OBJ_Key")});
        QCOMPARE(inspectionKeys(profile),
                 QStringList(
                     {QStringLiteral("SECTION.OBJ_Key.6"), QStringLiteral("SECTION.OBJ_Key.3")}));
        QCOMPARE(copy.size(), 1);
        takeLog();
    }

    void elementsOfOthersStay()
    {
        // Bound to a column that is not offered, but in no record of the profile.
        Profile profile;
        m_world->load(profile);
        CVideoOverlayText *const text = m_world->manager->createText();
        ElementParam record
            = inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Old"), 3);
        text->setParamObject(record);
        m_world->templates.load({});
        QCOMPARE(m_world->manager->elementsCount(), 1);
        takeLog();
    }

    void withoutTemplateTheRecordsStay()
    {
        Profile profile;
        profile.elements()
            = {inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Old"), 3)};
        m_world->load(profile);
        QCOMPARE(inspectionKeys(profile), QStringList(QStringLiteral("SECTION.OBJ_Old.3")));
        QCOMPARE(m_world->manager->elementsCount(), 1);
        QCOMPARE(aboutTexts(takeLog()), QStringList());
        m_world->templates.load({column("SECOBS", "OBS_OpCode")});
        QCOMPARE(inspectionKeys(profile), QStringList(QStringLiteral("SECOBS.OBS_OpCode.3")));
        takeLog();
    }

    void withoutCurrentProfile()
    {
        Profile profile;
        profile.elements() = {recordOfType(0)};
        QSignalSpy reset(&m_world->model(), &QAbstractItemModel::modelReset);
        m_world->templates.load({column("SECTION", "OBJ_Key"), column("JOB", "OBJ_Key")});
        QCOMPARE(reset.count(), 0);
        QCOMPARE(m_world->manager->elementsCount(), 0);
        // The columns are looked at all the same.
        QVERIFY(takeLog().contains(
            trace(QStringLiteral("Not allowed table name <JOB> or <OBJ_Key> column's prefix!"))));

        m_world->builder->load(&profile);
        QCOMPARE(profile.elements().size(), 1);
        QCOMPARE(m_world->manager->elementsCount(), 1);
        takeLog();
    }

    void theManagersProfileIsKeptInStep()
    {
        m_world->templates.load({column("SECOBS", "OBS_OpCode")});
        Profile current;
        Profile loaded;
        m_world->select(current);
        m_world->builder->load(&loaded);
        QCOMPARE(current.elements().size(), 1);
        QCOMPARE(loaded.elements().size(), 0);
        takeLog();
    }

    void aFactoryThatThrowsLeavesNothingBehind()
    {
        TestFactory throwing(
            [](CVideoOverlayElement *element, ElementParam &record) -> COsdElementDatasource * {
                if (record.value(QStringLiteral("type")).toInt() != 6)
                    return nullptr;
                new COsdElementDatasource(element, record);
                throw std::runtime_error("no");
            });
        m_domainFactory.reset(); // would be asked first
        m_world->builder->registerFactory(&throwing);
        COsdDomainDatasourceFactory domain({});
        m_world->builder->registerFactory(&domain);
        Profile profile;
        profile.elements() = {recordOfType(0)};
        m_world->load(profile);
        takeLog();

        m_world->templates.load({column("SECTION", "OBJ_Key"), column("SECINSP", "INS_A")});

        QCOMPARE(
            inspectionKeys(profile),
            QStringList({QStringLiteral("SECTION.OBJ_Key.3"), QStringLiteral("SECINSP.INS_A.3")}));
        QCOMPARE(profile.elements().size(), 3);
        QCOMPARE(m_world->manager->elementsCount(), 3);
        QCOMPARE(takeLog().filter(QStringLiteral("OSD builder: a factory failed for '6'")).size(),
                 2);
    }

    void aFactoryThatThrowsAndTakesTheElementAlong()
    {
        CVideoOverlayManager &manager = *m_world->manager;
        TestFactory throwing(
            [&](CVideoOverlayElement *element, ElementParam &) -> COsdElementDatasource * {
                manager.deleteElement(manager.rowIndexByID(element->id()));
                throw std::runtime_error("no");
            });
        m_domainFactory.reset();
        m_world->builder->registerFactory(&throwing);
        Profile profile;
        m_world->load(profile);
        QSignalSpy removed(&manager, &CVideoOverlayManager::beforeRemoveElement);

        m_world->templates.load({column("SECTION", "OBJ_Key")});

        QCOMPARE(profile.elements().size(), 0);
        QCOMPARE(manager.elementsCount(), 0);
        QCOMPARE(removed.count(), 0); // nothing was left to remove
        takeLog();
    }

    void aProfileThatDiesWhileTextsAreAdded()
    {
        auto profile = std::make_unique<Profile>();
        profile->elements()
            = {inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Old"), 3)};
        m_world->load(*profile);
        m_domainFactory.reset();
        TestFactory last([&profile](CVideoOverlayElement *element, ElementParam &record) {
            auto *const datasource = new COsdElementDatasource(element, record);
            profile.reset();
            return datasource;
        });
        m_world->builder->registerFactory(&last);
        takeLog();

        m_world->templates.load({column("SECTION", "OBJ_Key")});

        QVERIFY(!profile);
        // One was added, and the old one stays: there is nothing to be in step with any more.
        QCOMPARE(m_world->manager->elementsCount(), 2);
        QCOMPARE(aboutTexts(takeLog()), QStringList(adding(QStringLiteral("SECTION.OBJ_Key.3"))));
    }

    void addedTextsThatNobodyServes()
    {
        m_domainFactory.reset();
        Profile profile;
        m_world->load(profile);
        m_world->templates.load({column("SECTION", "OBJ_Key")});
        QCOMPARE(inspectionKeys(profile).size(), 2);
        for (int i : {0, 1}) {
            const CVideoOverlayElement *const element = m_world->manager->getElement(1 - i);
            QVERIFY(!datasourceOf(element));
            QVERIFY(!profile.elements().at(i).contains(QStringLiteral("id")));
        }
        QCOMPARE(takeLog().filter(QStringLiteral("cannot find datasource")).size(), 2);
    }

    void addedTextsAreHiddenAtOnce()
    {
        // No project is open: what the operator enables in a template's text stays hidden.
        const auto isHidden = [this](int row) {
            CVideoOverlayElement *const element = m_world->manager->getElement(row);
            element->setEnabled(true);
            return element->type() == CVideoOverlayElement::InspStaticText && !element->visible();
        };
        Profile profile;
        m_world->load(profile);
        int hiddenAtReset = 0;
        connect(&m_world->model(), &QAbstractItemModel::modelReset, m_world->manager.get(),
                [&] { hiddenAtReset = isHidden(1) ? 1 : 0; });
        m_world->templates.load({column("SECTION", "OBJ_Key")});
        QCOMPARE(hiddenAtReset, 1);

        Profile other;
        hiddenAtReset = 0;
        m_world->load(other);
        QCOMPARE(hiddenAtReset, 1);
        takeLog();
    }

    void textsAreInStepWhenTheTemplateIsReady()
    {
        Profile profile;
        m_world->load(profile);
        int elements = -1;
        QObject context;
        connect(COsdDomainDatasource::captionResolver.data(),
                &TemplateCaptionResolver::templateReady, &context,
                [&] { elements = m_world->manager->elementsCount(); });
        QSignalSpy aboutToBeReset(&m_world->model(), &QAbstractItemModel::modelAboutToBeReset);
        m_world->templates.load({column("SECTION", "OBJ_Key")});
        QCOMPARE(elements, 2);
        QCOMPARE(aboutToBeReset.count(), 1);
        takeLog();
    }

    void addedTextsAreNotRegistered()
    {
        Velmar::Test::RecordingAccessor accessor;
        m_world->manager->registerElementAccessor(&accessor);
        Profile profile;
        m_world->load(profile);
        m_world->templates.load({column("SECTION", "OBJ_Key")});
        QCOMPARE(accessor.calls, QStringList());
        m_world->manager->registerElementAccessor(nullptr);
        takeLog();
    }

    void hide_data()
    {
        QTest::addColumn<bool>("open");
        QTest::addColumn<ProjectKind>("kind");
        QTest::addColumn<bool>("shown");
        QTest::newRow("no project") << false << ProjectKind::Full << false;
        QTest::newRow("simple project") << true << ProjectKind::Simple << false;
        QTest::newRow("full project") << true << ProjectKind::Full << true;
    }

    void hide()
    {
        QFETCH(bool, open);
        QFETCH(ProjectKind, kind);
        QFETCH(bool, shown);
        Profile profile;
        for (int type : {6, 3, 0}) {
            profile.elements().append(
                inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"), type));
            profile.elements().last().insert(QStringLiteral("enabled"), true);
            profile.elements().last().insert(QStringLiteral("type"), type);
        }
        AppStateControl::setActiveProject(QSharedPointer<TestRecord>::create(Kind::Project),
                                          shown ? ProjectKind::Simple : ProjectKind::Full);
        m_world->load(profile);
        const QList<CVideoOverlayElement *> elements = m_world->manager->getElementList();
        for (CVideoOverlayElement *element : elements)
            element->setVisible(true);
        QCOMPARE(elements.at(0)->visible(), !shown);

        // Followed when the project changes,
        AppStateControl::setActiveProject(
            open ? QSharedPointer<TestRecord>::create(Kind::Project) : nullptr, kind);
        QCOMPARE(elements.at(0)->visible(), shown);
        QVERIFY(elements.at(1)->visible());
        QVERIFY(elements.at(2)->visible());

        // when a profile is loaded,
        m_world->load(profile);
        m_world->builder->load(&profile);
        CVideoOverlayElement *const text = m_world->manager->getElement(0);
        text->setVisible(true);
        QCOMPARE(text->visible(), shown);

        // and when a template is.
        text->setTemporaryHide(shown);
        m_world->templates.load({column("SECTION", "OBJ_Key")});
        QCOMPARE(text->visible(), shown);
        takeLog();
    }

    void initializedTwice()
    {
        Profile profile;
        profile.elements()
            = {inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"), 6)};
        m_world->load(profile);
        const auto first = COsdDomainDatasource::captionResolver;
        QVERIFY(first);
        int announced = 0;
        connect(m_world->manager->getElement(0), &CVideoOverlayElement::visibleChanged, this,
                [&announced] { ++announced; });
        AppStateControl::setActiveProject({});
        const int once = announced;
        QVERIFY(once > 0);

        QCOMPARE(COsdBuilder::initialize(m_world->templates, *m_world->manager), m_world->builder);

        QVERIFY(COsdDomainDatasource::captionResolver != first);
        announced = 0;
        AppStateControl::setActiveProject({});
        QCOMPARE(announced, 2 * once);
        // The replaced resolver is still followed as long as somebody holds it.
        QSignalSpy reset(&m_world->model(), &QAbstractItemModel::modelReset);
        m_world->templates.load({column("SECTION", "OBJ_Key")});
        QCOMPARE(reset.count(), 2);
        takeLog();
    }

    void initializedTwiceReleasesTheFirstResolver()
    {
        QWeakPointer<TemplateCaptionResolver> first = COsdDomainDatasource::captionResolver;
        QVERIFY(first);
        COsdBuilder::initialize(m_world->templates, *m_world->manager);
        QVERIFY(!first);
    }

    void anotherManager()
    {
        BuilderWorld other;
        Profile profile;
        profile.elements() = {recordOfType(0)};
        other.load(profile);
        QCOMPARE(other.manager->elementsCount(), 1);
        QCOMPARE(m_world->manager->elementsCount(), 0);
        takeLog();
    }

protected:
    void prepare() override
    {
        m_world.reset();
        m_world = std::make_unique<BuilderWorld>();
        m_domainFactory = std::make_unique<COsdDomainDatasourceFactory>(
            QSharedPointer<TemplateCaptionResolver>());
        m_world->builder->registerFactory(m_domainFactory.get());
    }

private:
    std::unique_ptr<BuilderWorld> m_world;
    std::unique_ptr<COsdDomainDatasourceFactory> m_domainFactory;
};

QTEST_MAIN(tst_COsdBuilderTemplates)
#include "tst_COsdBuilderTemplates.moc"
