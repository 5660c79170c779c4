// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/DateConverter.h"

#include "platform/shared/CLocaleSupport.h"

#include <QDateTime>
#include <QLocale>

namespace Velmar::VideoOverlay {

using Shared::CLocaleSupport;

DateConverter::DateConverter() = default;

DateConverter::DateConverter(const QString &text)
    : m_text(text)
{
}

QString DateConverter::convert(QVariant value, QString, QString format)
{
    if (format.isEmpty())
        format = CLocaleSupport::getCurrentLocale().dateFormat(QLocale::ShortFormat);
    const QDate date = QDateTime::fromMSecsSinceEpoch(value.toLongLong()).date();
    return CLocaleSupport::variantToLocalizedString(date, format);
}

QString DateConverter::getSuffix(QString)
{
    return QString();
}

} // namespace Velmar::VideoOverlay
