// SPDX-License-Identifier: Apache-2.0
#include "host/platform/AppStateControl.h"
#include "platform/shared/GlobalLocaleData.h"
#include "platform/translation/CTranslator.h"
#include "tests/osd/BuilderWorld.h"
#include "tests/support/LoggedTest.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/display/VideoOverlaySettings.h"
#include "videooverlay/osd/COsdBuilder.h"
#include "videooverlay/osd/COsdDomainDatasource.h"
#include "videooverlay/osd/COsdDomainDatasourceFactory.h"
#include "videooverlay/osd/COsdValueDatasource.h"

#include <QTest>

#include <malloc.h>
#include <memory>

using namespace Velmar::VideoOverlay;
using Velmar::AppState;
using Velmar::AppStateControl;
using Velmar::Shared::GlobalLocaleData;
using Velmar::Test::BuilderWorld;
using Velmar::Test::ColumnSpec;
using Velmar::Test::inspectionRecord;
using Velmar::Test::recordOfType;
using Velmar::Test::TestFactory;
using Velmar::Test::TestRecord;
using Velmar::Translation::CTranslator;
using Type = CVideoOverlayElement::Type;
using Kind = Velmar::Database::DomainRecord::Kind;

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int switches = 200; // a switch takes ten times as long
#else
constexpr int switches = 1000;
#endif

/// How many slots a signal calls.
template <class Sender, typename Signal> int receivers(const Sender *sender, Signal signal)
{
    struct Access : QObject
    {
        using QObject::receivers;
    };
    const QByteArray signature
        = QByteArray::number(QSIGNAL_CODE) + QMetaMethod::fromSignal(signal).methodSignature();
    return (sender->*&Access::receivers)(signature.constData());
}

/// Everything that could pile up.
struct Census
{
    explicit Census(const BuilderWorld &world)
        : children(world.manager->findChildren<QObject *>().size())
        , elements(world.manager->elementsCount())
        , elementObjects(world.manager->findChildren<CVideoOverlayElement *>().size())
        , datasources(world.manager->findChildren<COsdElementDatasource *>().size())
        , byProject(receivers(AppState::instance(), &AppState::activeProjectChanged))
        , byInspection(receivers(AppState::instance(), &AppState::activeInspectionChanged))
        , byObservation(receivers(AppState::instance(), &AppState::observationCreated))
        , byLocale(receivers(GlobalLocaleData::instance(), &GlobalLocaleData::localeChanged))
        , byLanguage(receivers(CTranslator::instance(), &CTranslator::currentLocaleChanged))
        , byResolver(receivers(COsdDomainDatasource::captionResolver.data(),
                               &TemplateCaptionResolver::resolverReady))
        , byTransparency(
              receivers(world.manager.get(), &CVideoOverlayManager::globalTransparencyChanged))
        , bySettings(
              receivers(world.manager->getSettings(), &VideoOverlaySettings::settingsChanged))
    {
    }

    QList<int> numbers() const
    {
        return {children,      elements, elementObjects, datasources, byProject,      byInspection,
                byObservation, byLocale, byLanguage,     byResolver,  byTransparency, bySettings};
    }

    int children;
    int elements;
    int elementObjects;
    int datasources;
    int byProject;
    int byInspection;
    int byObservation;
    int byLocale;
    int byLanguage;
    int byResolver;
    int byTransparency;
    int bySettings;
};

/// Sixty elements of every kind; @p first tells one profile from another.
void fill(Profile &profile, int first)
{
    const QString system[] = {ElementParam::NAME_SPEED, ElementParam::NAME_DATE};
    for (int i = 0; profile.elements().size() < 60; ++i) {
        ElementParam record;
        switch ((first + i) % 6) {
        case 0:
            record = recordOfType(int(Type::StaticText));
            record.insert(QStringLiteral("text"), QStringLiteral("static %1").arg(i));
            break;
        case 1:
            record = recordOfType(int(Type::SystemText));
            record.insert(ElementParam::NAME_COLUMNBOUND, system[i % 2]);
            break;
        case 2:
            record = recordOfType(int(Type::FreePicture));
            break;
        case 3:
            record = inspectionRecord(QStringLiteral("SECINSP"), QStringLiteral("INS_Inspector"),
                                      Type::InspText);
            break;
        case 4:
            record = inspectionRecord(QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"),
                                      Type::InspStaticText);
            break;
        default:
            record = recordOfType(int(i % 4 ? Type::FreeText : Type::StaticText));
            record.insert(ElementParam::NAME_COLUMNBOUND, QStringLiteral("PRJ_Name"));
            record.insert(QStringLiteral("favorites"), QStringList(QStringLiteral("a")));
            break;
        }
        record.insert(QStringLiteral("row"), i % 27);
        record.insert(QStringLiteral("enabled"), true);
        profile.elements().append(record);
    }
}

} // namespace

