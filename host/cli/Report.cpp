// SPDX-License-Identifier: Apache-2.0
#include "host/cli/Report.h"

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

} // namespace Velmar::Host
