// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/InspectionColumns_p.h"

#include "platform/templates/CCatalogTemplate.h"
#include "platform/templates/CProgramView.h"
#include "platform/templates/CTemplateColumn.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/elements/ElementType_p.h"
#include "videooverlay/osd/COsdBuilder.h"
#include "videooverlay/osd/COsdDomainDatasource.h"

#include <algorithm>
#include <iterator>

namespace Velmar::VideoOverlay {

namespace {

using Type = CVideoOverlayElement::Type;

const QLatin1String observationTable("SECOBS");

/// How a column must begin to be offered, and under which table it is.
struct OfferedColumn
{
    QLatin1String prefix;
    QLatin1String table;
};

const OfferedColumn offeredColumns[] = {
    {QLatin1String("OBJ_"), QLatin1String("SECTION")},
    {QLatin1String("OBJ_"), QLatin1String("NODE")},
    {QLatin1String("INS_"), QLatin1String("SECINSP")},
    {QLatin1String("PRJ_"), QLatin1String("PROJECT")},
    {QLatin1String("JOB_"), QLatin1String("JOB")},
    {QLatin1String("OBS_Observation"), observationTable},
    {QLatin1String("OBS_OpCode"), observationTable},
    {QLatin1String("V_INS_Customer"), QLatin1String("SECINSP")},
    {QLatin1String("V_INS_Contractor"), QLatin1String("SECINSP")},
    {QLatin1String("V_INS_TimeOfStart"), QLatin1String("SECINSP")},
    {QLatin1String("V_INS_DateOfStart"), QLatin1String("SECINSP")},
    {QLatin1String("V_INS_DateOfEnd"), QLatin1String("SECINSP")},
    {QLatin1String("V_INS_TimeOfEnd"), QLatin1String("SECINSP")},
};

bool isInspectionType(int type)
{
    return type == Type::InspText || type == Type::InspStaticText;
}

/// False for columns that nobody means to show, which includes every reference.
bool isDisplayName(const QString &column)
{
    return !column.endsWith(QLatin1String("_REF")) && !column.endsWith(QLatin1String("_FK"))
        && std::any_of(
            std::begin(offeredColumns), std::end(offeredColumns),
            [&column](const OfferedColumn &offered) { return column.startsWith(offered.prefix); });
}

/// Whether a column of that name may be shown when it is in that table.
bool isOfferedUnder(const QString &table, const QString &column)
{
    return std::any_of(std::begin(offeredColumns), std::end(offeredColumns),
                       [&table, &column](const OfferedColumn &offered) {
                           return table == offered.table && column.startsWith(offered.prefix);
                       });
}

} // namespace

QSet<QString> inspectionKeysOf(const Templates::CCatalogTemplate &catalogTemplate)
{
    QSet<QString> keys;
    const auto collect = [&keys](const Templates::CTemplateColumn &column) {
        const QString name = column.key();
        if (!column.isOsd() || !isDisplayName(name))
            return;
        const QString table = column.tableKey();
        if (!isOfferedUnder(table, name)) {
            log(LogLevel::Debug,
                QStringLiteral("Not allowed table name <") + table + QStringLiteral("> or <") + name
                    + QStringLiteral("> column's prefix!"));
            return;
        }
        keys.insert(COsdBuilder::generateOsdColumnsKey(table, name, Type::InspText));
        // What belongs to an observation appears and expires; it never stands still.
        if (table != observationTable)
            keys.insert(COsdBuilder::generateOsdColumnsKey(table, name, Type::InspStaticText));
    };
    for (int i = 0; i < catalogTemplate.programViewCount(); ++i) {
        const Templates::CProgramView *const view = catalogTemplate.programView(i);
        if (!view || !COsdDomainDatasource::allowedProgramViews().contains(view->key()))
            continue;
        for (int j = 0; j < view->columnCount(); ++j) {
            if (const Templates::CTemplateColumn *const column = view->column(j))
                collect(*column);
        }
    }
    return keys;
}

QString inspectionKeyOf(const ElementParam &record)
{
    const int type = typeOf(record);
    return isInspectionType(type) ? COsdBuilder::generateOsdColumnsKey(
               record.value(QStringLiteral("TDIR_Key")).toString(),
               record.value(ElementParam::NAME_COLUMNBOUND).toString(), type)
                                  : QString();
}

ElementParam *recordWithoutId(QList<ElementParam> &records, const QString &key)
{
    const auto isIt = [&key](const ElementParam &record) {
        return !record.contains(QStringLiteral("id")) && inspectionKeyOf(record) == key;
    };
    const auto found = std::find_if(records.begin(), records.end(), isIt);
    return found == records.end() ? nullptr : &*found;
}

void eraseRecords(QList<ElementParam> &records, const QSet<QString> &keys)
{
    if (keys.isEmpty())
        return;
    const auto isUnwanted
        = [&keys](const ElementParam &record) { return keys.contains(inspectionKeyOf(record)); };
    records.erase(std::remove_if(records.begin(), records.end(), isUnwanted), records.end());
}

} // namespace Velmar::VideoOverlay
