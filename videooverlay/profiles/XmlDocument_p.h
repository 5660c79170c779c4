// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QString>

class QIODevice;

namespace Velmar::VideoOverlay {

/// A small XML file, parsed whole. Profiles and settings are copied from device to device by people
/// and edited by hand, so anything can be in them: what would take unbounded time, memory or stack
/// is refused like a file that is not well-formed.
class XmlDocument
{
public:
    // Limits: far above every real profile (60 elements take 30 kB), far below what hurts a device.
    static constexpr qint64 maximumBytes = 16 * 1024 * 1024;
    /// Every element, comment and so on begins with one "<". 10,000 full records have 300,000; the
    /// tree takes about 300 bytes for each.
    static constexpr int maximumTags = 1000000;
    /// A favourite's line is on the fifth level. The tree frees and reads itself recursively.
    static constexpr int maximumDepth = 200;

    XmlDocument() = default;
    ~XmlDocument();
    Q_DISABLE_COPY_MOVE(XmlDocument)

    /// Reads what is left of @p device. On failure @p message tells why and document() is empty.
    bool read(QIODevice &device, QString *message);

    const QDomDocument &document() const { return m_document; }

private:
    bool parse(const QByteArray &bytes, QString *message);
    void dismantle();

    QDomDocument m_document;
};

} // namespace Velmar::VideoOverlay
