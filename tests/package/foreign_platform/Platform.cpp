// SPDX-License-Identifier: Apache-2.0
#include "platform/applogic/CoreApplication.h"
#include "platform/appstate/AppState.h"
#include "platform/catmanagement/CCatalogDescriptor.h"
#include "platform/catmanagement/CCatalogTemplateRegistry.h"
#include "platform/catmanagement/CTemplateManager.h"
#include "platform/database/CDomainObject.h"
#include "platform/database/CDomainObjectDataAccessor.h"
#include "platform/database/CDomainObjectHelper.h"
#include "platform/directories/CApplicationDirectories.h"
#include "platform/logging/CLogger.h"
#include "platform/multimedia/CVideoRecorder.h"
#include "platform/shared/CLocaleSupport.h"
#include "platform/shared/GlobalLocaleData.h"
#include "platform/shared/LengthUnitsConverter.h"
#include "platform/shared/QmlStringListModel.h"
#include "platform/templates/CCatalogTemplate.h"
#include "platform/templates/CListItem.h"
#include "platform/templates/CProgramView.h"
#include "platform/templates/CTemplateColumn.h"
#include "platform/translation/CTranslator.h"

#include <QDir>

#include <cstdio>
#include <utility>

namespace Velmar {

// This host keeps no records and no catalogs: there is never a project.

AppState::AppState() = default;
AppState::~AppState() = default;

AppState *AppState::instance()
{
    static auto *const state = new AppState;
    return state;
}

QSharedPointer<Database::CDomainObject> AppState::getActiveProject() const
{
    return {};
}

bool AppState::isSimpleProjectActive() const
{
    return false;
}

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
    class EmptyRegistry : public CATManagement::CCatalogTemplateRegistry
    {
    public:
        const CATManagement::CCatalogDescriptor *
        catalogByUniqueId(const Base::GUID &) const override
        {
            return nullptr;
        }
    };
    static auto *const registry = new EmptyRegistry;
    return registry;
}

} // namespace AppLogic

namespace CATManagement {

CCatalogDescriptor::~CCatalogDescriptor() = default;
CCatalogTemplateRegistry::~CCatalogTemplateRegistry() = default;
CTemplateManager::~CTemplateManager() = default;

} // namespace CATManagement

namespace Database {

CDomainObject::~CDomainObject() = default;

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

QString CDomainObjectHelper::catalogIdFromObject(const CDomainObjectPointer &)
{
    return {};
}

CDomainObjectPointer CDomainObjectHelper::inspectionObjectFromObject(const CDomainObjectPointer &)
{
    return {};
}

CDomainObjectPointer CDomainObjectHelper::observationObjectFromObject(const CDomainObjectPointer &)
{
    return {};
}

} // namespace Database

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

QString CApplicationDirectories::settingsDirectory()
{
    return QDir::tempPath();
}

QString CApplicationDirectories::readonlyConfigDirectory()
{
    return QDir::rootPath();
}

namespace Logging {

void CLogger::logMessage(LogLevel level, const QString &category, const QString &message)
{
    std::fprintf(stderr, "foreign %d %s %s\n", int(level), qPrintable(category),
                 qPrintable(message));
}

} // namespace Logging

