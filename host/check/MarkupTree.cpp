// SPDX-License-Identifier: Apache-2.0
#include "host/check/MarkupTree.h"

#include <QDomDocument>
#include <QRegularExpression>
#include <QTextCodec>
#include <QXmlStreamReader>

#include <algorithm>
#include <memory>

namespace Velmar::Host {

namespace {

constexpr int MostLevels = 64;

/// The encoding that the document names itself; null when it names none that is known.
QTextCodec *namedCodec(const QByteArray &document)
{
    constexpr int longestDeclaration = 200;
    static const QRegularExpression declaration(
        QStringLiteral("^<\\?xml[^>]*\\sencoding\\s*=\\s*[\"']([A-Za-z0-9._:-]+)[\"']"));
    const QString start = QString::fromLatin1(document.left(longestDeclaration));
    const QString name = declaration.match(start).captured(1);
    return name.isEmpty() ? nullptr : QTextCodec::codecForName(name.toLatin1());
}

/// The encoding as the overlay finds it: from the mark or the first bytes, else from the
/// declaration, even where that cannot be true.
QTextCodec *codecOf(const QByteArray &document)
{
    if (QTextCodec *marked = QTextCodec::codecForUtfText(document, nullptr))
        return marked;
    if (document.startsWith(QByteArray("<\0", 2)))
        return QTextCodec::codecForName("UTF-16LE");
    if (document.startsWith(QByteArray("\0<", 2)))
        return QTextCodec::codecForName("UTF-16BE");
    QTextCodec *named = namedCodec(document);
    return named ? named : QTextCodec::codecForName("UTF-8");
}

QString decoded(const QByteArray &document)
{
    QString text = codecOf(document)->toUnicode(document);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return text;
}

class Reader
{
public:
    explicit Reader(const QString &text)
        : m_text(text)
        , m_xml(text)
    {
    }

    void read(MarkupTree *tree)
    {
        while (!m_xml.atEnd() && tree->error.isEmpty()) {
            m_xml.readNext();
            if (m_xml.isDTD() && !m_xml.entityDeclarations().isEmpty())
                refuse(tree, QStringLiteral("entities are declared"),
                       placeOf(lastStart("<!DOCTYPE")));
            else if (m_xml.isStartElement())
                enter(tree, placeOf(lastStart("<"))); // attributes hold no "<"
            else if (m_xml.isEndElement())
                leave(tree);
            else if (m_xml.isCharacters() && !m_open.empty())
                m_open.back()->text += m_xml.text();
        }
        if (m_xml.hasError() && tree->error.isEmpty())
            refuse(tree, m_xml.errorString(), placeOf(int(m_xml.characterOffset())));
    }

private:
    void enter(MarkupTree *tree, TextPlace place)
    {
        if (int(m_open.size()) >= MostLevels) {
            refuse(tree, QStringLiteral("nested deeper than %1 levels").arg(MostLevels), place);
            return;
        }
        auto node = std::make_unique<MarkupNode>();
        node->name = m_xml.qualifiedName().toString();
        node->place = place;
        const QXmlStreamAttributes attributes = m_xml.attributes();
        for (const QXmlStreamAttribute &attribute : attributes)
            node->attributes.insert(attribute.qualifiedName().toString(),
                                    attribute.value().toString());
        m_open.push_back(std::move(node));
    }

    void leave(MarkupTree *tree)
    {
        const std::unique_ptr<MarkupNode> node = std::move(m_open.back());
        m_open.pop_back();
        if (m_open.empty()) {
            tree->root = std::move(*node);
            return;
        }
        m_open.back()->text += node->text;
        m_open.back()->children.push_back(std::move(*node));
    }

    static void refuse(MarkupTree *tree, const QString &reason, TextPlace place)
    {
        tree->error = reason;
        tree->errorPlace = place;
    }

    /// Where the token that was read last starts.
    int lastStart(const char *token) const
    {
        return m_text.lastIndexOf(QLatin1String(token), int(m_xml.characterOffset()) - 1);
    }

    /// Asked in ascending order, so that a file is walked once.
    TextPlace placeOf(int offset)
    {
        for (; m_walked < std::min(offset, m_text.size()); ++m_walked) {
            if (m_text.at(m_walked) == QLatin1Char('\n'))
                m_place = {m_place.line + 1, 1};
            else
                ++m_place.column;
        }
        return m_place;
    }

    const QString &m_text;
    QXmlStreamReader m_xml;
    std::vector<std::unique_ptr<MarkupNode>> m_open;
    int m_walked = 0;
    TextPlace m_place;
};

/// The overlay reads its profiles with another parser, which takes less: no odd letters in names.
void askOtherParser(const QString &text, MarkupTree *tree)
{
    QDomDocument document;
    document.setContent(text, &tree->error, &tree->errorPlace.line, &tree->errorPlace.column);
}

} // namespace

const MarkupNode *MarkupNode::child(const QString &childName) const
{
    const auto found = std::find_if(children.cbegin(), children.cend(),
                                    [&](const MarkupNode &node) { return node.name == childName; });
    return found == children.cend() ? nullptr : &*found;
}

MarkupTree MarkupTree::read(const QByteArray &document)
{
    MarkupTree tree;
    if (document.size() > MostBytes) {
        tree.error = QStringLiteral("larger than %1 MiB").arg(MostBytes / 1024 / 1024);
        return tree;
    }
    const QString text = decoded(document);
    Reader(text).read(&tree);
    if (tree.error.isEmpty())
        askOtherParser(text, &tree);
    return tree;
}

} // namespace Velmar::Host
