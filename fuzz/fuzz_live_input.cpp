// SPDX-License-Identifier: Apache-2.0
// Whatever bytes come as live input, in whatever portions: reading ends, every value has a name
// that is known, and a sound line afterwards is read.
#include "fuzz/Require.h"
#include "host/feed/LiveInputParser.h"
#include "host/feed/SystemValues.h"

#include <cstddef>
#include <cstdint>

using namespace Velmar::Host;

namespace {

void check(const LiveInputParser::Batch &batch)
{
    for (const LiveInputParser::Value &value : batch.values)
        require(SystemValues::find(value.name) && !value.value.isNull());
    for (const QString &problem : batch.problems)
        require(!problem.isEmpty() && !problem.contains(QLatin1Char('\n')));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    const int portion = size == 0 ? 1 : 1 + data[0] % 32;
    LiveInputParser parser;
    for (int begin = 0; begin < bytes.size(); begin += portion)
        check(parser.feed(bytes.mid(begin, portion)));
    check(parser.finish());
    require(parser.feed("{\"SPEED\": 1}\n").values.size() == 1);
    return 0;
}
