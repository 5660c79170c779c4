// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QString>

namespace Velmar::Translation {

/// The texts of one language, or what one country says differently:
///
///     { "language": "FRA", "locale": "fr",
///       "texts": { "<context>": { "<key>": "<text>", ... }, ... } }
///
/// "language" is the code by which translate() asks ("FRA" or "FRA_CH"), "locale" the name of the
/// user interface's locale ("fr" or "fr_CH").
struct TranslationFile
{
    QString path;
    QString language;
    QString locale;
    QHash<QString, QString> texts; ///< by full key

    /// False, with the reason and, for what is no JSON, the line in @p error: then nothing is
    /// taken.
    bool load(const QString &path, QString *error);
};

} // namespace Velmar::Translation
