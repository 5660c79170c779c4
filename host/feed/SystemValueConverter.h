// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/feed/SystemValues.h"

#include <videooverlay/units/UnitsProvider.h>

#include <QStringList>

#include <memory>

namespace Velmar::Host {

/// A library converter as this display uses it: an empty unit is the user's, whatever that is at
/// the time; a value that has not come yet shows as nothing, not as the year 1970; a value that
/// rounds to zero has no sign; large units get the decimals that they need to say anything; and
/// durations have the digits of the user's locale.
class SystemValueConverter : public VideoOverlay::UnitsProvider
{
public:
    /// The one that fits @p value; null where values are shown as they come.
    static std::unique_ptr<SystemValueConverter> make(const SystemValue &value);

    ~SystemValueConverter() override;

    QString convert(QVariant value, QString from, QString to) override;
    QString getSuffix(QString unit) override;

private:
    using Converter = std::unique_ptr<VideoOverlay::UnitsProvider>;

    /// @p fine is used for @p fineUnits, @p converter for the others.
    SystemValueConverter(SystemValue::Quantity quantity, Converter converter,
                         Converter fine = nullptr, const QStringList &fineUnits = {});
    QString unitOrUsers(const QString &unit) const;

    SystemValue::Quantity m_quantity;
    Converter m_converter; ///< never null
    Converter m_fine;      ///< may be null
    QStringList m_fineUnits;
};

} // namespace Velmar::Host
