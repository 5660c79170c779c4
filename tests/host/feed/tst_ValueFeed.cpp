// SPDX-License-Identifier: Apache-2.0
#include "host/feed/ValueFeed.h"
#include "tests/support/LoggedTest.h"

#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/osd/COsdStaticTextDatasource.h"
#include "videooverlay/osd/COsdValueDatasource.h"

#include <QtTest>

#include <memory>
#include <new>
#include <vector>

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

void giveFreeText(CVideoOverlayText *text, int lines)
{
    ElementParam param;
    param.insert(QStringLiteral("type"), int(CVideoOverlayElement::FreeText));
    param.insert(QStringLiteral("enabled"), true);
    param.insert(QStringLiteral("maxLineNumber"), lines);
    new COsdValueDatasource(QSharedPointer<TemplateCaptionResolver>(), text, param);
}

const QString speed = QStringLiteral("SPEED");
const QString freeText = QStringLiteral("OSD_FREE_TEXT_BOX");

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

    /// Its record names no value.
    void keyOfAFreeText()
    {
        ValueFeed feed;
        ElementParam param;
        param.insert(QStringLiteral("type"), int(CVideoOverlayElement::FreeText));
        QCOMPARE(feed.makeKey(param), QStringLiteral("OSD_FREE_TEXT_BOX"));
        param.insert(ElementParam::NAME_COLUMNBOUND, speed);
        QCOMPARE(feed.makeKey(param), speed);
    }

    void freeTextOfManyLines_data()
    {
        QTest::addColumn<int>("lines");
        QTest::addColumn<QString>("shown");
        QTest::newRow("two") << 2 << QStringLiteral("a\nb");
        QTest::newRow("as many") << 3 << QStringLiteral("a\nb\nc");
        QTest::newRow("more") << 4 << QStringLiteral("a\nb\nc");
        QTest::newRow("no limit") << 0 << QStringLiteral("a\nb\nc");
    }

    void freeTextOfManyLines()
    {
        QFETCH(int, lines);
        QFETCH(QString, shown);
        ValueFeed feed;
        CVideoOverlayText text;
        giveFreeText(&text, lines);
        feed.registerElement(freeText, &text);
        feed.setValue(freeText, QStringLiteral("a\nb\nc"));
        QCOMPARE(text.text(), shown);
    }

    /// With a new profile come new elements: they say what the last one said, while it did.
    void freeTextGoesOnInTheNextProfile()
    {
        ValueFeed feed;
        auto first = std::make_unique<CVideoOverlayText>();
        giveFreeText(first.get(), 3);
        feed.registerElement(freeText, first.get());
        feed.setValue(freeText, QStringLiteral("roots"));
        first->setText(QStringLiteral("many roots")); // as an editor does
        feed.unregisterElement(first.get());
        first.reset();

        CVideoOverlayText second;
        giveFreeText(&second, 3);
        feed.registerElement(freeText, &second);
        feed.replay();
        QCOMPARE(second.text(), QStringLiteral("many roots"));
        QVERIFY(second.visible());

        second.setVisible(false); // its time is over, or an observation took its place
        feed.unregisterElement(&second);
        CVideoOverlayText third;
        giveFreeText(&third, 3);
        third.setVisible(false);
        feed.registerElement(freeText, &third);
        feed.replay();
        QVERIFY(!third.visible());
        QCOMPARE(third.text(), QString());
        feed.setValue(freeText, QStringLiteral("more roots"));
        QVERIFY(third.visible());
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

    void oneElementMayShowSeveralValues()
    {
        ValueFeed feed;
        const QString depth = QStringLiteral("DEPTH");
        CVideoOverlayText text;
        CVideoOverlayText other;
        giveDatasource(&text);
        giveDatasource(&other);
        feed.registerElement(speed, &text);
        feed.registerElement(depth, &text);
        feed.registerElement(depth, &other);
        feed.setValue(speed, 1);
        QCOMPARE(text.text(), QStringLiteral("1"));
        feed.setValue(depth, 2);
        QCOMPARE(text.text(), QStringLiteral("2"));
        feed.unregisterElement(&text);
        QVERIFY(!feed.isShown(speed));
        QVERIFY(feed.isShown(depth));
        feed.setValue(depth, 3);
        QCOMPARE(text.text(), QStringLiteral("2"));
        QCOMPARE(other.text(), QStringLiteral("3"));
        feed.registerElement(speed, &text); // again
        feed.setValue(speed, 4);
        QCOMPARE(text.text(), QStringLiteral("4"));
    }

    void valuesComeInOrderOfRegistration()
    {
        ValueFeed feed;
        std::vector<std::unique_ptr<CVideoOverlayText>> texts;
        QVector<int> order;
        for (int i = 0; i < 20; ++i) {
            texts.push_back(std::make_unique<CVideoOverlayText>());
            giveDatasource(texts.back().get());
            connect(texts.back().get(), &CVideoOverlayText::textChanged, this,
                    [&order, i] { order.append(i); });
        }
        QVector<int> expected;
        for (int i = 19; i >= 0; --i) {
            feed.registerElement(speed, texts[size_t(i)].get());
            expected.append(i);
        }
        feed.setValue(speed, 1);
        QCOMPARE(order, expected);
    }

    void anotherElementAtTheSameAddress()
    {
        ValueFeed feed;
        alignas(CVideoOverlayText) unsigned char place[sizeof(CVideoOverlayText)];
        auto *text = new (place) CVideoOverlayText;
        feed.registerElement(speed, text);
        text->~CVideoOverlayText(); // without being unregistered
        feed.setValue(speed, 1);
        text = new (place) CVideoOverlayText;
        giveDatasource(text);
        feed.setValue(speed, 2);
        QCOMPARE(text->text(), QString()); // not registered
        feed.registerElement(speed, text);
        feed.setValue(speed, 3);
        QCOMPARE(text->text(), QStringLiteral("3"));
        feed.unregisterElement(text);
        QVERIFY(!feed.isShown(speed));
        text->~CVideoOverlayText();
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
