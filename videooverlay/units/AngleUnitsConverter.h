// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/units/UnitsProvider.h"

namespace Velmar::VideoOverlay {

/// Angles, with a decimal point: as degrees (the base unit), on a clock face, or as a slope.
///
/// A slope in percent is shown as the tangent but read as 3.6 degrees per percent: kept so, hosts
/// rely on it.
class XQVIDEOOVERLAY_EXPORT AngleUnitsConverter : public UnitsProvider
{
public:
    /// @p decimals are the digits behind the separator; -1 gives six.
    explicit AngleUnitsConverter(int decimals);

    /// An empty @p to is unknown: the value in its own unit is shown.
    QString convert(QVariant value, QString from, QString to) override;
    /// The sign of the unit, or nothing for a unit that is no angle's. An empty @p unit stands for
    /// the user's, whose name and not its sign is returned.
    QString getSuffix(QString unit) override;

    /// A value of an unknown unit comes back as it is.
    double convertToBase(double value, QString unit);
    // NOLINTBEGIN(bugprone-reserved-identifier): hosts call them by these names
    /// Degrees to clock positions.
    double convertBaseTo__hour(double value);
    /// The same degrees.
    double convertBaseTo__degrees(double value);
    /// Degrees to a slope in percent, by the tangent.
    double convertBaseTo__percent(double value);
    // NOLINTEND(bugprone-reserved-identifier)

    /// Runs fixed cases through convert() and keeps the outcome to itself.
    void selfTest();

private:
    int m_decimals;
};

} // namespace Velmar::VideoOverlay
