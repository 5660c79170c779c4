// SPDX-License-Identifier: Apache-2.0
#include "host/feed/ValueFeed.h"
#include "tests/support/LoggedTest.h"

#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/osd/COsdStaticTextDatasource.h"
#include "videooverlay/osd/COsdValueDatasource.h"

#include <QtTest>

#include <memory>

using namespace Velmar::Host;
using namespace Velmar::VideoOverlay;

namespace {

ElementParam record(const QString &name)
{
    ElementParam param;
    param.insert(QStringLiteral("type"), int(CVideoOverlayElement::SystemText));
    param.insert(QStringLiteral("enabled"), true);
    param.insert(ElementParam::NAME_COLUMNBOUND, name);
    return param;
}

void giveDatasource(CVideoOverlayText *text)
{
    ElementParam param = record(QStringLiteral("SPEED"));
    new COsdValueDatasource(QSharedPointer<TemplateCaptionResolver>(), text, param);
}

const QString speed = QStringLiteral("SPEED");

} // namespace

class tst_ValueFeed : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void keyIsTheBoundValue()
    {
        ValueFeed feed;
        QCOMPARE(feed.makeKey(record(speed)), speed);
        QCOMPARE(feed.makeKey(ElementParam()), QString());
    }

    void everyTextOfTheNameShowsTheValue()
    {
        ValueFeed feed;
        CVideoOverlayText first;
        CVideoOverlayText second;
        CVideoOverlayText other;
        feed.registerElement(speed, &first);
        feed.registerElement(speed, &second);
        feed.registerElement(QStringLiteral("OTHER"), &other);
        for (CVideoOverlayText *text : {&first, &second, &other})
            giveDatasource(text); // after the registration, as the manager has it
        first.setVisible(false);

        feed.setValue(speed, 1.5);
        QCOMPARE(first.text(), QStringLiteral("1.5"));
        QCOMPARE(second.text(), QStringLiteral("1.5"));
        QCOMPARE(other.text(), QString());
        QVERIFY(first.visible());
        feed.setValue(speed, QStringLiteral("---"));
        QCOMPARE(first.text(), QStringLiteral("---"));
    }

    void nullValuesAreNone()
    {
        ValueFeed feed;
        CVideoOverlayText text;
        feed.registerElement(speed, &text);
        giveDatasource(&text);
        feed.setValue(speed, 2);
        feed.setValue(speed, QVariant());
        feed.setValue(speed, QVariant(QString()));
        QCOMPARE(text.text(), QStringLiteral("2"));
        QCOMPARE(feed.value(speed), QVariant(2));
        feed.setValue(speed, QString::fromLatin1(""));
        QCOMPARE(text.text(), QString());
    }

    void laterElementsGetTheLastValue()
    {
        ValueFeed feed;
        feed.setValue(speed, 1);
        feed.setValue(speed, 3);
        CVideoOverlayText text;
        feed.registerElement(speed, &text);
        feed.replay(); // no datasource yet: nothing happens
        giveDatasource(&text);
        QCOMPARE(text.text(), QString());
        feed.replay();
        QCOMPARE(text.text(), QStringLiteral("3"));
        feed.clearValues();
        QVERIFY(!feed.value(speed).isValid());
        text.setText(QStringLiteral("kept"));
        feed.replay();
        QCOMPARE(text.text(), QStringLiteral("kept"));
    }

    void unregisteredElementsAreLeftAlone()
    {
        ValueFeed feed;
        CVideoOverlayText text;
        CVideoOverlayText stranger;
        giveDatasource(&text);
        feed.registerElement(speed, &text);
        feed.registerElement(speed, &text); // once is enough
        feed.registerElement(QString(), &stranger);
        feed.registerElement(speed, nullptr);
        feed.unregisterElement(&stranger); // was never registered
        QVERIFY(feed.isShown(speed));
        feed.unregisterElement(&text);
        QVERIFY(!feed.isShown(speed));
        feed.setValue(speed, 4);
        QCOMPARE(text.text(), QString());
    }

    void namesWithoutTextAreTold()
    {
        ValueFeed feed;
        CVideoOverlayText text;
        feed.registerElement(speed, &text);
        feed.setValue(QStringLiteral("TIME"), 1);
        feed.setValue(QStringLiteral("DATE"), 1);
        feed.setValue(speed, 1);
        QCOMPARE(feed.unshownNames(),
                 QStringList({QStringLiteral("DATE"), QStringLiteral("TIME")}));
        QCOMPARE(takeLog(), QStringList());
    }

    void otherDatasourcesStayAlone()
    {
        ValueFeed feed;
        CVideoOverlayText text;
        ElementParam param = record(speed);
        param.insert(QStringLiteral("text"), QStringLiteral("fixed"));
        new COsdStaticTextDatasource(&text, param);
        feed.registerElement(speed, &text);
        feed.setValue(speed, 1);
        QCOMPARE(text.text(), QStringLiteral("fixed"));
    }

    void elementsMayGoWhileAValueIsShown()
    {
        ValueFeed feed;
        CVideoOverlayText first;
        auto second = std::make_unique<CVideoOverlayText>();
        giveDatasource(&first);
        giveDatasource(second.get());
        feed.registerElement(speed, &first);
        feed.registerElement(speed, second.get());
        connect(&first, &CVideoOverlayText::textChanged, this, [&] {
            if (second)
                feed.unregisterElement(second.get());
            second.reset();
        });
        feed.setValue(speed, 5);
        QVERIFY(!second);
        QCOMPARE(first.text(), QStringLiteral("5"));
    }
};

QTEST_MAIN(tst_ValueFeed)
#include "tst_ValueFeed.moc"
