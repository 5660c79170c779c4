// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/ReadXml_p.h"

#include <QFileDevice>
#include <QIODevice>
#include <QRegularExpression>
#include <QTextCodec>

#include <algorithm>

namespace Velmar::VideoOverlay {

namespace {

/// The encoding that the document declares; null when it names none that is known.
QTextCodec *declaredCodec(const QByteArray &bytes)
{
    constexpr int longestDeclaration = 200;
    static const QRegularExpression declaration(
        QStringLiteral("^<\\?xml[^>]*\\sencoding\\s*=\\s*[\"']([A-Za-z0-9._:-]+)[\"']"));
    const QString start = QString::fromLatin1(bytes.left(longestDeclaration));
    const QString name = declaration.match(start).captured(1);
    return name.isEmpty() ? nullptr : QTextCodec::codecForName(name.toLatin1());
}

/// Decoded here and not by the parser, so that what is measured is what is parsed.
QString decode(const QByteArray &bytes)
{
    if (QTextCodec *marked = QTextCodec::codecForUtfText(bytes, nullptr))
        return marked->toUnicode(bytes);
    if (bytes.startsWith(QByteArray("<\0", 2)))
        return QTextCodec::codecForName("UTF-16LE")->toUnicode(bytes);
    if (bytes.startsWith(QByteArray("\0<", 2)))
        return QTextCodec::codecForName("UTF-16BE")->toUnicode(bytes);
    if (QTextCodec *declared = declaredCodec(bytes))
        return declared->toUnicode(bytes);
    return QString::fromUtf8(bytes.constData(), bytes.size()); // a zero byte is no end
}

/// Walks over the tags of a document without building anything. Exact as long as the document is
/// well-formed, and the parser gets no further than that.
class TagWalk
{
public:
    explicit TagWalk(const QString &text)
        : m_text(text)
    {
    }

    /// Null when the parser may have it.
    QString reasonToRefuse()
    {
        int depth = 0;
        for (int at = m_text.indexOf(QLatin1Char('<')); at >= 0;
             at = m_text.indexOf(QLatin1Char('<'), at)) {
            depth += step(at);
            if (m_declares)
                return QStringLiteral("declarations inside the document are not supported");
            if (depth > maximumXmlDepth)
                return QStringLiteral("nested deeper than %1 levels").arg(maximumXmlDepth);
        }
        return QString();
    }

private:
    /// Moves @p at behind the tag that begins there; by how many levels it changes the depth.
    int step(int &at)
    {
        if (begins(at, "<!--"))
            return skip(at + 4, "-->", at);
        if (begins(at, "<![CDATA["))
            return skip(at + 9, "]]>", at);
        if (begins(at, "<?"))
            return skip(at + 2, "?>", at);
        const bool declaration = begins(at, "<!");
        const bool closes = begins(at, "</");
        at = endOfTag(at + 1);
        if (declaration) {
            m_declares = m_text.midRef(at, 1) == QLatin1String("[");
            return 0;
        }
        if (closes)
            return -1;
        return m_text.at(at - 1) == QLatin1Char('/') ? 0 : 1;
    }

    bool begins(int at, const char *start) const
    {
        return m_text.midRef(at).startsWith(QLatin1String(start));
    }

    int skip(int from, const char *end, int &at) const
    {
        const int found = m_text.indexOf(QLatin1String(end), from);
        at = found < 0 ? m_text.size() : found;
        return 0;
    }

    /// Of ">", or of the "[" before declarations, outside quotes; the end of the text without one.
    int endOfTag(int at) const
    {
        QChar quote;
        for (; at < m_text.size(); ++at) {
            const QChar character = m_text.at(at);
            if (!quote.isNull())
                quote = character == quote ? QChar() : quote;
            else if (character == QLatin1Char('"') || character == QLatin1Char('\''))
                quote = character;
            else if (character == QLatin1Char('>') || character == QLatin1Char('['))
                break;
        }
        return at;
    }

    const QString &m_text;
    bool m_declares = false;
};

QString reasonToRefuse(const QString &text)
{
    const auto nodes = std::count_if(text.cbegin(), text.cend(), [](QChar character) {
        return character == QLatin1Char('<') || character == QLatin1Char('=')
            || character == QLatin1Char('&');
    });
    if (nodes > maximumXmlNodes)
        return QStringLiteral("more than %1 tags, attributes and references").arg(maximumXmlNodes);
    return TagWalk(text).reasonToRefuse();
}

/// What is left of @p device, but no more than the first byte beyond what is allowed: it tells a
/// file that is too large, also one that cannot tell its size. In portions, because one call for
/// that many bytes asks for room for all of them first, 16 MiB for each small file.
QByteArray readBytes(QIODevice &device)
{
    constexpr qint64 portion = 64 * 1024;
    QByteArray bytes;
    while (bytes.size() <= maximumXmlBytes) {
        const QByteArray next = device.read(qMin(portion, maximumXmlBytes + 1 - bytes.size()));
        if (next.isEmpty())
            break;
        bytes += next;
    }
    return bytes;
}

} // namespace

bool readXml(QIODevice &device, QDomDocument &document, QString *message)
{
    const QByteArray bytes = readBytes(device);
    const auto *file = qobject_cast<const QFileDevice *>(&device);
    if (file && file->error() != QFileDevice::NoError) { // else it looks like a shorter file
        *message = file->errorString();
        return false;
    }
    if (bytes.size() > maximumXmlBytes) {
        *message = QStringLiteral("larger than %1 bytes").arg(maximumXmlBytes);
        return false;
    }
    const QString text = decode(bytes);
    *message = reasonToRefuse(text);
    return message->isEmpty() && document.setContent(text, message);
}

} // namespace Velmar::VideoOverlay
