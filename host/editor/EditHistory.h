// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QVariant>
#include <QVector>

#include <functional>
#include <vector>

namespace Velmar::Host {

/// What the operator changed since the last save, step by step, each of which can be taken back and
/// done again. A step is one or more changes that belong together.
class EditHistory : public QObject
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY changed)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY changed)
    Q_PROPERTY(bool modified READ isModified NOTIFY changed)
    // clang-format on

public:
    /// Something that can be done and taken back any number of times, in turns.
    struct Change
    {
        std::function<void()> undo;
        std::function<void()> redo;
        const void *target = nullptr; ///< with the key: changes of one value in one step are united
        QByteArray key;
    };

    explicit EditHistory(QObject *parent = nullptr);
    ~EditHistory() override;

    bool canUndo() const { return m_done > 0 && !m_open; }
    bool canRedo() const { return m_done < int(m_steps.size()) && !m_open; }
    bool isModified() const { return m_done > 0; }
    bool isOpen() const { return m_open; } ///< between beginStep() and endStep()

    /// Changes between the two become one step.
    void beginStep();
    void endStep();
    /// Opens the last step in force again, if it changed nothing but this: what a held key repeats
    /// belongs to its first change. Otherwise begins a step. Either is to be ended.
    void resumeStep(const void *target);

    /// A change that was made already. Forgets what was taken back.
    void add(Change change);

    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();
    void clear(); ///< what is on the display is what is saved

Q_SIGNALS:
    void changed();

private:
    using Step = std::vector<Change>;

    std::vector<Step> m_steps;
    int m_done = 0; ///< how many of the steps are in force
    bool m_open = false;
    bool m_stepIsEmpty = true;
};

} // namespace Velmar::Host
