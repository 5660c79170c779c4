// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/platform/LocaleSettings.h"

#include <QLocale>
#include <QPair>
#include <QString>
#include <QVector>

#include <optional>

namespace Velmar::Host {

/// Language and units as the command line names them.
class UserChoices
{
public:
    /// A two- or three-letter code of ISO 639, alone or with a country: "de", "DEU", "de_DE",
    /// "FRA_CH". False, and the reason in @p error, for any other text.
    bool setLanguage(const QString &text, QString *error);

    /// "metric", "imperial" or quantities, separated by commas: "speed=ft/min,temperature=°F". Both
    /// may be mixed; what comes later wins. False, and the reason in @p error, for anything else.
    bool setUnits(const QString &text, QString *error);

    std::optional<QLocale> locale() const { return m_locale; }
    /// For people, when there are no captions in the chosen language, so that they will be in
    /// English; empty otherwise. Numbers and dates are those of every language.
    QString languageWarning() const;

    /// The unit that @p text stands for: not every keyboard has a degree sign.
    static QString unitFrom(const QString &text);

    /// Makes the platform answer so. What was not chosen stays.
    void apply() const;

private:
    using Quantity = Shared::LocaleSettings::Quantity;
    using UnitSystem = Shared::LocaleSettings::UnitSystem;

    std::optional<QLocale> m_locale;
    std::optional<UnitSystem> m_system;
    QVector<QPair<Quantity, QString>> m_units; ///< after the system, in order
};

} // namespace Velmar::Host
