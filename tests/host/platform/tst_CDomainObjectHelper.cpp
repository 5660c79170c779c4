// SPDX-License-Identifier: Apache-2.0
#include "platform/database/CDomainObjectHelper.h"

#include "host/platform/InspectionDatabase.h"
#include "platform/database/CDomainObjectDataAccessor.h"
#include "tests/support/LoggedTest.h"

#include <QTest>

using Velmar::Database::CDomainObjectDataAccessor;
using Velmar::Database::CDomainObjectHelper;
using Velmar::Database::CDomainObjectPointer;
using Velmar::Database::InspectionDatabase;
using Kind = InspectionDatabase::Kind;

class tst_CDomainObjectHelper : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    InspectionDatabase m_database;
    CDomainObjectPointer m_project, m_job, m_section, m_inspection, m_observation;

    void prepare() override
    {
        const QString catalog = QStringLiteral("PRJ_CatalogId");
        m_database.create(QStringLiteral(":memory:"));
        m_project = m_database.add(Kind::Project, {}, {{catalog, QStringLiteral("catalog-7")}});
        m_job = m_database.add(Kind::Job, m_project);
        m_section = m_database.add(Kind::Section, m_project);
        m_inspection = m_database.add(Kind::Inspection, m_section,
                                      {{QStringLiteral("INS_Number"), QStringLiteral("I-1")}});
        m_observation = m_database.add(Kind::Observation, m_inspection);
    }

    static QString number(const CDomainObjectPointer &record)
    {
        return record ? record->readValue(QStringLiteral("INS_Number")).toString() : QString();
    }

private Q_SLOTS:
    void catalogId()
    {
        for (const auto &record : {m_project, m_job, m_section, m_inspection, m_observation})
            QCOMPARE(CDomainObjectHelper::catalogIdFromObject(record), QStringLiteral("catalog-7"));
        QCOMPARE(CDomainObjectHelper::catalogIdFromObject({}), QString());
        QCOMPARE(CDomainObjectHelper::catalogIdFromObject(m_database.add(Kind::Project, {})),
                 QString());
        m_database.close();
        QCOMPARE(CDomainObjectHelper::catalogIdFromObject(m_project), QString());
        QCOMPARE(CDomainObjectHelper::catalogIdFromObject(m_observation), QString());
    }

    void inspection()
    {
        const auto find = &CDomainObjectHelper::inspectionObjectFromObject;
        QCOMPARE(find(m_inspection), m_inspection);
        QCOMPARE(number(find(m_observation)), QStringLiteral("I-1"));
        for (const auto &record : {m_project, m_job, m_section, CDomainObjectPointer()})
            QVERIFY(!find(record));
        m_database.close();
        QVERIFY(!find(m_observation));
    }

    void observation()
    {
        const auto find = &CDomainObjectHelper::observationObjectFromObject;
        QCOMPARE(find(m_observation), m_observation);
        for (const auto &record : {m_project, m_job, m_section, m_inspection})
            QVERIFY(!find(record));
        QVERIFY(!find({}));
    }

    void accessor()
    {
        const QString column = QStringLiteral("INS_Number");
        CDomainObjectDataAccessor accessor;
        QVERIFY(!accessor.readValue(column).isValid());
        accessor.setDomainObject(m_inspection);
        QCOMPARE(accessor.readValue(column), QVariant(QStringLiteral("I-1")));
        QVERIFY(!accessor.readValue(QStringLiteral("OBS_Memo")).isValid());
        accessor.setDomainObject(m_observation);
        QVERIFY(!accessor.readValue(column).isValid());
        accessor.setDomainObject({});
        QVERIFY(!accessor.readValue(column).isValid());
    }
};

QTEST_GUILESS_MAIN(tst_CDomainObjectHelper)
#include "tst_CDomainObjectHelper.moc"
