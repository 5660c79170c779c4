// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/ElapsedTimeConverter.h"

#include <QTime>

namespace Velmar::VideoOverlay {

ElapsedTimeConverter::ElapsedTimeConverter() = default;

QString ElapsedTimeConverter::convert(QVariant value, QString, QString format)
{
    if (format.isEmpty())
        format = QStringLiteral("hh:mm:ss");
    const int milliseconds = static_cast<int>(value.toLongLong());
    // Not midnight plus the duration: that would wrap after a day.
    return QTime::fromMSecsSinceStartOfDay(milliseconds).toString(format);
}

QString ElapsedTimeConverter::getSuffix(QString)
{
    return QString();
}

} // namespace Velmar::VideoOverlay
