// SPDX-License-Identifier: Apache-2.0
#include "tests/host/screens/ScreenRobot.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QtTest>

#include <algorithm>

namespace Velmar::Test {

namespace {

constexpr int DragSteps = 8;

QTouchDevice *touchScreen()
{
    static QTouchDevice *const device = QTest::createTouchDevice();
    return device;
}

QPoint centreOf(const QQuickItem &item)
{
    return item.mapToScene(QPointF(item.width() / 2, item.height() / 2)).toPoint();
}

} // namespace

ScreenRobot::ScreenRobot(QQuickWindow *window)
    : m_window(window)
{
}

void ScreenRobot::visit(QQuickItem *item, QVector<QQuickItem *> &found) const
{
    if (!item->isVisible())
        return;
    found.append(item);
    const QList<QQuickItem *> children = item->childItems();
    for (QQuickItem *child : children)
        visit(child, found);
}

QQuickItem *ScreenRobot::find(const QString &name) const
{
    QVector<QQuickItem *> all;
    visit(m_window->contentItem(), all);
    const auto it = std::find_if(
        all.begin(), all.end(), [&](const QQuickItem *item) { return item->objectName() == name; });
    return it == all.end() ? nullptr : *it;
}

QVector<QQuickItem *> ScreenRobot::allWith(const char *property) const
{
    QVector<QQuickItem *> all;
    visit(m_window->contentItem(), all);
    all.erase(std::remove_if(all.begin(), all.end(),
                             [property](const QQuickItem *item) {
                                 return item->metaObject()->indexOfProperty(property) < 0;
                             }),
              all.end());
    return all;
}

QQuickItem *ScreenRobot::await(const QString &name) const
{
    const bool isThere = QTest::qWaitFor([&] { return find(name) != nullptr; });
    return isThere ? find(name) : nullptr;
}

bool ScreenRobot::awaitGone(const QString &name) const
{
    return QTest::qWaitFor([&] { return find(name) == nullptr; });
}

bool ScreenRobot::click(const QString &name) const
{
    const QQuickItem *item = await(name);
    if (!item || !QTest::qWaitFor([item] { return item->isEnabled(); })) {
        qInfo("%s: %s", qPrintable(name), item ? "is disabled" : "is not there");
        return false;
    }
    // A question is not answered in its first moment.
    if (name != QLatin1String("settling") && !awaitGone(QStringLiteral("settling")))
        return false;
    // A dialog that is just opening or a list that is just laid out still moves.
    QPoint last(-1, -1);
    int sameFor = 0;
    const bool rests = QTest::qWaitFor([&] {
        const QPoint now = centreOf(*item);
        sameFor = now == last ? sameFor + 1 : 0;
        last = now;
        return sameFor == 4;
    });
    QTest::mouseClick(m_window, Qt::LeftButton, Qt::NoModifier, centreOf(*item));
    return rests;
}

bool ScreenRobot::tap(const QString &name, int times) const
{
    const QQuickItem *item = await(name);
    if (!item)
        return false;
    const QPoint centre = centreOf(*item);
    for (int i = 0; i < times; ++i) {
        QTest::touchEvent(m_window, touchScreen()).press(0, centre, m_window);
        QTest::touchEvent(m_window, touchScreen()).release(0, centre, m_window);
    }
    return true;
}

bool ScreenRobot::type(const QString &name, const QString &text) const
{
    if (!click(name))
        return false;
    QTest::keySequence(m_window, QKeySequence(QKeySequence::SelectAll));
    QTest::keyClick(m_window, Qt::Key_Delete);
    for (const QChar letter : text)
        QTest::sendKeyEvent(QTest::Click, m_window, Qt::Key_unknown, QString(letter),
                            Qt::NoModifier);
    return find(name)->property("text").toString() == text;
}

QString ScreenRobot::text(const QString &name) const
{
    const QQuickItem *item = find(name);
    return item ? item->property("text").toString() : QString();
}

void ScreenRobot::key(int key) const
{
    QTest::keyClick(m_window, Qt::Key(key));
}

void ScreenRobot::drag(QPointF from, QPointF way, Pointer pointer) const
{
    const auto at = [&](int step) { return (from + way * step / DragSteps).toPoint(); };
    if (pointer == Pointer::Mouse) {
        QTest::mousePress(m_window, Qt::LeftButton, Qt::NoModifier, at(0));
        for (int step = 1; step <= DragSteps; ++step)
            QTest::mouseMove(m_window, at(step));
        QTest::mouseRelease(m_window, Qt::LeftButton, Qt::NoModifier, at(DragSteps));
        return;
    }
    QTest::touchEvent(m_window, touchScreen()).press(0, at(0), m_window);
    for (int step = 1; step <= DragSteps; ++step)
        QTest::touchEvent(m_window, touchScreen()).move(0, at(step), m_window);
    QTest::touchEvent(m_window, touchScreen()).release(0, at(DragSteps), m_window);
}

} // namespace Velmar::Test
