// SPDX-License-Identifier: Apache-2.0
#include "host/editor/EditHistory.h"
#include "tests/support/LoggedTest.h"

#include <QtTest>

using Velmar::Host::EditHistory;

class tst_EditHistory : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void oneByOne();
    void stepsUniteChangesOfOneValue();
    void emptyStepLeavesNothing();
    void anotherChangeForgetsWhatWasTakenBack();
    void clear();

private:
    /// Sets @p value as an edit.
    static void edit(EditHistory &history, int &value, int wanted)
    {
        const int before = value;
        value = wanted;
        history.add({[&value, before] { value = before; }, [&value, wanted] { value = wanted; },
                     &value, "value"});
    }
};

void tst_EditHistory::oneByOne()
{
    EditHistory history;
    QSignalSpy changed(&history, &EditHistory::changed);
    int value = 1;
    QVERIFY(!history.canUndo() && !history.canRedo() && !history.isModified());
    edit(history, value, 2);
    edit(history, value, 3);
    QCOMPARE(changed.count(), 2);
    history.undo();
    QCOMPARE(value, 2);
    QVERIFY(history.canUndo() && history.canRedo());
    history.undo();
    QCOMPARE(value, 1);
    QVERIFY(!history.isModified());
    history.undo();
    QCOMPARE(value, 1);
    history.redo();
    history.redo();
    history.redo();
    QCOMPARE(value, 3);
    QVERIFY(!history.canRedo());
}

void tst_EditHistory::stepsUniteChangesOfOneValue()
{
    EditHistory history;
    int column = 1;
    int row = 1;
    history.beginStep();
    for (int i = 2; i < 6; ++i) {
        edit(history, column, i);
        edit(history, row, 10 * i);
    }
    QVERIFY(!history.canUndo()); // the gesture goes on
    history.endStep();
    history.undo();
    QCOMPARE(column, 1);
    QCOMPARE(row, 1);
    QVERIFY(!history.canUndo());
    history.redo();
    QCOMPARE(column, 5);
    QCOMPARE(row, 50);
}

void tst_EditHistory::emptyStepLeavesNothing()
{
    EditHistory history;
    int value = 1;
    edit(history, value, 2);
    history.beginStep();
    history.endStep();
    history.undo();
    QCOMPARE(value, 1);
    QVERIFY(!history.isModified());
}

void tst_EditHistory::anotherChangeForgetsWhatWasTakenBack()
{
    EditHistory history;
    int value = 1;
    edit(history, value, 2);
    history.undo();
    edit(history, value, 7);
    QVERIFY(!history.canRedo());
    history.undo();
    QCOMPARE(value, 1);
}

void tst_EditHistory::clear()
{
    EditHistory history;
    int value = 1;
    edit(history, value, 2);
    history.clear();
    QVERIFY(!history.canUndo() && !history.canRedo() && !history.isModified());
    history.undo();
    QCOMPARE(value, 2);
}

QTEST_GUILESS_MAIN(tst_EditHistory)
#include "tst_EditHistory.moc"
