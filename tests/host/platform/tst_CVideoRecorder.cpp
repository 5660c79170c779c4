// SPDX-License-Identifier: Apache-2.0
#include "platform/multimedia/CVideoRecorder.h"

#include <QMetaEnum>
#include <QTest>
#include <QVariant>

#include <type_traits>

using Velmar::Multimedia::CVideoRecorder;

class tst_CVideoRecorder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void states()
    {
        const QMetaEnum states = QMetaEnum::fromType<CVideoRecorder::State>();
        QCOMPARE(states.scope(), "Velmar::Multimedia::CVideoRecorder");
        QCOMPARE(states.name(), "State");
        const QByteArrayList names {"Idle", "Starting", "Recording", "Stopping", "Failed"};
        QCOMPARE(states.keyCount(), names.size());
        for (int i = 0; i < names.size(); ++i) {
            QCOMPARE(QByteArray(states.key(i)), names.at(i));
            QCOMPARE(states.value(i), i);
        }
    }

    void recordingIsTwo() { QCOMPARE(int(CVideoRecorder::Recording), 2); }

    void stateOfANewerHostIsAValue()
    {
        static_assert(std::is_same_v<std::underlying_type_t<CVideoRecorder::State>, int>);
        const auto newer = CVideoRecorder::State(99);
        QCOMPARE(int(newer), 99);
        QCOMPARE(QVariant::fromValue(newer).value<CVideoRecorder::State>(), newer);
        QCOMPARE(QMetaEnum::fromType<CVideoRecorder::State>().valueToKey(newer), nullptr);
    }
};

QTEST_APPLESS_MAIN(tst_CVideoRecorder)
#include "tst_CVideoRecorder.moc"
