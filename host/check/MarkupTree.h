// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <vector>

namespace Velmar::Host {

/// Where something stands in a text file; both counted from 1.
struct TextPlace
{
    int line = 1;
    int column = 1;
};

/// One element of an XML file with its place.
struct MarkupNode
{
    QString name;
    TextPlace place; ///< of its "<"
    QMap<QString, QString> attributes;
    QString text; ///< of the element and all within it
    std::vector<MarkupNode> children;

    /// The first child of that name; null when there is none.
    const MarkupNode *child(const QString &childName) const;
};

/// A whole XML file as nodes that know where they stand; DOM classes forget it.
struct MarkupTree
{
    static constexpr int MostBytes = 16 * 1024 * 1024;

    MarkupNode root;
    QString error; ///< empty when the file was read
    TextPlace errorPlace;

    /// Refuses entity declarations, more than 64 levels and more than 16 MiB: no profile needs
    /// them.
    static MarkupTree read(const QByteArray &document);
};

} // namespace Velmar::Host
