// SPDX-License-Identifier: Apache-2.0
// Whatever bytes the settings file holds: reading ends and changes nothing, and afterwards a path
// can be stored and read back.
#include "host/platform/Directories.h"
#include "videooverlay/profiles/COsdSettings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

using namespace Velmar::VideoOverlay;

namespace {

/// In memory where the system offers that: thousands of files are written each second.
void useScratchDirectory()
{
    static const QTemporaryDir directory(
        (QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm") : QDir::tempPath())
        + QStringLiteral("/xq-fuzz-XXXXXX"));
    Velmar::Directories::setSettingsDirectory(directory.path());
    Velmar::Directories::setReadonlyConfigDirectory(directory.filePath(QStringLiteral("none")));
}

void require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    useScratchDirectory();
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    QFile file(COsdSettings::xmlSettingsPath());
    require(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    require(file.write(bytes) == bytes.size());
    file.close();

    COsdSettings::getDefaultProfile();
    require(file.open(QIODevice::ReadOnly));
    require(file.readAll() == bytes);
    file.close();

    const QString stored = QStringLiteral("osd/a&b.xml");
    COsdSettings::setDefaultProfile(stored);
    require(COsdSettings::getDefaultProfile() == stored);
    return 0;
}
