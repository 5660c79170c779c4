// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/display/OverlayScene.h"

#include <QQuickItem>
#include <QSize>

#include <memory>

namespace Velmar::Host {

/// Shows an overlay as it is burned into recordings: the pictures of an OverlayScene, in their
/// order, at their places and with their opacities. Lies over a VideoView of the same size. Only
/// what has changed is handed to the scene graph again; works with every scene graph.
class OverlayView : public QQuickItem
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(QSize pictureSize READ pictureSize NOTIFY pictureSizeChanged)
    // clang-format on

public:
    explicit OverlayView(QQuickItem *parent = nullptr);
    ~OverlayView() override;

    QSize pictureSize() const; ///< [px] of the video picture that the overlay belongs to

    /// Follows @p scene from now on; null shows nothing. The view keeps it alive.
    void setScene(std::shared_ptr<OverlayScene> scene);

Q_SIGNALS:
    void pictureSizeChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *old, UpdatePaintNodeData *data) override;
    void geometryChanged(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    std::shared_ptr<OverlayScene> m_scene;
};

} // namespace Velmar::Host
