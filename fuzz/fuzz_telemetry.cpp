// SPDX-License-Identifier: Apache-2.0
// Whatever bytes a telemetry file holds: reading ends; what is refused is told in one line that
// begins with the file and changes nothing; what is read is in order of time, and what stands
// between its readings is a number.
#include "fuzz/ScratchFile.h"
#include "host/feed/TelemetryFile.h"

#include <cmath>

using Velmar::Host::TelemetryFile;

namespace {

/// Read from a sound file before each input.
TelemetryFile soundFile()
{
    static const TelemetryFile sound = [] {
        ScratchFile file;
        file.fill(QByteArrayLiteral("t_ms,SPEED\n0,1\n10,2\n"));
        TelemetryFile read;
        require(read.load(file.path(), nullptr));
        return read;
    }();
    return sound;
}

void checkUnchanged(const TelemetryFile &file)
{
    require(file.names() == QStringList(QStringLiteral("SPEED")));
    require(file.readings().size() == 2 && file.durationMs() == 10);
    require(file.interpolated(QStringLiteral("SPEED"), 5) == 1.5);
}

void checkRead(const TelemetryFile &file)
{
    qint64 before = 0;
    for (const TelemetryFile::Reading &reading : file.readings()) {
        require(reading.timeMs >= before);
        require(reading.column >= 0 && reading.column < file.names().size());
        require(reading.value.isValid() && !reading.value.toString().isEmpty());
        before = reading.timeMs;
        const QString &name = file.names().at(reading.column);
        for (const qint64 timeMs : {before / 2, before - 1, before})
            require(std::isfinite(file.interpolated(name, timeMs)));
    }
    require(file.durationMs() >= before);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static ScratchFile scratch;
    scratch.fill(data, size);
    TelemetryFile file = soundFile();
    QString error;
    if (file.load(scratch.path(), &error)) {
        checkRead(file);
        return 0;
    }
    require(error.startsWith(scratch.path() + QLatin1Char(':')));
    require(!error.contains(QLatin1Char('\n')));
    checkUnchanged(file);
    return 0;
}
