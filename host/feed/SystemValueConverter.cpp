// SPDX-License-Identifier: Apache-2.0
#include "host/feed/SystemValueConverter.h"

#include <utility>

namespace Velmar::Host {

namespace {

bool isSignedZero(const QString &text)
{
    static const QString signs = QStringLiteral("-\u2212"); // the Swedish one is a real minus
    if (text.isEmpty() || !signs.contains(text.at(0)))
        return false;
    bool digits = false;
    for (int i = 1; i < text.size(); ++i) {
        const int digit = text.at(i).digitValue();
        if (digit > 0 || text.at(i).isLetter())
            return false;
        digits = digits || digit == 0;
    }
    return digits;
}

} // namespace

SystemValueConverter::SystemValueConverter(Converter converter)
    : m_converter(std::move(converter))
{
}

SystemValueConverter::SystemValueConverter(Converter converter, Converter fine,
                                           const QStringList &fineUnits)
    : m_converter(std::move(converter))
    , m_fine(std::move(fine))
    , m_fineUnits(fineUnits)
{
}

SystemValueConverter::~SystemValueConverter() = default;

QString SystemValueConverter::convert(QVariant value, QString from, QString to)
{
    if (value.toString().isEmpty())
        return QString();
    UnitsProvider &converter = m_fine && m_fineUnits.contains(to) ? *m_fine : *m_converter;
    const QString text = converter.convert(std::move(value), std::move(from), std::move(to));
    return isSignedZero(text) ? text.mid(1) : text;
}

QString SystemValueConverter::getSuffix(QString unit)
{
    return m_converter->getSuffix(std::move(unit));
}

} // namespace Velmar::Host
