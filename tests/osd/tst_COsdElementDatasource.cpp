// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdElementDatasource.h"

#include "tests/osd/RecordedText.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"

#include <QPointer>
#include <QtTest>

using namespace Velmar::VideoOverlay;
using Velmar::Test::RecordedText;

namespace {

QStringList lines(std::initializer_list<const char *> texts)
{
    QStringList result;
    for (const char *text : texts)
        result.append(QString::fromLatin1(text));
    return result;
}

/// Shows what it keeps for itself.
class Datasource : public COsdElementDatasource
{
public:
    using COsdElementDatasource::COsdElementDatasource;
    const ElementParam &kept() const { return m_params; }
    CVideoOverlayElement *fed() const { return m_element; }
};

} // namespace

class tst_COsdElementDatasource : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void hasNoMembersForQml()
    {
        const QMetaObject &meta = COsdElementDatasource::staticMetaObject;
        QCOMPARE(Velmar::Test::methodsOf(meta), QStringList());
        QCOMPARE(Velmar::Test::propertiesOf(meta), QStringList());
    }

    void appliesTheRecordInOrder()
    {
        ElementParam param;
        param.insert(QStringLiteral("id"), 3);
        param.insert(QStringLiteral("type"), int(CVideoOverlayElement::FreeText));
        param.insert(QStringLiteral("row"), 4);
        param.insert(QStringLiteral("col"), 5);
        param.insert(QStringLiteral("enabled"), true);
        param.insert(QStringLiteral("maxLineNumber"), 6);
        param.insert(QStringLiteral("timeout"), 7);
        param.insert(QStringLiteral("captionEnabled"), false);
        const ElementParam given = param;
        RecordedText element;

        const Datasource datasource(&element, param);

        QCOMPARE(element.take(),
                 lines({"type 4", "row 4", "column 5", "enabled true", "visible false",
                        "maxLineNumber 6", "timeout 7", "captionVisible false"}));
        ElementParam withId = given;
        withId.insert(QStringLiteral("id"), 17);
        QCOMPARE(param, withId);
        QCOMPARE(element.recordAtType, withId); // there before anything was applied
        QCOMPARE(element.getParamObject(), withId);
        QCOMPARE(datasource.kept(), given);
        QCOMPARE(datasource.fed(), static_cast<CVideoOverlayElement *>(&element));
        QCOMPARE(datasource.parent(), static_cast<QObject *>(&element));
    }

    void readsWhatIsMissingOrWrongAsNothing_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("missing") << QVariant();
        QTest::newRow("not convertible") << QVariant(QVariantList {1});
    }

    void readsWhatIsMissingOrWrongAsNothing()
    {
        QFETCH(QVariant, value);
        ElementParam param;
        if (value.isValid()) {
            for (const char *key :
                 {"type", "row", "col", "enabled", "maxLineNumber", "timeout", "captionEnabled"})
                param.insert(QString::fromLatin1(key), value);
        }
        RecordedText element;
        element.setEnabled(true);
        element.setTimeout(9);
        element.take();

        const Datasource datasource(&element, param);

        QCOMPARE(element.take(),
                 lines({"type 0", "row 0", "column 0", "enabled false", "visible false",
                        "maxLineNumber 0", "timeout 0", "captionVisible false"}));
        QCOMPARE(element.getParamObject().value(QStringLiteral("id")), QVariant(17));
    }

    void convertsTheType_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<int>("type");
        for (int i = 0; i <= 7; ++i)
            QTest::addRow("%d", i) << QVariant(i) << i;
        QTest::newRow("digits") << QVariant(QStringLiteral("3")) << 3;
        QTest::newRow("name") << QVariant(QStringLiteral("InspText")) << 3;
        QTest::newRow("fraction, rounded") << QVariant(3.7) << 4;
        QTest::newRow("the enumeration")
            << QVariant::fromValue(CVideoOverlayElement::FreePicture) << 2;
        QTest::newRow("none of the kinds") << QVariant(99) << 99;
        QTest::newRow("below the kinds") << QVariant(-1) << -1;
        QTest::newRow("invalid") << QVariant() << 0;
        QTest::newRow("unknown name") << QVariant(QStringLiteral("Nothing")) << 0;
    }

    void convertsTheType()
    {
        QFETCH(QVariant, value);
        QFETCH(int, type);
        ElementParam param;
        param.insert(QStringLiteral("type"), value);
        param.insert(QStringLiteral("enabled"), true);
        CVideoOverlayElement element;
        const Datasource datasource(&element, param);
        QCOMPARE(int(element.type()), type);
        // Nothing trips over a kind that there is not.
        element.handleTimeout();
        element.determineVisibility();
        element.getElement();
        element.getAllProperties();
        element.getChangedProperties();
    }

    void convertsNumbersAndSwitches()
    {
        ElementParam param;
        param.insert(QStringLiteral("row"), QStringLiteral("12"));
        param.insert(QStringLiteral("col"), 3.0);
        param.insert(QStringLiteral("enabled"), QStringLiteral("true"));
        param.insert(QStringLiteral("captionEnabled"), 1);
        CVideoOverlayElement element;
        const Datasource datasource(&element, param);
        QCOMPARE(element.row(), 12);
        QCOMPARE(element.column(), 3);
        QVERIFY(element.enabled());
        QVERIFY(element.captionVisible());
    }

    void diesWithItsElement()
    {
        ElementParam param;
        auto *const element = new CVideoOverlayElement;
        const QPointer<COsdElementDatasource> datasource
            = new COsdElementDatasource(element, param);
        delete element;
        QVERIFY(!datasource);
    }
};

QTEST_MAIN(tst_COsdElementDatasource)
#include "tst_COsdElementDatasource.moc"