namespace Shared {

const QString CLocaleSupport::speedUnits_m_per_min = QStringLiteral("m/min");
const QString CLocaleSupport::speedUnits_ft_per_min = QStringLiteral("ft/min");
const QString CLocaleSupport::speedUnits_inch_per_min = QStringLiteral("inch/min");
const QString CLocaleSupport::speedUnits_m_per_sec = QStringLiteral("m/s");
const QString CLocaleSupport::speedUnits_ft_per_sec = QStringLiteral("ft/s");
const QString CLocaleSupport::speedUnits_inch_per_sec = QStringLiteral("inch/s");
const QString CLocaleSupport::speedUnits_cm_per_sec = QStringLiteral("cm/s");
const QString CLocaleSupport::angleUnits_hour = QStringLiteral("hour");
const QString CLocaleSupport::angleUnits_degree = QStringLiteral(u"\u00B0");
const QString CLocaleSupport::angleUnits_percent = QStringLiteral("%");
const QString CLocaleSupport::tempUnits_C = QStringLiteral(u"\u00B0C");
const QString CLocaleSupport::tempUnits_F = QStringLiteral(u"\u00B0F");
const QString CLocaleSupport::pressureUnits_mbar = QStringLiteral("mbar");
const QString CLocaleSupport::pressureUnits_atm = QStringLiteral("atm");
const QString CLocaleSupport::pressureUnits_pa = QStringLiteral("Pa");

QString CLocaleSupport::getSpeedUnitString()
{
    return speedUnits_m_per_min;
}

QString CLocaleSupport::getAngleUnitString()
{
    return angleUnits_degree;
}

QString CLocaleSupport::getTemperatureUnitString()
{
    return tempUnits_C;
}

QString CLocaleSupport::getPressureUnitString()
{
    return pressureUnits_mbar;
}

QString CLocaleSupport::getDistanceUnitString()
{
    return QStringLiteral("m");
}

QLocale CLocaleSupport::getCurrentLocale()
{
    return QLocale::c();
}

QString CLocaleSupport::getTimeFormat()
{
    return QStringLiteral("HH:mm:ss");
}

QString CLocaleSupport::distanceValueToLocalizedString(double value, bool withUnit, bool fine)
{
    const QString number = QString::number(value, 'f', fine ? 2 : 1);
    return withUnit ? number + QStringLiteral(" m") : number;
}

QString CLocaleSupport::variantToLocalizedString(const QVariant &value, const QString &)
{
    return value.toString();
}

GlobalLocaleData::GlobalLocaleData() = default;

GlobalLocaleData *GlobalLocaleData::instance()
{
    static GlobalLocaleData data;
    return &data;
}

double LengthUnitsConverter::convert(const QString &, const QString &, double value)
{
    return value;
}

QmlStringListModel::QmlStringListModel(QObject *parent)
    : QAbstractListModel(parent)
{
}

QmlStringListModel::~QmlStringListModel() = default;

QStringList QmlStringListModel::stringList() const
{
    return m_texts;
}

void QmlStringListModel::setStringList(const QStringList &texts)
{
    beginResetModel();
    m_texts = texts;
    endResetModel();
    Q_EMIT stringListChanged();
}

int QmlStringListModel::maxLineNumber() const
{
    return m_maxLineNumber;
}

void QmlStringListModel::setMaxLineNumber(int lines)
{
    m_maxLineNumber = lines;
    Q_EMIT maxLineNumberChanged();
}

int QmlStringListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_texts.size();
}

QVariant QmlStringListModel::data(const QModelIndex &index, int) const
{
    return m_texts.value(index.row());
}

bool QmlStringListModel::setData(const QModelIndex &, const QVariant &, int)
{
    return false;
}

QHash<int, QByteArray> QmlStringListModel::roleNames() const
{
    return {{TextRole, "text"}};
}

bool QmlStringListModel::append(const QString &text)
{
    setStringList(m_texts + QStringList {text});
    return true;
}

bool QmlStringListModel::remove(int)
{
    return false;
}

} // namespace Shared

namespace Translation {

CTranslator::CTranslator() = default;

CTranslator *CTranslator::instance()
{
    static CTranslator translator;
    return &translator;
}

QLocale CTranslator::locale() const
{
    return QLocale::c();
}

QString CTranslator::txt(const QString &, const QString &, const QString &defaultText,
                         const QList<QVariant> &) const
{
    return defaultText;
}

void CTranslator::updateTranslationForGivenKeys(const QString &, const QStringList &) { }

QString CTranslator::translate(const QString &, const QString &defaultText, const QString &) const
{
    return defaultText;
}

} // namespace Translation

} // namespace Velmar
