// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <videooverlay/profiles/Profile.h>

#include <QObject>
#include <QString>

namespace Velmar::Host {

class LiveOverlay;
class Messages;
class UiTexts;

/// What the operator does with profiles as a whole. Each returns false, with a message, when it
/// failed: the library says why in the log alone.
class ProfileActions : public QObject
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(int currentIndex READ currentIndex NOTIFY currentChanged)
    Q_PROPERTY(QString currentName READ currentName NOTIFY currentChanged)
    // clang-format on

public:
    /// None of the references is owned; all must outlive this object.
    ProfileActions(LiveOverlay &overlay, Messages &messages, const UiTexts &texts,
                   QObject *parent = nullptr);

    int currentIndex() const;    ///< -1: none
    QString currentName() const; ///< for people

    /// Null where there is no such row.
    Q_INVOKABLE Velmar::VideoOverlay::Profile *profileAt(int row) const;
    Q_INVOKABLE bool select(int row);
    /// A blank name makes a numbered copy.
    Q_INVOKABLE bool clone(int row, const QString &name);
    Q_INVOKABLE bool rename(int row, const QString &name);
    Q_INVOKABLE bool remove(int row);

    /// What the operator is to be asked before the current profile is saved: its file could not be
    /// read, or another program has changed it meanwhile. Empty when there is nothing to ask.
    Q_INVOKABLE QString saveQuestion() const;

Q_SIGNALS:
    void currentChanged();

private:
    /// The library shows what it could read of a file, and goes on without a word.
    bool tellIfUnreadable(int row);
    bool report(bool done, const QStringList &complaints);
    bool isStartStored() const;

    LiveOverlay &m_overlay;
    Messages &m_messages;
    const UiTexts &m_texts;
};

} // namespace Velmar::Host
