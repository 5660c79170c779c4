// SPDX-License-Identifier: Apache-2.0
#include "host/platform/CatalogStore.h"

#include "platform/applogic/CoreApplication.h"
#include "platform/catmanagement/CCatalogDescriptor.h"
#include "platform/templates/CCatalogTemplate.h"
#include "platform/templates/CProgramView.h"
#include "platform/templates/CTemplateColumn.h"

#include <utility>

namespace Velmar {

namespace Templates {

CCatalogTemplate::~CCatalogTemplate() = default;
CProgramView::~CProgramView() = default;
CTemplateColumn::~CTemplateColumn() = default;

CListItem::CListItem(QString internalValue, QString caption)
    : m_internalValue(std::move(internalValue))
    , m_caption(std::move(caption))
{
}

QString CListItem::internalValue() const
{
    return m_internalValue;
}

QString CListItem::caption() const
{
    return m_caption;
}

} // namespace Templates

namespace CATManagement {

CCatalogDescriptor::~CCatalogDescriptor() = default;
CCatalogTemplateRegistry::~CCatalogTemplateRegistry() = default;
CTemplateManager::~CTemplateManager() = default;

CatalogStore::CatalogStore() = default;
CatalogStore::~CatalogStore() = default;

CatalogStore &CatalogStore::instance()
{
    static auto *const store = new CatalogStore;
    return *store;
}

void CatalogStore::setDirectory(const QString &) { }

QStringList CatalogStore::catalogIds()
{
    return {};
}

const CCatalogDescriptor *CatalogStore::catalogByUniqueId(const Base::GUID &) const
{
    return nullptr;
}

QSharedPointer<Templates::CCatalogTemplate>
CatalogStore::getTemplateFromCache(const Base::GUID &) const
{
    return {};
}

bool CatalogStore::loadTemplate(const Base::GUID &)
{
    return false;
}

} // namespace CATManagement

namespace AppLogic {

CoreApplication::CoreApplication() = default;
CoreApplication::~CoreApplication() = default;

CoreApplication *CoreApplication::instance()
{
    static auto *const core = new CoreApplication;
    return core;
}

CATManagement::CCatalogTemplateRegistry *CoreApplication::catalogTemplateRegistry() const
{
    return &CATManagement::CatalogStore::instance();
}

} // namespace AppLogic

} // namespace Velmar
