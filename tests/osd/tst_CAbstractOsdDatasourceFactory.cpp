// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/CAbstractOsdDatasourceFactory.h"

#include "host/platform/CatalogStore.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/VirtualSlot.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/osd/COsdElementDatasource.h"

#include <QtTest>

#include <type_traits>

using namespace Velmar::VideoOverlay;

static_assert(std::is_abstract_v<CAbstractOsdDatasourceFactory>);
static_assert(std::has_virtual_destructor_v<CAbstractOsdDatasourceFactory>);
static_assert(!std::is_base_of_v<QObject, CAbstractOsdDatasourceFactory>);

namespace {

class Factory : public CAbstractOsdDatasourceFactory
{
public:
    using CAbstractOsdDatasourceFactory::CAbstractOsdDatasourceFactory;

    bool accept(ElementParam &param) override
    {
        ++asked;
        param.insert(QStringLiteral("seen"), true); // the record itself, not a copy
        return accepting;
    }

    COsdElementDatasource *
    buildDatasource(CVideoOverlayElement *element, ElementParam &param,
                    QSharedPointer<TemplateCaptionResolver> resolver) override
    {
        ++built;
        given = resolver;
        return buildsNothing ? nullptr : new COsdElementDatasource(element, param);
    }

    bool accepting = true;
    bool buildsNothing = false;
    int asked = 0;
    int built = 0;
    QSharedPointer<TemplateCaptionResolver> given;
};

} // namespace

class tst_CAbstractOsdDatasourceFactory : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void virtualOperationsStandInOrder()
    {
        QCOMPARE(Velmar::Test::slotOf(&CAbstractOsdDatasourceFactory::accept), 2);
        QCOMPARE(Velmar::Test::slotOf(&CAbstractOsdDatasourceFactory::buildDatasource), 3);
    }

    void buildsWithTheKeptResolver_data()
    {
        QTest::addColumn<bool>("withResolver");
        QTest::newRow("a resolver") << true;
        QTest::newRow("none") << false;
    }

    void buildsWithTheKeptResolver()
    {
        QFETCH(bool, withResolver);
        QSharedPointer<TemplateCaptionResolver> resolver;
        if (withResolver)
            resolver.reset(
                new TemplateCaptionResolver(Velmar::CATManagement::CatalogStore::instance()));
        Factory factory(resolver);
        CVideoOverlayText text;
        ElementParam param;

        COsdElementDatasource *const datasource = factory.getDatasource(&text, param);

        QVERIFY(datasource);
        QCOMPARE(datasource->parent(), static_cast<QObject *>(&text));
        QCOMPARE(factory.given, resolver);
        QCOMPARE(factory.asked, 1);
        QCOMPARE(factory.built, 1);
        QVERIFY(param.contains(QStringLiteral("seen")));
        QVERIFY(param.contains(QStringLiteral("id")));
    }

    void refusesWhatItDoesNotAccept()
    {
        Factory factory(QSharedPointer<TemplateCaptionResolver> {});
        factory.accepting = false;
        CVideoOverlayText text;
        ElementParam param;
        QVERIFY(!factory.getDatasource(&text, param));
        QCOMPARE(factory.asked, 1);
        QCOMPARE(factory.built, 0);
        QVERIFY(!param.contains(QStringLiteral("id")));
        QVERIFY(text.findChildren<COsdElementDatasource *>().isEmpty());
    }

    void handsNullOn()
    {
        Factory factory(QSharedPointer<TemplateCaptionResolver> {});
        factory.buildsNothing = true;
        CVideoOverlayText text;
        ElementParam param;
        QVERIFY(!factory.getDatasource(&text, param));
        QCOMPARE(factory.built, 1);
    }
};

QTEST_MAIN(tst_CAbstractOsdDatasourceFactory)
#include "tst_CAbstractOsdDatasourceFactory.moc"
