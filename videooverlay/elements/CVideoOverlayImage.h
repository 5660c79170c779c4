// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "videooverlay/elements/CVideoOverlayElement.h"
#include "videooverlay/xqvideooverlay_export.h"

#include <QImage>

namespace Velmar::VideoOverlay {

/// A picture over the video: a file that the operator chose, a screen snip, or the watermark.
/// Its size follows the scaled picture; a picture that would be larger than 3000 x 2000 pixels is
/// replaced by a placeholder that says so.
class XQVIDEOOVERLAY_EXPORT CVideoOverlayImage : public CVideoOverlayElement
{
    Q_OBJECT
    // clang-format off
    /// Path of the picture file.
    Q_PROPERTY(QString imageSrc READ imageSrc WRITE setImageSrc NOTIFY imageSrcChanged)
    /// Width of the picture as loaded [px]; 0 without one.
    Q_PROPERTY(int imageSrcWidth READ imageSrcWidth NOTIFY imageSrcWidthChanged)
    /// Height of the picture as loaded [px]; 0 without one.
    Q_PROPERTY(int imageSrcHeight READ imageSrcHeight NOTIFY imageSrcHeightChanged)
    /// Scale of the picture; 1.0 is its own size.
    Q_PROPERTY(double scaleFactor READ scaleFactor WRITE setScaleFactor NOTIFY scaleFactorChanged)
    // clang-format on

public:
    /// Without a picture, of size 0.
    explicit CVideoOverlayImage(QObject *parent = nullptr);
    ~CVideoOverlayImage() override;

    /// Draws the scaled picture, top left at (0, 0).
    void renderInto(QImage &target) const override;
    RenderedElement getElement() const override;
    ElementParam getAllProperties() const override;
    ElementParam getChangedProperties() const override;

    QString imageSrc() const; ///< path of the picture file, also the caption once set
    /// Loads the picture. A file that cannot be loaded leaves the old picture in place, while path
    /// and caption change. Emits widthChanged and heightChanged as they change, then, loaded or
    /// not, imageSrcChanged, imageSrcWidthChanged and imageSrcHeightChanged; the caption is last.
    void setImageSrc(const QString &path);
    int imageSrcWidth() const;  ///< of the picture as loaded [px]; 0 without a picture
    int imageSrcHeight() const; ///< of the picture as loaded [px]; 0 without a picture
    double scaleFactor() const; ///< 1.0 is the picture's own size
    /// 1.0 is the picture's own size; for what 0, negative or endless factors do see
    /// createScaledImage(). Emits widthChanged and heightChanged as they change, then
    /// scaleFactorChanged.
    void setScaleFactor(double factor);
    /// Takes a picture made elsewhere; path and caption stay. Always emits the three signals of
    /// setImageSrc().
    void setImage(QImage image);

    /// The picture as it is to be drawn: the source, a scaled copy of it, the placeholder where the
    /// scaled size exceeds the limits, or null for a factor that leaves nothing (0, negative, NaN).
    QImage createScaledImage() const;

Q_SIGNALS:
    /// A picture was set or tried.
    void imageSrcChanged();
    /// Comes with imageSrcChanged, also for the same width [px].
    void imageSrcWidthChanged(int width);
    /// Comes with imageSrcChanged, also for the same height [px].
    void imageSrcHeightChanged(int height);
    /// Another scale; width and height follow it already.
    void scaleFactorChanged();

private:
    void announceSource();
    void takeSizeFromScaledImage();

    QString m_imageSrc;
    double m_scaleFactor = 1.0;
    QImage m_sourceImage;
    QImage m_scaledImage;
};

} // namespace Velmar::VideoOverlay
