// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QHash>
#include <QList>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <QVector>

namespace Velmar::Translation {

struct TranslationFile;

/// Where CTranslator's texts come from: every "*.json" file of one directory. A file that cannot be
/// read is logged and left out. A text that a country's file lacks is taken from the language's.
/// GUI thread only.
class VELMAR_PLATFORM_EXPORT TranslationStore
{
public:
    static TranslationStore &instance();

    /// "translations" in the read-only configuration directory, unless set. Reads the files anew,
    /// forgets what was made ready, and announces the change like setLocale().
    void setDirectory(const QString &path);

    /// Of the user interface; the system's, unless set. A locale without a file shows the default
    /// texts. Emits CTranslator::currentLocaleChanged, but not for the current locale.
    void setLocale(const QLocale &locale);
    QLocale locale() const;

    /// The locales that have a file.
    QList<QLocale> availableLocales();

    /// Looks a full key up; a null text when there is none.
    QString interfaceText(const QString &fullKey);
    QString readyText(const QString &fullKey, const QString &code) const;

    /// Makes the texts that end in these plain keys ready for readyText(), reading their files
    /// again.
    void makeReady(const QString &code, const QStringList &plainKeys);

private:
    TranslationStore();
    ~TranslationStore();
    Q_DISABLE_COPY(TranslationStore)

    const QVector<TranslationFile> &files();
    void readFiles();

    QString m_directory; ///< empty: the installed one
    QLocale m_locale;
    bool m_read = false;
    QVector<TranslationFile> m_files;                ///< in the order of their names
    QHash<QString, QHash<QString, QString>> m_ready; ///< by code, then by full key
};

} // namespace Velmar::Translation
