// SPDX-License-Identifier: Apache-2.0
#include "tests/osd/TestCatalog.h"
#include "tests/support/LoggedTest.h"
#include "videooverlay/osd/COsdBuilder.h"

#include <QTest>

using Velmar::Test::ColumnSpec;
using Velmar::Test::TestCatalog;
using Velmar::VideoOverlay::COsdBuilder;
using ColumnType = Velmar::Templates::CTemplateColumn::Type;

namespace {

const QString category = QStringLiteral("VideoOverlayLibrary: ");

QString trace(const QString &message)
{
    return QStringLiteral("4 ") + category + message;
}

ColumnSpec column(const char *table, const char *name)
{
    return {QString::fromLatin1(table),
            QString::fromLatin1(name),
            QStringLiteral("Caption"),
            ColumnType::Text,
            {}};
}

} // namespace

/// Which columns of a template become inspection texts.
class tst_COsdBuilderColumns : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void offeredColumns_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("offered"); // the types
        QTest::addColumn<bool>("reported");
        const QHash<QString, QStringList> tablesOfPrefix {
            {QStringLiteral("OBJ_"), {QStringLiteral("SECTION"), QStringLiteral("NODE")}},
            {QStringLiteral("INS_"), {QStringLiteral("SECINSP")}},
            {QStringLiteral("PRJ_"), {QStringLiteral("PROJECT")}},
            {QStringLiteral("JOB_"), {QStringLiteral("JOB")}},
            {QStringLiteral("OBS_Observation"), {QStringLiteral("SECOBS")}},
            {QStringLiteral("OBS_OpCode"), {QStringLiteral("SECOBS")}},
            {QStringLiteral("V_INS_Customer"), {QStringLiteral("SECINSP")}},
            {QStringLiteral("V_INS_Contractor"), {QStringLiteral("SECINSP")}},
            {QStringLiteral("V_INS_TimeOfStart"), {QStringLiteral("SECINSP")}},
            {QStringLiteral("V_INS_DateOfStart"), {QStringLiteral("SECINSP")}},
            {QStringLiteral("V_INS_DateOfEnd"), {QStringLiteral("SECINSP")}},
            {QStringLiteral("V_INS_TimeOfEnd"), {QStringLiteral("SECINSP")}},
        };
        const char *const tables[]
            = {"SECTION", "NODE", "PROJECT", "SECINSP", "SECOBS", "JOB", "section", "OTHER", ""};
        const char *const endings[] = {"", "x", "_REF", "_FK", "_REFx", "_ref", "_FKx", "_fk"};
        for (auto it = tablesOfPrefix.begin(); it != tablesOfPrefix.end(); ++it) {
            for (const char *table : tables) {
                for (const char *ending : endings) {
                    const QString tableName = QString::fromLatin1(table);
                    const QString name = it.key() + QString::fromLatin1(ending);
                    const bool reference = !qstrcmp(ending, "_REF") || !qstrcmp(ending, "_FK");
                    const bool offered = it.value().contains(tableName) && !reference;
                    QTest::newRow(qPrintable(tableName + QLatin1Char(' ') + name))
                        << tableName << name
                        << (!offered                                   ? QString()
                                : tableName == QLatin1String("SECOBS") ? QStringLiteral("3")
                                                                       : QStringLiteral("36"))
                        << (!reference && !offered);
                }
            }
        }
        const char *const unknown[]
            = {"",       "INS",        "obj_Key", "OBS_Memo",          "OBS_Observatio",
               "V_INS_", "V_INS_Time", "V_OBJ_X", "V_INS_customer",    " INS_X",
               "XPRJ_A", "SPEED",      "_REF",    "V_INS_DateOfBirth", "TIME"};
        for (const char *name : unknown)
            QTest::newRow(qPrintable(QStringLiteral("unknown <%1>").arg(QString::fromLatin1(name))))
                << QStringLiteral("SECINSP") << QString::fromLatin1(name) << QString() << false;
    }

    void offeredColumns()
    {
        QFETCH(QString, table);
        QFETCH(QString, name);
        QFETCH(QString, offered);
        QFETCH(bool, reported);
        ColumnSpec spec {table, name, {}};
        QSet<QString> expected;
        for (const QChar type : offered)
            expected.insert(table + QLatin1Char('.') + name + QLatin1Char('.') + type);

        QCOMPARE(COsdBuilder::instance()->getAllOsdColumnsForTemplate(TestCatalog({spec})),
                 expected);

        QCOMPARE(takeLog(),
                 !reported ? QStringList()
                           : QStringList(trace(QStringLiteral("Not allowed table name <") + table
                                               + QStringLiteral("> or <") + name
                                               + QStringLiteral("> column's prefix!"))));
        // Without the flag it is not offered and not worth a word.
        spec.osd = false;
        QVERIFY(
            COsdBuilder::instance()->getAllOsdColumnsForTemplate(TestCatalog({spec})).isEmpty());
        QCOMPARE(takeLog(), QStringList());
    }

    void offeredViews_data()
    {
        QTest::addColumn<QString>("view");
        QTest::addColumn<bool>("offered");
        for (const char *view : {"detail_s_inspection", "detail_s", "detail_p", "grid_so"})
            QTest::newRow(view) << QString::fromLatin1(view) << true;
        for (const char *view : {"detail", "DETAIL_S", "grid_s", "detail_so", ""})
            QTest::newRow(qPrintable(QStringLiteral("no: <%1>").arg(QString::fromLatin1(view))))
                << QString::fromLatin1(view) << false;
    }

    void offeredViews()
    {
        QFETCH(QString, view);
        QFETCH(bool, offered);
        ColumnSpec good = column("SECTION", "OBJ_Key");
        good.view = view;
        ColumnSpec bad = column("JOB", "OBJ_Key");
        bad.view = view;
        const auto keys
            = COsdBuilder::instance()->getAllOsdColumnsForTemplate(TestCatalog({good, bad}));
        QCOMPARE(keys.size(), offered ? 2 : 0);
        QCOMPARE(takeLog().size(), offered ? 1 : 0);
    }

    void columnsOfSeveralViews()
    {
        ColumnSpec again = column("SECTION", "OBJ_Key");
        again.view = QStringLiteral("grid_so");
        const QSet<QString> expected {
            QStringLiteral("SECTION.OBJ_Key.3"), QStringLiteral("SECTION.OBJ_Key.6"),
            QStringLiteral("SECINSP.INS_Inspector.3"), QStringLiteral("SECINSP.INS_Inspector.6")};
        QCOMPARE(COsdBuilder::instance()->getAllOsdColumnsForTemplate(TestCatalog(
                     {column("SECTION", "OBJ_Key"), again, column("SECINSP", "INS_Inspector")})),
                 expected);
        QVERIFY(COsdBuilder::instance()->getAllOsdColumnsForTemplate(TestCatalog({})).isEmpty());
    }
};

QTEST_MAIN(tst_COsdBuilderColumns)
#include "tst_COsdBuilderColumns.moc"
