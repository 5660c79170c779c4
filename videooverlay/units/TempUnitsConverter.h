// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/units/UnitsProvider.h"

namespace Velmar::VideoOverlay {

/// Temperatures in degrees Celsius or Fahrenheit, with the digits and the decimal separator of the
/// user's locale; the only physical quantity besides distance that is shown so.
class XQVIDEOOVERLAY_EXPORT TempUnitsConverter : public UnitsProvider
{
public:
    /// @p decimals are the digits behind the separator; -1 gives six.
    explicit TempUnitsConverter(int decimals);

    /// An empty @p unitFrom stands for degrees Celsius, an empty @p unitTo for the user's unit.
    /// Any other unit is logged as an error and the value in its own unit is shown.
    QString convert(QVariant value, QString unitFrom, QString unitTo) override;
    /// An empty @p unit stands for the user's.
    QString getSuffix(QString unit) override;

    /// Degrees Fahrenheit to degrees Celsius.
    double convert_F_to_C(double value);
    /// Rounds once, so that all processors show the same digits.
    double convert_C_to_F(double value);

    /// Runs fixed cases through convert() and keeps the outcome to itself.
    void selfTest();

private:
    int m_decimals;
};

} // namespace Velmar::VideoOverlay
