// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/ElementParam.h"

#include "tests/support/LoggedTest.h"

#include <QColor>
#include <QList>
#include <QTest>

#include <type_traits>

using Velmar::VideoOverlay::ElementParam;

static_assert(std::is_base_of_v<QHash<QString, QVariant>, ElementParam>);
static_assert(sizeof(ElementParam) == sizeof(QHash<QString, QVariant>), "no other members");
static_assert(std::is_same_v<decltype(ElementParam::NAME_COLUMNBOUND), const QString>);

namespace {

struct Entry
{
    const char *key;
    QMetaType::Type type;
    QVariant value;
};

} // namespace

class tst_ElementParam : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    static void compareRecord(const ElementParam &record, const QVector<Entry> &expected)
    {
        QCOMPARE(record.size(), expected.size());
        for (const Entry &entry : expected) {
            const QVariant value = record.value(QLatin1String(entry.key));
            QVERIFY2(value.isValid(), entry.key);
            QVERIFY2(int(value.userType()) == int(entry.type),
                     qPrintable(QLatin1String(entry.key) + QLatin1String(" is a ")
                                + QLatin1String(value.typeName())));
            QVERIFY2(value == entry.value, entry.key);
        }
    }

    static QVector<Entry> inspectionDefault(int type, int row)
    {
        return {{"type", QMetaType::Int, type},
                {"textDatasource", QMetaType::QString, QStringLiteral("DB")},
                {"enabled", QMetaType::Bool, false},
                {"backgroundColor", QMetaType::QColor, QColor(0, 0, 255)},
                {"textColor", QMetaType::QColor, QColor(255, 255, 255)},
                {"timeout", QMetaType::Int, 0},
                {"col", QMetaType::Int, 0},
                {"row", QMetaType::Int, row},
                {"captionEnabled", QMetaType::Bool, true}};
    }

