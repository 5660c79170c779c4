// SPDX-License-Identifier: Apache-2.0
#include "host/platform/TranslationStore.h"

#include "host/platform/TranslationFile.h"
#include "platform/directories/CApplicationDirectories.h"
#include "platform/logging/CLogger.h"
#include "platform/translation/CTranslator.h"

#include <QDir>

namespace Velmar::Translation {

namespace {

using Logging::CLogger;
using Logging::LogLevel;

QString languagePart(const QString &name)
{
    return name.section(QLatin1Char('_'), 0, 0);
}

bool readLogged(const QString &path, TranslationFile *file)
{
    QString error;
    if (file->load(path, &error))
        return true;
    CLogger::logMessage(LogLevel::Warning, QStringLiteral("Platform"),
                        QStringLiteral("Cannot read translations %1: %2").arg(path, error));
    return false;
}

} // namespace

TranslationStore::TranslationStore() = default;
TranslationStore::~TranslationStore() = default;

TranslationStore &TranslationStore::instance()
{
    // Never destroyed, like the translator that asks it.
    static auto *store = new TranslationStore;
    return *store;
}

void TranslationStore::setDirectory(const QString &path)
{
    m_directory = path;
    m_ready.clear();
    readFiles();
    Q_EMIT CTranslator::instance()->currentLocaleChanged();
}

void TranslationStore::setLocale(const QLocale &locale)
{
    if (m_locale == locale)
        return;
    m_locale = locale;
    Q_EMIT CTranslator::instance()->currentLocaleChanged();
}

QLocale TranslationStore::locale() const
{
    return m_locale;
}

QList<QLocale> TranslationStore::availableLocales()
{
    QList<QLocale> locales;
    for (const TranslationFile &file : files())
        locales.append(QLocale(file.locale));
    return locales;
}

QString TranslationStore::interfaceText(const QString &fullKey)
{
    const QString name = m_locale.name();
    QString ofLanguage;
    for (const TranslationFile &file : files()) {
        const auto it = file.texts.constFind(fullKey);
        if (it == file.texts.cend())
            continue;
        if (file.locale == name)
            return *it;
        if (file.locale == languagePart(name))
            ofLanguage = *it;
    }
    return ofLanguage;
}

QString TranslationStore::readyText(const QString &fullKey, const QString &code) const
{
    return m_ready.value(code).value(fullKey);
}

void TranslationStore::makeReady(const QString &code, const QStringList &plainKeys)
{
    QHash<QString, QString> &ready = m_ready[code];
    const auto take = [&](const QString &language) {
        for (const TranslationFile &known : files()) {
            TranslationFile file;
            if (known.language != language || !readLogged(known.path, &file))
                continue;
            for (auto it = file.texts.cbegin(); it != file.texts.cend(); ++it) {
                const int end = it.key().lastIndexOf(CTranslator::TXT_PART);
                if (plainKeys.contains(it.key().mid(end + CTranslator::TXT_PART.size())))
                    ready.insert(it.key(), it.value());
            }
        }
    };
    take(languagePart(code));
    if (code != languagePart(code))
        take(code); // the country has the last word
}

const QVector<TranslationFile> &TranslationStore::files()
{
    if (!m_read)
        readFiles();
    return m_files;
}

void TranslationStore::readFiles()
{
    m_read = true;
    m_files.clear();
    const QDir directory(m_directory.isEmpty() ? CApplicationDirectories::readonlyConfigDirectory()
                                 + QStringLiteral("/translations")
                                               : m_directory);
    const QStringList names
        = directory.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    for (const QString &name : names) {
        TranslationFile file;
        if (readLogged(directory.filePath(name), &file))
            m_files.append(file);
    }
}

} // namespace Velmar::Translation
