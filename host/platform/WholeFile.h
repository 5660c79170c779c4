// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/platform_export.h"

#include <QByteArray>
#include <QString>

namespace Velmar {

/// Files that are there whole or not at all, whatever happens while they are written: they are
/// written under a hidden name beside their own, flushed to the disk and then renamed. A kill
/// leaves the hidden file behind at worst.
class VELMAR_PLATFORM_EXPORT WholeFile
{
public:
    enum class Existing {
        Keep,    ///< a file that is there already, or comes meanwhile, stays
        Replace, ///< keeps mode and owner. Where it may not be replaced, it is written in place
    };

    /// Writes @p content to the file at @p path, or straight to what is there and no file. False,
    /// and the reason in @p error, when it is not there whole. A file that was to be kept is no
    /// failure.
    static bool write(const QString &path, const QByteArray &content, Existing existing,
                      QString *error);

    /// Gives the file @p from the name @p to, which must be free. False, and the reason in @p
    /// error, when that fails.
    static bool rename(const QString &from, const QString &to, QString *error);

    /// A hidden name beside @p path that no other file has.
    static QString nameBeside(const QString &path);

    WholeFile() = delete;
};

} // namespace Velmar
