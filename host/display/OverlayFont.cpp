// SPDX-License-Identifier: Apache-2.0
#include "host/display/OverlayFont.h"

#include <QFont>
#include <QFontInfo>

namespace Velmar::Host {

QString overlayFontProblem(const QFont &wanted)
{
    const QString found = QFontInfo(wanted).family(); // empty where there is no font at all
    if (found.compare(wanted.family(), Qt::CaseInsensitive) == 0)
        return QString();
    const QString instead = found.isEmpty() ? QStringLiteral("there is none")
                                            : QStringLiteral("there is \"%1\"").arg(found);
    return QStringLiteral("The overlay's font \"%1\" is not installed (%2): "
                          "install the package fonts-dejavu-core")
        .arg(wanted.family(), instead);
}

} // namespace Velmar::Host
