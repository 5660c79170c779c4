// SPDX-License-Identifier: Apache-2.0
#include "host/feed/SystemValues.h"

#include "host/platform/LocaleSettings.h"

#include <videooverlay/elements/ElementParam.h>

#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Velmar::Host {

namespace {

using Quantity = SystemValue::Quantity;
using Shared::LocaleSettings;
using VideoOverlay::ElementParam;

/// The end of the year 9999: nobody writes a later date.
constexpr double LatestMs = 253402300799999.0;

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

std::optional<LocaleSettings::Quantity> userQuantity(Quantity quantity)
{
    switch (quantity) {
    case Quantity::Distance:
        return LocaleSettings::Quantity::Distance;
    case Quantity::Speed:
        return LocaleSettings::Quantity::Speed;
    case Quantity::Angle:
        return LocaleSettings::Quantity::Angle;
    case Quantity::Temperature:
        return LocaleSettings::Quantity::Temperature;
    case Quantity::Pressure:
        return LocaleSettings::Quantity::Pressure;
    case Quantity::Date:
    case Quantity::Time:
    case Quantity::ElapsedTime:
    case Quantity::Text:
    case Quantity::Picture:
        break;
    }
    return std::nullopt;
}

bool isNumber(const QVariant &input)
{
    switch (input.userType()) {
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

std::optional<qint64> milliseconds(const QVariant &input)
{
    if (!isNumber(input))
        return std::nullopt;
    const double ms = input.toDouble();
    if (!std::isfinite(ms) || std::abs(ms) > LatestMs)
        return std::nullopt;
    return qint64(std::floor(ms));
}

/// A moment with this time of day, on a day on which no clock was put forward or back.
QDateTime onSomeDay(QTime time)
{
    return QDateTime(QDate(2000, 1, 15), time);
}

std::optional<qint64> moment(Quantity quantity, const QString &input)
{
    QDateTime read = QDateTime::fromString(input, Qt::ISODateWithMs);
    if (!input.contains(QLatin1Char('T'))) {
        const QDate date = QDate::fromString(input, Qt::ISODate);
        const QTime time = QTime::fromString(input, Qt::ISODateWithMs);
        if (quantity == Quantity::Date)
            read = date.isValid() ? QDateTime(date, QTime(12, 0)) : QDateTime();
        else
            read = time.isValid() ? onSomeDay(time) : QDateTime();
    }
    if (!read.isValid())
        return std::nullopt;
    return read.toMSecsSinceEpoch();
}

std::optional<qint64> timeValue(Quantity quantity, const QVariant &input)
{
    if (input.userType() != QMetaType::QString)
        return milliseconds(input);
    if (quantity != Quantity::ElapsedTime)
        return moment(quantity, input.toString());
    const QTime time = QTime::fromString(input.toString(), Qt::ISODateWithMs);
    if (!time.isValid())
        return std::nullopt;
    return time.msecsSinceStartOfDay();
}

} // namespace

const QVector<SystemValue> &SystemValues::all()
{
    static const QVector<SystemValue> values {
        {ElementParam::NAME_SECTION_DISTANCE_COUNTER, Quantity::Distance,
         text("Distance from the start of the section"), text("12.34")},
        {ElementParam::NAME_TOTAL_DISTANCE_COUNTER, Quantity::Distance,
         text("Distance from the start of the run"), text("112.34")},
        {ElementParam::NAME_SAT_DISTANCE_COUNTER, Quantity::Distance,
         text("Distance of the satellite camera in the lateral"), text("3.5")},
        {ElementParam::NAME_SPEED, Quantity::Speed, text("Speed of the crawler"), text("6.5")},
        {ElementParam::NAME_DATE, Quantity::Date, text("Calendar date"), text("\"2026-03-31\"")},
        {ElementParam::NAME_TIME, Quantity::Time, text("Time of day"), text("\"14:05:30\"")},
        {ElementParam::NAME_VIDEO_TIME_COUNTER, Quantity::ElapsedTime,
         text("Time since the start of the video"), text("\"00:01:23\"")},
        {ElementParam::NAME_CAMERA_TILT, Quantity::Angle, text("Tilt of the camera head"),
         text("-3"), true},
        {ElementParam::NAME_CAMERA_TEMPERATURE, Quantity::Temperature,
         text("Temperature inside the camera"), text("31.5")},
        {ElementParam::NAME_CAMERA_PAN, Quantity::Angle, text("Pan of the camera head"), text("45"),
         true},
        {ElementParam::NAME_CAMERA_PRESSURE, Quantity::Pressure, text("Pressure inside the camera"),
         text("1098"), true},
        {ElementParam::NAME_CRAWLER_PITCH, Quantity::Angle, text("Pitch of the crawler"),
         text("1.5")},
        {ElementParam::NAME_CRAWLER_ROLL, Quantity::Angle, text("Roll of the crawler"),
         text("-0.8")},
        {ElementParam::NAME_CRAWLER_TEMPERATURE, Quantity::Temperature,
         text("Temperature inside the crawler"), text("28.0")},
        {ElementParam::NAME_CRAWLER_PRESSURE, Quantity::Pressure,
         text("Pressure inside the crawler"), text("1146"), true},
        {ElementParam::NAME_OBJECT_TEMPERATURE, Quantity::Temperature,
         text("Temperature of what the camera looks at"), text("11.2")},
        {ElementParam::NAME_OSD_FREE_TEXT_BOX, Quantity::Text, text("The operator's free text"),
         text("\"root intrusion\"")},
        {ElementParam::NAME_PAN_AND_TILT, Quantity::Text, text("Pan and tilt in one text"),
         text("\"45 / -3\"")},
    };
    return values;
}

const SystemValue *SystemValues::find(const QString &name)
{
    const QVector<SystemValue> &values = all();
    const auto it = std::find_if(values.cbegin(), values.cend(),
                                 [&name](const SystemValue &value) { return value.name == name; });
    return it == values.cend() ? nullptr : &*it;
}

const SystemValue &SystemValues::screenSnip()
{
    static const SystemValue value {text("SCREEN_SNIP"), Quantity::Picture,
                                    text("Picture in the screen snips of the profile"),
                                    text("\"/tmp/map.png\"")};
    return value;
}

const SystemValue *SystemValues::findInput(const QString &name)
{
    return name == screenSnip().name ? &screenSnip() : find(name);
}

QVariant SystemValues::read(const SystemValue &value, const QVariant &input, QString *error)
{
    const auto refuse = [&]() -> QVariant {
        *error = QStringLiteral("%1: not %2").arg(value.name, inputFormat(value.quantity));
        return {};
    };
    switch (value.quantity) {
    case Quantity::Date:
    case Quantity::Time:
    case Quantity::ElapsedTime:
        if (const std::optional<qint64> ms = timeValue(value.quantity, input))
            return QVariant::fromValue(*ms);
        return refuse();
    default:
        break;
    }
    if (input.userType() == QMetaType::QString)
        return input.isNull() ? QVariant(QString::fromLatin1("")) : input;
    if (value.quantity != Quantity::Picture && isNumber(input) && std::isfinite(input.toDouble()))
        return input;
    return refuse();
}

QString SystemValues::quantityName(Quantity quantity)
{
    switch (quantity) {
    case Quantity::Distance:
        return QStringLiteral("distance");
    case Quantity::Speed:
        return QStringLiteral("speed");
    case Quantity::Angle:
        return QStringLiteral("angle");
    case Quantity::Temperature:
        return QStringLiteral("temperature");
    case Quantity::Pressure:
        return QStringLiteral("pressure");
    case Quantity::Date:
        return QStringLiteral("date");
    case Quantity::Time:
        return QStringLiteral("time");
    case Quantity::ElapsedTime:
        return QStringLiteral("elapsed time");
    case Quantity::Text:
        return QStringLiteral("text");
    case Quantity::Picture:
        return QStringLiteral("picture");
    }
    return {};
}

QString SystemValues::inputFormat(Quantity quantity)
{
    switch (quantity) {
    case Quantity::Distance:
        return QStringLiteral("a number [m]");
    case Quantity::Speed:
        return QStringLiteral("a number [m/min]");
    case Quantity::Angle:
        return QStringLiteral("a number [\u00B0]");
    case Quantity::Temperature:
        return QStringLiteral("a number [\u00B0C]");
    case Quantity::Pressure:
        return QStringLiteral("a number [mbar]");
    case Quantity::Date:
        return QStringLiteral("a date (YYYY-MM-DD), a moment (YYYY-MM-DDThh:mm:ss) or "
                              "milliseconds since 1970 UTC");
    case Quantity::Time:
        return QStringLiteral("a time (hh:mm:ss), a moment (YYYY-MM-DDThh:mm:ss) or "
                              "milliseconds since 1970 UTC");
    case Quantity::ElapsedTime:
        return QStringLiteral("a duration (hh:mm:ss) or milliseconds");
    case Quantity::Text:
        return QStringLiteral("a text or a number");
    case Quantity::Picture:
        return QStringLiteral("the name of a picture file; an empty text takes the picture away");
    }
    return {};
}

QStringList SystemValues::units(Quantity quantity)
{
    const auto ofUser = userQuantity(quantity);
    return ofUser ? LocaleSettings::units(*ofUser) : QStringList();
}

QString SystemValues::userUnit(Quantity quantity)
{
    const auto ofUser = userQuantity(quantity);
    return ofUser ? LocaleSettings::unit(*ofUser) : QString();
}

} // namespace Velmar::Host
