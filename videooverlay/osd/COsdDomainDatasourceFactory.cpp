// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/osd/COsdDomainDatasourceFactory.h"

#include "platform/appstate/AppState.h"
#include "videooverlay/Log_p.h"
#include "videooverlay/captions/TemplateCaptionResolver.h"
#include "videooverlay/elements/CVideoOverlayText.h"
#include "videooverlay/osd/COsdDomainDatasource.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Velmar::VideoOverlay {

namespace {

/// Columns whose value changes with the inspection.
bool belongsToInspection(const QString &column)
{
    static constexpr QLatin1String prefixes[] = {
        QLatin1String("PRJ_"), QLatin1String("INS_"), QLatin1String("V_INS_"),
        QLatin1String("JOB_"), QLatin1String("OBJ_"),
    };
    return std::any_of(std::begin(prefixes), std::end(prefixes),
                       [&column](QLatin1String prefix) { return column.startsWith(prefix); });
}

} // namespace

COsdDomainDatasourceFactory::COsdDomainDatasourceFactory(
    QSharedPointer<TemplateCaptionResolver> resolver)
    : CAbstractOsdDatasourceFactory(std::move(resolver))
{
}

COsdDomainDatasourceFactory::~COsdDomainDatasourceFactory() = default;

bool COsdDomainDatasourceFactory::accept(ElementParam &param)
{
    return param.value(QStringLiteral("textDatasource")).toString() == QLatin1String("DB");
}

COsdElementDatasource *
COsdDomainDatasourceFactory::buildDatasource(CVideoOverlayElement *element, ElementParam &param,
                                             QSharedPointer<TemplateCaptionResolver> resolver)
{
    auto *const text = qobject_cast<CVideoOverlayText *>(element);
    if (!text)
        return nullptr;
    auto *const datasource = new COsdDomainDatasource(std::move(resolver), text, param);
    const QString column = datasource->getColumnName().section(QLatin1Char('.'), -1);
    AppState *const state = AppState::instance();
    if (belongsToInspection(column))
        QObject::connect(state, &AppState::activeInspectionChanged, datasource,
                         &COsdDomainDatasource::calculateValue);
    else if (column.startsWith(QLatin1String("OBS_")))
        QObject::connect(state, &AppState::observationCreated, datasource,
                         &COsdDomainDatasource::calculateValue);
    else
        log(LogLevel::Debug,
            QStringLiteral(
                "COsdDbSettingsBuilder::buildDatasource not found connection for column ")
                + column);
    return datasource;
}

} // namespace Velmar::VideoOverlay
