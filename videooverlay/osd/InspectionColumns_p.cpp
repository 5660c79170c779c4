// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/InspectionColumns_p.h"

#include "videooverlay/elements/ElementType_p.h"
#include "videooverlay/osd/COsdBuilder.h"

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

} // namespace

bool isObservationTable(const QString &table)
{
    return table == observationTable;
}

bool isDisplayName(const QString &column)
{
    return !column.endsWith(QLatin1String("_REF")) && !column.endsWith(QLatin1String("_FK"))
        && std::any_of(
            std::begin(offeredColumns), std::end(offeredColumns),
            [&column](const OfferedColumn &offered) { return column.startsWith(offered.prefix); });
}

bool isOfferedUnder(const QString &table, const QString &column)
{
    return std::any_of(std::begin(offeredColumns), std::end(offeredColumns),
                       [&table, &column](const OfferedColumn &offered) {
                           return table == offered.table && column.startsWith(offered.prefix);
                       });
}

QString inspectionKeyOf(const ElementParam &record)
{
    const int type = typeOf(record);
    return isInspectionType(type) ? COsdBuilder::generateOsdColumnsKey(
               record.value(QStringLiteral("TDIR_Key")).toString(),
               record.value(ElementParam::NAME_COLUMNBOUND).toString(), type)
                                  : QString();
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
