// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace Velmar::Host {

/// A recorded run: which value had which reading from when on.
///
/// Read from UTF-8 CSV with a header line, "t_ms" first and one column per value name. Times are
/// whole milliseconds that never descend; a blank cell means no new value; numbers have a decimal
/// point whatever the locale is. A cell may stand in double quotes (a quote inside is doubled), but
/// not span lines. Lines without any character are passed over.
class TelemetryFile
{
public:
    /// One new reading.
    struct Reading
    {
        qint64 timeMs = 0; ///< since the start of the run
        int column = 0;    ///< index into names()
        QVariant value;    ///< double where the cell is a number, else text
    };

    /// Reads @p path. On failure the object stays as it was and @p error, which may be null, holds
    /// "file:line: reason".
    bool load(const QString &path, QString *error);

    QStringList names() const;                ///< the value names, without "t_ms"
    const QVector<Reading> &readings() const; ///< in order of time
    qint64 durationMs() const;                ///< time of the last line

    /// The value of the numeric column @p name at @p timeMs, interpolated between its readings over
    /// a second at most: before that it is held. @p fallback where there is no such column or no
    /// number yet. A column is numeric when all its readings are numbers.
    double interpolated(const QString &name, qint64 timeMs, double fallback = 0.0) const;

private:
    struct Track
    {
        QVector<qint64> timesMs;
        QVector<double> values;
    };

    QStringList m_names;
    QVector<Reading> m_readings;
    QHash<QString, Track> m_tracks; ///< of the numeric columns
    qint64 m_durationMs = 0;
};

} // namespace Velmar::Host
