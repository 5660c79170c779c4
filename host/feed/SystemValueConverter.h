// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <videooverlay/units/UnitsProvider.h>

#include <QStringList>

#include <memory>

namespace Velmar::Host {

/// A library converter as this display uses it: a value that has not come yet shows as nothing, not
/// as the year 1970; a value that rounds to zero has no sign; and large units get the decimals that
/// they need to say anything.
class SystemValueConverter : public VideoOverlay::UnitsProvider
{
public:
    using Converter = std::unique_ptr<VideoOverlay::UnitsProvider>;

    explicit SystemValueConverter(Converter converter);
    /// @p fine is used for @p fineUnits, @p converter for the others.
    SystemValueConverter(Converter converter, Converter fine, const QStringList &fineUnits);
    ~SystemValueConverter() override;

    QString convert(QVariant value, QString from, QString to) override;
    QString getSuffix(QString unit) override;

private:
    Converter m_converter; ///< never null
    Converter m_fine;      ///< may be null
    QStringList m_fineUnits;
};

} // namespace Velmar::Host
