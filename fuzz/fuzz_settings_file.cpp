// SPDX-License-Identifier: Apache-2.0
// Whatever bytes the settings file holds: reading ends and changes nothing, and afterwards a path
// can be stored and read back.
#include "fuzz/ScratchFile.h"
#include "host/platform/Directories.h"
#include "videooverlay/profiles/COsdSettings.h"

#include <QFile>

using namespace Velmar::VideoOverlay;

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/)
{
    Velmar::Directories::setSettingsDirectory(scratchFolder());
    Velmar::Directories::setReadonlyConfigDirectory(scratchFolder() + QStringLiteral("/none"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
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
