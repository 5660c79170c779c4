// SPDX-License-Identifier: Apache-2.0
#include "host/check/ProfileProblem.h"

#include "host/check/MarkupTree.h"
#include "host/platform/LogRouter.h"

#include <videooverlay/profiles/Profile.h>

#include <QFile>

namespace Velmar::Host {

using VideoOverlay::Profile;

QString profileProblem(const QString &path)
{
    const Logging::HeldLog log;
    if (Profile().load(path))
        return {};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("%1: %2").arg(path, file.errorString());
    const QStringList reasons = log.errors();
    if (reasons.isEmpty())
        return QStringLiteral("%1: does not hold one profile").arg(path);
    const MarkupTree markup = MarkupTree::read(file.read(MarkupTree::MostBytes + 1));
    if (markup.error.isEmpty())
        return QStringLiteral("%1: %2").arg(path, reasons.first());
    return QStringLiteral("%1:%2:%3: %4")
        .arg(path, QString::number(markup.errorPlace.line),
             QString::number(markup.errorPlace.column), reasons.first());
}

QString profileProblem(const Profile &profile)
{
    if (!profile.damaged())
        return {};
    const QString problem = profileProblem(profile.path());
    return problem.isEmpty()
        ? QStringLiteral("%1: could not be read when the program started").arg(profile.path())
        : problem;
}

} // namespace Velmar::Host
