// SPDX-License-Identifier: Apache-2.0
#include "host/platform/TranslationFile.h"

#include "host/platform/SmallFile.h"
#include "platform/translation/CTranslator.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Velmar::Translation {

bool TranslationFile::load(const QString &filePath, QString *error)
{
    QString unreadable;
    const QByteArray bytes = readSmallFile(filePath, &unreadable);
    if (!unreadable.isEmpty()) {
        *error = unreadable;
        return false;
    }
    QJsonParseError parseError;
    const QJsonObject root = QJsonDocument::fromJson(bytes, &parseError).object();
    if (parseError.error != QJsonParseError::NoError) {
        *error = QStringLiteral("line %1: %2")
                     .arg(QString::number(bytes.left(parseError.offset).count('\n') + 1),
                          parseError.errorString());
        return false;
    }

    TranslationFile read;
    read.path = filePath;
    read.language = root.value(QLatin1String("language")).toString();
    read.locale = root.value(QLatin1String("locale")).toString();
    if (read.language.isEmpty() || read.locale.isEmpty()) {
        *error = QStringLiteral("\"language\" or \"locale\" is missing");
        return false;
    }
    const QJsonObject contexts = root.value(QLatin1String("texts")).toObject();
    for (auto context = contexts.begin(); context != contexts.end(); ++context) {
        const QJsonObject texts = context.value().toObject();
        for (auto text = texts.begin(); text != texts.end(); ++text) {
            if (!text.value().isString()) {
                *error = QStringLiteral("\"%1\" of \"%2\" is not a text")
                             .arg(text.key(), context.key());
                return false;
            }
            read.texts.insert(context.key() + CTranslator::TXT_PART + text.key(),
                              text.value().toString());
        }
    }
    *this = read;
    return true;
}

} // namespace Velmar::Translation
