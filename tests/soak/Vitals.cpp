// SPDX-License-Identifier: Apache-2.0
#include "tests/soak/Vitals.h"

#include "tests/soak/LiveObjects.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <malloc.h>
#include <unistd.h>

namespace Velmar::Soak {

namespace {

constexpr double BytesPerMb = 1024.0 * 1024.0;

// How much the memory may differ from one end of the day to the other. Hash tables, glyph caches
// and the database's page cache find their size by and by.
constexpr qint64 HeapTolerance = 512 * 1024;
constexpr double ResidentTolerance = 0.03;

qint64 residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

int entries(const QString &directory)
{
    return QDir(directory)
        .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System | QDir::Hidden)
        .size();
}

int filesBelow(const QString &directory)
{
    int count = 0;
    for (QDirIterator it(directory, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        it.next();
        ++count;
    }
    return count;
}

qint64 heapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return qint64(info.uordblks) + qint64(info.hblkhd);
}

} // namespace

Vitals Vitals::take(const QString &settingsDirectory)
{
    Vitals now;
    now.objects = LiveObjects::count();
    now.timers = LiveObjects::timerCount();
    now.descriptors = entries(QStringLiteral("/proc/self/fd"));
    now.threads = entries(QStringLiteral("/proc/self/task"));
    now.files = filesBelow(settingsDirectory);
    now.heap = heapBytes();
    now.resident = residentBytes();
    return now;
}

void Vitals::trim()
{
    malloc_trim(0);
    trimmed = residentBytes();
}

QString Vitals::header()
{
    return QStringLiteral(
        "objects timers files-open threads files  heap/MB resident/MB trimmed/MB");
}

QString Vitals::line() const
{
    return QStringLiteral("%1 %2 %3 %4 %5 %6 %7 %8")
        .arg(objects, 7)
        .arg(timers, 6)
        .arg(descriptors, 10)
        .arg(threads, 7)
        .arg(files, 5)
        .arg(double(heap) / BytesPerMb, 8, 'f', 2)
        .arg(double(resident) / BytesPerMb, 11, 'f', 2)
        .arg(double(trimmed) / BytesPerMb, 10, 'f', 2);
}

QStringList Vitals::growthSince(const Vitals &before) const
{
    QStringList growth;
    const auto compare = [&](const char *what, qint64 then, qint64 now, qint64 tolerance) {
        if (now - then > tolerance)
            growth.append(
                QStringLiteral("%1: %2, then %3")
                    .arg(QString::fromLatin1(what), QString::number(then), QString::number(now)));
    };
    compare("QObjects", before.objects, objects, 0);
    compare("running timers", before.timers, timers, 0);
    compare("open files", before.descriptors, descriptors, 0);
    compare("threads", before.threads, threads, 0);
    compare("files of the settings", before.files, files, 0);
    compare("bytes on the heap", before.heap, heap, HeapTolerance);
    compare("bytes of memory", before.resident, resident,
            qint64(double(before.resident) * ResidentTolerance));
    compare("bytes of memory after trimming", before.trimmed, trimmed,
            qint64(double(before.trimmed) * ResidentTolerance));
    return growth;
}

} // namespace Velmar::Soak
