// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/display/CVideoOverlayCapabilities.h"

#include "tests/support/FakeCapabilitiesBackend.h"
#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using Velmar::Test::FakeCapabilitiesBackend;
using Velmar::Test::methodsOf;
using Velmar::Test::propertiesOf;
using Velmar::VideoOverlay::CAbstractVideoOverlayCapabilitiesBackend;
using Velmar::VideoOverlay::CVideoOverlayCapabilities;

using Backend = CAbstractVideoOverlayCapabilitiesBackend;

class tst_CVideoOverlayCapabilities : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void metaObjects()
    {
        QCOMPARE(methodsOf(Backend::staticMetaObject),
                 QStringList({QStringLiteral("signal maximumColumnCountChanged()"),
                              QStringLiteral("signal maximumRowCountChanged()"),
                              QStringLiteral("signal imageWidthChanged()"),
                              QStringLiteral("signal imageHeightChanged()")}));
        QCOMPARE(propertiesOf(Backend::staticMetaObject), QStringList());
        QCOMPARE(methodsOf(CVideoOverlayCapabilities::staticMetaObject),
                 QStringList(QStringLiteral("signal capabilitiesChanged()")));
        QCOMPARE(propertiesOf(CVideoOverlayCapabilities::staticMetaObject), QStringList());
    }

    void everythingIsZeroWithoutBackend()
    {
        const CVideoOverlayCapabilities capabilities;
        QCOMPARE(capabilities.maximumColumnCount(), 0);
        QCOMPARE(capabilities.maximumRowCount(), 0);
        QCOMPARE(capabilities.imageWidth(), 0);
        QCOMPARE(capabilities.imageHeight(), 0);
    }

    void answersOfTheBackend()
    {
        FakeCapabilitiesBackend backend(1, 2, 3, 4);
        CVideoOverlayCapabilities capabilities;
        capabilities.setBackend(&backend);
        QCOMPARE(capabilities.maximumColumnCount(), 1);
        QCOMPARE(capabilities.maximumRowCount(), 2);
        QCOMPARE(capabilities.imageWidth(), 3);
        QCOMPARE(capabilities.imageHeight(), 4);
        backend.width = 33; // asked anew every time
        QCOMPARE(capabilities.imageWidth(), 33);
    }

    void setBackendAlwaysEmitsOnce()
    {
        FakeCapabilitiesBackend backend;
        CVideoOverlayCapabilities capabilities;
        QSignalSpy changed(&capabilities, &CVideoOverlayCapabilities::capabilitiesChanged);
        capabilities.setBackend(nullptr);
        QCOMPARE(changed.count(), 1);
        capabilities.setBackend(&backend);
        QCOMPARE(changed.count(), 2);
        capabilities.setBackend(&backend);
        QCOMPARE(changed.count(), 3);
        capabilities.setBackend(nullptr);
        QCOMPARE(changed.count(), 4);
    }

    /// Whoever hears of the change already asks the new backend.
    void newBackendAnswersInsideTheSignal()
    {
        FakeCapabilitiesBackend backend;
        CVideoOverlayCapabilities capabilities;
        int columns = -1;
        connect(&capabilities, &CVideoOverlayCapabilities::capabilitiesChanged, &capabilities,
                [&] { columns = capabilities.maximumColumnCount(); });
        capabilities.setBackend(&backend);
        QCOMPARE(columns, 54);
    }

    void everyChangeOfTheBackendIsPassedOn_data()
    {
        QTest::addColumn<QByteArray>("announcement");
        QTest::newRow("columns") << QByteArray("maximumColumnCountChanged");
        QTest::newRow("rows") << QByteArray("maximumRowCountChanged");
        QTest::newRow("width") << QByteArray("imageWidthChanged");
        QTest::newRow("height") << QByteArray("imageHeightChanged");
    }

    void everyChangeOfTheBackendIsPassedOn()
    {
        QFETCH(QByteArray, announcement);
        FakeCapabilitiesBackend backend;
        CVideoOverlayCapabilities capabilities;
        capabilities.setBackend(&backend);
        capabilities.setBackend(&backend); // connected once all the same
        QSignalSpy changed(&capabilities, &CVideoOverlayCapabilities::capabilitiesChanged);
        QVERIFY(QMetaObject::invokeMethod(&backend, announcement.constData()));
        QCOMPARE(changed.count(), 1);
    }

    void previousBackendIsDisconnected()
    {
        FakeCapabilitiesBackend first;
        FakeCapabilitiesBackend second;
        CVideoOverlayCapabilities capabilities;
        QSignalSpy heardByOthers(&first, &Backend::imageWidthChanged);
        capabilities.setBackend(&first);
        connect(&first, &QObject::objectNameChanged, &capabilities,
                &CVideoOverlayCapabilities::capabilitiesChanged); // a host's own goes as well
        capabilities.setBackend(&second);
        QSignalSpy changed(&capabilities, &CVideoOverlayCapabilities::capabilitiesChanged);
        first.setObjectName(QStringLiteral("first"));

        Q_EMIT first.maximumColumnCountChanged();
        Q_EMIT first.maximumRowCountChanged();
        Q_EMIT first.imageWidthChanged();
        Q_EMIT first.imageHeightChanged();
        QCOMPARE(changed.count(), 0);
        QCOMPARE(heardByOthers.count(), 1); // other listeners keep their connections
        Q_EMIT second.imageHeightChanged();
        QCOMPARE(changed.count(), 1);
    }

    void backendDiesFirst()
    {
        auto backend = std::make_unique<FakeCapabilitiesBackend>();
        CVideoOverlayCapabilities capabilities;
        capabilities.setBackend(backend.get());
        backend.reset();
        QCOMPARE(capabilities.maximumColumnCount(), 0);
        QCOMPARE(capabilities.imageHeight(), 0);
        QSignalSpy changed(&capabilities, &CVideoOverlayCapabilities::capabilitiesChanged);
        capabilities.setBackend(nullptr);
        QCOMPARE(changed.count(), 1);
    }
};

QTEST_MAIN(tst_CVideoOverlayCapabilities)
#include "tst_CVideoOverlayCapabilities.moc"
