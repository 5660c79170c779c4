// SPDX-License-Identifier: Apache-2.0
#include "platform/database/CDomainObjectHelper.h"

#include "host/platform/DomainRecord.h"
#include "platform/database/CDomainObjectDataAccessor.h"

namespace Velmar::Database {

using Kind = DomainRecord::Kind;

const QString catalogIdColumn = QStringLiteral("PRJ_CatalogId");

namespace {

bool isOf(Kind kind, const CDomainObjectPointer &object)
{
    const auto *record = dynamic_cast<const DomainRecord *>(object.data());
    return record && record->kind() == kind;
}

} // namespace

CDomainObject::~CDomainObject() = default;
DomainRecord::~DomainRecord() = default;

QString CDomainObjectHelper::catalogIdFromObject(const CDomainObjectPointer &object)
{
    CDomainObjectPointer project = object;
    while (project && !isOf(Kind::Project, project))
        project = project->parentObject();
    return project ? project->readValue(catalogIdColumn).toString() : QString();
}

CDomainObjectPointer
CDomainObjectHelper::inspectionObjectFromObject(const CDomainObjectPointer &object)
{
    if (isOf(Kind::Inspection, object))
        return object;
    return isOf(Kind::Observation, object) ? object->parentObject() : CDomainObjectPointer();
}

CDomainObjectPointer
CDomainObjectHelper::observationObjectFromObject(const CDomainObjectPointer &object)
{
    return isOf(Kind::Observation, object) ? object : CDomainObjectPointer();
}

CDomainObjectDataAccessor::CDomainObjectDataAccessor() = default;
CDomainObjectDataAccessor::~CDomainObjectDataAccessor() = default;

void CDomainObjectDataAccessor::setDomainObject(const CDomainObjectPointer &object)
{
    m_object = object;
}

QVariant CDomainObjectDataAccessor::readValue(const QString &column) const
{
    return m_object ? m_object->readValue(column) : QVariant();
}

} // namespace Velmar::Database
