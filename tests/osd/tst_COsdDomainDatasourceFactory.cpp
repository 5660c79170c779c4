// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdDomainDatasourceFactory.h"

#include "host/platform/AppStateControl.h"
#include "tests/osd/TestCatalog.h"
#include "tests/osd/TestRecord.h"
#include "tests/support/LoggedTest.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/CVideoOverlayImage.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/osd/COsdDomainDatasource.h"

#include <QTest>

using Velmar::AppStateControl;
using Velmar::Database::CDomainObjectPointer;
using Velmar::Test::TestRecord;
using Velmar::Test::TestTemplates;
using Velmar::VideoOverlay::COsdDomainDatasource;
using Velmar::VideoOverlay::COsdDomainDatasourceFactory;
using Velmar::VideoOverlay::COsdElementDatasource;
using Velmar::VideoOverlay::CVideoOverlayImage;
using Velmar::VideoOverlay::CVideoOverlayText;
using Velmar::VideoOverlay::ElementParam;
using Velmar::VideoOverlay::TemplateCaptionResolver;
using Kind = Velmar::Database::DomainRecord::Kind;

namespace {

enum class Follows { Inspection, Observation, Nothing };

ElementParam recordOf(const QString &column)
{
    ElementParam param = ElementParam::createInspTextDefault();
    param.insert(QStringLiteral("columnBound"), column);
    return param;
}

} // namespace

Q_DECLARE_METATYPE(Follows)

