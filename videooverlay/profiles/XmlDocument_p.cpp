// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/XmlDocument_p.h"

#include <QIODevice>

namespace Velmar::VideoOverlay {

namespace {

/// Declared in any encoding that pads its ASCII characters with zero bytes, too.
bool declaresEntities(QByteArray bytes)
{
    if (!bytes.contains("<!ENTITY"))
        bytes.replace(QByteArray(1, '\0'), QByteArray());
    return bytes.contains("<!ENTITY");
}

bool isDeeper(const QDomNode &root, int levels)
{
    int depth = 0;
    QDomNode node = root;
    while (depth <= levels) {
        if (node.hasChildNodes()) {
            node = node.firstChild();
            ++depth;
            continue;
        }
        while (depth > 0 && node.nextSibling().isNull()) {
            node = node.parentNode();
            --depth;
        }
        if (depth == 0)
            return false;
        node = node.nextSibling();
    }
    return true;
}

} // namespace

XmlDocument::~XmlDocument()
{
    dismantle();
}

bool XmlDocument::read(QIODevice &device, QString *message)
{
    // One byte more tells a file that is too large, also one that cannot tell its size.
    const QByteArray bytes = device.read(maximumBytes + 1);
    if (bytes.size() > maximumBytes)
        *message = QStringLiteral("larger than %1 bytes").arg(maximumBytes);
    else if (bytes.count('<') > maximumTags)
        *message = QStringLiteral("more than %1 tags").arg(maximumTags);
    else if (declaresEntities(bytes))
        *message = QStringLiteral("declares entities");
    else if (parse(bytes, message))
        return true;
    dismantle();
    return false;
}

bool XmlDocument::parse(const QByteArray &bytes, QString *message)
{
    // Not the device itself: the parser would switch its text mode off.
    if (!m_document.setContent(bytes, message))
        return false;
    if (!isDeeper(m_document, maximumDepth))
        return true;
    *message = QStringLiteral("nested deeper than %1 levels").arg(maximumDepth);
    return false;
}

/// Leaf by leaf: the tree would free itself recursively, and a deep one overflow the stack.
void XmlDocument::dismantle()
{
    QDomNode node = m_document;
    while (!node.isNull()) {
        while (node.hasChildNodes())
            node = node.lastChild();
        const QDomNode parent = node.parentNode();
        if (!parent.isNull())
            QDomNode(parent).removeChild(node);
        node = parent;
    }
    m_document = QDomDocument();
}

} // namespace Velmar::VideoOverlay
