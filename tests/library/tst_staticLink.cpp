// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/CVideoOverlayImage.h"

#include <QTest>

using Velmar::VideoOverlay::CVideoOverlayImage;

/// A program that holds the library itself: the linker drops what nothing refers to, and the
/// placeholder's resource would be such a thing.
class tst_staticLink : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placeholderIsFound()
    {
        CVideoOverlayImage element;
        element.setImage(QImage(3001, 1, QImage::Format_RGB32));
        const QImage placeholder = element.getElement().getImage();
        QVERIFY(!placeholder.isNull());
        QVERIFY(placeholder.width() < 3001);
        QCOMPARE(placeholder, QImage(QStringLiteral(":/general/image_too_large.png")));
        QCOMPARE(element.width(), double(placeholder.width()));
        QCOMPARE(element.height(), double(placeholder.height()));
    }
};

QTEST_MAIN(tst_staticLink)
#include "tst_staticLink.moc"
