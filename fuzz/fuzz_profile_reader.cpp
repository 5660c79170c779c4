// SPDX-License-Identifier: Apache-2.0
// Whatever bytes a profile file holds: reading ends, and what was read can be written and read
// again with the same number of records.
#include "fuzz/ScratchFile.h"
#include "host/platform/LogRouter.h"
#include "videooverlay/profiles/ProfileXmlReader.h"
#include "videooverlay/profiles/ProfileXmlWriter.h"

#include <memory>

using namespace Velmar::VideoOverlay;

namespace {

/// Most inputs are refused, each with a line that nobody reads.
class SilentLogSink : public Velmar::Logging::LogSink
{
public:
    void write(const Velmar::Logging::LogEntry & /*entry*/) override { }
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/)
{
    Velmar::Logging::LogRouter::instance().addSink(std::make_shared<SilentLogSink>());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static ScratchFile scratch;
    scratch.fill(data, size);
    const QString path = scratch.path();

    QHash<QString, QVariant> header;
    const bool parsed = ProfileXmlReader().readHeader(path, header);
    require(header.size() == (parsed ? 2 : 0));

    QList<ElementParam> records;
    if (!ProfileXmlReader().readElements(path, records)) {
        require(records.isEmpty());
        return 0;
    }
    require(parsed);

    const QString written = scratchFolder() + QStringLiteral("/written.xml");
    require(ProfileXmlWriter().writeElements(written, records));
    QList<ElementParam> again;
    require(ProfileXmlReader().readElements(written, again));
    require(again.size() == records.size());
    return 0;
}
