// SPDX-License-Identifier: Apache-2.0
#include "host/feed/ScreenSnipDatasourceFactory.h"
#include "tests/support/LoggedTest.h"

#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/CVideoOverlayImage.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/elements/ElementParam.h"
#include "videooverlay/osd/COsdScreenSnipDatasource.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Velmar::Host;
using namespace Velmar::VideoOverlay;

namespace {

ElementParam record()
{
    ElementParam param;
    param.insert(QStringLiteral("type"), int(CVideoOverlayElement::FreePicture));
    param.insert(QStringLiteral("screenSnip"), true);
    param.insert(QStringLiteral("scale"), 1.0);
    param.insert(QStringLiteral("enabled"), true);
    param.insert(QStringLiteral("caption"), QStringLiteral("map"));
    return param;
}

QImage picture(int width)
{
    QImage image(width, 8, QImage::Format_ARGB32);
    image.fill(Qt::red);
    return image;
}

} // namespace

class tst_ScreenSnipDatasourceFactory : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void accept_data()
    {
        QTest::addColumn<QVariant>("type");
        QTest::addColumn<QVariant>("snip");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("screen snip") << QVariant(2) << QVariant(true) << true;
        QTest::newRow("flag as text") << QVariant(2) << QVariant(QStringLiteral("true")) << true;
        QTest::newRow("picture from a file") << QVariant(2) << QVariant(false) << false;
        QTest::newRow("no flag") << QVariant(2) << QVariant() << false;
        QTest::newRow("no picture") << QVariant(1) << QVariant(true) << false;
    }

    void accept()
    {
        QFETCH(QVariant, type);
        QFETCH(QVariant, snip);
        QFETCH(bool, accepted);
        ElementParam param = record();
        param.insert(QStringLiteral("type"), type);
        param.insert(QStringLiteral("screenSnip"), snip);
        ScreenSnipDatasourceFactory factory;
        QCOMPARE(factory.accept(param), accepted);
        CVideoOverlayImage image;
        QCOMPARE(factory.getDatasource(&image, param) != nullptr, accepted);
    }

    void everySnipShowsThePicture()
    {
        ScreenSnipDatasourceFactory factory;
        CVideoOverlayImage first;
        auto second = std::make_unique<CVideoOverlayImage>();
        for (CVideoOverlayImage *image : {&first, second.get()}) {
            ElementParam param = record();
            auto *made = factory.getDatasource(image, param);
            QVERIFY(qobject_cast<COsdScreenSnipDatasource *>(made));
            QCOMPARE(made->parent(), image);
            QCOMPARE(image->caption(), QStringLiteral("map"));
        }
        factory.setPicture(picture(16));
        QCOMPARE(first.imageSrcHeight(), 8);
        QCOMPARE(first.width(), 16.0);
        QCOMPARE(second->width(), 16.0);

        second.reset(); // as when another profile is loaded
        factory.setPicture(picture(32));
        QCOMPARE(first.width(), 32.0);

        CVideoOverlayImage third; // made later
        ElementParam param = record();
        QVERIFY(factory.getDatasource(&third, param));
        QCOMPARE(third.width(), 32.0);
    }

    void pictureOfAFile()
    {
        QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("map.png"));
        QVERIFY(picture(16).save(path));
        ScreenSnipDatasourceFactory factory;
        CVideoOverlayImage image;
        ElementParam param = record();
        QVERIFY(factory.getDatasource(&image, param));
        QVERIFY(factory.showFile(path));
        QCOMPARE(image.width(), 16.0);
        for (const QString &none :
             {directory.filePath(QStringLiteral("missing.png")), directory.path(), QString()}) {
            QVERIFY(!factory.showFile(none));
            QCOMPARE(image.width(), 16.0);
        }
        factory.setPicture(QImage());
        QCOMPARE(image.width(), 0.0);
        CVideoOverlayImage later;
        ElementParam other = record();
        QVERIFY(factory.getDatasource(&later, other));
        QCOMPARE(later.width(), 0.0);
    }

    /// Small as a file, and no device should be asked for it.
    void hugePicture()
    {
        QTemporaryDir directory;
        QFile file(directory.filePath(QStringLiteral("huge.pbm")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("P4 16384 16384\n");
        QVERIFY(file.resize(15 + 16384 / 8 * 16384));
        file.close();
        ScreenSnipDatasourceFactory factory;
        QVERIFY(!factory.showFile(file.fileName()));
    }

    void wrongElement()
    {
        ScreenSnipDatasourceFactory factory;
        CVideoOverlayText text;
        ElementParam param = record();
        QCOMPARE(factory.getDatasource(&text, param), nullptr);
        factory.setPicture(picture(16));
    }
};

QTEST_MAIN(tst_ScreenSnipDatasourceFactory)
#include "tst_ScreenSnipDatasourceFactory.moc"
