// SPDX-License-Identifier: Apache-2.0
#include "host/cli/Report.h"

#include "host/platform/WholeFile.h"

#include <QBuffer>

#include <cstdio>

namespace Velmar::Host {

namespace {

void print(FILE *stream, const QString &line)
{
    std::fprintf(stream, "%s\n", line.toUtf8().constData());
    std::fflush(stream);
}

} // namespace

void report(const QString &line)
{
    print(stdout, line);
}

int reportError(const QString &text)
{
    print(stderr, QStringLiteral("xqosd: ") + text);
    return FailureStatus;
}

void reportWarning(const QString &text)
{
    print(stderr, QStringLiteral("xqosd: warning: ") + text);
}

bool savePng(const QImage &picture, const QString &path, QString *error)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (picture.isNull() || !buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, "PNG")) {
        *error = QStringLiteral("%1: the picture cannot be made").arg(path);
        return false;
    }
    // Not the picture's own save(): that one tells nobody of a full disk.
    QString reason;
    if (WholeFile::write(path, bytes, WholeFile::Existing::Replace, &reason))
        return true;
    *error = QStringLiteral("%1: cannot be written: %2").arg(path, reason);
    return false;
}

} // namespace Velmar::Host
