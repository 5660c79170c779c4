// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace Velmar {

/// The whole of a file that people write by hand: a catalog, translations, a project. Far above
/// every real one, what is larger is refused, and so is what never ends, before it fills the
/// memory. Empty, and @p error tells why, also when it cannot be read.
inline QByteArray readSmallFile(const QString &path, QString *error)
{
    constexpr int largest = 16 * 1024 * 1024; // [bytes]
    constexpr int portion = 64 * 1024;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return {};
    }
    QByteArray bytes;
    // In portions, because one call for that many bytes asks for room for all of them first.
    for (QByteArray next = file.read(portion); !next.isEmpty(); next = file.read(portion)) {
        bytes += next;
        if (bytes.size() > largest) {
            *error = QStringLiteral("larger than 16 MiB");
            return {};
        }
    }
    if (file.error() != QFileDevice::NoError) {
        *error = file.errorString();
        return {};
    }
    return bytes;
}

} // namespace Velmar
