// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/xqvideooverlay_export.h"

#include <QPointer>
#include <QSharedPointer>

namespace Velmar::VideoOverlay {

class COsdBuilder;
class COsdElementDatasource;
class CVideoOverlayElement;
class ElementParam;
class TemplateCaptionResolver;

/// Makes the datasources of some of a profile's elements. The builder asks the factories that the
/// host registered, one after the other; the first that makes a datasource serves the record. A
/// factory that is destroyed is not asked any more.
class XQVIDEOOVERLAY_EXPORT CAbstractOsdDatasourceFactory
{
public:
    /// @p resolver is handed on to buildDatasource(); may be null.
    explicit CAbstractOsdDatasourceFactory(QSharedPointer<TemplateCaptionResolver> resolver);
    virtual ~CAbstractOsdDatasourceFactory();

    /// Whether this factory serves the element that @p param describes.
    virtual bool accept(ElementParam &param) = 0;

    /// Makes the datasource; it becomes a child of @p element. Null when the element is of a kind
    /// that does not go with the record.
    virtual COsdElementDatasource *buildDatasource(CVideoOverlayElement *element,
                                                   ElementParam &param,
                                                   QSharedPointer<TemplateCaptionResolver> resolver)
        = 0;

    /// Null when the record is not accepted.
    COsdElementDatasource *getDatasource(CVideoOverlayElement *element, ElementParam &param);

private:
    friend class COsdBuilder; // notes itself here when it is told of this factory

    Q_DISABLE_COPY(CAbstractOsdDatasourceFactory)
    QSharedPointer<TemplateCaptionResolver> m_captionResolver;
    QPointer<COsdBuilder> m_builder; ///< null unless registered
};

} // namespace Velmar::VideoOverlay
