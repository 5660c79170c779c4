// SPDX-License-Identifier: Apache-2.0
#include "host/commands/ElementProperties.h"

#include "host/check/ElementRules.h"
#include "host/commands/UserChoices.h"
#include "host/feed/SystemValues.h"
#include "host/profiles/KeptProperties.h"

#include <videooverlay/elements/CVideoOverlayElement.h>
#include <videooverlay/elements/ElementParam.h>

#include <QColor>
#include <QFileInfo>
#include <QImageReader>
#include <QStringList>
#include <QVariant>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Velmar::Host {

using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::ElementParam;

namespace {

constexpr int LongestTimeout = 24 * 3600; // [s]
constexpr int MostLines = 14;             // that a favourite can have
constexpr double SmallestScale = 0.01;
constexpr double LargestScale = 100;

QString boundTo(const CVideoOverlayElement &element)
{
    return element.getParamObject().value(ElementParam::NAME_COLUMNBOUND).toString();
}

/// A value as the property wants it; empty, and what it must be in @p expected, for another text.
using Reader = std::optional<QVariant> (*)(const CVideoOverlayElement &element, const QString &text,
                                           QString *expected);

std::optional<QVariant> whole(const QString &text, int least, int most, QString *expected)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    *expected = QStringLiteral("a whole number from %1 to %2").arg(least).arg(most);
    return ok && number >= least && number <= most ? std::optional<QVariant>(number) : std::nullopt;
}

std::optional<QVariant> readRow(const CVideoOverlayElement &, const QString &text,
                                QString *expected)
{
    return whole(text, 0, ElementRules().rows - 1, expected);
}

std::optional<QVariant> readColumn(const CVideoOverlayElement &, const QString &text,
                                   QString *expected)
{
    return whole(text, 0, ElementRules().columns - 1, expected);
}

std::optional<QVariant> readTimeout(const CVideoOverlayElement &, const QString &text,
                                    QString *expected)
{
    return whole(text, 0, LongestTimeout, expected);
}

std::optional<QVariant> readLines(const CVideoOverlayElement &, const QString &text,
                                  QString *expected)
{
    return whole(text, 1, MostLines, expected);
}

std::optional<QVariant> readSwitch(const CVideoOverlayElement &, const QString &text,
                                   QString *expected)
{
    *expected = QStringLiteral("true or false");
    if (text != QLatin1String("true") && text != QLatin1String("false"))
        return std::nullopt;
    return QVariant(text == QLatin1String("true"));
}

std::optional<QVariant> readColor(const CVideoOverlayElement &, const QString &text,
                                  QString *expected)
{
    const QColor color(text);
    *expected = QStringLiteral("a colour: #rrggbb, #aarrggbb or its name");
    return color.isValid() ? std::optional<QVariant>(color) : std::nullopt;
}

std::optional<QVariant> readScale(const CVideoOverlayElement &, const QString &text,
                                  QString *expected)
{
    bool ok = false;
    const double scale = text.toDouble(&ok);
    *expected = QStringLiteral("a number from %1 to %2").arg(SmallestScale).arg(LargestScale);
    return ok && std::isfinite(scale) && scale >= SmallestScale && scale <= LargestScale
        ? std::optional<QVariant>(scale)
        : std::nullopt;
}

std::optional<QVariant> readText(const CVideoOverlayElement &, const QString &text, QString *)
{
    return QVariant(text);
}

std::optional<QVariant> readPicture(const CVideoOverlayElement &, const QString &text,
                                    QString *expected)
{
    *expected = QStringLiteral("the name of a picture file");
    if (!QImageReader(text).canRead())
        return std::nullopt;
    return QVariant(QFileInfo(text).absoluteFilePath());
}

std::optional<QVariant> readUnit(const CVideoOverlayElement &element, const QString &text,
                                 QString *expected)
{
    const SystemValue *value = SystemValues::find(boundTo(element));
    const QString unit = UserChoices::unitFrom(text);
    if (value && SystemValues::takesUnit(*value, unit))
        return QVariant(unit);
    const QStringList units = value ? SystemValues::units(value->quantity) : QStringList();
    *expected = units.isEmpty()
        ? QStringLiteral("a pattern, such as dd.MM.yyyy or hh:mm:ss")
        : QStringLiteral("a unit of it: ") + units.join(QStringLiteral(", "));
    return std::nullopt;
}

struct Property
{
    const char *name;
    Reader read;
};

constexpr Property properties[] = {
    {"row", readRow},
    {"column", readColumn},
    {"enabled", readSwitch},
    {"captionVisible", readSwitch},
    {"unit", readUnit},
    {"timeout", readTimeout},
    {"maxlinenumber", readLines},
    {"text", readText},
    {"textColor", readColor},
    {"backgroundColor", readColor},
    {"scaleFactor", readScale},
    {"imageSrc", readPicture},
};

} // namespace

bool setElementProperty(const QList<CVideoOverlayElement *> &elements, const QString &property,
                        const QString &text, QString *error)
{
    const auto known = std::find_if(
        std::begin(properties), std::end(properties),
        [&](const Property &candidate) { return property == QLatin1String(candidate.name); });
    QStringList others;
    bool isKept = false;
    for (CVideoOverlayElement *element : elements) {
        const QStringList kept = keptProperties(*element);
        others += kept;
        if (known == std::end(properties) || !kept.contains(property))
            continue;
        isKept = true;
        QString expected;
        const std::optional<QVariant> value = known->read(*element, text, &expected);
        if (!value || !element->setProperty(known->name, *value)) {
            *error = QStringLiteral("--set: %1: \"%2\" is not %3").arg(property, text, expected);
            return false;
        }
    }
    others.removeDuplicates();
    if (!isKept)
        *error = QStringLiteral("--set: a profile keeps no \"%1\" of this element, but %2")
                     .arg(property, others.join(QStringLiteral(", ")));
    return isKept;
}

} // namespace Velmar::Host
