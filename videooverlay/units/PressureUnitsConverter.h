// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/units/UnitsProvider.h"

namespace Velmar::VideoOverlay {

/// Pressures, with a decimal point. The base unit is the millibar.
class XQVIDEOOVERLAY_EXPORT PressureUnitsConverter : public UnitsProvider
{
public:
    /// @p decimals are the digits behind the separator; -1 gives six.
    explicit PressureUnitsConverter(int decimals);

    /// An empty @p to is unknown: the value in its own unit is shown.
    QString convert(QVariant value, QString from, QString to) override;
    /// An empty @p unit stands for the user's.
    QString getSuffix(QString unit) override;

    /// A value of an unknown unit comes back as it is.
    double convertToBase(double value, QString unit);
    // NOLINTBEGIN(bugprone-reserved-identifier): hosts call them by these names
    /// The same millibars.
    double convertBaseTo__mbar(double value);
    /// Millibars to standard atmospheres.
    double convertBaseTo__atm(double value);
    /// Millibars to pascals.
    double convertBaseTo__Pa(double value);
    // NOLINTEND(bugprone-reserved-identifier)

    /// Runs fixed cases through convert() and keeps the outcome to itself.
    void selfTest();

private:
    int m_decimals;
};

} // namespace Velmar::VideoOverlay
