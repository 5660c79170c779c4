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

    // Keys of a record.
    static const QString NAME_COLUMNBOUND;
    static const QString NAME_COLUMNCAPTION;

    // System values: what "columnBound" of a system text can name.
    static const QString NAME_TOTAL_DISTANCE_COUNTER;
    static const QString NAME_SECTION_DISTANCE_COUNTER;
    static const QString NAME_SAT_DISTANCE_COUNTER;
    static const QString NAME_SPEED;
    static const QString NAME_DATE;
    static const QString NAME_TIME;
    static const QString NAME_VIDEO_TIME_COUNTER;
    static const QString NAME_CAMERA_TILT;
    static const QString NAME_CAMERA_TEMPERATURE;
    static const QString NAME_CAMERA_PAN;
    static const QString NAME_CAMERA_PRESSURE;
    static const QString NAME_CRAWLER_PITCH;
    static const QString NAME_CRAWLER_ROLL;
    static const QString NAME_CRAWLER_TEMPERATURE;
    static const QString NAME_CRAWLER_PRESSURE;
    static const QString NAME_OBJECT_TEMPERATURE;
    static const QString NAME_OSD_FREE_TEXT_BOX;
    static const QString NAME_PAN_AND_TILT; ///< holds blanks, unlike its neighbours; kept so

    // Fixed identities.
    static const QString NAME_STATUS_TEXT_1;
    static const QString NAME_STATUS_TEXT_2;
    static const QString NAME_STATUS_TEXT_3;
    static const QString NAME_STATUS_TEXT_4;
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
