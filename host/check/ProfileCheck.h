// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/check/ElementRules.h"

#include <QByteArray>
#include <QSizeF>
#include <QString>
#include <QVector>

#include <functional>

namespace Velmar::Host {

/// Something that is wrong with a profile file.
struct ProfileFinding
{
    int line = 0;   ///< counted from 1
    int column = 0; ///< counted from 1
    QString reason;
};

/// What a profile is checked against. A question without an answer (an empty function) is not
/// asked.
struct ProfileCheckContext
{
    ElementRules rules;
    QSizeF cell;       ///< of the grid [px]; without it pictures have no size
    QString directory; ///< that relative paths of pictures start from; empty: they lead nowhere

    /// The longest caption of the system value, or of the column of @p table, called @p name.
    std::function<QString(const QString &table, const QString &name)> captionOf;
};

/// What is wrong with the profile in @p document, in the order of the file: markup that cannot be
/// read, tags that no element has, numbers, switches and colours that cannot be read, missing
/// pictures, and what the rules say. Empty when all is well. Never reads beyond limits that a
/// profile stays far below.
QVector<ProfileFinding> checkProfile(const QByteArray &document,
                                     const ProfileCheckContext &context);

} // namespace Velmar::Host
