// SPDX-License-Identifier: Apache-2.0
#include "host/feed/SystemValueDatasourceFactory.h"

#include "host/feed/SystemValueConverter.h"
#include "host/feed/SystemValues.h"

#include <platform/catmanagement/CTemplateManager.h>
#include <platform/shared/CLocaleSupport.h>
#include <videooverlay/captions/DictCaptionResolver.h>
#include <videooverlay/elements/CVideoOverlayText.h>
#include <videooverlay/elements/ElementParam.h>
#include <videooverlay/osd/COsdValueDatasource.h>
#include <videooverlay/units/AngleUnitsConverter.h>
#include <videooverlay/units/DateConverter.h>
#include <videooverlay/units/DistanceUnitsConverter.h>
#include <videooverlay/units/ElapsedTimeConverter.h>
#include <videooverlay/units/PressureUnitsConverter.h>
#include <videooverlay/units/SpeedUnitsConverter.h>
#include <videooverlay/units/TempUnitsConverter.h>
#include <videooverlay/units/TimeConverter.h>

namespace Velmar::Host {

using namespace VideoOverlay;
using Shared::CLocaleSupport;

namespace {

const QString unitKey = QStringLiteral("unit");

std::unique_ptr<UnitsProvider> makeConverter(const SystemValue &value)
{
    using Quantity = SystemValue::Quantity;
    const int decimals = value.coarse ? 0 : 1;
    switch (value.quantity) {
    case Quantity::Distance:
        return std::make_unique<SystemValueConverter>(std::make_unique<DistanceUnitsConverter>());
    case Quantity::Speed:
        return std::make_unique<SystemValueConverter>(std::make_unique<SpeedUnitsConverter>());
    case Quantity::Angle:
        return std::make_unique<SystemValueConverter>(
            std::make_unique<AngleUnitsConverter>(decimals),
            std::make_unique<AngleUnitsConverter>(1),
            QStringList {CLocaleSupport::angleUnits_hour, CLocaleSupport::angleUnits_percent});
    case Quantity::Temperature:
        return std::make_unique<SystemValueConverter>(std::make_unique<TempUnitsConverter>(1));
    case Quantity::Pressure:
        return std::make_unique<SystemValueConverter>(
            std::make_unique<PressureUnitsConverter>(decimals),
            std::make_unique<PressureUnitsConverter>(3),
            QStringList(CLocaleSupport::pressureUnits_atm));
    case Quantity::Date:
        return std::make_unique<SystemValueConverter>(std::make_unique<DateConverter>());
    case Quantity::Time:
        return std::make_unique<SystemValueConverter>(std::make_unique<TimeConverter>());
    case Quantity::ElapsedTime:
        return std::make_unique<SystemValueConverter>(std::make_unique<ElapsedTimeConverter>());
    case Quantity::Text:
        break;
    }
    return nullptr;
}

} // namespace

SystemValueDatasourceFactory::SystemValueDatasourceFactory(
    CATManagement::CTemplateManager &templates)
    : SystemValueDatasourceFactory(QSharedPointer<DictCaptionResolver>::create(templates))
{
}

SystemValueDatasourceFactory::SystemValueDatasourceFactory(
    const QSharedPointer<DictCaptionResolver> &resolver)
    : CAbstractOsdDatasourceFactory(resolver)
    , m_captions(resolver)
{
    for (const SystemValue &value : SystemValues::all()) {
        if (std::unique_ptr<UnitsProvider> made = makeConverter(value)) {
            m_converters.insert(value.name, made.get());
            m_owned.push_back(std::move(made));
        }
    }
}

SystemValueDatasourceFactory::~SystemValueDatasourceFactory() = default;

bool SystemValueDatasourceFactory::accept(ElementParam &param)
{
    const QVariant type = param.value(QStringLiteral("type"));
    return type.value<CVideoOverlayElement::Type>() == CVideoOverlayElement::SystemText
        && SystemValues::find(param.value(ElementParam::NAME_COLUMNBOUND).toString());
}

COsdElementDatasource *
SystemValueDatasourceFactory::buildDatasource(CVideoOverlayElement *element, ElementParam &param,
                                              QSharedPointer<TemplateCaptionResolver> resolver)
{
    auto *text = qobject_cast<CVideoOverlayText *>(element);
    const QString name = param.value(ElementParam::NAME_COLUMNBOUND).toString();
    const SystemValue *value = SystemValues::find(name);
    if (!text || !value)
        return nullptr;
    // Converters take an empty unit for one that they do not know.
    if (param.value(unitKey).toString().isEmpty()) {
        const QString unit = SystemValues::userUnit(value->quantity);
        if (!unit.isEmpty())
            param.insert(unitKey, unit);
    }
    auto *datasource = new COsdValueDatasource(std::move(resolver), text, param);
    if (UnitsProvider *provider = converter(name))
        datasource->setUnitProvider(provider);
    return datasource;
}

QString SystemValueDatasourceFactory::caption(const QString &name) const
{
    ElementParam param;
    param.insert(ElementParam::NAME_COLUMNBOUND, name);
    return m_captions->getCaption(param);
}

UnitsProvider *SystemValueDatasourceFactory::converter(const QString &name) const
{
    return m_converters.value(name);
}

} // namespace Velmar::Host
