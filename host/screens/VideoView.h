// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QQuickItem>

#include <memory>

namespace Velmar::Host {

/// Shows the frames of a video, one after the other, undistorted in the middle of the item. Works
/// with every scene graph.
class VideoView : public QQuickItem
{
    Q_OBJECT
    // clang-format off
    Q_PROPERTY(QSize pictureSize READ pictureSize NOTIFY pictureSizeChanged)
    Q_PROPERTY(QRectF pictureRect READ pictureRect NOTIFY pictureRectChanged)
    Q_PROPERTY(bool empty READ isEmpty NOTIFY pictureSizeChanged)
    // clang-format on

public:
    explicit VideoView(QQuickItem *parent = nullptr);
    ~VideoView() override;

    QSize pictureSize() const;  ///< [px] of the frame
    QRectF pictureRect() const; ///< where the frame stands in the item
    bool isEmpty() const;       ///< no frame was shown yet

    /// The next frame; a null image empties the view. GUI thread only.
    Q_INVOKABLE void showFrame(const QImage &frame);

Q_SIGNALS:
    void pictureSizeChanged();
    void pictureRectChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *old, UpdatePaintNodeData *data) override;
    void geometryChanged(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    QImage m_frame;
    bool m_isNew = false; ///< the frame is not on the screen yet
};

} // namespace Velmar::Host
