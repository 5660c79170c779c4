// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>
#include <QVector>

namespace Velmar {

/// A value of a JSON document together with the way to it, so that what is wrong with a value can
/// be reported with the place where it stands. The place is only looked for when it is asked for.
class JsonNode
{
public:
    JsonNode() = default; ///< undefined; what QVector needs
    /// The root of a document.
    explicit JsonNode(QJsonValue value);

    const QJsonValue &value() const { return m_value; }

    /// Undefined when this is no object or has no such member.
    JsonNode member(const QString &name) const;
    /// Empty when this is no array.
    QVector<JsonNode> elements() const;

    /// Where this value begins in @p json, the document it was taken from. For an undefined value
    /// this is where its object begins.
    int offsetIn(const QByteArray &json) const;

    /// "line:column" of an offset, both counted from 1, the columns in characters.
    static QString position(const QByteArray &utf8, int offset);

private:
    struct Step
    {
        QString member;
        int index; ///< -1 for a member
    };

    JsonNode(QJsonValue value, QVector<Step> way);

    QJsonValue m_value = QJsonValue::Undefined;
    QVector<Step> m_way; ///< from the root
};

} // namespace Velmar
