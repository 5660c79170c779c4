// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/osd/CAbstractOsdDatasourceFactory.h"

namespace Velmar::VideoOverlay {

/// Serves pictures from files. Screen snips are the host's.
class XQVIDEOOVERLAY_EXPORT COsdImageDatasourceFactory : public CAbstractOsdDatasourceFactory
{
public:
    COsdImageDatasourceFactory();
    ~COsdImageDatasourceFactory() override;

    bool accept(ElementParam &param) override;
    COsdElementDatasource *
    buildDatasource(CVideoOverlayElement *element, ElementParam &param,
                    QSharedPointer<TemplateCaptionResolver> resolver) override;
};

} // namespace Velmar::VideoOverlay
