// SPDX-License-Identifier: Apache-2.0
#include "host/commands/Report.h"

#include <cstdio>

namespace Velmar::Host {

namespace {

void print(FILE *stream, const QString &line)
{
    std::fprintf(stream, "%s\n", line.toUtf8().constData());
    std::fflush(stream);
}

} // namespace

QString oneLine(const QString &text)
{
    QString line;
    line.reserve(text.size());
    for (const QChar letter : text) {
        if (letter == QLatin1Char('\n'))
            line += QLatin1String("\\n");
        else if (letter.category() == QChar::Other_Control)
            line += QStringLiteral("\\x%1").arg(letter.unicode(), 2, 16, QLatin1Char('0'));
        else
            line += letter;
    }
    return line;
}

void report(const QString &line)
{
    print(stdout, line);
}

int reportError(const QString &text)
{
    print(stderr, QStringLiteral("xqosd: ") + oneLine(text));
    return FailureStatus;
}

void reportWarning(const QString &text)
{
    print(stderr, QStringLiteral("xqosd: warning: ") + oneLine(text));
}

} // namespace Velmar::Host
