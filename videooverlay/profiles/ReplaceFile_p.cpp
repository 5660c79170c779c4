// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/profiles/ReplaceFile_p.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTextStream>

#include <cstdio>
#include <unistd.h>

namespace Velmar::VideoOverlay {

namespace {

constexpr int maximumLinks = 40; // as many as the system follows itself

QByteArray encode(const QString &text)
{
    QByteArray bytes;
    QTextStream stream(&bytes, QIODevice::WriteOnly); // without a codec of its own: the system's
    stream << text;
    stream.flush();
    return bytes;
}

/// Where the links end, also when nothing is there yet; empty when they lead in a circle, and for
/// an empty path.
QString resolved(const QString &path)
{
    QFileInfo file(path);
    for (int links = 0; file.isSymLink() && links < maximumLinks; ++links)
        file.setFile(file.symLinkTarget());
    return file.isSymLink() ? QString() : file.absoluteFilePath();
}

bool writeAll(QFile &file, const QByteArray &bytes)
{
    return file.write(bytes) == bytes.size() && file.flush() && ::fsync(file.handle()) == 0;
}

/// A hidden name: what a power cut leaves behind must not be listed as a profile. Only the start of
/// the target's own is in it, since that may be as long as a name can be.
bool openBeside(const QFileInfo &target, QFile &file)
{
    constexpr int attempts = 100;
    constexpr int nameLength = 80; // of at most three bytes each
    const QString name = target.fileName().left(nameLength);
    for (int i = 0; i < attempts; ++i) {
        const QString number = QString::number(QRandomGenerator::system()->generate(), 16);
        // Not by place markers one after the other: directories and files may hold them, too.
        file.setFileName(target.path() + QStringLiteral("/.") + name + QLatin1Char('.')
                         + number.rightJustified(8, QLatin1Char('0')));
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return true;
        if (!file.exists())
            break;
    }
    return false;
}

bool rename(const QString &from, const QString &to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

bool finishReplacement(QFile &replacement, const QFileInfo &target, const QByteArray &bytes)
{
    if (target.exists() && !replacement.setPermissions(target.permissions()))
        return false;
    if (!writeAll(replacement, bytes))
        return false;
    replacement.close();
    return rename(replacement.fileName(), target.filePath());
}

/// Writes over the old bytes without giving up their room first, so that they can be put back on a
/// full disk.
bool writeInPlace(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return false;
    const QByteArray old = file.readAll();
    file.seek(0);
    if (writeAll(file, bytes) && file.resize(bytes.size()))
        return true;
    file.seek(0);
    writeAll(file, old);
    file.resize(old.size());
    return false;
}

/// A device or a pipe is written to, never replaced.
bool writeDevice(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
        && file.write(bytes) == bytes.size();
}

} // namespace

bool replaceFile(const QString &path, const QString &text)
{
    const QString resolvedPath = resolved(path);
    if (resolvedPath.isEmpty())
        return false;
    const QByteArray bytes = encode(text);
    const QFileInfo target(resolvedPath);
    if (target.exists() && !target.isFile())
        return writeDevice(target.filePath(), bytes);
    if (target.exists() && !target.isWritable())
        return false; // its directory would allow it, its owner did not
    QFile replacement;
    if (!openBeside(target, replacement))
        return target.exists() && writeInPlace(target.filePath(), bytes);
    const bool replaced = finishReplacement(replacement, target, bytes);
    if (!replaced) {
        replacement.close();
        // By name: a file object that cannot write what is left in its buffer does not remove
        // itself.
        QFile::remove(replacement.fileName());
    }
    return replaced;
}

} // namespace Velmar::VideoOverlay
