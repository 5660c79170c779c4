// SPDX-License-Identifier: Apache-2.0
#include "platform/translation/CTranslator.h"

#include "host/platform/TranslationStore.h"

#include <QRegularExpression>

namespace Velmar::Translation {

namespace {

/// In one pass, so that an argument that itself holds a "%2" stays as it is.
QString withArguments(const QString &text, const QList<QVariant> &args)
{
    static const QRegularExpression place(QStringLiteral("%([1-9][0-9]?)"));
    QString result;
    int copied = 0;
    auto matches = place.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const int number = match.captured(1).toInt();
        if (number > args.size())
            continue; // a place without an argument stays visible
        result += text.midRef(copied, match.capturedStart() - copied);
        result += args.at(number - 1).toString();
        copied = match.capturedEnd();
    }
    return result + text.midRef(copied);
}

} // namespace

CTranslator::CTranslator() = default;

CTranslator *CTranslator::instance()
{
    // Never destroyed: what is connected to it may outlive every static object.
    static auto *translator = new CTranslator;
    return translator;
}

QLocale CTranslator::locale() const
{
    return TranslationStore::instance().locale();
}

QString CTranslator::txt(const QString &context, const QString &key, const QString &defaultText,
                         const QList<QVariant> &args) const
{
    const QString text = TranslationStore::instance().interfaceText(context + TXT_PART + key);
    return withArguments(text.isNull() ? defaultText : text, args);
}

void CTranslator::updateTranslationForGivenKeys(const QString &code, const QStringList &keys)
{
    TranslationStore::instance().makeReady(code, keys);
}

QString CTranslator::translate(const QString &key, const QString &defaultText,
                               const QString &code) const
{
    const QString text = TranslationStore::instance().readyText(key, code);
    return text.isNull() ? defaultText : text;
}

} // namespace Velmar::Translation
