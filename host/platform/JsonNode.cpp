// SPDX-License-Identifier: Apache-2.0
#include "host/platform/JsonNode.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

namespace Velmar {

namespace {

/// Walks over the text of a document that was parsed before and is therefore sound; the ends are
/// looked after all the same.
class Scanner
{
public:
    explicit Scanner(const QByteArray &json)
        : m_json(json)
        , m_at(json.startsWith("\xEF\xBB\xBF") ? 3 : 0) // a byte order mark
    {
        skipBlanks();
    }

    int at() const { return m_at; }

    /// From an object to the value of its member; false, and nothing moves, without one.
    bool enterMember(const QString &name)
    {
        const int object = m_at;
        int found = -1;
        for (bool more = enter('{', '}'); more; more = skipSeparator()) {
            const int key = m_at;
            skipValue();
            const QByteArray token = m_json.mid(key, m_at - key);
            skipBlanks();
            ++m_at; // the colon
            skipBlanks();
            // What is written twice counts as it is read: the last one.
            if (text(token) == name)
                found = m_at;
            skipValue();
        }
        m_at = found < 0 ? object : found;
        return found >= 0;
    }

    void enterElement(int index)
    {
        bool more = enter('[', ']');
        for (int i = 0; more && i < index; ++i) {
            skipValue();
            more = skipSeparator();
        }
    }

private:
    char current() const { return m_at < m_json.size() ? m_json.at(m_at) : '\0'; }
    bool atEnd() const { return m_at >= m_json.size(); }

    static bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

    static QString text(const QByteArray &token)
    {
        return QJsonDocument::fromJson('[' + token + ']').array().at(0).toString();
    }

    /// Steps inside; false when there is nothing.
    bool enter(char open, char close)
    {
        if (current() != open)
            return false;
        ++m_at;
        skipBlanks();
        return !atEnd() && current() != close;
    }

    /// After a value: to the next one; false when it was the last.
    bool skipSeparator()
    {
        skipBlanks();
        if (current() != ',')
            return false;
        ++m_at;
        skipBlanks();
        return true;
    }

    void skipBlanks()
    {
        while (isBlank(current()))
            ++m_at;
    }

    void skipValue()
    {
        if (current() == '"')
            skipString();
        else if (current() == '{' || current() == '[')
            skipContainer();
        else
            skipWord();
    }

    void skipString()
    {
        for (++m_at; !atEnd() && current() != '"'; ++m_at) {
            if (current() == '\\')
                ++m_at; // whatever is escaped ends nothing
        }
        ++m_at;
    }

    void skipContainer()
    {
        int depth = 0;
        do {
            const char c = current();
            if (c == '"') {
                skipString();
                continue;
            }
            if (c == '{' || c == '[')
                ++depth;
            if (c == '}' || c == ']')
                --depth;
            ++m_at;
        } while (depth > 0 && !atEnd());
    }

    void skipWord()
    {
        const auto isEnd = [](char c) { return c == ',' || c == ']' || c == '}' || isBlank(c); };
        while (!atEnd() && !isEnd(current()))
            ++m_at;
    }

    const QByteArray &m_json;
    int m_at;
};

} // namespace

JsonNode::JsonNode(QJsonValue value)
    : JsonNode(std::move(value), {})
{
}

JsonNode::JsonNode(QJsonValue value, QVector<Step> way)
    : m_value(std::move(value))
    , m_way(std::move(way))
{
}

JsonNode JsonNode::member(const QString &name) const
{
    return {m_value.toObject().value(name), m_way + QVector<Step> {{name, -1}}};
}

QVector<JsonNode> JsonNode::elements() const
{
    const QJsonArray values = m_value.toArray();
    QVector<JsonNode> nodes;
    nodes.reserve(values.size());
    for (int i = 0; i < values.size(); ++i)
        nodes.append(JsonNode(values.at(i), m_way + QVector<Step> {{QString(), i}}));
    return nodes;
}

int JsonNode::offsetIn(const QByteArray &json) const
{
    Scanner scanner(json);
    for (const Step &step : m_way) {
        if (step.index >= 0)
            scanner.enterElement(step.index);
        else if (!scanner.enterMember(step.member))
            break;
    }
    return scanner.at();
}

QString JsonNode::position(const QByteArray &utf8, int offset)
{
    const QByteArray before = utf8.left(qMax(0, offset));
    const int lineStart = before.lastIndexOf('\n') + 1;
    return QStringLiteral("%1:%2").arg(
        QString::number(before.count('\n') + 1),
        QString::number(QString::fromUtf8(before.mid(lineStart)).size() + 1));
}

} // namespace Velmar
