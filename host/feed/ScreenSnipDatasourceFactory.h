// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <videooverlay/osd/CAbstractOsdDatasourceFactory.h>

#include <QImage>
#include <QPointer>
#include <QVector>

namespace Velmar::VideoOverlay {
class COsdScreenSnipDatasource;
}

namespace Velmar::Host {

/// Serves the pictures that show a part of the screen instead of a file, and hands the pictures on.
class ScreenSnipDatasourceFactory : public VideoOverlay::CAbstractOsdDatasourceFactory
{
public:
    ScreenSnipDatasourceFactory();
    ~ScreenSnipDatasourceFactory() override;

    /// Free pictures whose "screenSnip" is true.
    bool accept(VideoOverlay::ElementParam &param) override;
    /// Shows the last picture at once. Null for what is no picture element.
    VideoOverlay::COsdElementDatasource *
    buildDatasource(VideoOverlay::CVideoOverlayElement *element, VideoOverlay::ElementParam &param,
                    QSharedPointer<VideoOverlay::TemplateCaptionResolver> resolver) override;

    /// Shows @p picture in every such element, and in those that are made later. A null one takes
    /// the last away.
    void setPicture(const QImage &picture);
    bool hasPicture() const { return !m_picture.isNull(); }
    /// The same with the picture in a file. False, and nothing changes, for what is none.
    bool showFile(const QString &path);

private:
    QVector<QPointer<VideoOverlay::COsdScreenSnipDatasource>> m_snips;
    QImage m_picture;
};

} // namespace Velmar::Host
