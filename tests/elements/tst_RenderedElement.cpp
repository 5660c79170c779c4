// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/RenderedElement.h"

#include "tests/support/LoggedTest.h"
#include "videooverlay/elements/CVideoOverlayElement.h"

#include <QTest>

using Velmar::VideoOverlay::CVideoOverlayElement;
using Velmar::VideoOverlay::RenderedElement;

class tst_RenderedElement : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void holdsWhatItIsGiven()
    {
        QImage picture(3, 2, QImage::Format_ARGB32);
        picture.fill(Qt::red);
        const RenderedElement element(12, CVideoOverlayElement::FreePicture, 1.25, -2.5, true,
                                      picture);
        QCOMPARE(element.id(), 12);
        QCOMPARE(element.type(), 2);
        QCOMPARE(element.x(), 1.25);
        QCOMPARE(element.y(), -2.5);
        QCOMPARE(element.visible(), true);
        QCOMPARE(element.repaint(), true);
        QCOMPARE(element.getImage(), picture);
    }

    void repaintMark()
    {
        RenderedElement element(1, 0, 0.0, 0.0, false);
        QVERIFY(element.repaint());
        element.repaint(false);
        QVERIFY(!element.repaint());
        element.repaint(true);
        QVERIFY(element.repaint());
    }

    void copiesAreIndependentAndShareThePicture()
    {
        QImage picture(3, 2, QImage::Format_ARGB32);
        picture.fill(Qt::red);
        const RenderedElement original(12, 2, 1.0, 2.0, true, picture);
        RenderedElement copy = original;
        copy.repaint(false);
        QVERIFY(original.repaint());
        QCOMPARE(copy.getImage().cacheKey(), original.getImage().cacheKey());
        QCOMPARE(copy.id(), 12);
        QCOMPARE(QVariant::fromValue(original).value<RenderedElement>().id(), 12);
    }

    void ofABaseElement()
    {
        CVideoOverlayElement element;
        element.setId(31);
        element.setType(CVideoOverlayElement::StaticText);
        element.setPosition(10.5, 20.25);
        element.setWidth(100);
        element.setHeight(40);
        element.setEnabled(true);

        const RenderedElement rendered = element.getElement();
        QCOMPARE(rendered.id(), 31);
        QCOMPARE(rendered.type(), 0);
        QCOMPARE(rendered.x(), 10.5);
        QCOMPARE(rendered.y(), 20.25);
        QCOMPARE(rendered.visible(), true);
        QCOMPARE(rendered.repaint(), true);
        QVERIFY(rendered.getImage().isNull());
    }

    void visibleIsTheEffectiveVisibility()
    {
        CVideoOverlayElement element;
        QVERIFY(!element.getElement().visible());
        element.setVisible(true);
        QVERIFY(!element.getElement().visible()); // shown, but switched off
        element.setEnabled(true);
        QVERIFY(element.getElement().visible());
        element.setTemporaryHide(true);
        QVERIFY(!element.getElement().visible());
    }
};

QTEST_MAIN(tst_RenderedElement)
#include "tst_RenderedElement.moc"
