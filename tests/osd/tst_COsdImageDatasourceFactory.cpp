// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdImageDatasourceFactory.h"

#include "host/platform/Directories.h"
#include "tests/support/LoggedTest.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/CVideoOverlayImage.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/osd/COsdImageDatasource.h"

#include <QtTest>

using namespace Velmar::VideoOverlay;

class tst_COsdImageDatasourceFactory : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void accepts_data()
    {
        QTest::addColumn<QVariant>("type");
        QTest::addColumn<QVariant>("screenSnip");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("picture") << QVariant(2) << QVariant() << true;
        QTest::newRow("picture, no snip") << QVariant(2) << QVariant(false) << true;
        QTest::newRow("snip") << QVariant(2) << QVariant(true) << false;
        QTest::newRow("snip as text") << QVariant(2) << QVariant(QStringLiteral("true")) << false;
        QTest::newRow("digits") << QVariant(QStringLiteral("2")) << QVariant() << true;
        QTest::newRow("name") << QVariant(QStringLiteral("FreePicture")) << QVariant() << true;
        QTest::newRow("fraction") << QVariant(2.2) << QVariant() << true;
        for (int type : {-1, 0, 1, 3, 4, 5, 6, 7, 99})
            QTest::addRow("type %d", type) << QVariant(type) << QVariant() << false;
        QTest::newRow("no type") << QVariant() << QVariant() << false;
    }

    void accepts()
    {
        QFETCH(QVariant, type);
        QFETCH(QVariant, screenSnip);
        QFETCH(bool, accepted);
        ElementParam param;
        if (type.isValid())
            param.insert(QStringLiteral("type"), type);
        if (screenSnip.isValid())
            param.insert(QStringLiteral("screenSnip"), screenSnip);
        const ElementParam given = param;
        COsdImageDatasourceFactory factory;
        QCOMPARE(factory.accept(param), accepted);
        QCOMPARE(param, given);
    }

    void buildsForPictures()
    {
        COsdImageDatasourceFactory factory;
        CVideoOverlayImage image;
        ElementParam param;
        param.insert(QStringLiteral("type"), 2);
        COsdElementDatasource *const datasource = factory.getDatasource(&image, param);
        QVERIFY(qobject_cast<COsdImageDatasource *>(datasource));
        QCOMPARE(datasource->parent(), static_cast<QObject *>(&image));
        QCOMPARE(takeLog(),
                 QStringList {QStringLiteral(
                     "2 VideoOverlayLibrary: COsdElementDatasource  does not exists")});
    }

    void buildsNothingForOtherElements()
    {
        COsdImageDatasourceFactory factory;
        CVideoOverlayText text;
        ElementParam param;
        param.insert(QStringLiteral("type"), 2);
        const ElementParam given = param;
        QVERIFY(!factory.getDatasource(&text, param));
        QVERIFY(!factory.getDatasource(nullptr, param));
        QCOMPARE(param, given);
        QCOMPARE(text.type(), CVideoOverlayElement::Invalid);
    }
};

QTEST_MAIN(tst_COsdImageDatasourceFactory)
#include "tst_COsdImageDatasourceFactory.moc"
