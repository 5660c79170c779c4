// SPDX-License-Identifier: Apache-2.0
// Whatever bytes a profile file holds: checking it ends, and what is wrong stands at a place of the
// file. Where nothing is wrong, the overlay reads it.
#include "fuzz/ScratchFile.h"
#include "host/check/ProfileCheck.h"
#include "videooverlay/profiles/ProfileXmlReader.h"

using namespace Velmar::Host;
using namespace Velmar::VideoOverlay;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray document(reinterpret_cast<const char *>(data), int(size));
    ProfileCheckContext context;
    context.cell = QSizeF(25.6875, 40);
    const QVector<ProfileFinding> findings = checkProfile(document, context);
    for (const ProfileFinding &finding : findings) {
        require(finding.line >= 1 && finding.line <= document.count('\n') + 1);
        require(finding.column >= 1 && !finding.reason.isEmpty());
    }
    static ScratchFile scratch;
    scratch.fill(document);
    QList<ElementParam> records;
    require(!findings.isEmpty() || ProfileXmlReader().readElements(scratch.path(), records));
    return 0;
}
