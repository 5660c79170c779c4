// SPDX-License-Identifier: Apache-2.0
#include "platform/directories/CApplicationDirectories.h"
#include "platform/logging/CLogger.h"
#include "platform/shared/CLocaleSupport.h"
#include "platform/shared/GlobalLocaleData.h"
#include "platform/shared/LengthUnitsConverter.h"
#include "platform/translation/CTranslator.h"

#include <QDir>

#include <cstdio>

namespace Velmar {

QString CApplicationDirectories::settingsDirectory()
{
    return QDir::tempPath();
}

QString CApplicationDirectories::readonlyConfigDirectory()
{
    return QDir::rootPath();
}

namespace Logging {

void CLogger::logMessage(LogLevel level, const QString &category, const QString &message)
{
    std::fprintf(stderr, "foreign %d %s %s\n", int(level), qPrintable(category),
                 qPrintable(message));
}

} // namespace Logging

namespace Shared {

const QString CLocaleSupport::speedUnits_m_per_min = QStringLiteral("m/min");
const QString CLocaleSupport::speedUnits_ft_per_min = QStringLiteral("ft/min");
const QString CLocaleSupport::speedUnits_inch_per_min = QStringLiteral("inch/min");
const QString CLocaleSupport::speedUnits_m_per_sec = QStringLiteral("m/s");
const QString CLocaleSupport::speedUnits_ft_per_sec = QStringLiteral("ft/s");
const QString CLocaleSupport::speedUnits_inch_per_sec = QStringLiteral("inch/s");
const QString CLocaleSupport::speedUnits_cm_per_sec = QStringLiteral("cm/s");
const QString CLocaleSupport::angleUnits_hour = QStringLiteral("hour");
const QString CLocaleSupport::angleUnits_degree = QStringLiteral(u"\u00B0");
const QString CLocaleSupport::angleUnits_percent = QStringLiteral("%");
const QString CLocaleSupport::tempUnits_C = QStringLiteral(u"\u00B0C");
const QString CLocaleSupport::tempUnits_F = QStringLiteral(u"\u00B0F");
const QString CLocaleSupport::pressureUnits_mbar = QStringLiteral("mbar");
const QString CLocaleSupport::pressureUnits_atm = QStringLiteral("atm");
const QString CLocaleSupport::pressureUnits_pa = QStringLiteral("Pa");

QString CLocaleSupport::getSpeedUnitString()
{
    return speedUnits_m_per_min;
}

QString CLocaleSupport::getAngleUnitString()
{
    return angleUnits_degree;
}

QString CLocaleSupport::getTemperatureUnitString()
{
    return tempUnits_C;
}

QString CLocaleSupport::getPressureUnitString()
{
    return pressureUnits_mbar;
}

QString CLocaleSupport::getDistanceUnitString()
{
    return QStringLiteral("m");
}

QLocale CLocaleSupport::getCurrentLocale()
{
    return QLocale::c();
}

QString CLocaleSupport::getTimeFormat()
{
    return QStringLiteral("HH:mm:ss");
}

QString CLocaleSupport::distanceValueToLocalizedString(double value, bool withUnit, bool fine)
{
    const QString number = QString::number(value, 'f', fine ? 2 : 1);
    return withUnit ? number + QStringLiteral(" m") : number;
}

QString CLocaleSupport::variantToLocalizedString(const QVariant &value, const QString &)
{
    return value.toString();
}

GlobalLocaleData::GlobalLocaleData() = default;

GlobalLocaleData *GlobalLocaleData::instance()
{
    static GlobalLocaleData data;
    return &data;
}

double LengthUnitsConverter::convert(const QString &, const QString &, double value)
{
    return value;
}

} // namespace Shared

namespace Translation {

CTranslator::CTranslator() = default;

CTranslator *CTranslator::instance()
{
    static CTranslator translator;
    return &translator;
}

QLocale CTranslator::locale() const
{
    return QLocale::c();
}

QString CTranslator::txt(const QString &, const QString &, const QString &defaultText,
                         const QList<QVariant> &) const
{
    return defaultText;
}

void CTranslator::updateTranslationForGivenKeys(const QString &, const QStringList &) { }

QString CTranslator::translate(const QString &, const QString &defaultText, const QString &) const
{
    return defaultText;
}

} // namespace Translation

} // namespace Velmar
