// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdStaticTextDatasource.h"

#include "tests/osd/RecordedText.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"

#include <QtTest>

using namespace Velmar::VideoOverlay;
using Velmar::Test::RecordedText;

class tst_COsdStaticTextDatasource : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void hasNoMembersForQml()
    {
        const QMetaObject &meta = COsdStaticTextDatasource::staticMetaObject;
        QCOMPARE(Velmar::Test::methodsOf(meta), QStringList());
        QCOMPARE(Velmar::Test::propertiesOf(meta), QStringList());
        QCOMPARE(meta.superClass(), &COsdElementDatasource::staticMetaObject);
    }

    void appliesTheRecordInOrder()
    {
        ElementParam param;
        param.insert(QStringLiteral("enabled"), true);
        param.insert(QStringLiteral("timeout"), 5); // hides, so that the last step is seen
        param.insert(QStringLiteral("captionEnabled"), true);
        param.insert(QStringLiteral("text"), QStringLiteral("Pipe 1"));
        param.insert(QStringLiteral("backgroundColor"), QColor(1, 2, 3));
        param.insert(QStringLiteral("textColor"), QStringLiteral("#0a0b0c"));
        RecordedText text;

        COsdStaticTextDatasource datasource(&text, param);

        QCOMPARE(
            text.take().join(QStringLiteral(", ")),
            QStringLiteral("type 0, row 0, column 0, visible true, enabled true, visible true, "
                           "maxLineNumber 0, visible false, timeout 5, background #010203, "
                           "foreground #0a0b0c, text Pipe 1, visible true"));
        QCOMPARE(datasource.buildText(), QStringLiteral("Pipe 1"));
        QCOMPARE(text.caption(), QStringLiteral("before")); // a fixed text has none
    }

    void readsWhatIsMissingAsNothing()
    {
        ElementParam param;
        RecordedText text;
        text.setEnabled(true);
        text.setText(QStringLiteral("old"));
        text.setBackgroundColor(Qt::red);
        text.setTextColor(Qt::red);
        COsdStaticTextDatasource datasource(&text, param);
        QCOMPARE(text.text(), QString());
        QVERIFY(!text.backgroundColor().isValid());
        QVERIFY(!text.textColor().isValid());
        QVERIFY(!text.visible());
    }

    void showsANewText()
    {
        ElementParam param;
        param.insert(QStringLiteral("text"), QStringLiteral("one"));
        param.insert(QStringLiteral("captionEnabled"), true);
        RecordedText text;
        COsdStaticTextDatasource datasource(&text, param);
        text.take();

        datasource.setValue(QStringLiteral(" two "));

        QCOMPARE(datasource.buildText(), QStringLiteral(" two "));
        QCOMPARE(text.take(), QStringList {QStringLiteral("text  two ")});
        text.setText(QStringLiteral("other"));
        text.take();
        datasource.setValue(QStringLiteral(" two ")); // writes anew
        QCOMPARE(text.text(), QStringLiteral(" two "));
    }
};

QTEST_MAIN(tst_COsdStaticTextDatasource)
#include "tst_COsdStaticTextDatasource.moc"
