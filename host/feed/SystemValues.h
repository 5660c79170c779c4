// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace Velmar::Host {

/// One value that a system text can show.
struct SystemValue
{
    enum class Quantity {
        Distance,    ///< comes in metres
        Speed,       ///< comes in metres per minute
        Angle,       ///< comes in degrees
        Temperature, ///< comes in degrees Celsius
        Pressure,    ///< comes in millibars
        Date,        ///< a moment: milliseconds since 1970-01-01T00:00:00 UTC
        Time,        ///< a moment
        ElapsedTime, ///< a duration [ms]
        Text,        ///< shown as it comes
        Picture,     ///< the path of a file; no text shows it
    };

    QString name; ///< what "columnBound" of the text says
    Quantity quantity = Quantity::Text;
    QString description; ///< English, for people
    QString example;     ///< of the live input, as JSON
    bool coarse = false; ///< whole units are fine enough: a swivelling camera, a hull's pressure
};

/// The system values, and how their readings come in. What shows them and what reads them both ask
/// here.
class SystemValues
{
public:
    using Quantity = SystemValue::Quantity;

    static const QVector<SystemValue> &all();
    static const SystemValue *find(const QString &name); ///< null for any other name

    /// The picture for the screen snips: the live input takes it besides the values of texts.
    static const SystemValue &screenSnip();
    /// What the live input takes; null for any other name.
    static const SystemValue *findInput(const QString &name);

    /// A reading as the texts want it: moments and durations as 64-bit integers, the others as
    /// numbers or texts. Moments and durations may come as ISO 8601 texts. Invalid, with the reason
    /// in @p error, for what the value cannot be.
    static QVariant read(const SystemValue &value, const QVariant &input, QString *error);

    static QString quantityName(Quantity quantity);
    static QString inputFormat(Quantity quantity); ///< for people
    static QStringList units(Quantity quantity);   ///< to choose from; empty where there are none
    static QString userUnit(Quantity quantity);    ///< empty where there are none

    SystemValues() = delete;
};

} // namespace Velmar::Host
