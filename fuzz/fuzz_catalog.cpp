// SPDX-License-Identifier: Apache-2.0
// Whatever bytes a catalog file holds: reading ends; a part is missing when, and only when, a line
// tells why; and what is read can be walked through as the overlay does.
#include "fuzz/ScratchFile.h"
#include "host/platform/CatalogDescriptor.h"
#include "host/platform/CatalogFile.h"
#include "host/platform/CatalogTemplate.h"
#include "platform/templates/CCatalogTemplate.h"
#include "platform/templates/CProgramView.h"
#include "platform/templates/CTemplateColumn.h"

using namespace Velmar::CATManagement;
using namespace Velmar::Templates;

namespace {

void checkDescriptor(const CCatalogDescriptor &descriptor)
{
    require(!descriptor.uniqueId().isEmpty());
    require(descriptor.languageCode().size() == 3 && descriptor.countryCode().size() == 2);
}

void checkColumn(const CCatalogTemplate &read, const CTemplateColumn &column)
{
    require(!column.key().isEmpty() && !column.tableKey().isEmpty() && !column.caption().isEmpty());
    require(column.type() != CTemplateColumn::Type::Invalid);
    const QVector<CListItem> *items = read.itemList(column);
    require((items != nullptr) == (column.type() == CTemplateColumn::Type::List));
    if (!items)
        return;
    for (const CListItem &item : *items)
        require(!item.internalValue().isEmpty() && !item.caption().isEmpty());
}

void checkTemplate(const CCatalogTemplate &read)
{
    for (int i = 0; i < read.programViewCount(); ++i) {
        const CProgramView *view = read.programView(i);
        require(view && !view->key().isEmpty());
        for (int j = 0; j < view->columnCount(); ++j)
            checkColumn(read, *view->column(j));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static ScratchFile scratch;
    scratch.fill(data, size);
    CatalogFile file(scratch.path());
    const auto descriptor = file.descriptor();
    const auto read = file.catalogTemplate();
    require(file.problems().isEmpty() == (descriptor && read));
    for (const QString &problem : file.problems())
        require(problem.startsWith(scratch.path() + QLatin1Char(':')));
    if (descriptor)
        checkDescriptor(*descriptor);
    if (read)
        checkTemplate(*read);
    return 0;
}
