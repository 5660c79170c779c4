// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/ElementParam.h"

#include "videooverlay/elements/CVideoOverlayElement.h"

#include <QColor>
#include <QStringList>

#include <algorithm>

namespace Velmar::VideoOverlay {

// Never used in another file's static initialiser: the order between files is undefined.
const QString ElementParam::NAME_COLUMNBOUND = QStringLiteral("columnBound");
const QString ElementParam::NAME_COLUMNCAPTION = QStringLiteral("columnCaption");
const QString ElementParam::NAME_TOTAL_DISTANCE_COUNTER = QStringLiteral("TOTAL_DISTANCE_COUNTER");
const QString ElementParam::NAME_SECTION_DISTANCE_COUNTER
    = QStringLiteral("SECTION_DISTANCE_COUNTER");
const QString ElementParam::NAME_SAT_DISTANCE_COUNTER = QStringLiteral("SAT_DISTANCE_COUNTER");
const QString ElementParam::NAME_SPEED = QStringLiteral("SPEED");
const QString ElementParam::NAME_DATE = QStringLiteral("DATE");
const QString ElementParam::NAME_TIME = QStringLiteral("TIME");
const QString ElementParam::NAME_VIDEO_TIME_COUNTER = QStringLiteral("VIDEO_TIME_COUNTER");
const QString ElementParam::NAME_CAMERA_TILT = QStringLiteral("CAMERA_TILT");
const QString ElementParam::NAME_CAMERA_TEMPERATURE = QStringLiteral("CAMERA_TEMPERATURE");
const QString ElementParam::NAME_CAMERA_PAN = QStringLiteral("CAMERA_PAN");
const QString ElementParam::NAME_CAMERA_PRESSURE = QStringLiteral("CAMERA_PRESSURE");
const QString ElementParam::NAME_CRAWLER_PITCH = QStringLiteral("CRAWLER_PITCH");
const QString ElementParam::NAME_CRAWLER_ROLL = QStringLiteral("CRAWLER_ROLL");
const QString ElementParam::NAME_CRAWLER_TEMPERATURE = QStringLiteral("CRAWLER_TEMPERATURE");
const QString ElementParam::NAME_CRAWLER_PRESSURE = QStringLiteral("CRAWLER_PRESSURE");
const QString ElementParam::NAME_OBJECT_TEMPERATURE = QStringLiteral("OBJECT_TEMPERATURE");
const QString ElementParam::NAME_OSD_FREE_TEXT_BOX = QStringLiteral("OSD_FREE_TEXT_BOX");
const QString ElementParam::NAME_PAN_AND_TILT = QStringLiteral("PAN AND TILT");
const QString ElementParam::NAME_STATUS_TEXT_1 = QStringLiteral("1");
const QString ElementParam::NAME_STATUS_TEXT_2 = QStringLiteral("2");
const QString ElementParam::NAME_STATUS_TEXT_3 = QStringLiteral("3");
const QString ElementParam::NAME_STATUS_TEXT_4 = QStringLiteral("4");
const QString ElementParam::NAME_STATIC_ID = QStringLiteral("staticId");

namespace {

constexpr int generalSettingsId = 0x0FFFFFFF;

ElementParam inspectionDefault(CVideoOverlayElement::Type type, int row)
{
    ElementParam param;
    param.insert(QStringLiteral("type"), int(type));
    param.insert(QStringLiteral("textDatasource"), QStringLiteral("DB"));
    param.insert(QStringLiteral("enabled"), false);
    param.insert(QStringLiteral("backgroundColor"), QColor(QStringLiteral("#0000FF")));
    param.insert(QStringLiteral("textColor"), QColor(QStringLiteral("#FFFFFF")));
    param.insert(QStringLiteral("timeout"), 0);
    param.insert(QStringLiteral("col"), 0);
    param.insert(QStringLiteral("row"), row);
    param.insert(QStringLiteral("captionEnabled"), true);
    return param;
}

} // namespace

ElementParam ElementParam::createGeneralSettingsDefault()
{
    ElementParam param;
    param.insert(QStringLiteral("type"), int(CVideoOverlayElement::Invalid));
    param.insert(QStringLiteral("id"), generalSettingsId);
    param.insert(QStringLiteral("general"), true);
    param.insert(QStringLiteral("analogVideo"), true);
    param.insert(QStringLiteral("kx70ii_state"), false);
    param.insert(QStringLiteral("kx70ii_col"), 0);
    param.insert(QStringLiteral("kx70ii_row"), 0);
    param.insert(QStringLiteral("kx70ii_units"), QStringLiteral("metric"));
    return param;
}

ElementParam ElementParam::createInspStaticTextDefault()
{
    return inspectionDefault(CVideoOverlayElement::InspStaticText, 10);
}

ElementParam ElementParam::createInspTextDefault()
{
    return inspectionDefault(CVideoOverlayElement::InspText, 11);
}

QDebug operator<<(QDebug debug, const ElementParam &param)
{
    const QDebugStateSaver saver(debug);
    QStringList keys = param.keys();
    std::sort(keys.begin(), keys.end());
    debug.nospace() << "ElementParam(";
    const char *separator = "";
    for (const QString &key : qAsConst(keys)) {
        debug << separator << key << ": " << param.value(key);
        separator = ", ";
    }
    debug << ')';
    return debug;
}

} // namespace Velmar::VideoOverlay
