// SPDX-License-Identifier: Apache-2.0
#include "host/feed/TelemetryFile.h"

#include <QFile>
#include <QSet>
#include <QTextCodec>

#include <algorithm>
#include <cmath>

namespace Velmar::Host {

namespace {

constexpr int MaxLineLength = 64 * 1024; ///< [bytes] without the line end
constexpr int Utf8Mib = 106;
constexpr qint64 LongestRampMs = 1000;

/// Decodes @p line; false when it is not UTF-8.
bool decode(const QByteArray &line, QString &text)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    text = QTextCodec::codecForMib(Utf8Mib)->toUnicode(line.constData(), line.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

/// Splits @p line at the commas outside of quotes. Returns the reason for which it cannot be split,
/// null on success.
QString split(const QString &line, QStringList &cells)
{
    cells.clear();
    int i = 0;
    for (;;) {
        QString cell;
        if (i < line.size() && line.at(i) == QLatin1Char('"')) {
            for (++i;; ++i) {
                if (i >= line.size())
                    return QStringLiteral("a quoted cell is not closed");
                if (line.at(i) == QLatin1Char('"')) {
                    ++i;
                    if (i >= line.size() || line.at(i) != QLatin1Char('"'))
                        break;
                }
                cell += line.at(i);
            }
            if (i < line.size() && line.at(i) != QLatin1Char(','))
                return QStringLiteral("text follows the closing quote of a cell");
        } else {
            const int comma = line.indexOf(QLatin1Char(','), i);
            const int end = comma < 0 ? line.size() : comma;
            cell = line.mid(i, end - i).trimmed();
            i = end;
        }
        cells.append(cell);
        if (i >= line.size())
            return QString();
        ++i; // the comma
    }
}

QString checkHeader(const QStringList &cells)
{
    if (cells.first() != QLatin1String("t_ms"))
        return QStringLiteral("the header line does not begin with \"t_ms\"");
    QSet<QString> seen;
    for (int i = 0; i < cells.size(); ++i) {
        if (cells.at(i).trimmed().isEmpty())
            return QStringLiteral("column %1 has no name").arg(i + 1);
        if (seen.contains(cells.at(i)))
            return QStringLiteral("the column \"%1\" occurs twice").arg(cells.at(i));
        seen.insert(cells.at(i));
    }
    return QString();
}

/// From @p before at 0 to @p after at 1. The difference of two finite numbers may be none: of two
/// on either side of zero, each gets its weight instead.
double between(double before, double after, double share)
{
    if ((before <= 0 && after >= 0) || (before >= 0 && after <= 0))
        return share * after + (1 - share) * before;
    return before + (after - before) * share;
}

/// A time is digits only: no sign, no blank, no fraction.
bool parseTime(const QString &cell, qint64 &timeMs)
{
    const bool digits = std::all_of(cell.cbegin(), cell.cend(), [](QChar c) {
        return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    });
    bool ok = false;
    timeMs = cell.toLongLong(&ok);
    return digits && ok;
}

} // namespace

bool TelemetryFile::load(const QString &path, QString *error)
{
    int lineNumber = 1;
    const auto fail = [&](const QString &reason) {
        if (error)
            *error = QStringLiteral("%1:%2: %3").arg(path, QString::number(lineNumber), reason);
        return false;
    };

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot open: ") + file.errorString());

    QStringList names;
    QVector<Reading> readings;
    QVector<Track> tracks;
    QVector<bool> numeric;
    qint64 lastMs = 0;

    QString text;
    QStringList cells;
    for (;; ++lineNumber) {
        // Two bytes more than allowed, for the line end; QFile takes one more for the terminator.
        QByteArray line = file.readLine(MaxLineLength + 3);
        if (line.isEmpty()) {
            if (file.error() != QFileDevice::NoError)
                return fail(QStringLiteral("cannot read: ") + file.errorString());
            break;
        }
        if (line.endsWith('\n'))
            line.chop(1);
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.contains('\0'))
            return fail(QStringLiteral("the line has a NUL byte"));
        if (line.size() > MaxLineLength)
            return fail(QStringLiteral("the line is longer than %1 bytes").arg(MaxLineLength));
        if (lineNumber == 1 && line.startsWith("\xef\xbb\xbf"))
            line.remove(0, 3);
        if (!decode(line, text))
            return fail(QStringLiteral("the line is not valid UTF-8"));
        if (text.isEmpty() && !names.isEmpty())
            continue;

        if (const QString reason = split(text, cells); !reason.isNull())
            return fail(reason);

        if (lineNumber == 1) {
            if (const QString reason = checkHeader(cells); !reason.isNull())
                return fail(reason);
            names = cells;
            tracks.resize(names.size());
            numeric.fill(true, names.size());
            continue;
        }

        if (cells.size() != names.size()) {
            return fail(QStringLiteral("the line has %1 cells, the header has %2")
                            .arg(cells.size())
                            .arg(names.size()));
        }
        qint64 timeMs = 0;
        if (!parseTime(cells.first(), timeMs)) {
            return fail(QStringLiteral("the time \"%1\" is not a whole number of milliseconds")
                            .arg(cells.first()));
        }
        if (timeMs < lastMs) {
            return fail(QStringLiteral("the time %1 ms is before that of an earlier line, %2 ms")
                            .arg(timeMs)
                            .arg(lastMs));
        }
        lastMs = timeMs;

        for (int i = 1; i < cells.size(); ++i) {
            const QString &cell = cells.at(i);
            if (cell.isEmpty())
                continue;
            bool ok = false;
            const double number = cell.toDouble(&ok); // in the C locale
            if (ok && std::isfinite(number)) {
                readings.append({timeMs, i - 1, number});
                tracks[i].timesMs.append(timeMs);
                tracks[i].values.append(number);
            } else {
                readings.append({timeMs, i - 1, cell});
                numeric[i] = false;
            }
        }
    }
    if (names.isEmpty())
        return fail(QStringLiteral("the file is empty"));

    m_tracks.clear();
    for (int i = 1; i < names.size(); ++i) {
        if (numeric.at(i) && !tracks.at(i).values.isEmpty())
            m_tracks.insert(names.at(i), tracks.at(i));
    }
    names.removeFirst();
    m_names = names;
    m_readings = readings;
    m_durationMs = lastMs;
    return true;
}

QStringList TelemetryFile::names() const
{
    return m_names;
}

const QVector<TelemetryFile::Reading> &TelemetryFile::readings() const
{
    return m_readings;
}

qint64 TelemetryFile::durationMs() const
{
    return m_durationMs;
}

double TelemetryFile::interpolated(const QString &name, qint64 timeMs, double fallback) const
{
    const auto track = m_tracks.constFind(name);
    if (track == m_tracks.constEnd())
        return fallback;
    const QVector<qint64> &times = track->timesMs;
    const auto next = std::upper_bound(times.cbegin(), times.cend(), timeMs);
    if (next == times.cbegin())
        return fallback;
    const int index = int(next - times.cbegin()) - 1;
    const double before = track->values.at(index);
    if (next == times.cend())
        return before;
    // A value that was not written for long has stood still, and moves only now.
    const qint64 from = std::max(times.at(index), *next - LongestRampMs);
    if (timeMs <= from)
        return before;
    const double share = double(timeMs - from) / double(*next - from);
    return between(before, track->values.at(index + 1), share);
}

} // namespace Velmar::Host
