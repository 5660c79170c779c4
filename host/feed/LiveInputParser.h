// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace Velmar::Host {

/// Reads live values from a stream of bytes that come in any portions: UTF-8, one JSON object per
/// line, {"SPEED": 6.5, "CAMERA_TILT": -3}. A line with a fault is skipped as a whole and reported
/// with its number; a value that nobody knows is left out and reported once.
class LiveInputParser
{
public:
    static constexpr int LongestLine = 64 * 1024; ///< [bytes]

    struct Value
    {
        QString name;
        QVariant value; ///< as SystemValues::read() makes it
    };
    struct Batch
    {
        QVector<Value> values; ///< in the order of the lines
        QStringList problems;  ///< single lines, for people
    };

    Batch feed(const QByteArray &bytes); ///< the next bytes
    Batch finish();                      ///< no more bytes come: the last line needs no end

private:
    void readLine(const QByteArray &line, Batch *batch);
    void readValue(const QString &name, const QVariant &input, Batch *batch);
    void endLine(Batch *batch);
    void report(const QString &problem, Batch *batch) const;

    QByteArray m_line;      ///< what came of the current line
    bool m_tooLong = false; ///< the rest of the current line is skipped
    int m_lineNumber = 1;
    QSet<QString> m_unknown; ///< names that were reported
};

} // namespace Velmar::Host