class tst_COsdDomainDatasourceFactory : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void accept_data()
    {
        QTest::addColumn<QVariant>("source");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("DB") << QVariant(QStringLiteral("DB")) << true;
        QTest::newRow("bytes") << QVariant(QByteArray("DB")) << true;
        QTest::newRow("lower case") << QVariant(QStringLiteral("db")) << false;
        QTest::newRow("longer") << QVariant(QStringLiteral("DB ")) << false;
        QTest::newRow("another") << QVariant(QStringLiteral("SYS")) << false;
        QTest::newRow("empty") << QVariant(QStringLiteral("")) << false;
        QTest::newRow("absent") << QVariant() << false;
    }

    void accept()
    {
        QFETCH(QVariant, source);
        QFETCH(bool, accepted);
        ElementParam param;
        if (source.isValid())
            param.insert(QStringLiteral("textDatasource"), source);
        const ElementParam before = param;
        COsdDomainDatasourceFactory factory(m_resolver);

        QCOMPARE(factory.accept(param), accepted);

        QCOMPARE(param, before); // looking does not insert the key
        CVideoOverlayText element;
        QCOMPARE(factory.getDatasource(&element, param) != nullptr, accepted);
        takeLog();
    }

    void anythingButATextGetsNone()
    {
        COsdDomainDatasourceFactory factory(m_resolver);
        CVideoOverlayImage picture;
        ElementParam param = recordOf(QStringLiteral("INS_Inspector"));
        QVERIFY(!factory.getDatasource(&picture, param));
        QVERIFY(!factory.getDatasource(nullptr, param));
        QVERIFY(picture.children().size() <= 1); // its timer
    }

    void refreshedBy_data()
    {
        QTest::addColumn<QString>("column");
        QTest::addColumn<Follows>("follows");
        const auto row = [](const char *column, Follows follows) {
            QTest::newRow(column) << QString::fromLatin1(column) << follows;
        };
        row("PRJ_Name", Follows::Inspection);
        row("INS_Inspector", Follows::Inspection);
        row("V_INS_Customer", Follows::Inspection);
        row("JOB_Number", Follows::Inspection);
        row("OBJ_Key", Follows::Inspection);
        row("OBS_OpCode", Follows::Observation);
        row("OBS_Observation", Follows::Observation);
        row("OBS_X_FK.INS_Inspector", Follows::Inspection);
        row("INS_X_FK.OBS_OpCode", Follows::Observation);
        row("A.B.JOB_Number", Follows::Inspection);
        row("ins_Inspector", Follows::Nothing);
        row("obs_OpCode", Follows::Nothing);
        row("XINS_Inspector", Follows::Nothing);
        row("INS", Follows::Nothing);
        row("SPEED", Follows::Nothing);
        row("INS_X_FK.SPEED", Follows::Nothing);
        row("INS_Inspector.", Follows::Nothing);
        row("", Follows::Nothing);
    }

    void refreshedBy()
    {
        QFETCH(QString, column);
        QFETCH(Follows, follows);
        COsdDomainDatasourceFactory factory(m_resolver);
        CVideoOverlayText element;
        ElementParam param = recordOf(column);

        COsdElementDatasource *const datasource = factory.getDatasource(&element, param);

        QVERIFY(qobject_cast<COsdDomainDatasource *>(datasource));
        QCOMPARE(datasource->parent(), &element);
        QStringList expected;
        if (follows == Follows::Nothing)
            expected.append(QStringLiteral("4 VideoOverlayLibrary: "
                                           "COsdDbSettingsBuilder::buildDatasource not found "
                                           "connection for column ")
                            + column.section(QLatin1Char('.'), -1));
        QCOMPARE(takeLog(), expected);

        AppStateControl::setActiveInspection(m_inspection);
        const bool byInspection
            = COsdDomainDatasource::currentInspection() == CDomainObjectPointer(m_inspection);
        AppStateControl::announceObservation(m_observation);
        const bool byObservation
            = COsdDomainDatasource::currentInspection() == CDomainObjectPointer(m_observation);
        AppStateControl::setActiveProject(m_inspection);
        AppStateControl::setActiveProject({});
        takeLog();
        QCOMPARE(byInspection, follows == Follows::Inspection);
        QCOMPARE(byObservation, follows == Follows::Observation);
    }

    void observationsAreKeptWhenTheInspectionChanges()
    {
        m_observation->values.insert(QStringLiteral("OBS_OpCode"), QStringLiteral("BAB"));
        COsdDomainDatasourceFactory factory(m_resolver);
        CVideoOverlayText element;
        ElementParam param = recordOf(QStringLiteral("OBS_OpCode"));
        param.insert(QStringLiteral("captionEnabled"), false);
        factory.getDatasource(&element, param);
        AppStateControl::announceObservation(m_observation);
        QCOMPARE(element.text(), QStringLiteral("BAB"));
        takeLog();

        AppStateControl::setActiveInspection({});

        QCOMPARE(element.text(), QStringLiteral("BAB"));
        QCOMPARE(takeLog(), QStringList());
    }

    void aDatasourceEndsWithItsElement()
    {
        COsdDomainDatasourceFactory factory(m_resolver);
        {
            CVideoOverlayText element;
            ElementParam param = recordOf(QStringLiteral("INS_Inspector"));
            factory.getDatasource(&element, param);
        }
        AppStateControl::setActiveInspection(m_inspection);
        QVERIFY(!COsdDomainDatasource::currentInspection());
        QCOMPARE(takeLog(), QStringList());
    }

protected:
    void prepare() override
    {
        AppStateControl::setActiveInspection({});
        COsdDomainDatasource::rememberDomainObject({});
        COsdDomainDatasource::captionResolver = m_resolver;
        m_inspection = QSharedPointer<TestRecord>::create(Kind::Inspection);
        m_observation = QSharedPointer<TestRecord>::create(Kind::Observation, m_inspection);
    }

private:
    TestTemplates m_templates;
    QSharedPointer<TemplateCaptionResolver> m_resolver
        = QSharedPointer<TemplateCaptionResolver>::create(m_templates);
    QSharedPointer<TestRecord> m_inspection;
    QSharedPointer<TestRecord> m_observation;
};

QTEST_MAIN(tst_COsdDomainDatasourceFactory)
#include "tst_COsdDomainDatasourceFactory.moc"
