// SPDX-License-Identifier: Apache-2.0
#include "host/screens/OverlayView.h"

#include "host/screens/PictureFit.h"

#include <QHash>
#include <QQuickWindow>
#include <QSGClipNode>
#include <QSGImageNode>
#include <QSGOpacityNode>

#include <utility>

namespace Velmar::Host {

namespace {

/// One element's picture: its opacity with the image below.
class ItemNode : public QSGOpacityNode
{
public:
    explicit ItemNode(QQuickWindow *window)
        : m_image(window->createImageNode())
    {
        m_image->setOwnsTexture(true);
        appendChildNode(m_image);
    }

    void show(const OverlayItem &item, const QRectF &rect, bool scaled, QQuickWindow *window)
    {
        if (m_revision != item.revision)
            m_image->setTexture(
                window->createTextureFromImage(item.image, QQuickWindow::TextureHasAlphaChannel));
        m_revision = item.revision;
        m_image->setFiltering(scaled ? QSGTexture::Linear : QSGTexture::Nearest);
        m_image->setRect(rect);
        setOpacity(item.opacity / 255.0);
    }

private:
    QSGImageNode *m_image; ///< a child
    quint64 m_revision = 0;
};

/// All of an overlay, cut off where the overlay says so.
class OverlayNode : public QSGClipNode
{
public:
    OverlayNode()
        : m_geometry(QSGGeometry::defaultAttributes_Point2D(), 4)
    {
        setIsRectangular(true);
        setGeometry(&m_geometry);
    }

    void show(const OverlaySnapshot &overlay, const QRectF &picture, double scale,
              QQuickWindow *window)
    {
        const auto place = [&](const QRectF &pixels) {
            return QRectF(picture.topLeft() + pixels.topLeft() * scale, pixels.size() * scale);
        };
        const QRectF clip
            = overlay.clip.isNull() ? picture : picture.intersected(place(overlay.clip));
        setClipRect(clip);
        QSGGeometry::updateRectGeometry(&m_geometry, clip);
        markDirty(DirtyGeometry);

        QHash<int, ItemNode *> nodes;
        for (const OverlayItem &item : overlay.items) {
            ItemNode *node = m_nodes.take(item.id);
            if (!node)
                node = new ItemNode(window);
            else
                removeChildNode(node); // it is appended below, in the order of painting
            node->show(item, place(QRectF(item.position, item.image.size())), scale != 1.0, window);
            appendChildNode(node);
            nodes.insert(item.id, node);
        }
        qDeleteAll(m_nodes); // what is not shown any more
        m_nodes = nodes;
    }

private:
    QSGGeometry m_geometry;
    QHash<int, ItemNode *> m_nodes; ///< children, by element
};

} // namespace

OverlayView::OverlayView(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

OverlayView::~OverlayView() = default;

QSize OverlayView::pictureSize() const
{
    if (!m_scene)
        return QSize();
    SceneCapabilities &capabilities = m_scene->capabilities();
    return QSize(capabilities.imageWidth(), capabilities.imageHeight());
}

void OverlayView::setScene(std::shared_ptr<OverlayScene> scene)
{
    if (m_scene) {
        disconnect(m_scene.get(), nullptr, this, nullptr);
        disconnect(&m_scene->capabilities(), nullptr, this, nullptr);
    }
    m_scene = std::move(scene);
    if (m_scene) {
        connect(m_scene.get(), &OverlayScene::published, this, &QQuickItem::update);
        using Capabilities = VideoOverlay::CAbstractVideoOverlayCapabilitiesBackend;
        for (const auto signal :
             {&Capabilities::imageWidthChanged, &Capabilities::imageHeightChanged}) {
            connect(&m_scene->capabilities(), signal, this, &OverlayView::pictureSizeChanged);
            connect(&m_scene->capabilities(), signal, this, &QQuickItem::update);
        }
    }
    Q_EMIT pictureSizeChanged();
    update();
}

QSGNode *OverlayView::updatePaintNode(QSGNode *old, UpdatePaintNodeData *data)
{
    Q_UNUSED(data)
    auto *node = static_cast<OverlayNode *>(old);
    const QRectF picture = pictureFit(pictureSize(), size());
    if (picture.isEmpty()) {
        delete node;
        return nullptr;
    }
    if (!node)
        node = new OverlayNode;
    node->show(*m_scene->snapshot(), picture, picture.width() / pictureSize().width(), window());
    return node;
}

void OverlayView::geometryChanged(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChanged(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        update();
}

} // namespace Velmar::Host
