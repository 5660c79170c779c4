// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QElapsedTimer>
#include <QString>

namespace Velmar::Host {

/// One line on the terminal that tells how far a recording is. Silent where the standard error
/// stream is no terminal.
class ProgressLine
{
public:
    enum class Mode {
        Terminal, ///< only if the standard error stream is one
        Off,
    };

    explicit ProgressLine(Mode mode);
    ~ProgressLine();

    /// @p durationNs is -1 while nobody knows it.
    void show(int frames, qint64 positionNs, qint64 durationNs);
    /// Takes the line away, so that something else can be printed.
    void clear();
    double seconds() const; ///< since construction

    /// What stands on the line after @p seconds.
    static QString text(int frames, qint64 positionNs, qint64 durationNs, double seconds);

private:
    Q_DISABLE_COPY(ProgressLine)

    bool m_enabled;
    bool m_shown = false;
    QElapsedTimer m_clock;
};

} // namespace Velmar::Host
