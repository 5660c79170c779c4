// SPDX-License-Identifier: Apache-2.0
#include "host/commands/ProgressLine.h"

#include <cmath>
#include <cstdio>

#include <unistd.h>

namespace Velmar::Host {

namespace {

constexpr double NsPerSecond = 1e9;

QString clockText(double seconds)
{
    const qint64 whole = std::llround(seconds);
    return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

ProgressLine::ProgressLine(Mode mode)
    : m_enabled(mode == Mode::Terminal && isatty(STDERR_FILENO))
{
    m_clock.start();
}

ProgressLine::~ProgressLine()
{
    clear();
}

double ProgressLine::seconds() const
{
    return m_clock.nsecsElapsed() / NsPerSecond;
}

QString ProgressLine::text(int frames, qint64 positionNs, qint64 durationNs, double seconds)
{
    const double rate = seconds > 0 ? frames / seconds : 0.0;
    QString line = QStringLiteral("%1 frames, %2 fps, %3")
                       .arg(frames)
                       .arg(rate, 0, 'f', 1)
                       .arg(clockText(positionNs / NsPerSecond));
    if (durationNs <= 0)
        return line;
    line += QStringLiteral(" of %1").arg(clockText(durationNs / NsPerSecond));
    if (positionNs > 0) {
        const double left = seconds * double(qMax<qint64>(0, durationNs - positionNs)) / positionNs;
        line += QStringLiteral(", %1 left").arg(clockText(left));
    }
    return line;
}

void ProgressLine::show(int frames, qint64 positionNs, qint64 durationNs)
{
    if (!m_enabled)
        return;
    m_shown = true;
    // Back to the left edge, and away with what an earlier, longer line left there.
    std::fprintf(stderr, "\r%s\x1b[K",
                 text(frames, positionNs, durationNs, seconds()).toUtf8().constData());
    std::fflush(stderr);
}

void ProgressLine::clear()
{
    if (!m_shown)
        return;
    m_shown = false;
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
}

} // namespace Velmar::Host
