// SPDX-License-Identifier: Apache-2.0
#include "host/profiles/KeptProperties.h"

#include "host/feed/SystemValues.h"

#include <videooverlay/elements/CVideoOverlayElement.h>
#include <videooverlay/elements/ElementParam.h>

namespace Velmar::Host {

using VideoOverlay::CVideoOverlayElement;
using VideoOverlay::ElementParam;
using Type = CVideoOverlayElement::Type;

namespace {

bool hasUnit(const QString &valueName)
{
    const SystemValue *value = SystemValues::find(valueName);
    return value && value->quantity != SystemValue::Quantity::Text;
}

} // namespace

QStringList keptProperties(const CVideoOverlayElement &element)
{
    const ElementParam record = element.getParamObject();
    const QString bound = record.value(ElementParam::NAME_COLUMNBOUND).toString();
    const Type type = element.type();
    const bool isInspection = type == Type::InspText || type == Type::InspStaticText;
    const bool isPicture = type == Type::FreePicture;
    QStringList names {QStringLiteral("row"), QStringLiteral("column"), QStringLiteral("enabled")};
    const auto add = [&](bool isKept, const char *name) {
        if (isKept)
            names.append(QString::fromLatin1(name));
    };
    add(type == Type::SystemText || isInspection, "captionVisible");
    add(type == Type::SystemText && hasUnit(bound), "unit");
    add(type == Type::InspText || type == Type::FreeText, "timeout");
    add(type == Type::FreeText, "maxlinenumber");
    add(type == Type::StaticText && bound.isEmpty(), "text");
    add(!isPicture, "textColor");
    add(!isPicture, "backgroundColor");
    add(isPicture, "scaleFactor");
    add(isPicture && !record.value(QStringLiteral("screenSnip")).toBool(), "imageSrc");
    return names;
}

} // namespace Velmar::Host
