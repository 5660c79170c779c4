// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdValueDatasource.h"

#include "host/platform/CatalogStore.h"
#include "tests/osd/RecordedText.h"
#include "tests/support/LiveOverlay.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"
#include "tests/support/VirtualSlot.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"

#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

using namespace Velmar::VideoOverlay;
using Velmar::Test::RecordedText;

class tst_COsdValueDatasource : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void declaresItsSlot()
    {
        const QMetaObject &meta = COsdValueDatasource::staticMetaObject;
        QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
        QCOMPARE(meta.method(meta.methodOffset()).methodSignature(),
                 QByteArray("update(QVariant)"));
        QCOMPARE(Velmar::Test::propertiesOf(meta), QStringList());
        using Update = void (COsdValueDatasource::*)(QVariant);
        QCOMPARE(Velmar::Test::slotOf(static_cast<Update>(&COsdValueDatasource::update)),
                 Velmar::Test::qObjectSlots + 1);
    }

    void appliesTheRecordInOrder()
    {
        ElementParam param = record();
        param.insert(QStringLiteral("timeout"), 5); // hides, so that setVisible() is seen
        RecordedText text;
        COsdValueDatasource datasource({}, &text, param);
        QCOMPARE(
            text.take().join(QStringLiteral(", ")),
            QStringLiteral("type 0, row 0, column 0, visible true, enabled true, visible true, "
                           "maxLineNumber 0, visible false, timeout 5, "
                           "caption , caption C, text C: , setUnit m, "
                           "unit m, visible true, alignment 2"));
    }

    /// A dictionary's captions are there without any catalog template.
    void asksAResolverWithoutATemplate()
    {
        class Dictionary : public TemplateCaptionResolver
        {
        public:
            using TemplateCaptionResolver::TemplateCaptionResolver;
            QString getCaption(ElementParam &) const override { return QStringLiteral("D"); }
        };
        const QSharedPointer<TemplateCaptionResolver> resolver(
            new Dictionary(Velmar::CATManagement::CatalogStore::instance()));
        ElementParam param = record();
        RecordedText text;
        COsdValueDatasource datasource(resolver, &text, param);
        QCOMPARE(text.caption(), QStringLiteral("D"));
        QCOMPARE(text.text(), QStringLiteral("D: "));
    }

    void rendersOncePerChangeOfUnitAndCaption()
    {
        ElementParam param = record();
        RecordedText text;
        COsdValueDatasource datasource({}, &text, param);
        text.setText(QStringLiteral("other"));
        text.take();
        text.setUnit(QStringLiteral("ft"));
        QCOMPARE(text.take().join(QStringLiteral(", ")),
                 QStringLiteral("setUnit ft, unit ft, text C: "));
        text.setCaptionVisible(false);
        QCOMPARE(text.text(), QString());
        text.setCaptionVisible(true);
        QCOMPARE(text.text(), QStringLiteral("C: "));
    }

    void ignoresNull_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("invalid") << QVariant();
        QTest::newRow("null text") << QVariant(QString());
        QTest::newRow("null number") << QVariant(QVariant::Int);
        QTest::newRow("null double") << QVariant(QVariant::Double);
        QTest::newRow("null time") << QVariant(QVariant::Time);
    }

    void ignoresNull()
    {
        QFETCH(QVariant, value);
        ElementParam param = record();
        RecordedText text;
        COsdValueDatasource datasource({}, &text, param);
        text.setVisible(false);
        text.setText(QStringLiteral("old"));
        text.take();
        datasource.update(value);
        QCOMPARE(text.take(), QStringList());
        QCOMPARE(text.text(), QStringLiteral("old"));
        QVERIFY(!text.visible());
    }

    void showsValues_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("shown");
        QTest::newRow("text") << QVariant(QStringLiteral("a b")) << QStringLiteral("C: a b");
        QTest::newRow("empty text") << QVariant(QStringLiteral("")) << QStringLiteral("C: ");
        QTest::newRow("zero") << QVariant(0) << QStringLiteral("C: 0");
        QTest::newRow("fraction") << QVariant(12.5) << QStringLiteral("C: 12.5");
        QTest::newRow("large integer")
            << QVariant(qlonglong(4294968296)) << QStringLiteral("C: 4294968296");
        QTest::newRow("no text") << QVariant(QVariantList {1}) << QStringLiteral("C: ");
    }

    void showsValues()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, shown);
        ElementParam param = record();
        RecordedText text;
        COsdValueDatasource datasource({}, &text, param);
        text.setVisible(false);
        text.setText(QStringLiteral("old"));
        text.take();
        datasource.update(value);
        QCOMPARE(text.take(),
                 (QStringList {QStringLiteral("text ") + shown, QStringLiteral("visible true")}));
    }

    void theFirstValueFlagsAnElementThatIsOff()
    {
        ElementParam param = record();
        param.insert(QStringLiteral("enabled"), false);
        param.insert(QStringLiteral("type"), int(CVideoOverlayElement::InspText));
        CVideoOverlayText text;
        COsdValueDatasource datasource({}, &text, param);
        QVERIFY(!text.visible());
        datasource.update(QVariant());
        text.setEnabled(true);
        QVERIFY(!text.visible()); // never shown by anybody
        text.setEnabled(false);
        datasource.update(QVariant(1));
        QVERIFY(!text.visible()); // the switch is still off
        text.setEnabled(true);
        QVERIFY(text.visible());
    }

    void updateWithoutAValueStaysReachable()
    {
        ElementParam param = record();
        CVideoOverlayText text;
        COsdValueDatasource datasource({}, &text, param);
        text.setText(QStringLiteral("other"));
        datasource.update();
        QCOMPARE(text.text(), QStringLiteral("C: "));
        QVERIFY(QMetaObject::invokeMethod(&datasource, "update", Q_ARG(QVariant, QVariant(3))));
        QCOMPARE(text.text(), QStringLiteral("C: 3"));
    }

    /// Whoever reads the text may switch the profile: the element goes while its text is set.
    void survivesTheLossOfItsElement()
    {
        Velmar::Test::LiveOverlay overlay;
        QPointer<CVideoOverlayText> text = overlay.manager.createText();
        ElementParam param = record();
        QPointer<COsdValueDatasource> datasource = new COsdValueDatasource({}, text, param);
        connect(text, &CVideoOverlayText::textChanged, this,
                [&] { QVERIFY(overlay.manager.deleteElement(0)); });
        datasource->update(QVariant(1));
        QCOMPARE(overlay.manager.elementsCount(), 0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!text);
        QVERIFY(!datasource);
    }

private:
    static ElementParam record()
    {
        ElementParam param;
        param.insert(QStringLiteral("enabled"), true);
        param.insert(QStringLiteral("captionEnabled"), true);
        param.insert(ElementParam::NAME_COLUMNCAPTION, QStringLiteral("C"));
        param.insert(QStringLiteral("unit"), QStringLiteral("m"));
        param.insert(QStringLiteral("align"), QStringLiteral("RIGHT"));
        return param;
    }
};

QTEST_MAIN(tst_COsdValueDatasource)
#include "tst_COsdValueDatasource.moc"
