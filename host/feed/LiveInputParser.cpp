// SPDX-License-Identifier: Apache-2.0
#include "host/feed/LiveInputParser.h"

#include "host/feed/SystemValues.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Velmar::Host {

namespace {

/// Beyond these, names are neither remembered nor reported: they come from no crawler.
constexpr int MostUnknownNames = 200;
constexpr int LongestName = 64; ///< [characters] in a report

/// A name as it can stand in a line for people.
QString printable(QString name)
{
    name.truncate(LongestName);
    for (QChar &character : name) {
        if (!character.isPrint())
            character = QLatin1Char('?');
    }
    return name;
}

} // namespace

LiveInputParser::Batch LiveInputParser::feed(const QByteArray &bytes)
{
    Batch batch;
    int begin = 0;
    while (begin < bytes.size()) {
        const int found = bytes.indexOf('\n', begin);
        const int end = found < 0 ? bytes.size() : found;
        if (!m_tooLong && m_line.size() + (end - begin) > LongestLine) {
            m_tooLong = true;
            m_line.clear();
            report(QStringLiteral("longer than %1 bytes").arg(LongestLine), &batch);
        }
        if (!m_tooLong)
            m_line.append(bytes.constData() + begin, end - begin);
        if (found >= 0)
            endLine(&batch);
        begin = end + 1;
    }
    return batch;
}

LiveInputParser::Batch LiveInputParser::finish()
{
    Batch batch;
    if (!m_line.isEmpty() || m_tooLong)
        endLine(&batch);
    return batch;
}

void LiveInputParser::endLine(Batch *batch)
{
    if (!m_tooLong)
        readLine(m_line, batch);
    m_line.clear();
    m_tooLong = false;
    ++m_lineNumber;
}

void LiveInputParser::readLine(const QByteArray &line, Batch *batch)
{
    if (line.trimmed().isEmpty())
        return;
    if (line.contains('\0')) {
        report(QStringLiteral("holds a NUL byte"), batch);
        return;
    }
    QJsonParseError error {};
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    if (error.error != QJsonParseError::NoError) {
        report(QStringLiteral("no JSON: %1").arg(error.errorString()), batch);
        return;
    }
    if (!document.isObject()) {
        report(QStringLiteral("no JSON object"), batch);
        return;
    }
    const QJsonObject object = document.object();
    Batch ofLine;
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        if (it->isNull())
            continue; // no new value
        if (!it->isDouble() && !it->isString()) {
            report(QStringLiteral("%1: neither a number nor a text").arg(printable(it.key())),
                   batch);
            return;
        }
        readValue(it.key(), it->toVariant(), &ofLine);
    }
    batch->values += ofLine.values;
    batch->problems += ofLine.problems;
}

void LiveInputParser::readValue(const QString &name, const QVariant &input, Batch *batch)
{
    const SystemValue *known = SystemValues::findInput(name);
    if (!known) {
        if (m_unknown.size() < MostUnknownNames && !m_unknown.contains(name)) {
            m_unknown.insert(name);
            report(
                QStringLiteral("%1: no such value; xqosd values lists them").arg(printable(name)),
                batch);
        }
        return;
    }
    QString error;
    QVariant value = input.toString().contains(QChar(0))
        ? QVariant()
        : SystemValues::read(*known, input, &error);
    if (!value.isValid()) {
        report(error.isEmpty() ? QStringLiteral("%1: holds a NUL character").arg(name) : error,
               batch);
        return;
    }
    batch->values.append({name, std::move(value)});
}

void LiveInputParser::report(const QString &problem, Batch *batch) const
{
    batch->problems.append(QStringLiteral("line %1: %2").arg(m_lineNumber).arg(problem));
}

} // namespace Velmar::Host
