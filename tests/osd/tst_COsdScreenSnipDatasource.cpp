// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdScreenSnipDatasource.h"

#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "videooverlay/elements/CVideoOverlayImage.h"

#include <QtTest>

#include <vector>

using namespace Velmar::VideoOverlay;

class tst_COsdScreenSnipDatasource : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void hasNoMembersForQml()
    {
        const QMetaObject &meta = COsdScreenSnipDatasource::staticMetaObject;
        QCOMPARE(Velmar::Test::methodsOf(meta), QStringList());
        QCOMPARE(Velmar::Test::propertiesOf(meta), QStringList());
        QCOMPARE(meta.superClass(), &COsdElementDatasource::staticMetaObject);
    }

    void appliesTheRecordInOrder()
    {
        ElementParam param;
        param.insert(QStringLiteral("type"), 2);
        param.insert(QStringLiteral("screenSnip"), true);
        param.insert(QStringLiteral("enabled"), true);
        param.insert(QStringLiteral("timeout"), 5); // hides, so that setVisible() is seen
        param.insert(QStringLiteral("scale"), QStringLiteral("2.5"));
        param.insert(QStringLiteral("caption"), QStringLiteral("Snip"));
        CVideoOverlayImage image;
        QStringList order;
        connect(&image, &CVideoOverlayElement::timeoutChanged, this,
                [&] { order.append(QStringLiteral("base")); });
        connect(&image, &CVideoOverlayImage::scaleFactorChanged, this,
                [&] { order.append(QStringLiteral("scale")); });
        connect(&image, &CVideoOverlayElement::visibleChanged, this, [&] {
            if (!order.isEmpty())
                order.append(QStringLiteral("visible"));
        });
        connect(&image, &CVideoOverlayElement::captionChanged, this,
                [&] { order.append(QStringLiteral("caption")); });

        const COsdScreenSnipDatasource datasource(&image, param);

        QCOMPARE(order.join(QLatin1Char(' ')), QStringLiteral("base scale visible caption"));
        QCOMPARE(image.scaleFactor(), 2.5);
        QVERIFY(image.visible());
        QCOMPARE(image.caption(), QStringLiteral("Snip"));
    }

    void readsWhatIsMissingAsNothing()
    {
        ElementParam param;
        CVideoOverlayImage image;
        image.setCaption(QStringLiteral("old"));
        image.setEnabled(true);
        const COsdScreenSnipDatasource datasource(&image, param);
        QCOMPARE(image.scaleFactor(), 0.0);
        QVERIFY(!image.visible());
        QCOMPARE(image.caption(), QString());
    }

    void keepsADeepCopy()
    {
        ElementParam param;
        param.insert(QStringLiteral("scale"), 1.0);
        param.insert(QStringLiteral("caption"), QStringLiteral("Snip"));
        CVideoOverlayImage image;
        COsdScreenSnipDatasource datasource(&image, param);
        std::vector<uchar> pixels(4 * 4 * 4, 0xff);
        datasource.update(QImage(pixels.data(), 4, 4, QImage::Format_ARGB32));
        std::fill(pixels.begin(), pixels.end(), uchar(0)); // the buffer is used again
        QCOMPARE(image.createScaledImage().size(), QSize(4, 4));
        QCOMPARE(image.createScaledImage().pixel(1, 1), 0xffffffffU);
        QCOMPARE(image.caption(), QStringLiteral("Snip"));

        QImage second(3, 2, QImage::Format_ARGB32);
        second.fill(Qt::blue);
        datasource.update(second);
        second.fill(Qt::red);
        QCOMPARE(image.createScaledImage().size(), QSize(3, 2));
        QCOMPARE(image.createScaledImage().pixelColor(0, 0), QColor(Qt::blue));
    }

    void survivesANullPicture()
    {
        ElementParam param;
        param.insert(QStringLiteral("scale"), 1.0);
        CVideoOverlayImage image;
        COsdScreenSnipDatasource datasource(&image, param);
        datasource.update(QImage());
        QVERIFY(image.createScaledImage().isNull());
    }
};

QTEST_MAIN(tst_COsdScreenSnipDatasource)
#include "tst_COsdScreenSnipDatasource.moc"
