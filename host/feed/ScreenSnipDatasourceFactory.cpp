// SPDX-License-Identifier: Apache-2.0
#include "host/feed/ScreenSnipDatasourceFactory.h"

#include <videooverlay/captions/TemplateCaptionResolver.h>
#include <videooverlay/elements/CVideoOverlayImage.h>
#include <videooverlay/elements/ElementParam.h>
#include <videooverlay/osd/COsdScreenSnipDatasource.h>

#include <QImageReader>

#include <cmath>

namespace Velmar::Host {

using namespace VideoOverlay;

namespace {

constexpr qint64 mostPixels = qint64(128) * 1024 * 1024; ///< as much as the library takes of a file

} // namespace

ScreenSnipDatasourceFactory::ScreenSnipDatasourceFactory()
    : CAbstractOsdDatasourceFactory(QSharedPointer<TemplateCaptionResolver>())
{
}

ScreenSnipDatasourceFactory::~ScreenSnipDatasourceFactory() = default;

bool ScreenSnipDatasourceFactory::accept(ElementParam &param)
{
    const QVariant type = param.value(QStringLiteral("type"));
    return type.value<CVideoOverlayElement::Type>() == CVideoOverlayElement::FreePicture
        && param.value(QStringLiteral("screenSnip")).toBool();
}

COsdElementDatasource *
ScreenSnipDatasourceFactory::buildDatasource(CVideoOverlayElement *element, ElementParam &param,
                                             QSharedPointer<TemplateCaptionResolver>)
{
    auto *image = qobject_cast<CVideoOverlayImage *>(element);
    if (!image)
        return nullptr;
    auto *snip = new COsdScreenSnipDatasource(image, param);
    m_snips.removeAll({}); // those of the last profile
    m_snips.append(snip);
    if (!m_picture.isNull())
        snip->update(m_picture);
    return snip;
}

void ScreenSnipDatasourceFactory::setPicture(const QImage &picture)
{
    m_picture = picture;
    const auto snips = m_snips; // showing one may make or remove others
    for (const QPointer<COsdScreenSnipDatasource> &snip : snips) {
        if (snip)
            snip->update(picture);
    }
}

bool ScreenSnipDatasourceFactory::showFile(const QString &path)
{
    if (path.isEmpty()) // nothing that Qt should warn about
        return false;
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    const QSize size = reader.size(); // from the header
    if (std::abs(qint64(size.width()) * size.height()) > mostPixels)
        return false;
    const QImage picture = reader.read();
    if (picture.isNull())
        return false;
    setPicture(picture);
    return true;
}

} // namespace Velmar::Host
