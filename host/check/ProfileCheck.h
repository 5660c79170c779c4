// SPDX-License-Identifier: Apache-2.0
#pragma once

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
    int columns = 54; ///< of the grid
    int rows = 27;    ///< of the grid
    QSizeF cell;      ///< of the grid [px]; without it pictures have no size

    /// Whether a system value of that name exists.
    std::function<bool(const QString &name)> knowsValue;
    /// Whether a catalog has that column in that table.
    std::function<bool(const QString &table, const QString &column)> knowsColumn;
    /// The caption of a system value, for its length.
    std::function<QString(const QString &name)> captionOf;
};

/// What is wrong with the profile in @p document, in the order of the file: markup that cannot be
/// read, tags that no element has, numbers, switches, colours and units that cannot be read,
/// columns and values that do not exist, missing pictures, elements that leave the grid and
/// elements that cover each other. Empty when all is well. Never reads beyond limits that a profile
/// stays far below.
///
/// Sizes are those that the elements will have at most: a text's own or its width in the profile
/// with its caption. Elements that are switched off cover nothing.
QVector<ProfileFinding> checkProfile(const QByteArray &document,
                                     const ProfileCheckContext &context);

} // namespace Velmar::Host
