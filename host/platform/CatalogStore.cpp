// SPDX-License-Identifier: Apache-2.0
#include "host/platform/CatalogStore.h"

#include "host/platform/AppStateControl.h"
#include "host/platform/CatalogDescriptor.h"
#include "host/platform/CatalogFile.h"
#include "host/platform/CatalogTemplate.h"
#include "platform/applogic/CoreApplication.h"
#include "platform/directories/CApplicationDirectories.h"
#include "platform/logging/CLogger.h"

#include <QDir>

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

namespace {

using Logging::CLogger;
using Logging::LogLevel;

void warn(const QString &problem)
{
    CLogger::logMessage(LogLevel::Warning, QStringLiteral("Platform"),
                        QStringLiteral("Cannot read catalog ") + problem);
}

void warn(const QStringList &problems)
{
    for (const QString &problem : problems)
        warn(problem);
}

} // namespace

CatalogStore::CatalogStore() = default;
CatalogStore::~CatalogStore() = default;

CatalogStore &CatalogStore::instance()
{
    static auto *const store = new CatalogStore;
    return *store;
}

void CatalogStore::setDirectory(const QString &path)
{
    m_directory = path;
    m_templates.clear();
    readCatalogs();
}

QStringList CatalogStore::catalogIds() const
{
    QStringList ids;
    for (const Catalog &catalog : catalogs())
        ids.append(catalog.descriptor->uniqueId());
    return ids;
}

QString CatalogStore::catalogName(const Base::GUID &uniqueId) const
{
    const Catalog *catalog = find(uniqueId);
    return catalog ? catalog->descriptor->name() : QString();
}

const CCatalogDescriptor *CatalogStore::catalogByUniqueId(const Base::GUID &uniqueId) const
{
    const Catalog *catalog = find(uniqueId);
    return catalog ? catalog->descriptor.get() : nullptr;
}

QSharedPointer<Templates::CCatalogTemplate>
CatalogStore::getTemplateFromCache(const Base::GUID &uniqueId) const
{
    return m_templates.value(uniqueId);
}

QVector<Templates::CListItem> CatalogStore::choices(const Base::GUID &uniqueId,
                                                    const QString &tableKey, const QString &column,
                                                    const QString &forTable) const
{
    const auto loaded = m_templates.value(uniqueId);
    return loaded ? loaded->choices(tableKey, column, forTable) : QVector<Templates::CListItem>();
}

bool CatalogStore::loadTemplate(const Base::GUID &uniqueId)
{
    if (!m_templates.contains(uniqueId)) {
        const auto loaded = readTemplate(uniqueId);
        if (!loaded)
            return false;
        m_templates.insert(uniqueId, loaded);
    }
    AppStateControl::announceTemplate(uniqueId);
    return true;
}

const std::vector<CatalogStore::Catalog> &CatalogStore::catalogs() const
{
    if (!m_read)
        readCatalogs();
    return m_catalogs;
}

const CatalogStore::Catalog *CatalogStore::find(const Base::GUID &uniqueId) const
{
    for (const Catalog &catalog : catalogs()) {
        if (catalog.descriptor->uniqueId() == uniqueId)
            return &catalog;
    }
    return nullptr;
}

void CatalogStore::readCatalogs() const
{
    m_read = true;
    m_catalogs.clear();
    const QDir directory(m_directory.isEmpty() ? CApplicationDirectories::readonlyConfigDirectory()
                                 + QStringLiteral("/catalogs")
                                               : m_directory);
    const QStringList names
        = directory.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    for (const QString &name : names)
        readCatalog(directory.filePath(name));
}

void CatalogStore::readCatalog(const QString &path) const
{
    CatalogFile file(path);
    auto descriptor = file.descriptor();
    warn(file.problems());
    if (!descriptor)
        return;
    if (const Catalog *other = find(descriptor->uniqueId())) {
        warn(QStringLiteral("%1: %2 has the same \"uniqueId\"").arg(path, other->path));
        return;
    }
    m_catalogs.push_back({path, std::move(descriptor)});
}

QSharedPointer<Templates::CatalogTemplate>
CatalogStore::readTemplate(const Base::GUID &uniqueId) const
{
    const Catalog *catalog = find(uniqueId);
    if (!catalog) {
        warn(QStringLiteral("\"%1\": no such catalog is installed").arg(uniqueId));
        return {};
    }
    CatalogFile file(catalog->path);
    const auto descriptor = file.descriptor();
    const auto loaded = file.catalogTemplate();
    warn(file.problems());
    if (descriptor && descriptor->uniqueId() != uniqueId) {
        warn(QStringLiteral("%1: \"uniqueId\" is no longer \"%2\"").arg(catalog->path, uniqueId));
        return {};
    }
    return descriptor ? loaded : QSharedPointer<Templates::CatalogTemplate>();
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
