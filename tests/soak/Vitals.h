// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace Velmar::Soak {

/// What a program that runs for weeks must not have more of every day.
struct Vitals
{
    int objects = 0;     ///< QObjects
    int timers = 0;      ///< running, of this thread
    int descriptors = 0; ///< open files
    int threads = 0;
    int files = 0;       ///< in the folder of the settings
    qint64 heap = 0;     ///< [bytes] that somebody asked for and has not given back
    qint64 resident = 0; ///< [bytes] of memory, with what the allocator keeps
    qint64 trimmed = 0;  ///< [bytes] of memory after the allocator was asked to keep nothing

    /// All but the last one, which nobody may look at in the middle of a day: it makes the
    /// allocator give back what it would have kept.
    static Vitals take(const QString &settingsDirectory);
    void trim();

    QString line() const; ///< as under header()
    static QString header();

    /// In what these have grown since @p before; empty: in nothing.
    QStringList growthSince(const Vitals &before) const;
};

} // namespace Velmar::Soak
