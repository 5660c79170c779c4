// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPoint>
#include <QPointF>
#include <QString>
#include <QVector>

QT_BEGIN_NAMESPACE
class QQuickItem;
class QQuickWindow;
QT_END_NAMESPACE

namespace Velmar::Test {

/// Works a window as an operator does: finds what is visible by its name and clicks there, touches
/// it or types.
class ScreenRobot
{
public:
    enum class Pointer { Mouse, Finger };

    explicit ScreenRobot(QQuickWindow *window = nullptr);

    /// The visible item of this name; null when there is none.
    QQuickItem *find(const QString &name) const;
    /// All visible items that have a property of this name.
    QVector<QQuickItem *> allWith(const char *property) const;
    /// The same once it is there; null, after some seconds, when it does not come.
    QQuickItem *await(const QString &name) const;
    /// It is gone, at once or after a while.
    bool awaitGone(const QString &name) const;

    /// These return false when there is no such item.
    bool click(const QString &name) const;
    bool tap(const QString &name, int times = 1) const;        ///< by a finger, as fast as it can
    bool type(const QString &name, const QString &text) const; ///< instead of what was there
    QString text(const QString &name) const;
    void key(int key) const;

    /// Presses at @p from, moves by @p way in steps and lets go. In the window's pixels.
    void drag(QPointF from, QPointF way, Pointer pointer) const;

private:
    void visit(QQuickItem *item, QVector<QQuickItem *> &found) const;

    QQuickWindow *m_window;
};

} // namespace Velmar::Test
