// SPDX-License-Identifier: Apache-2.0
#include "platform/shared/QmlStringListModel.h"

#include "tests/support/LoggedTest.h"
#include "tests/support/MetaListing.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

using Velmar::Shared::QmlStringListModel;
using Tester = QAbstractItemModelTester;

class tst_QmlStringListModel : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private:
    void prepare() override
    {
        m_model = std::make_unique<QmlStringListModel>();
        // Complains as a warning, which fails the test.
        m_tester = std::make_unique<Tester>(m_model.get(), Tester::FailureReportingMode::Warning);
        m_model->setStringList(
            {QStringLiteral("one"), QStringLiteral("two\nlines"), QStringLiteral("one")});
    }

    QString shown(int row, int role = Qt::DisplayRole) const
    {
        return m_model->data(m_model->index(row), role).toString();
    }

    std::unique_ptr<QmlStringListModel> m_model;
    std::unique_ptr<Tester> m_tester;

private Q_SLOTS:
    void metaObject()
    {
        QCOMPARE(Velmar::Test::propertiesOf(QmlStringListModel::staticMetaObject),
                 QStringList({QStringLiteral("QStringList stringList write stringListChanged()"),
                              QStringLiteral("int maxLineNumber write maxLineNumberChanged()")}));
        QCOMPARE(Velmar::Test::methodsOf(QmlStringListModel::staticMetaObject),
                 QStringList({QStringLiteral("signal stringListChanged()"),
                              QStringLiteral("signal maxLineNumberChanged()"),
                              QStringLiteral("method bool append(QString)"),
                              QStringLiteral("method bool remove(int)")}));
    }

    void fresh()
    {
        const QmlStringListModel model;
        QCOMPARE(model.stringList(), QStringList());
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.maxLineNumber(), 0);
    }

    void roles()
    {
        QCOMPARE(m_model->roleNames().value(QmlStringListModel::TextRole), QByteArray("text"));
        QCOMPARE(m_model->roleNames().value(Qt::DisplayRole), QByteArray("display"));
    }

    void data()
    {
        QCOMPARE(m_model->rowCount(), 3);
        QCOMPARE(m_model->rowCount(m_model->index(0)), 0);
        QCOMPARE(shown(1), QStringLiteral("two\nlines"));
        QCOMPARE(shown(1, Qt::EditRole), QStringLiteral("two\nlines"));
        QCOMPARE(shown(1, QmlStringListModel::TextRole), QStringLiteral("two\nlines"));
        QVERIFY(!m_model->data(m_model->index(1), Qt::DecorationRole).isValid());
        QVERIFY(!m_model->data(QModelIndex()).isValid());
        const QModelIndex last = m_model->index(2);
        QVERIFY(m_model->remove(0)); // which leaves the last index behind
        QVERIFY(!m_model->data(last).isValid());
        QCOMPARE(takeQtWarnings(), QStringList());
    }

    void setStringList()
    {
        QSignalSpy reset(m_model.get(), &QAbstractItemModel::modelReset);
        QSignalSpy changed(m_model.get(), &QmlStringListModel::stringListChanged);
        const QStringList texts {QStringLiteral("three")};
        m_model->setStringList(texts);
        m_model->setStringList(texts); // silent
        QCOMPARE(m_model->stringList(), texts);
        QCOMPARE(m_model->rowCount(), 1);
        QCOMPARE(reset.count(), 1);
        QCOMPARE(changed.count(), 1);
        m_model->setStringList({});
        QCOMPARE(m_model->rowCount(), 0);
        QCOMPARE(changed.count(), 2);
    }

    void maxLineNumber()
    {
        QSignalSpy changed(m_model.get(), &QmlStringListModel::maxLineNumberChanged);
        m_model->setMaxLineNumber(1);
        m_model->setMaxLineNumber(1);
        QCOMPARE(m_model->maxLineNumber(), 1);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(shown(1), QStringLiteral("two\nlines")); // not cut
    }

    void append()
    {
        QSignalSpy inserted(m_model.get(), &QAbstractItemModel::rowsInserted);
        QSignalSpy changed(m_model.get(), &QmlStringListModel::stringListChanged);
        QVERIFY(m_model->append(QStringLiteral("four")));
        QCOMPARE(shown(3), QStringLiteral("four"));
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.at(0).at(1).toInt(), 3);
        QCOMPARE(inserted.at(0).at(2).toInt(), 3);
        QCOMPARE(changed.count(), 1);
        QVERIFY(!m_model->append(QString()));
        QCOMPARE(m_model->rowCount(), 4);
        QCOMPARE(changed.count(), 1);
    }

    void remove_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QStringList>("left");
        const QString one = QStringLiteral("one");
        const QString two = QStringLiteral("two\nlines");
        QTest::newRow("first") << 0 << QStringList {two, one};
        QTest::newRow("last, not its equal") << 2 << QStringList {one, two};
        QTest::newRow("negative") << -1 << QStringList {one, two, one};
        QTest::newRow("one too many") << 3 << QStringList {one, two, one};
    }

    void remove()
    {
        QFETCH(int, row);
        QFETCH(QStringList, left);
        const int count = left.size() < 3 ? 1 : 0;
        QSignalSpy removed(m_model.get(), &QAbstractItemModel::rowsRemoved);
        QSignalSpy changed(m_model.get(), &QmlStringListModel::stringListChanged);
        QCOMPARE(m_model->remove(row), count == 1);
        QCOMPARE(m_model->stringList(), left);
        QCOMPARE(removed.count(), count);
        QCOMPARE(changed.count(), count);
    }

    void setData_data()
    {
        QTest::addColumn<int>("role");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("edit") << int(Qt::EditRole) << true;
        QTest::newRow("text") << int(QmlStringListModel::TextRole) << true;
        QTest::newRow("display") << int(Qt::DisplayRole) << false;
        QTest::newRow("decoration") << int(Qt::DecorationRole) << false;
    }

    void setData()
    {
        QFETCH(int, role);
        QFETCH(bool, accepted);
        const int count = accepted ? 1 : 0;
        QSignalSpy data(m_model.get(), &QAbstractItemModel::dataChanged);
        QSignalSpy changed(m_model.get(), &QmlStringListModel::stringListChanged);
        const QModelIndex index = m_model->index(2);
        QCOMPARE(m_model->setData(index, QStringLiteral("new"), role), accepted);
        QCOMPARE(m_model->setData(index, QStringLiteral("new"), role), accepted); // silent
        QCOMPARE(shown(2), accepted ? QStringLiteral("new") : QStringLiteral("one"));
        QCOMPARE(shown(0), QStringLiteral("one"));
        QCOMPARE(data.count(), count);
        QCOMPARE(changed.count(), count);
        if (accepted) {
            QCOMPARE(data.at(0).at(0).toModelIndex(), index);
            QCOMPARE(data.at(0).at(1).toModelIndex(), index);
        }
    }

    void setDataWithoutAnIndex()
    {
        QVERIFY(!m_model->setData(QModelIndex(), QStringLiteral("new")));
        QCOMPARE(m_model->rowCount(), 3);
        const QModelIndex last = m_model->index(2);
        QVERIFY(m_model->remove(0));
        QVERIFY(!m_model->setData(last, QStringLiteral("new")));
        QCOMPARE(m_model->rowCount(), 2);
        QCOMPARE(takeQtWarnings(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_QmlStringListModel)
#include "tst_QmlStringListModel.moc"
