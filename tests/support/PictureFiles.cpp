// SPDX-License-Identifier: Apache-2.0
#include "tests/support/PictureFiles.h"

#include <QFile>
#include <QtEndian>

namespace Velmar::Test {

namespace {

QByteArray bigEndian(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

/// The checksum of the PNG format.
quint32 crc(const QByteArray &bytes)
{
    quint32 value = 0xffffffff;
    for (const char byte : bytes) {
        value ^= quint8(byte);
        for (int i = 0; i < 8; ++i)
            value = (value >> 1) ^ (value & 1 ? 0xedb88320 : 0);
    }
    return ~value;
}

QByteArray chunk(const QByteArray &type, const QByteArray &data)
{
    return bigEndian(quint32(data.size())) + type + data + bigEndian(crc(type + data));
}

bool write(const QString &path, const QByteArray &bytes, qint64 sizeOnDisk)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()
        && file.resize(sizeOnDisk);
}

} // namespace

bool writePngHeader(const QString &path, const QSize &size)
{
    const QByteArray header = bigEndian(quint32(size.width())) + bigEndian(quint32(size.height()))
        + QByteArray("\x08\x06\x00\x00\x00", 5);
    const QByteArray bytes = QByteArray("\x89PNG\r\n\x1a\n") + chunk("IHDR", header)
        + chunk("IDAT", QByteArray()) + chunk("IEND", QByteArray());
    return write(path, bytes, bytes.size());
}

bool writeBlackPixmap(const QString &path, const QSize &size, bool colored)
{
    const QByteArray header = (colored ? "P6\n" : "P5\n") + QByteArray::number(size.width()) + ' '
        + QByteArray::number(size.height()) + "\n255\n";
    const qint64 pixels = qint64(size.width()) * size.height() * (colored ? 3 : 1);
    return write(path, header, header.size() + pixels);
}

} // namespace Velmar::Test
