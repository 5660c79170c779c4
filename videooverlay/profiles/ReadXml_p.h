// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDomDocument>
#include <QString>

class QIODevice;

namespace Velmar::VideoOverlay {

// What is refused. Far above every real profile: one of 60 elements has 30 kB, 1,800 tags, depth 5.
constexpr qint64 maximumXmlBytes = 16 * 1024 * 1024;
/// Every node of the tree takes one "<", "=" or "&" at least, and some 500 bytes of memory at most.
/// 10,000 full records have 300,000.
constexpr int maximumXmlNodes = 500000;
/// The tree is parsed and freed recursively: some ten thousand levels overflow the stack.
constexpr int maximumXmlDepth = 200;

/// Parses what is left of @p device, one small file of ours. Such files are copied from device to
/// device and edited by hand, so anything can be in them: what would take unbounded memory, time or
/// stack is refused like a document that is not well-formed, before a tree is built. False: @p
/// message tells why, and @p document is not to be used.
bool readXml(QIODevice &device, QDomDocument &document, QString *message);

} // namespace Velmar::VideoOverlay
