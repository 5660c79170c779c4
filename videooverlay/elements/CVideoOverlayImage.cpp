// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/CVideoOverlayImage.h"

#include "videooverlay/elements/PictureBound_p.h"

#include <QImageReader>
#include <QMutexLocker>
#include <QPainter>

#include <algorithm>
#include <cmath>

// Needed where the library is linked statically: nothing else would pull the resource in.
// Outside every namespace, as the macro requires.
static void initVideoOverlayResources()
{
    Q_INIT_RESOURCE(videooverlay);
}

namespace Velmar::VideoOverlay {

namespace {

constexpr double maximumScaledHeight = 2000.0; // [px]
constexpr double maximumScaledWidth = 3000.0;  // [px]

/// Null when the file is no picture, or one whose decoded size no device should be asked for.
QImage loadPicture(const QString &path)
{
    if (path.isEmpty()) // no picture chosen: nothing that Qt should warn about
        return QImage();
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true); // a picture under a wrong file name is still a picture
    // The header is enough to refuse a monster; formats that do not tell their size are small ones.
    const QSize size = reader.size();
    const int bitsPerPixel = QImage::toPixelFormat(reader.imageFormat()).bitsPerPixel();
    const qint64 bytesPerPixel = std::max(4, bitsPerPixel / 8); // as much as it takes in use
    // A picture that is stored top-down may tell a negative height, a damaged one none at all.
    const qint64 width = std::abs(qint64(size.width()));
    const qint64 height = std::abs(qint64(size.height()));
    if (isBeyondBound(width, height, bytesPerPixel))
        return QImage();
    return reader.read();
}

QImage placeholder()
{
    initVideoOverlayResources();
    return QImage(QStringLiteral(":/general/image_too_large.png"));
}

/// The usual relative comparison of doubles, written out for 1.
bool isOne(double factor)
{
    return std::abs(factor - 1.0) * 1e12 <= std::min(std::abs(factor), 1.0);
}

} // namespace

CVideoOverlayImage::CVideoOverlayImage(QObject *parent)
    : CVideoOverlayElement(parent)
{
}

CVideoOverlayImage::~CVideoOverlayImage() = default;

void CVideoOverlayImage::renderInto(QImage &target) const
{
    QMutexLocker lock(&m_mutex);
    if (target.isNull() || m_scaledImage.isNull())
        return;
    QPainter painter(&target);
    painter.drawImage(0, 0, m_scaledImage);
}

RenderedElement CVideoOverlayImage::getElement() const
{
    QMutexLocker lock(&m_mutex);
    const RenderedElement base = CVideoOverlayElement::getElement();
    return RenderedElement(base.id(), base.type(), base.x(), base.y(), base.visible(),
                           m_scaledImage);
}

ElementParam CVideoOverlayImage::getAllProperties() const
{
    return CVideoOverlayElement::getAllProperties();
}

ElementParam CVideoOverlayImage::getChangedProperties() const
{
    QMutexLocker lock(&m_mutex);
    ElementParam changed = CVideoOverlayElement::getChangedProperties();
    const ElementParam stored = getParamObject();
    if (stored.value(QStringLiteral("imagePath")).toString() != m_imageSrc)
        changed.insert(QStringLiteral("imagePath"), m_imageSrc);
    if (stored.value(QStringLiteral("scale")).toDouble() != m_scaleFactor)
        changed.insert(QStringLiteral("scale"), m_scaleFactor);
    return changed;
}

QString CVideoOverlayImage::imageSrc() const
{
    QMutexLocker lock(&m_mutex);
    return m_imageSrc;
}

void CVideoOverlayImage::setImageSrc(const QString &path)
{
    const EditLock lock(this);
    if (m_imageSrc == path)
        return;
    m_imageSrc = path;
    const QImage picture = loadPicture(path);
    if (!picture.isNull()) {
        m_sourceImage = picture;
        m_scaledImage = createScaledImage();
        takeSizeFromScaledImage();
    }
    announceSource();
    setCaption(path);
}

int CVideoOverlayImage::imageSrcWidth() const
{
    QMutexLocker lock(&m_mutex);
    return m_sourceImage.width();
}

int CVideoOverlayImage::imageSrcHeight() const
{
    QMutexLocker lock(&m_mutex);
    return m_sourceImage.height();
}

double CVideoOverlayImage::scaleFactor() const
{
    QMutexLocker lock(&m_mutex);
    return m_scaleFactor;
}

void CVideoOverlayImage::setScaleFactor(double factor)
{
    const EditLock lock(this);
    // NaN is not equal to itself, yet giving it twice is no change.
    if (m_scaleFactor == factor || (std::isnan(m_scaleFactor) && std::isnan(factor)))
        return;
    m_scaleFactor = factor;
    m_scaledImage = createScaledImage();
    takeSizeFromScaledImage();
    Q_EMIT scaleFactorChanged();
}

void CVideoOverlayImage::setImage(QImage image)
{
    const EditLock lock(this);
    m_sourceImage = std::move(image);
    m_scaledImage = createScaledImage();
    takeSizeFromScaledImage();
    announceSource();
}

QImage CVideoOverlayImage::createScaledImage() const
{
    QMutexLocker lock(&m_mutex);
    const double width = m_sourceImage.width() * m_scaleFactor;
    const double height = m_sourceImage.height() * m_scaleFactor;
    if (height > maximumScaledHeight || width > maximumScaledWidth)
        return placeholder();
    if (m_sourceImage.isNull() || isOne(m_scaleFactor))
        return m_sourceImage;
    if (!(width >= 1.0 && height >= 1.0)) // also NaN: never converted to int
        return QImage();
    // Scaled premultiplied: the colour under transparent pixels must not darken the edges.
    const bool translucent = m_sourceImage.hasAlphaChannel();
    const QImage source = translucent
        ? m_sourceImage.convertToFormat(QImage::Format_ARGB32_Premultiplied)
        : m_sourceImage;
    const QImage scaled
        = source.scaled(int(width), int(height), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return translucent ? scaled.convertToFormat(QImage::Format_ARGB32) : scaled;
}

void CVideoOverlayImage::announceSource()
{
    Q_EMIT imageSrcChanged();
    Q_EMIT imageSrcWidthChanged(m_sourceImage.width());
    Q_EMIT imageSrcHeightChanged(m_sourceImage.height());
}

void CVideoOverlayImage::takeSizeFromScaledImage()
{
    setWidth(m_scaledImage.width());
    setHeight(m_scaledImage.height());
}

} // namespace Velmar::VideoOverlay
