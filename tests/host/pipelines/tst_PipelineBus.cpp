// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/PipelineBus.h"

#include "host/pipelines/GstRef.h"
#include "host/pipelines/VideoErrors.h"

#include <QSignalSpy>
#include <QtTest>

using namespace Velmar::Host;

class tst_PipelineBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QString error;
        QVERIFY2(initialiseVideo(&error), qPrintable(error));
    }

    /// Whoever writes must stop before the thread of the application gets to hear of it.
    void watchedElementFails_data()
    {
        QTest::addColumn<QByteArray>("watched");
        QTest::addColumn<bool>("isTheFailing");
        QTest::newRow("the one that fails") << QByteArray("failing") << true;
        QTest::newRow("another one") << QByteArray("passing") << false;
    }

    void watchedElementFails()
    {
        QFETCH(QByteArray, watched);
        QFETCH(bool, isTheFailing);
        const ObjectRef<GstElement> pipeline(gst_parse_launch(
            "fakesrc ! identity name=passing ! identity name=failing error-after=2 ! fakesink",
            nullptr));
        QVERIFY(pipeline);
        const ObjectRef<GstElement> element(
            gst_bin_get_by_name(GST_BIN(pipeline.get()), watched.constData()));
        std::atomic<bool> hasFailed {false};
        bool hadFailedBefore = false;
        PipelineBus bus;
        const QSignalSpy failed(&bus, &PipelineBus::failed);
        QObject::connect(&bus, &PipelineBus::failed, &bus, [&] { hadFailedBefore = hasFailed; });
        bus.attach(pipeline.get());
        bus.watch(element.get(), &hasFailed);

        gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
        QTRY_VERIFY(failed.count() > 0); // the source complains, too
        gst_element_set_state(pipeline.get(), GST_STATE_NULL);
        bus.detach();

        QCOMPARE(hadFailedBefore, isTheFailing);
        QCOMPARE(bool(hasFailed), isTheFailing);
    }
};

QTEST_GUILESS_MAIN(tst_PipelineBus)
#include "tst_PipelineBus.moc"
