// SPDX-License-Identifier: Apache-2.0
#include "host/screens/VideoView.h"

#include "host/screens/PictureFit.h"

#include <QQuickWindow>
#include <QSGImageNode>

namespace Velmar::Host {

VideoView::VideoView(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

VideoView::~VideoView() = default;

QSize VideoView::pictureSize() const
{
    return m_frame.size();
}

QRectF VideoView::pictureRect() const
{
    return pictureFit(m_frame.size(), size());
}

bool VideoView::isEmpty() const
{
    return m_frame.isNull();
}

void VideoView::showFrame(const QImage &frame)
{
    const bool resized = frame.size() != m_frame.size();
    m_frame = frame;
    m_isNew = true;
    update();
    if (!resized)
        return;
    Q_EMIT pictureSizeChanged();
    Q_EMIT pictureRectChanged();
}

QSGNode *VideoView::updatePaintNode(QSGNode *old, UpdatePaintNodeData *data)
{
    Q_UNUSED(data)
    auto *node = static_cast<QSGImageNode *>(old);
    if (m_frame.isNull()) {
        delete node;
        return nullptr;
    }
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
        node->setFiltering(QSGTexture::Linear);
        m_isNew = true; // a new window needs the frame again
    }
    if (m_isNew)
        node->setTexture(window()->createTextureFromImage(m_frame, QQuickWindow::TextureIsOpaque));
    m_isNew = false;
    node->setRect(pictureRect());
    return node;
}

void VideoView::geometryChanged(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChanged(newGeometry, oldGeometry);
    if (newGeometry.size() == oldGeometry.size())
        return;
    update();
    Q_EMIT pictureRectChanged();
}

} // namespace Velmar::Host
