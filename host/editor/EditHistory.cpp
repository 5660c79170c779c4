// SPDX-License-Identifier: Apache-2.0
#include "host/editor/EditHistory.h"

#include <algorithm>

namespace Velmar::Host {

EditHistory::EditHistory(QObject *parent)
    : QObject(parent)
{
}

EditHistory::~EditHistory() = default;

void EditHistory::beginStep()
{
    endStep();
    m_open = true;
    m_stepIsEmpty = true;
    Q_EMIT changed();
}

void EditHistory::endStep()
{
    if (!m_open)
        return;
    m_open = false;
    Q_EMIT changed();
}

void EditHistory::resumeStep(const void *target)
{
    beginStep();
    if (m_done == 0 || !target)
        return;
    const Step &last = m_steps[size_t(m_done - 1)];
    m_stepIsEmpty = !std::all_of(last.begin(), last.end(), [target](const Change &change) {
        return change.target == target;
    });
}

void EditHistory::add(Change change)
{
    m_steps.resize(size_t(m_done));
    if (!m_open || m_stepIsEmpty) {
        m_steps.emplace_back();
        ++m_done;
    }
    m_stepIsEmpty = false;
    Step &step = m_steps.back();
    const auto same = std::find_if(step.begin(), step.end(), [&](const Change &known) {
        return known.target && known.target == change.target && known.key == change.key;
    });
    if (same != step.end())
        same->redo = std::move(change.redo); // from the first value to the last
    else
        step.push_back(std::move(change));
    Q_EMIT changed();
}

void EditHistory::undo()
{
    if (!canUndo())
        return;
    const Step step = m_steps[size_t(--m_done)]; // a copy: handlers may clear the history
    for (auto change = step.crbegin(); change != step.crend(); ++change)
        change->undo();
    Q_EMIT changed();
}

void EditHistory::redo()
{
    if (!canRedo())
        return;
    const Step step = m_steps[size_t(m_done++)];
    for (const Change &change : step)
        change.redo();
    Q_EMIT changed();
}

void EditHistory::clear()
{
    m_steps.clear();
    m_done = 0;
    m_open = false;
    Q_EMIT changed();
}

} // namespace Velmar::Host
