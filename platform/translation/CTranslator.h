// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QList>
#include <QLocale>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace Velmar::Translation {

/// Texts in the language of the user interface and, for those that must match a document, in a
/// language of the caller's choice. Lives in the GUI thread.
///
/// The full key of a text is its context, TXT_PART and its plain key.
class VELMAR_PLATFORM_EXPORT CTranslator : public QObject
{
    Q_OBJECT
public:
    /// What stands between context and key of a translation: ".Txt.".
    static constexpr QLatin1String TXT_PART {".Txt.", 5};

    /// Never null, and never destroyed while the library is in use.
    static CTranslator *instance();

    /// Of the user interface; numbers follow Shared::CLocaleSupport::getCurrentLocale() instead.
    QLocale locale() const;

    /// The text of @p context and plain @p key in the language of the user interface, or
    /// @p defaultText. "%1" to "%99" are replaced by @p args.
    QString txt(const QString &context, const QString &key, const QString &defaultText,
                const QList<QVariant> &args) const;

    /// Makes the texts with these plain keys ready for translate() in the language @p code, such as
    /// "FRA_CH": language (ISO 639-2/T) and country (ISO 3166), joined by "_".
    void updateTranslationForGivenKeys(const QString &code, const QStringList &keys);

    /// The text with the full @p key in the language @p code, or @p defaultText when it has none or
    /// was not made ready.
    QString translate(const QString &key, const QString &defaultText, const QString &code) const;

Q_SIGNALS:
    /// The language of the user interface changed; locale() and txt() already answer with the new.
    void currentLocaleChanged();

private:
    CTranslator();
};

} // namespace Velmar::Translation
