// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/xqvideooverlay_export.h"

#include <QDebug>
#include <QHash>
#include <QMetaType>
#include <QString>
#include <QVariant>

namespace Velmar::VideoOverlay {

/// The parameter record of one overlay element: what a profile stores for it.
/// A plain map from key to value, used by value. Every element kind stores only the keys it uses;
/// an absent key reads as 0, false or empty. One record of the kind "general" carries the settings
/// of the whole display instead.
class XQVIDEOOVERLAY_EXPORT ElementParam : public QHash<QString, QVariant>
{
public:
    using QHash<QString, QVariant>::QHash;

    /// Key: the data column or system value that the element shows.
    static const QString NAME_COLUMNBOUND;
    /// Key: the caption taken from that column or value.
    static const QString NAME_COLUMNCAPTION;

    // System values: what "columnBound" of a system text can name.
    /// Distance since the counter was set.
    static const QString NAME_TOTAL_DISTANCE_COUNTER;
    /// Distance within the section.
    static const QString NAME_SECTION_DISTANCE_COUNTER;
    /// Distance of the satellite camera.
    static const QString NAME_SAT_DISTANCE_COUNTER;
    /// Speed of the crawler.
    static const QString NAME_SPEED;
    /// Date of the moment.
    static const QString NAME_DATE;
    /// Time of day of the moment.
    static const QString NAME_TIME;
    /// Time since the video began.
    static const QString NAME_VIDEO_TIME_COUNTER;
    /// Angle of the camera, up and down.
    static const QString NAME_CAMERA_TILT;
    /// Temperature in the camera.
    static const QString NAME_CAMERA_TEMPERATURE;
    /// Angle of the camera, round about.
    static const QString NAME_CAMERA_PAN;
    /// Pressure in the camera.
    static const QString NAME_CAMERA_PRESSURE;
    /// Angle of the crawler along the pipe.
    static const QString NAME_CRAWLER_PITCH;
    /// Angle of the crawler across the pipe.
    static const QString NAME_CRAWLER_ROLL;
    /// Temperature in the crawler.
    static const QString NAME_CRAWLER_TEMPERATURE;
    /// Pressure in the crawler.
    static const QString NAME_CRAWLER_PRESSURE;
    /// Temperature of what is inspected.
    static const QString NAME_OBJECT_TEMPERATURE;
    /// What the operator typed.
    static const QString NAME_OSD_FREE_TEXT_BOX;
    static const QString NAME_PAN_AND_TILT; ///< holds blanks, unlike its neighbours; kept so

    // Fixed identities.
    /// First status text.
    static const QString NAME_STATUS_TEXT_1;
    /// Second status text.
    static const QString NAME_STATUS_TEXT_2;
    /// Third status text.
    static const QString NAME_STATUS_TEXT_3;
    /// Fourth status text.
    static const QString NAME_STATUS_TEXT_4;
    /// Key: identity of a predefined static text.
    static const QString NAME_STATIC_ID;

    /// The settings of the whole display before a profile sets them. Holds no
    /// "globalTransparency": that one is absent until a profile has it. Its id, 268435455, is never
    /// the id of an element.
    static ElementParam createGeneralSettingsDefault();

    /// A caption-like text of an inspection column, switched off, on row 10.
    static ElementParam createInspStaticTextDefault();

    /// The value text of an inspection column, switched off, on the row below: 11.
    static ElementParam createInspTextDefault();
};

/// Prints the record with its keys in alphabetical order, so that two prints can be compared.
XQVIDEOOVERLAY_EXPORT QDebug operator<<(QDebug debug, const ElementParam &param);

} // namespace Velmar::VideoOverlay

Q_DECLARE_METATYPE(Velmar::VideoOverlay::ElementParam)
