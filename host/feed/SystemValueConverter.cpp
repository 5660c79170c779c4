// SPDX-License-Identifier: Apache-2.0
#include "host/feed/SystemValueConverter.h"

#include "host/platform/LocaleSettings.h"

#include <platform/shared/CLocaleSupport.h>
#include <videooverlay/units/AngleUnitsConverter.h>
#include <videooverlay/units/DateConverter.h>
#include <videooverlay/units/DistanceUnitsConverter.h>
#include <videooverlay/units/ElapsedTimeConverter.h>
#include <videooverlay/units/PressureUnitsConverter.h>
#include <videooverlay/units/SpeedUnitsConverter.h>
#include <videooverlay/units/TempUnitsConverter.h>
#include <videooverlay/units/TimeConverter.h>

#include <utility>

namespace Velmar::Host {

using namespace VideoOverlay;
using Shared::CLocaleSupport;

namespace {

bool isSignedZero(const QString &text)
{
    static const QString signs = QStringLiteral("-\u2212"); // the Swedish one is a real minus
    if (text.isEmpty() || !signs.contains(text.at(0)))
        return false;
    bool digits = false;
    for (int i = 1; i < text.size(); ++i) {
        const int digit = text.at(i).digitValue();
        if (digit > 0 || text.at(i).isLetter())
            return false;
        digits = digits || digit == 0;
    }
    return digits;
}

/// In the digits of the user's locale. A duration is made with those of the system's, which the
/// user may have left for another.
QString inUsersDigits(QString text)
{
    const ushort zero = Shared::LocaleSettings::locale().zeroDigit().unicode();
    for (QChar &character : text) {
        if (character.isDigit())
            character = QChar(zero + character.digitValue());
    }
    return text;
}

} // namespace

std::unique_ptr<SystemValueConverter> SystemValueConverter::make(const SystemValue &value)
{
    using Quantity = SystemValue::Quantity;
    const int decimals = value.coarse ? 0 : 1;
    const auto make = [&value](auto &&...parts) {
        return std::unique_ptr<SystemValueConverter>(
            new SystemValueConverter(value.quantity, std::move(parts)...));
    };
    switch (value.quantity) {
    case Quantity::Distance:
        return make(std::make_unique<DistanceUnitsConverter>());
    case Quantity::Speed:
        return make(std::make_unique<SpeedUnitsConverter>());
    case Quantity::Angle:
        return make(
            std::make_unique<AngleUnitsConverter>(decimals),
            std::make_unique<AngleUnitsConverter>(1),
            QStringList {CLocaleSupport::angleUnits_hour, CLocaleSupport::angleUnits_percent});
    case Quantity::Temperature:
        return make(std::make_unique<TempUnitsConverter>(1));
    case Quantity::Pressure:
        return make(std::make_unique<PressureUnitsConverter>(decimals),
                    std::make_unique<PressureUnitsConverter>(3),
                    QStringList(CLocaleSupport::pressureUnits_atm));
    case Quantity::Date:
        return make(std::make_unique<DateConverter>());
    case Quantity::Time:
        return make(std::make_unique<TimeConverter>());
    case Quantity::ElapsedTime:
        return make(std::make_unique<ElapsedTimeConverter>());
    case Quantity::Text:
    case Quantity::Picture:
        break;
    }
    return nullptr;
}

SystemValueConverter::SystemValueConverter(SystemValue::Quantity quantity, Converter converter,
                                           Converter fine, const QStringList &fineUnits)
    : m_quantity(quantity)
    , m_converter(std::move(converter))
    , m_fine(std::move(fine))
    , m_fineUnits(fineUnits)
{
}

SystemValueConverter::~SystemValueConverter() = default;

/// The library's converters of speeds, angles and pressures take an empty unit for one that they do
/// not know.
QString SystemValueConverter::unitOrUsers(const QString &unit) const
{
    return unit.isEmpty() ? SystemValues::userUnit(m_quantity) : unit;
}

QString SystemValueConverter::convert(QVariant value, QString from, QString to)
{
    if (value.toString().isEmpty())
        return QString();
    const QString unit = unitOrUsers(to);
    UnitsProvider &converter = m_fine && m_fineUnits.contains(unit) ? *m_fine : *m_converter;
    const QString text = converter.convert(std::move(value), std::move(from), unit);
    if (m_quantity == SystemValue::Quantity::ElapsedTime)
        return inUsersDigits(text);
    return isSignedZero(text) ? text.mid(1) : text;
}

QString SystemValueConverter::getSuffix(QString unit)
{
    return m_converter->getSuffix(unitOrUsers(unit));
}

} // namespace Velmar::Host
