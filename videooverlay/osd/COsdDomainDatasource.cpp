// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdDomainDatasource.h"

#include "platform/database/CDomainObjectDataAccessor.h"
#include "platform/database/CDomainObjectHelper.h"
#include "platform/shared/CLocaleSupport.h"
#include "platform/templates/CCatalogTemplate.h"
#include "platform/templates/CTemplateColumn.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/captions/ProgramViews_p.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/CVideoOverlayText.h"

#include <QDateTime>

#include <algorithm>
#include <utility>

namespace Velmar::VideoOverlay {

using Database::CDomainObjectHelper;
using Database::CDomainObjectPointer;
using Templates::CTemplateColumn;

namespace {

CDomainObjectPointer parentOf(const CDomainObjectPointer &object)
{
    return object ? object->parentObject() : CDomainObjectPointer();
}

CDomainObjectPointer resolved(const CDomainObjectPointer &object, const QString &foreignKey)
{
    return object ? object->resolveExternalObject(foreignKey) : CDomainObjectPointer();
}

bool isJobColumn(const QString &name)
{
    return name.startsWith(QLatin1String("JOB_"));
}

/// The record that holds the columns named like @p name, seen from the record handed over last.
CDomainObjectPointer sourceOf(const QString &name, const CDomainObjectPointer &current)
{
    // After an observation the current record is one level further down.
    const CDomainObjectPointer inspection
        = CDomainObjectHelper::inspectionObjectFromObject(current);
    if (isJobColumn(name))
        return resolved(inspection, QStringLiteral("INS_Job_FK"));
    if (name.startsWith(QLatin1String("INS_")) || name.startsWith(QLatin1String("V_INS_")))
        return inspection;
    if (name.startsWith(QLatin1String("PRJ_")))
        return parentOf(parentOf(inspection));
    if (name.startsWith(QLatin1String("OBS_")))
        return CDomainObjectHelper::observationObjectFromObject(current);
    return parentOf(inspection);
}

} // namespace

QSharedPointer<TemplateCaptionResolver> COsdDomainDatasource::captionResolver;
CDomainObjectPointer COsdDomainDatasource::m_currentInspection;

COsdDomainDatasource::COsdDomainDatasource(QSharedPointer<TemplateCaptionResolver> resolver,
                                           CVideoOverlayText *text, ElementParam &param)
    : COsdTextDatasource(std::move(resolver), text, param)
{
    text->setEnabled(param.value(QStringLiteral("enabled")).toBool());
    connect(text, &CVideoOverlayElement::captionVisibleChanged, this, &COsdTextDatasource::update);
    calculateValue(m_currentInspection);
}

COsdDomainDatasource::~COsdDomainDatasource() = default;

const QSet<QString> &COsdDomainDatasource::allowedProgramViews()
{
    return shownProgramViews();
}

QString COsdDomainDatasource::getColumnName() const
{
    return m_params.value(ElementParam::NAME_COLUMNBOUND).toString();
}

QString COsdDomainDatasource::getColumnTableName() const
{
    return m_params.value(QStringLiteral("TDIR_Key")).toString();
}

CDomainObjectPointer COsdDomainDatasource::currentInspection()
{
    return m_currentInspection;
}

void COsdDomainDatasource::rememberDomainObject(const CDomainObjectPointer &object)
{
    m_currentInspection = object;
}

QSharedPointer<Templates::CCatalogTemplate> COsdDomainDatasource::getCatalogTemplate() const
{
    const auto catalogTemplate = captionResolver ? captionResolver->catalogTemplate()
                                                 : QSharedPointer<Templates::CCatalogTemplate>();
    if (!catalogTemplate)
        log(LogLevel::Error, QStringLiteral("CatalogTemplate not available!"));
    return catalogTemplate;
}

const CTemplateColumn *COsdDomainDatasource::getTemplateColumn(const QString &table,
                                                               const QString &column) const
{
    const CTemplateColumn *const found
        = captionResolver ? captionResolver->getColumn(column, table) : nullptr;
    if (!found)
        log(LogLevel::Error,
            QStringLiteral("TemplateColumn not found for ") + column + QStringLiteral(" in ")
                + table);
    return found;
}

// By value: the shared record itself may be handed over, and is cleared in here.
void COsdDomainDatasource::calculateValue(CDomainObjectPointer object)
{
    rememberDomainObject(object);
    if (!object) {
        setValue(QStringLiteral(" ")); // not empty, so that the element keeps its place
        return;
    }
    const QVariant value
        = validateValue(readValueFromSourceObject(getColumnName().split(QLatin1Char('.'))));
    QString text = value.toString();
    if (const auto catalogTemplate = getCatalogTemplate()) {
        const QString caption = fetchColumnDatasource(*catalogTemplate, value);
        text = caption.isEmpty() ? formatColumnValue(text) : caption;
    }
    setValue(appendPostfix(text));
}

CDomainObjectPointer COsdDomainDatasource::findParentSource(const QStringList &path,
                                                            QString &column) const
{
    column = path.isEmpty() ? QString() : path.last();
    CDomainObjectPointer source = sourceOf(column, m_currentInspection);
    if (isJobColumn(column)) {
        // The first name stands for the way to the job; what remains is the name that it reads.
        if (path.size() > 1)
            column = path.mid(1).join(QLatin1Char('.'));
    } else {
        for (int i = 0; i + 1 < path.size(); ++i)
            source = resolved(source, path.at(i));
    }
    if (!source)
        log(LogLevel::Warning,
            QStringLiteral("Domain object not found for ") + path.join(QLatin1Char('.')));
    return source;
}

QVariant COsdDomainDatasource::readValueFromSourceObject(const QStringList &path) const
{
    QString column;
    const CDomainObjectPointer source = findParentSource(path, column);
    if (!source)
        return QStringLiteral("<not source>");
    Database::CDomainObjectDataAccessor accessor;
    accessor.setDomainObject(source);
    return accessor.readValue(column);
}

QVariant COsdDomainDatasource::validateValue(const QVariant &value) const
{
    const QString caption = m_element->caption();
    if (!value.isValid()) {
        log(LogLevel::Warning,
            QStringLiteral("invalid value for  ") + getColumnName() + QStringLiteral(" in ")
                + getColumnTableName() + QStringLiteral(" (") + caption + QLatin1Char(')'));
        return value;
    }
    const QString text = value.toString();
    log(LogLevel::Debug,
        (text.isEmpty() ? QStringLiteral("Empty") : QStringLiteral("Valid"))
            + QStringLiteral(" value for  ") + getColumnName() + QStringLiteral(" = [") + text
            + QStringLiteral("] ") + caption);
    return value;
}

QString
COsdDomainDatasource::fetchColumnDatasource(const Templates::CCatalogTemplate &catalogTemplate,
                                            const QVariant &value) const
{
    const CTemplateColumn *const column = TemplateCaptionResolver::findColumn(
        catalogTemplate, getColumnName(), getColumnTableName());
    return column && column->type() == CTemplateColumn::Type::List
        ? getListDetailsCaption(catalogTemplate, value)
        : QString();
}

QString
COsdDomainDatasource::getListDetailsCaption(const Templates::CCatalogTemplate &catalogTemplate,
                                            const QVariant &value) const
{
    const CTemplateColumn *const column = TemplateCaptionResolver::findColumn(
        catalogTemplate, getColumnName(), getColumnTableName());
    const QVector<Templates::CListItem> *const items
        = column ? catalogTemplate.itemList(*column) : nullptr;
    if (!items) {
        log(LogLevel::Warning,
            QStringLiteral("No details list found for column ") + getColumnName());
        return QString();
    }
    if (!value.isValid())
        return QString(); // no value is no item, not even the one of the empty text
    // As text: the database may hold a number where the catalog has digits, and "03" is not 3.
    const QString internalValue = value.toString();
    const auto item = std::find_if(items->cbegin(), items->cend(),
                                   [&internalValue](const Templates::CListItem &candidate) {
                                       return candidate.internalValue() == internalValue;
                                   });
    return item == items->cend() ? QString() : item->caption();
}

QString COsdDomainDatasource::formatColumnValue(const QString &text) const
{
    const CTemplateColumn *const column = getTemplateColumn(getColumnTableName(), getColumnName());
    if (!column)
        return text;
    switch (column->type()) {
    case CTemplateColumn::Type::Date:
        return formatDate(text);
    case CTemplateColumn::Type::Time:
        return formatTime(text);
    case CTemplateColumn::Type::Text:
    case CTemplateColumn::Type::Number:
    case CTemplateColumn::Type::List:
        return text;
    case CTemplateColumn::Type::Invalid:
        break;
    }
    log(LogLevel::Error, QStringLiteral("Template column type invalid for ") + getColumnName());
    return text;
}

QString COsdDomainDatasource::formatDate(const QString &text) const
{
    const QDate date = QDateTime::fromString(text, Qt::ISODate).date();
    if (!date.isValid()) {
        log(LogLevel::Error, QStringLiteral("Wrong QDate conversion from ") + text);
        return text;
    }
    return Shared::CLocaleSupport::variantToLocalizedString(date, QString());
}

QString COsdDomainDatasource::formatTime(const QString &text) const
{
    QTime time = QDateTime::fromString(text, Qt::ISODate).time();
    if (!time.isValid())
        time = QTime::fromString(text, Qt::ISODate); // a time of day alone is no date and time
    if (!time.isValid()) {
        log(LogLevel::Error, QStringLiteral("Wrong QTime conversion from ") + text);
        return text;
    }
    return Shared::CLocaleSupport::variantToLocalizedString(time, QString());
}

QString COsdDomainDatasource::appendPostfix(const QString &text) const
{
    if (getColumnName().section(QLatin1Char('.'), -1) != QLatin1String("OBS_Observation"))
        return text;
    const CDomainObjectPointer observation
        = CDomainObjectHelper::observationObjectFromObject(m_currentInspection);
    const QString memo
        = observation ? observation->readValue(QStringLiteral("OBS_Memo")).toString() : QString();
    return memo.isEmpty() ? text : text + QStringLiteral(" / ") + memo;
}

} // namespace Velmar::VideoOverlay
