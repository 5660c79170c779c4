// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/captions/TemplateCaptionResolver.h"

#include "platform/appstate/AppState.h"
#include "platform/catmanagement/CTemplateManager.h"
#include "platform/templates/CProgramView.h"
#include "platform/templates/CTemplateColumn.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/captions/ProgramViews_p.h"
#include "videooverlay/elements/ElementParam.h"

namespace Velmar::VideoOverlay {

TemplateCaptionResolver::TemplateCaptionResolver(CATManagement::CTemplateManager &templates)
    : m_templates(templates)
{
    connect(this, &TemplateCaptionResolver::resolverReady, this, &CaptionResolver::resolverReady);
    connect(AppState::instance(), &AppState::templateLoadCompleted, this,
            &TemplateCaptionResolver::templateLoadCompleted);
}

TemplateCaptionResolver::~TemplateCaptionResolver() = default;

QString TemplateCaptionResolver::getCaption(ElementParam &param) const
{
    const Templates::CTemplateColumn *column
        = getColumn(param.value(ElementParam::NAME_COLUMNBOUND).toString(),
                    param.value(QStringLiteral("TDIR_Key")).toString());
    return column ? column->caption() : QString();
}

const Templates::CTemplateColumn *TemplateCaptionResolver::getColumn(const QString &binding,
                                                                     const QString &tableKey) const
{
    if (binding.isEmpty()) {
        log(LogLevel::Warning, QStringLiteral("Cannot find caption for empty columnBound"));
        return nullptr;
    }
    if (const auto *const column
        = m_template ? findColumn(*m_template, binding, tableKey) : nullptr)
        return column;
    log(LogLevel::Warning,
        QStringLiteral("Cannot find caption for ") + binding + QStringLiteral(" in ") + tableKey);
    return nullptr;
}

const Templates::CTemplateColumn *
TemplateCaptionResolver::findColumn(const Templates::CCatalogTemplate &catalogTemplate,
                                    const QString &binding, const QString &tableKey)
{
    for (int i = 0; i < catalogTemplate.programViewCount(); ++i) {
        const Templates::CProgramView *view = catalogTemplate.programView(i);
        if (!view || !shownProgramViews().contains(view->key()))
            continue;
        for (int j = 0; j < view->columnCount(); ++j) {
            const Templates::CTemplateColumn *column = view->column(j);
            if (column && column->key() == binding && column->tableKey() == tableKey)
                return column;
        }
    }
    return nullptr;
}

QSharedPointer<Templates::CCatalogTemplate> TemplateCaptionResolver::catalogTemplate() const
{
    return m_template;
}

void TemplateCaptionResolver::setTemplate(
    const Base::GUID &uniqueId, const QSharedPointer<Templates::CCatalogTemplate> &catalogTemplate)
{
    m_templateId = uniqueId;
    m_template = catalogTemplate;
    Q_EMIT templateReady();
    Q_EMIT resolverReady();
}

void TemplateCaptionResolver::templateLoadCompleted(const Base::GUID &templateId)
{
    if (templateId.isEmpty())
        return;
    if (const auto loaded = m_templates.getTemplateFromCache(templateId))
        setTemplate(templateId, loaded);
}

} // namespace Velmar::VideoOverlay
