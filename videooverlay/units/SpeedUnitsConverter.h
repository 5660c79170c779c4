// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/units/UnitsProvider.h"

namespace Velmar::VideoOverlay {

/// Speeds, with two decimals and a decimal point. The base unit is metres per minute.
///
/// Feet and inches per second are read with the factors of feet and inches per minute, but shown
/// with their own: crawlers report them so, and hosts rely on it.
class XQVIDEOOVERLAY_EXPORT SpeedUnitsConverter : public UnitsProvider
{
public:
    explicit SpeedUnitsConverter();

    /// An empty @p to is unknown: the value in its own unit is shown.
    QString convert(QVariant value, QString from, QString to) override;
    /// An empty @p unit stands for the user's.
    QString getSuffix(QString unit) override;

    /// A value of an unknown unit comes back as it is, and is logged as an error.
    double convertToBase(double value, QString unit);
    // NOLINTBEGIN(bugprone-reserved-identifier): hosts call them by these names
    /// The same metres a minute.
    double convertBaseTo__m_per_min(double value);
    /// Metres a minute to feet a second.
    double convertBaseTo__ft_per_sec(double value);
    /// Metres a minute to inches a second.
    double convertBaseTo__inch_per_sec(double value);
    /// Metres a minute to feet a minute.
    double convertBaseTo__ft_per_min(double value);
    /// Metres a minute to centimetres a second.
    double convertBaseTo__cm_per_sec(double value);
    /// Metres a minute to inches a minute.
    double convertBaseTo__inch_per_min(double value);
    /// Metres a minute to metres a second.
    double convertBaseTo__m_per_sec(double value);
    // NOLINTEND(bugprone-reserved-identifier)

    /// Runs fixed cases through convert() and keeps the outcome to itself. Those that start from
    /// inches per second expect the physical factor and do not match.
    void selfTest();
};

} // namespace Velmar::VideoOverlay
