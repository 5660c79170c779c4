// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/osd/CAbstractOsdDatasourceFactory.h"

namespace Velmar::VideoOverlay {

/// Serves the records whose text comes from the inspection database ("textDatasource" is "DB").
/// System texts say so too, unless their profile names another source: a factory for those is
/// registered before this one.
class XQVIDEOOVERLAY_EXPORT COsdDomainDatasourceFactory : public CAbstractOsdDatasourceFactory
{
public:
    /// @p resolver gives the captions; shared with the builder.
    explicit COsdDomainDatasourceFactory(QSharedPointer<TemplateCaptionResolver> resolver);
    ~COsdDomainDatasourceFactory() override;

    bool accept(ElementParam &param) override;

    /// Null for anything but a text. The datasource follows the active inspection or, for a column
    /// of observations, the observations; a column of none of the known kinds is read once, and a
    /// line in the log says so.
    COsdElementDatasource *
    buildDatasource(CVideoOverlayElement *element, ElementParam &param,
                    QSharedPointer<TemplateCaptionResolver> resolver) override;
};

} // namespace Velmar::VideoOverlay
