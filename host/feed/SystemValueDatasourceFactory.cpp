// SPDX-License-Identifier: Apache-2.0
#include "host/feed/SystemValueDatasourceFactory.h"

#include "host/feed/SystemValueConverter.h"
#include "host/feed/SystemValues.h"

#include <platform/catmanagement/CTemplateManager.h>
#include <videooverlay/captions/DictCaptionResolver.h>
#include <videooverlay/elements/CVideoOverlayText.h>
#include <videooverlay/elements/ElementParam.h>
#include <videooverlay/osd/COsdValueDatasource.h>

namespace Velmar::Host {

using namespace VideoOverlay;

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
        if (std::unique_ptr<UnitsProvider> made = SystemValueConverter::make(value)) {
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
    if (!text || !SystemValues::find(name))
        return nullptr;
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