class tst_COsdBuilderLife : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void switchingProfilesLeavesNothingBehind()
    {
        BuilderWorld world;
        TestFactory others([](CVideoOverlayElement *element,
                              ElementParam &record) -> COsdElementDatasource * {
            if (auto *text = qobject_cast<CVideoOverlayText *>(element)) {
                if (record.value(QStringLiteral("type")).toInt() != Type::SystemText)
                    return nullptr;
                return new COsdValueDatasource(COsdDomainDatasource::captionResolver, text, record);
            }
            return new COsdElementDatasource(element, record);
        });
        COsdDomainDatasourceFactory domain(COsdDomainDatasource::captionResolver);
        world.builder->registerFactory(&others);
        world.builder->registerFactory(&domain);
        const auto project = QSharedPointer<TestRecord>::create(Kind::Project);
        const auto section = QSharedPointer<TestRecord>::create(Kind::Section, project);
        const auto inspection = QSharedPointer<TestRecord>::create(Kind::Inspection, section);
        inspection->values.insert(QStringLiteral("INS_Inspector"), QStringLiteral("Ada"));
        section->values.insert(QStringLiteral("OBJ_Key"), QStringLiteral("S-17"));
        project->values.insert(QStringLiteral("PRJ_Name"), QStringLiteral("Elm Road"));
        world.templates.load({{QStringLiteral("SECINSP"), QStringLiteral("INS_Inspector"), {}},
                              {QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"), {}},
                              {QStringLiteral("SECOBS"), QStringLiteral("OBS_OpCode"), {}}});
        AppStateControl::setActiveProject(project);
        AppStateControl::setActiveInspection(inspection);
        Profile profiles[2];
        fill(profiles[0], 0);
        fill(profiles[1], 3);
        for (int i = 0; i < 20; ++i)
            world.load(profiles[i % 2]); // adds the columns that are missing
        forgetWhatWasSeen(world);
        const Census before(world);
        QCOMPARE(before.elements, profiles[1].elements().size());
        QVERIFY(before.elements >= 60);
        QCOMPARE(before.elementObjects, before.elements);
        QCOMPARE(before.datasources, before.elements);
        QVERIFY(before.byInspection > 20);
        const size_t memory = mallinfo2().uordblks;

        for (int i = 0; i < switches; ++i) {
            world.load(profiles[i % 2]);
            others.asked.clear();
            if (i % 100 == 0) {
                AppStateControl::setActiveInspection(inspection);
                AppStateControl::setActiveProject(project);
            }
            forgetWhatWasSeen(world);
        }

        QCOMPARE(Census(world).numbers(), before.numbers());
        const size_t grown = mallinfo2().uordblks - memory;
        QVERIFY2(mallinfo2().uordblks <= memory || grown < 64 * 1024,
                 qPrintable(QStringLiteral("%1 bytes more").arg(grown)));
        AppStateControl::setActiveInspection({});
        AppStateControl::setActiveProject({});
        takeLog();
    }

    void changingTemplatesLeavesNothingBehind()
    {
        BuilderWorld world;
        COsdDomainDatasourceFactory domain({});
        world.builder->registerFactory(&domain);
        Profile profile;
        fill(profile, 0);
        world.load(profile);
        const QVector<ColumnSpec> some {
            {QStringLiteral("SECINSP"), QStringLiteral("INS_Inspector"), {}}};
        const QVector<ColumnSpec> others {
            {QStringLiteral("SECTION"), QStringLiteral("OBJ_Key"), {}},
            {QStringLiteral("SECOBS"), QStringLiteral("OBS_OpCode"), {}}};
        world.templates.load(some);
        world.templates.load(others);
        forgetWhatWasSeen(world);
        const Census before(world);
        const int records = profile.elements().size();

        for (int i = 0; i < 200; ++i) {
            world.templates.load(some);
            world.templates.load(others);
            forgetWhatWasSeen(world);
        }

        QCOMPARE(Census(world).numbers(), before.numbers());
        QCOMPARE(profile.elements().size(), records);
    }

private:
    void forgetWhatWasSeen(BuilderWorld &world)
    {
        takeLog();
        world.display.takeCalls();
    }
};

QTEST_MAIN(tst_COsdBuilderLife)
#include "tst_COsdBuilderLife.moc"