private Q_SLOTS:
    void constants_data()
    {
        QTest::addColumn<QString>("constant");
        QTest::addColumn<QString>("value");

        const auto row = [](const char *name, const QString &constant, const char *value) {
            QTest::newRow(name) << constant << QString::fromLatin1(value);
        };
        row("column bound", ElementParam::NAME_COLUMNBOUND, "columnBound");
        row("column caption", ElementParam::NAME_COLUMNCAPTION, "columnCaption");
        row("total distance", ElementParam::NAME_TOTAL_DISTANCE_COUNTER, "TOTAL_DISTANCE_COUNTER");
        row("section distance", ElementParam::NAME_SECTION_DISTANCE_COUNTER,
            "SECTION_DISTANCE_COUNTER");
        row("satellite distance", ElementParam::NAME_SAT_DISTANCE_COUNTER, "SAT_DISTANCE_COUNTER");
        row("speed", ElementParam::NAME_SPEED, "SPEED");
        row("date", ElementParam::NAME_DATE, "DATE");
        row("time", ElementParam::NAME_TIME, "TIME");
        row("video time", ElementParam::NAME_VIDEO_TIME_COUNTER, "VIDEO_TIME_COUNTER");
        row("camera tilt", ElementParam::NAME_CAMERA_TILT, "CAMERA_TILT");
        row("camera temperature", ElementParam::NAME_CAMERA_TEMPERATURE, "CAMERA_TEMPERATURE");
        row("camera pan", ElementParam::NAME_CAMERA_PAN, "CAMERA_PAN");
        row("camera pressure", ElementParam::NAME_CAMERA_PRESSURE, "CAMERA_PRESSURE");
        row("crawler pitch", ElementParam::NAME_CRAWLER_PITCH, "CRAWLER_PITCH");
        row("crawler roll", ElementParam::NAME_CRAWLER_ROLL, "CRAWLER_ROLL");
        row("crawler temperature", ElementParam::NAME_CRAWLER_TEMPERATURE, "CRAWLER_TEMPERATURE");
        row("crawler pressure", ElementParam::NAME_CRAWLER_PRESSURE, "CRAWLER_PRESSURE");
        row("object temperature", ElementParam::NAME_OBJECT_TEMPERATURE, "OBJECT_TEMPERATURE");
        row("free text box", ElementParam::NAME_OSD_FREE_TEXT_BOX, "OSD_FREE_TEXT_BOX");
        row("pan and tilt has blanks", ElementParam::NAME_PAN_AND_TILT, "PAN AND TILT");
        row("status text 1", ElementParam::NAME_STATUS_TEXT_1, "1");
        row("status text 2", ElementParam::NAME_STATUS_TEXT_2, "2");
        row("status text 3", ElementParam::NAME_STATUS_TEXT_3, "3");
        row("status text 4", ElementParam::NAME_STATUS_TEXT_4, "4");
        row("static id", ElementParam::NAME_STATIC_ID, "staticId");
    }

    void constants()
    {
        QFETCH(QString, constant);
        QFETCH(QString, value);
        QCOMPARE(constant, value);
    }

    void generalSettingsDefault()
    {
        const ElementParam record = ElementParam::createGeneralSettingsDefault();
        compareRecord(record,
                      {{"type", QMetaType::Int, 7},
                       {"id", QMetaType::Int, 0x0fffffff},
                       {"general", QMetaType::Bool, true},
                       {"analogVideo", QMetaType::Bool, true},
                       {"kx70ii_state", QMetaType::Bool, false},
                       {"kx70ii_col", QMetaType::Int, 0},
                       {"kx70ii_row", QMetaType::Int, 0},
                       {"kx70ii_units", QMetaType::QString, QStringLiteral("metric")}});
        QCOMPARE(record.value(QStringLiteral("id")).toInt(), 268435455);
        QVERIFY(!record.contains(QStringLiteral("globalTransparency")));
    }

    void inspStaticTextDefault()
    {
        compareRecord(ElementParam::createInspStaticTextDefault(), inspectionDefault(6, 10));
    }

    void inspTextDefault()
    {
        compareRecord(ElementParam::createInspTextDefault(), inspectionDefault(3, 11));
    }

    void inspectionDefaultsDifferInTypeAndRowOnly()
    {
        ElementParam text = ElementParam::createInspTextDefault();
        const ElementParam staticText = ElementParam::createInspStaticTextDefault();
        QVERIFY(text != staticText);
        text.insert(QStringLiteral("type"), 6);
        QVERIFY(text != staticText);
        text.insert(QStringLiteral("row"), 10);
        QCOMPARE(text, staticText);
    }

    void factoriesMakeNewRecords()
    {
        ElementParam changed = ElementParam::createInspTextDefault();
        changed.insert(QStringLiteral("row"), 3);
        QCOMPARE(ElementParam::createInspTextDefault().value(QStringLiteral("row")).toInt(), 11);
    }

    void absentKeys()
    {
        const ElementParam empty;
        QVERIFY(empty.isEmpty());
        QVERIFY(!empty.value(QStringLiteral("row")).isValid());
        QCOMPARE(empty.value(QStringLiteral("timeout")).toInt(), 0);
        QCOMPARE(empty.value(QStringLiteral("row")).toInt(), 0);
        QCOMPARE(empty.value(QStringLiteral("col")).toInt(), 0);
        QCOMPARE(empty.value(QStringLiteral("enabled")).toBool(), false);
        QCOMPARE(empty.value(QStringLiteral("text")).toString(), QString());
    }

    void copiesShareUntilWrittenTo()
    {
        const ElementParam original = ElementParam::createInspTextDefault();
        ElementParam copy = original;
        QVERIFY(copy.isSharedWith(original));
        copy.insert(QStringLiteral("row"), 5);
        QVERIFY(!copy.isSharedWith(original));
        QCOMPARE(original.value(QStringLiteral("row")).toInt(), 11);
    }

    void standsInContainers()
    {
        const QList<ElementParam> list {ElementParam::createInspTextDefault(),
                                        ElementParam::createGeneralSettingsDefault()};
        QCOMPARE(list.at(1).value(QStringLiteral("type")).toInt(), 7);

        QHash<int, ElementParam> byNumber;
        byNumber.insert(4, list.first());
        QHash<QString, const ElementParam *> byColumn;
        byColumn.insert(QStringLiteral("OBJ_Street"), &byNumber[4]);
        QCOMPARE(*byColumn.value(QStringLiteral("OBJ_Street")), list.first());

        QCOMPARE(QVariant::fromValue(list.first()).value<ElementParam>(), list.first());
    }

    void operationsOfTheMap()
    {
        ElementParam record {{QStringLiteral("row"), 1}, {QStringLiteral("text"), QString()}};
        QVERIFY(record.contains(QStringLiteral("text")));
        record.insert(QStringLiteral("row"), 2);
        QCOMPARE(record.size(), 2);
        QCOMPARE(record.value(QStringLiteral("row")).toInt(), 2);
        record.insert(QStringLiteral("col"), 3);
        QStringList keys = record.keys();
        keys.sort();
        QCOMPARE(
            keys,
            QStringList({QStringLiteral("col"), QStringLiteral("row"), QStringLiteral("text")}));
    }

    /// Hash order is random: two prints of equal records must be equal all the same.
    void debugPrinterSortsKeys()
    {
        ElementParam record;
        record.insert(QStringLiteral("row"), 11);
        record.insert(QStringLiteral("col"), 7);
        record.insert(QStringLiteral("text"), QStringLiteral("flow"));
        QString print;
        QDebug(&print) << record;

        const int col = print.indexOf(QLatin1String("col"));
        const int row = print.indexOf(QLatin1String("row"));
        const int text = print.indexOf(QLatin1String("text"));
        QVERIFY2(col >= 0 && col < row && row < text, qPrintable(print));
        QVERIFY2(print.contains(QLatin1String("11")) && print.contains(QLatin1String("flow")),
                 qPrintable(print));
    }
};

QTEST_MAIN(tst_ElementParam)
#include "tst_ElementParam.moc"
