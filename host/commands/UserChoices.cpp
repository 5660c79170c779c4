// SPDX-License-Identifier: Apache-2.0
#include "host/commands/UserChoices.h"

#include "host/platform/TranslationStore.h"

#include <QStringList>

namespace Velmar::Host {

namespace {

using Shared::LocaleSettings;

/// Three-letter codes, of both kinds of ISO 639-2 where these differ, which QLocale does not know
/// for languages that have a two-letter code.
struct LanguageCode
{
    const char *three;
    const char *two;
};

constexpr LanguageCode languageCodes[] = {
    {"BUL", "bg"}, {"CES", "cs"}, {"CZE", "cs"}, {"DAN", "da"}, {"DEU", "de"}, {"DUT", "nl"},
    {"ELL", "el"}, {"ENG", "en"}, {"EST", "et"}, {"FIN", "fi"}, {"FRA", "fr"}, {"FRE", "fr"},
    {"GER", "de"}, {"GRE", "el"}, {"HRV", "hr"}, {"HUN", "hu"}, {"ITA", "it"}, {"JPN", "ja"},
    {"KOR", "ko"}, {"LAV", "lv"}, {"LIT", "lt"}, {"NLD", "nl"}, {"NOR", "nb"}, {"POL", "pl"},
    {"POR", "pt"}, {"RON", "ro"}, {"RUM", "ro"}, {"RUS", "ru"}, {"SLK", "sk"}, {"SLO", "sk"},
    {"SLV", "sl"}, {"SPA", "es"}, {"SRP", "sr"}, {"SWE", "sv"}, {"TUR", "tr"}, {"UKR", "uk"},
    {"ZHO", "zh"}, {"CHI", "zh"},
};

QString shortCode(const QString &code)
{
    for (const LanguageCode &language : languageCodes) {
        if (code.compare(QLatin1String(language.three), Qt::CaseInsensitive) == 0)
            return QString::fromLatin1(language.two);
    }
    return code.toLower();
}

const QVector<QPair<QString, LocaleSettings::Quantity>> &quantities()
{
    static const QVector<QPair<QString, LocaleSettings::Quantity>> all {
        {QStringLiteral("speed"), LocaleSettings::Quantity::Speed},
        {QStringLiteral("angle"), LocaleSettings::Quantity::Angle},
        {QStringLiteral("temperature"), LocaleSettings::Quantity::Temperature},
        {QStringLiteral("pressure"), LocaleSettings::Quantity::Pressure},
        {QStringLiteral("distance"), LocaleSettings::Quantity::Distance},
    };
    return all;
}

} // namespace

bool UserChoices::setLanguage(const QString &text, QString *error)
{
    QString name = text.section(QLatin1Char('.'), 0, 0); // "de_DE.UTF-8", as environments say
    name.replace(QLatin1Char('-'), QLatin1Char('_'));
    const QString language = shortCode(name.section(QLatin1Char('_'), 0, 0));
    const QString country = name.section(QLatin1Char('_'), 1).toUpper();
    const QString wanted = country.isEmpty() ? language : language + QLatin1Char('_') + country;
    const QLocale locale(wanted);
    // QLocale takes something else for what it does not know.
    const bool known = locale.language() != QLocale::C
        && (locale.name() == language || locale.name().startsWith(language + QLatin1Char('_')))
        && (country.isEmpty() || locale.name() == wanted);
    if (!known) {
        *error = QStringLiteral("--language: \"%1\" is not a language such as de, DEU or de_DE")
                     .arg(text);
        return false;
    }
    m_locale = locale;
    return true;
}

QString UserChoices::languageWarning() const
{
    if (!m_locale)
        return {};
    QStringList codes;
    const QList<QLocale> available = Translation::TranslationStore::instance().availableLocales();
    for (const QLocale &locale : available) {
        if (locale.language() == m_locale->language())
            return {};
        codes.append(locale.name().section(QLatin1Char('_'), 0, 0));
    }
    codes.removeDuplicates();
    codes.sort();
    return QStringLiteral("--language: there are no captions in \"%1\", these will be English; "
                          "there are: %2")
        .arg(m_locale->name().section(QLatin1Char('_'), 0, 0), codes.join(QStringLiteral(", ")));
}

QString UserChoices::unitFrom(const QString &text)
{
    const QString degree(QChar(0xB0));
    if (text == QLatin1String("C") || text == QLatin1String("F"))
        return degree + text;
    return text == QLatin1String("degree") ? degree : text;
}

bool UserChoices::setUnits(const QString &text, QString *error)
{
    const QStringList parts = text.split(QLatin1Char(','));
    for (const QString &part : parts) {
        const QString quantityName = part.section(QLatin1Char('='), 0, 0).trimmed();
        if (part == QLatin1String("metric") || part == QLatin1String("imperial")) {
            m_system = part == QLatin1String("metric") ? UnitSystem::Metric : UnitSystem::Imperial;
            m_units.clear();
            continue;
        }
        const Quantity *quantity = nullptr;
        QStringList names;
        for (const auto &known : quantities()) {
            names.append(known.first);
            if (known.first == quantityName)
                quantity = &known.second;
        }
        if (!quantity || !part.contains(QLatin1Char('='))) {
            *error = QStringLiteral("--units: \"%1\" is not metric, imperial or QUANTITY=UNIT with "
                                    "one of the quantities %2")
                         .arg(part, names.join(QStringLiteral(", ")));
            return false;
        }
        const QString unit = unitFrom(part.section(QLatin1Char('='), 1).trimmed());
        const QStringList units = LocaleSettings::units(*quantity);
        if (!units.contains(unit)) {
            *error = QStringLiteral("--units: \"%1\" is not a unit of %2; these are: %3")
                         .arg(unit, quantityName, units.join(QStringLiteral(", ")));
            return false;
        }
        m_units.append({*quantity, unit});
    }
    return true;
}

void UserChoices::apply() const
{
    if (m_locale) {
        LocaleSettings::setLocale(*m_locale);
        Translation::TranslationStore::instance().setLocale(*m_locale);
    }
    if (m_system)
        LocaleSettings::setUnitSystem(*m_system);
    for (const auto &choice : m_units)
        LocaleSettings::setUnit(choice.first, choice.second);
}

} // namespace Velmar::Host
