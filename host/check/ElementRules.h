// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <videooverlay/elements/ElementParam.h>

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QVector>

#include <functional>

namespace Velmar::Host {

/// An element of a profile file or of the running overlay, as the rules see it.
struct CheckedElement
{
    VideoOverlay::ElementParam record; ///< what a profile holds of it, or would hold
    QString caption;                   ///< that stands before its value when the record wants one
    QString text;                      ///< that is known to stand there; empty: not known
    QSizeF size;                       ///< [cells]; empty: taken from the record and the text
};

/// What is wrong with an element.
struct ElementFault
{
    enum class Kind {
        UnknownValue,     ///< there is no such system value
        UnknownColumn,    ///< no catalog has that column
        UnknownUnit,      ///< the value cannot be shown in that unit
        UnknownAlignment, ///< neither LEFT, RIGHT nor CENTER
        UnknownSource,    ///< nobody fills texts from there
        OutsideGrid,      ///< its first cell is not on the grid
        CutOff,           ///< a word is wider than what is left of the grid
        LeavesGrid,       ///< a part of it is not on the grid
        Overlap,          ///< it covers, or is covered by, an element before it
    };

    Kind kind = Kind::UnknownValue;
    int element = 0;   ///< which one
    int other = -1;    ///< of an overlap
    QString key = {};  ///< of the record, where one value is at fault
    QRectF cells = {}; ///< that the element takes
};

/// What elements are checked against. A question without an answer (an empty function) is not
/// asked.
struct ElementRules
{
    int columns = 54; ///< of the grid
    int rows = 27;    ///< of the grid

    /// Whether a system value of that name exists.
    std::function<bool(const QString &name)> knowsValue = {};
    /// Whether that value can be shown in @p unit, which for dates and times is a pattern.
    std::function<bool(const QString &name, const QString &unit)> takesUnit = {};
    /// Whether a catalog has that column in that table; in any, for an empty table.
    std::function<bool(const QString &table, const QString &column)> knowsColumn = {};

    /// What is wrong with @p elements, in their order. The files of profiles and the elements on
    /// the screen are looked at in here, so that both are told the same.
    ///
    /// An element covers its known size. A text without one covers what is certain: its caption
    /// and the width that the record gives the value, or one letter where the record gives none.
    /// An element that is switched off covers nothing.
    QVector<ElementFault> check(const QVector<CheckedElement> &elements) const;
};

} // namespace Velmar::Host
