// SPDX-License-Identifier: Apache-2.0
// Whatever bytes a profile file holds: reading ends, and what was read can be written and read
// again with the same number of records.
#include "host/platform/LogRouter.h"
#include "videooverlay/profiles/ProfileXmlReader.h"
#include "videooverlay/profiles/ProfileXmlWriter.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>
#include <memory>

using namespace Velmar::VideoOverlay;

namespace {

/// In memory where the system offers that: thousands of files are written each second.
QString scratch(const char *name)
{
    static const QTemporaryDir directory(
        (QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm") : QDir::tempPath())
        + QStringLiteral("/xq-fuzz-XXXXXX"));
    return directory.filePath(QLatin1String(name));
}

/// Most inputs are refused, each with a line that nobody reads.
class SilentLogSink : public Velmar::Logging::LogSink
{
public:
    void write(const Velmar::Logging::LogEntry & /*entry*/) override { }
};

void require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/)
{
    Velmar::Logging::LogRouter::instance().addSink(std::make_shared<SilentLogSink>());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString path = scratch("input.xml");
    QFile file(path);
    require(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    require(file.write(reinterpret_cast<const char *>(data), qint64(size)) == qint64(size));
    file.close();

    QHash<QString, QVariant> header;
    const bool parsed = ProfileXmlReader().readHeader(path, header);
    require(header.size() == (parsed ? 2 : 0));

    QList<ElementParam> records;
    if (!ProfileXmlReader().readElements(path, records)) {
        require(records.isEmpty());
        return 0;
    }
    require(parsed);

    const QString written = scratch("written.xml");
    require(ProfileXmlWriter().writeElements(written, records));
    QList<ElementParam> again;
    require(ProfileXmlReader().readElements(written, again));
    require(again.size() == records.size());
    return 0;
}
