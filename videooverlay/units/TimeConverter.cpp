// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/TimeConverter.h"

#include "platform/shared/CLocaleSupport.h"
#include "platform/translation/CTranslator.h"

#include <QDateTime>
#include <QLocale>

namespace Velmar::VideoOverlay {

TimeConverter::TimeConverter() = default;

QString TimeConverter::convert(QVariant value, QString, QString format)
{
    if (format.isEmpty())
        format = Shared::CLocaleSupport::getTimeFormat();
    const QTime time = QDateTime::fromMSecsSinceEpoch(value.toLongLong()).time();
    if (format.endsWith(QLatin1String(" t")))
        format.chop(2);
    return Translation::CTranslator::instance()->locale().toString(time, format);
}

QString TimeConverter::getSuffix(QString)
{
    return QString();
}

} // namespace Velmar::VideoOverlay
