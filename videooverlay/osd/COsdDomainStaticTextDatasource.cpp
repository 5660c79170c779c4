// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdDomainStaticTextDatasource.h"

#include "platform/appstate/AppState.h"
#include "videooverlay/elements/CVideoOverlayText.h"

#include <QColor>
#include <QVariant>

namespace Velmar::VideoOverlay {

namespace {

/// A host's signal may spell the type in either way; connections by name and queued calls need it.
void registerRecords()
{
    for (const char *name : {"QSharedPointer<Database::CDomainObject>",
                             "QSharedPointer<Velmar::Database::CDomainObject>"})
        qRegisterMetaType<Database::CDomainObjectPointer>(name);
}

} // namespace

COsdDomainStaticTextDatasource::COsdDomainStaticTextDatasource(CVideoOverlayText *text,
                                                               ElementParam &param)
    : COsdElementDatasource(text, param)
    , m_text(param.value(QStringLiteral("text")).toString())
{
    static const bool areRecordsKnown = (registerRecords(), true);
    Q_UNUSED(areRecordsKnown)
    text->setBackgroundColor(param.value(QStringLiteral("backgroundColor")).value<QColor>());
    text->setTextColor(param.value(QStringLiteral("textColor")).value<QColor>());
    text->setCaption(param.value(QStringLiteral("caption")).toString());
    text->setText(m_text);
    text->setVisible(param.value(QStringLiteral("enabled")).toBool());
    connect(AppState::instance(), &AppState::activeProjectChanged, this,
            &COsdDomainStaticTextDatasource::onProjectChanged);
    onProjectChanged(AppState::instance()->getActiveProject());
}

COsdDomainStaticTextDatasource::~COsdDomainStaticTextDatasource() = default;

void COsdDomainStaticTextDatasource::setValue(const QString &newText)
{
    m_text = newText;
    static_cast<CVideoOverlayText *>(m_element)->setText(m_text);
}

void COsdDomainStaticTextDatasource::onProjectChanged(
    QSharedPointer<Database::CDomainObject> project)
{
    QVariant value;
    if (project && project->isValid())
        value = project->readValue(m_params.value(ElementParam::NAME_COLUMNBOUND).toString());
    setValue(value.isValid() ? value.toString() : m_element->caption());
}

} // namespace Velmar::VideoOverlay
