// SPDX-License-Identifier: Apache-2.0
#include "host/pipelines/Mp4Rescue.h"

#include <QByteArray>
#include <QFile>
#include <QtEndian>

#include <unistd.h>

namespace Velmar::Host {

namespace {

// A box begins with its length, itself included, and its name; both have four bytes.
constexpr int NameAt = 4;
constexpr int BoxHead = 8;
/// Far more than the first fragment can have, a second of video.
constexpr qint64 LongestSearch = 256 * 1024 * 1024;

QByteArray boxHead(quint32 length, const char *name)
{
    QByteArray head(NameAt, '\0');
    qToBigEndian(length, head.data());
    return head + name;
}

/// Whether a player finds a whole list: the boxes are walked through as it does.
bool hasList(const QByteArray &start, QFile &file)
{
    qint64 at = qFromBigEndian<quint32>(start.constData());
    for (;;) {
        constexpr int longHead = 16;
        const QByteArray head = file.seek(at) ? file.read(longHead) : QByteArray();
        if (head.size() < BoxHead)
            return false;
        qint64 length = qFromBigEndian<quint32>(head.constData());
        if (length == 1 && head.size() == longHead) // the length follows the name
            length = qFromBigEndian<qint64>(head.constData() + BoxHead);
        if (length < BoxHead || length > file.size() - at) // 0: up to the end
            return false;
        if (head.mid(NameAt, NameAt) == "moov")
            return true;
        at += length;
    }
}

/// Where the list of the first fragment begins, which is out of force; -1 without such a one.
qint64 retiredList(const QByteArray &start)
{
    for (int at = start.indexOf("hoov"); at >= 0; at = start.indexOf("hoov", at + 1)) {
        if (start.mid(at + BoxHead, NameAt) == "mvhd") // no picture reads so, at that place
            return at - NameAt;
    }
    return -1;
}

} // namespace

bool restoreFirstList(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return false;
    const qint64 length = qMin(file.size(), LongestSearch);
    const uchar *mapped = file.map(0, length);
    if (!mapped)
        return false;
    const auto start = QByteArray::fromRawData(reinterpret_cast<const char *>(mapped), int(length));
    if (start.mid(NameAt, NameAt) != "ftyp" || hasList(start, file))
        return false;
    // What the block of data began as: room for a longer length, and the data of one fragment.
    const qint64 room = qFromBigEndian<quint32>(mapped);
    const qint64 data = room + BoxHead;
    const qint64 list = retiredList(start);
    if (list <= data)
        return false;
    const QByteArray heads = boxHead(BoxHead, "free") + boxHead(quint32(list - data), "mdat");
    // The list last: without it the file is no worse than before.
    return file.seek(room) && file.write(heads) == heads.size() && file.seek(list + NameAt)
        && file.write("moov") == NameAt && ::fdatasync(file.handle()) == 0;
}

} // namespace Velmar::Host
