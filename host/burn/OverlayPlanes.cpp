// SPDX-License-Identifier: Apache-2.0
#include "host/burn/OverlayPlanes.h"

#include "host/burn/ColorRows.h"

#include <libyuv/planar_functions.h>
#include <libyuv/scale_argb.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace Velmar::Host {

namespace {

/// Rows of planes start at multiples of this, which suits every vector unit.
constexpr int alignment = 32;

/// Two bands become one when that blends at most so many transparent chroma samples more: a call
/// costs about as much as they do.
constexpr int samplesPerCall = 64;

/// Chroma samples that any row function of libyuv takes at once, and more.
constexpr int samplesPerVector = 16;

int aligned(int bytes)
{
    return (bytes + alignment - 1) / alignment * alignment;
}

bool isOpaque(const QImage &image, const QRect &part)
{
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const auto *pixels = reinterpret_cast<const QRgb *>(image.constScanLine(y)) + part.x();
        QRgb all = 0xff000000; // no early end within a row: so the loop runs on vectors
        for (int x = 0; x < part.width(); ++x)
            all &= pixels[x];
        if (all != 0xff000000)
            return false;
    }
    return true;
}

void multiplyRow(std::uint8_t *values, int count, int factor)
{
    for (int i = 0; i < count; ++i)
        values[i] = std::uint8_t((values[i] * factor + 127) / 255);
}

} // namespace

QRect visibleRect(const OverlayItem &item, const QRect &clip, QSize frame)
{
    if (item.opacity <= 0)
        return QRect();
    const QRect visible = QRect(item.position, item.image.size()) & QRect(QPoint(0, 0), frame);
    return clip.isNull() ? visible : visible & clip;
}

bool OverlayPlanes::Form::operator==(const Form &other) const
{
    return revision == other.revision && part == other.part && oddX == other.oddX
        && oddY == other.oddY && frameEndsX == other.frameEndsX && frameEndsY == other.frameEndsY
        && opacity == other.opacity && layout == other.layout && matrix == other.matrix
        && range == other.range;
}

OverlayPlanes::Form OverlayPlanes::formFor(const OverlayItem &item, const QRect &visible,
                                           const PlanarFrame &frame)
{
    Form form;
    form.revision = item.revision;
    form.part = visible.translated(-item.position);
    form.oddX = visible.x() & 1;
    form.oddY = visible.y() & 1;
    form.frameEndsX = (frame.width & 1) && visible.right() == frame.width - 1;
    form.frameEndsY = (frame.height & 1) && visible.bottom() == frame.height - 1;
    form.opacity = std::min(item.opacity, 255);
    form.layout = frame.layout;
    form.matrix = frame.matrix;
    form.range = frame.range;
    return form;
}

const OverlayPlanes::Form &OverlayPlanes::form() const
{
    return m_form;
}

void OverlayPlanes::prepare(const QImage &image, const Form &form, Scratch &scratch)
{
    QImage straight = image.convertToFormat(QImage::Format_ARGB32); // mostly it is already
    const bool opaque = isOpaque(straight, form.part);
    const QRect changed = changedRect(straight, form, opaque);
    m_form = form;
    m_opaque = opaque;
    m_image = std::move(straight);
    if (changed.isEmpty())
        return;
    allocate();
    convertLuma(changed);
    padAlpha();
    convertChroma(changed, scratch);
    applyOpacity(changed);
    findBands();
}

/// Where the planes hold the part; around it is padding up to the chroma grid.
QRect OverlayPlanes::partInPlanes() const
{
    return QRect(QPoint(m_form.oddX, m_form.oddY), m_form.part.size());
}

/// What must be converted for @p image [px of the planes]: whole chroma samples, or nothing.
QRect OverlayPlanes::changedRect(const QImage &image, const Form &form, bool opaque) const
{
    const QRect &part = form.part;
    const QRect all(0, 0, (form.oddX + part.width() + 1) / 2 * 2,
                    (form.oddY + part.height() + 1) / 2 * 2);
    Form sameRevision = form;
    sameRevision.revision = m_form.revision;
    if (m_image.size() != image.size() || opaque != m_opaque || !(sameRevision == m_form))
        return all;

    const auto row = [&part](const QImage &image, int y) {
        return reinterpret_cast<const QRgb *>(image.constScanLine(part.y() + y)) + part.x();
    };
    int left = part.width();
    int right = 0; // exclusive, like bottom
    int top = part.height();
    int bottom = 0;
    for (int y = 0; y < part.height(); ++y) {
        const QRgb *before = row(m_image, y);
        const QRgb *after = row(image, y);
        const auto differ = [before, after](int from, int to) {
            return std::memcmp(before + from, after + from, size_t(to - from) * sizeof(QRgb)) != 0;
        };
        if (!differ(0, part.width()))
            continue;
        top = std::min(top, y);
        bottom = y + 1;
        // Pixel by pixel only where that widens the rectangle.
        if (differ(0, left))
            left = int(std::mismatch(before, before + left, after).first - before);
        if (differ(right, part.width())) {
            int end = part.width();
            while (before[end - 1] == after[end - 1])
                --end;
            right = end;
        }
    }
    if (top >= bottom)
        return QRect();
    const QPoint first((form.oddX + left) / 2 * 2, (form.oddY + top) / 2 * 2);
    const QPoint end((form.oddX + right + 1) / 2 * 2, (form.oddY + bottom + 1) / 2 * 2);
    return QRect(first, end - QPoint(1, 1));
}

void OverlayPlanes::allocate()
{
    m_chromaSize = QSize((m_form.oddX + m_form.part.width() + 1) / 2,
                         (m_form.oddY + m_form.part.height() + 1) / 2);
    const bool interleaved = m_form.layout == PlanarFrame::Layout::NV12;
    m_stride = aligned(m_chromaSize.width() * 2);
    m_chromaStride = interleaved ? m_stride : aligned(m_chromaSize.width());

    const size_t luma = size_t(m_stride) * size_t(m_chromaSize.height()) * 2;
    const size_t chroma = size_t(m_chromaStride) * size_t(m_chromaSize.height());
    m_memory.resize(2 * luma + 3 * chroma);
    m_luma = m_memory.data();
    m_alpha = m_luma + luma;
    m_chroma[0] = m_alpha + luma;
    m_chroma[1] = m_chroma[0] + chroma;
    m_chromaAlpha = m_chroma[1] + chroma;
}

void OverlayPlanes::convertLuma(const QRect &area)
{
    const ColorRows::Weights &weights = ColorRows::weightsFor(m_form.matrix, m_form.range);
    const QRect inside = area & partInPlanes();
    const QPoint from = inside.topLeft() - partInPlanes().topLeft() + m_form.part.topLeft();
    const std::uint8_t *pixels = m_image.constScanLine(from.y()) + from.x() * 4;
    const int stride = m_image.bytesPerLine();
    const int offset = inside.y() * m_stride + inside.x();
    for (int y = 0; y < inside.height(); ++y)
        ColorRows::convertLuma(pixels + y * stride, m_luma + offset + y * m_stride, inside.width(),
                               weights);
    libyuv::ARGBExtractAlpha(pixels, stride, m_alpha + offset, m_stride, inside.width(),
                             inside.height());
}

/// What lies beside the part, up to the chroma grid, is transparent. Only at the edge of a frame
/// with an odd number of pixels the part is continued, for nothing lies beside it there.
void OverlayPlanes::padAlpha()
{
    const QRect part = partInPlanes();
    const int width = m_chromaSize.width() * 2;
    const int height = m_chromaSize.height() * 2;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        std::uint8_t *row = m_alpha + y * m_stride;
        if (part.left() > 0)
            row[0] = 0;
        if (part.right() + 1 < width)
            row[width - 1] = m_form.frameEndsX ? row[width - 2] : 0;
    }
    if (part.top() > 0)
        std::memset(m_alpha, 0, size_t(width));
    if (part.bottom() + 1 < height) {
        std::uint8_t *last = m_alpha + (height - 1) * m_stride;
        if (m_form.frameEndsY)
            std::memcpy(last, last - m_stride, size_t(width));
        else
            std::memset(last, 0, size_t(width));
    }
}

/// Copies an area of the picture to @p padded and pads it up to the chroma grid.
void OverlayPlanes::copyPadded(const QRect &area, std::uint8_t *padded, int stride) const
{
    const int width = area.width();
    const int height = area.height();
    const QRect part = partInPlanes() & area;
    const QPoint from = part.topLeft() - partInPlanes().topLeft() + m_form.part.topLeft();
    const QRect inside = part.translated(-area.topLeft());
    const bool opaque = m_opaque;
    libyuv::ARGBCopy(m_image.constScanLine(from.y()) + from.x() * 4, m_image.bytesPerLine(),
                     padded + inside.y() * stride + inside.x() * 4, stride, inside.width(),
                     inside.height());

    const auto pad
        = [opaque](std::uint8_t *to, const std::uint8_t *from, int count, bool frameEnds) {
              if (opaque || frameEnds)
                  std::memcpy(to, from, size_t(count) * 4);
              else
                  std::memset(to, 0, size_t(count) * 4);
              for (int i = 0; opaque && !frameEnds && i < count; ++i)
                  to[4 * i + 3] = 0;
          };
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        std::uint8_t *row = padded + y * stride;
        if (inside.left() > 0)
            pad(row, row + 4, 1, false);
        if (inside.right() + 1 < width)
            pad(row + (width - 1) * 4, row + (width - 2) * 4, 1, m_form.frameEndsX);
    }
    if (inside.top() > 0)
        pad(padded, padded + stride, width, false);
    if (inside.bottom() + 1 < height)
        pad(padded + (height - 1) * stride, padded + (height - 2) * stride, width,
            m_form.frameEndsY);
}

/// Averages 2 x 2 pixels, each with the weight of its alpha: the colour of a transparent pixel (the
/// ground of a text is green) must not tint its neighbours.
void OverlayPlanes::convertChroma(const QRect &area, Scratch &scratch)
{
    const int width = area.width();
    const int height = area.height();
    const int columns = width / 2;
    const int rows = height / 2;
    // libyuv rounds another way in the columns that do not fill a vector, so there are none: the
    // same picture gives the same planes, whatever was shown before.
    const int halfWidth = (columns + samplesPerVector - 1) / samplesPerVector * samplesPerVector;
    const int stride = halfWidth * 2 * 4;
    const int halfStride = halfWidth * 4;
    const int planeStride = aligned(columns);
    const size_t full = size_t(stride) * size_t(height);
    const size_t half = size_t(halfStride) * size_t(rows);
    const size_t plane = size_t(planeStride) * size_t(rows);
    if (scratch.size() < full + half + 3 * plane)
        scratch.resize(full + half + 3 * plane);
    std::uint8_t *const padded = scratch.data();
    std::uint8_t *const averaged = padded + full;

    copyPadded(area, padded, stride);
    // Multiplied by alpha, averaged, divided again. Where everything is opaque the plain average is
    // the same thing, as long as the padding has the colour of its neighbours. Everything: decided
    // by the changed area alone, the rounding would depend on what was shown before.
    const bool opaque = m_opaque;
    if (!opaque)
        libyuv::ARGBAttenuate(padded, stride, padded, stride, halfWidth * 2, height);
    libyuv::ARGBScale(padded, stride, halfWidth * 2, height, averaged, halfStride, halfWidth, rows,
                      libyuv::kFilterBox);
    if (!opaque)
        libyuv::ARGBUnattenuate(averaged, halfStride, averaged, halfStride, halfWidth, rows);

    const bool interleaved = m_form.layout == PlanarFrame::Layout::NV12;
    const int bytes = interleaved ? 2 : 1;
    const int offset = area.y() / 2 * m_chromaStride + area.x() / 2 * bytes;
    std::uint8_t *const u = interleaved ? averaged + half : m_chroma[0] + offset;
    std::uint8_t *const v = interleaved ? u + plane : m_chroma[1] + offset;
    std::uint8_t *const alpha = interleaved ? v + plane : m_chromaAlpha + offset;
    const int uvStride = interleaved ? planeStride : m_chromaStride;
    const ColorRows::Weights &weights = ColorRows::weightsFor(m_form.matrix, m_form.range);
    for (int y = 0; y < rows; ++y)
        ColorRows::convertChroma(averaged + y * halfStride, u + y * uvStride, v + y * uvStride,
                                 columns, weights);
    libyuv::ARGBExtractAlpha(averaged, halfStride, alpha, uvStride, columns, rows);
    if (interleaved) {
        libyuv::MergeUVPlane(u, uvStride, v, uvStride, m_chroma[0] + offset, m_chromaStride,
                             columns, rows);
        libyuv::MergeUVPlane(alpha, uvStride, alpha, uvStride, m_chromaAlpha + offset,
                             m_chromaStride, columns, rows);
    }
}

void OverlayPlanes::applyOpacity(const QRect &area)
{
    if (m_form.opacity >= 255)
        return;
    for (int y = area.top(); y <= area.bottom(); ++y)
        multiplyRow(m_alpha + y * m_stride + area.x(), area.width(), m_form.opacity);
    const int bytes = m_form.layout == PlanarFrame::Layout::NV12 ? 2 : 1;
    for (int y = area.top() / 2; y <= area.bottom() / 2; ++y)
        multiplyRow(m_chromaAlpha + y * m_chromaStride + area.x() / 2 * bytes,
                    area.width() / 2 * bytes, m_form.opacity);
}

OverlayPlanes::Band OverlayPlanes::bandOfRow(int row) const
{
    // One chroma sample of the row as the four luma alphas that it covers: two from each of two
    // rows.
    const std::uint8_t *upper = m_alpha + 2 * row * m_stride;
    const std::uint8_t *lower = upper + m_stride;
    const auto both = [upper, lower](int sample, auto combine) {
        std::uint16_t above;
        std::uint16_t below;
        std::memcpy(&above, upper + 2 * sample, 2);
        std::memcpy(&below, lower + 2 * sample, 2);
        return combine(above, below);
    };
    const auto fourOf = [upper, lower](int sample, std::uint64_t *above, std::uint64_t *below) {
        std::memcpy(above, upper + 2 * sample, 8);
        std::memcpy(below, lower + 2 * sample, 8);
    };
    const auto visible = [&](int sample) {
        return both(sample, [](std::uint16_t a, std::uint16_t b) { return (a | b) != 0; });
    };
    const auto opaque = [&](int sample) {
        return both(sample, [](std::uint16_t a, std::uint16_t b) { return (a & b) == 0xffff; });
    };

    Band band;
    band.top = row;
    band.bottom = row + 1;
    int left = 0;
    int right = m_chromaSize.width();
    while (left < right && !visible(left))
        ++left;
    while (right > left && !visible(right - 1))
        --right;
    band.left = left;
    band.right = right;

    while (left < right && !opaque(left))
        ++left;
    int end = left;
    while (end + 4 <= right) {
        std::uint64_t above;
        std::uint64_t below;
        fourOf(end, &above, &below);
        if ((above & below) != ~std::uint64_t(0))
            break;
        end += 4;
    }
    while (end < right && opaque(end))
        ++end;
    // Two calls more pay off for a long run only.
    if (end - left > samplesPerCall) {
        band.opaqueLeft = left;
        band.opaqueRight = end;
    }
    return band;
}

void OverlayPlanes::findBands()
{
    m_bands.clear();
    for (int row = 0; row < m_chromaSize.height(); ++row) {
        const Band next = bandOfRow(row);
        if (next.left == next.right)
            continue;
        if (!m_bands.empty()) {
            Band &last = m_bands.back();
            const int left = std::min(last.left, next.left);
            const int right = std::max(last.right, next.right);
            const int more = (right - left) * (next.bottom - last.top)
                - (last.right - last.left) * (last.bottom - last.top) - (next.right - next.left);
            if (last.opaqueLeft == next.opaqueLeft && last.opaqueRight == next.opaqueRight
                && more <= samplesPerCall) {
                last.bottom = next.bottom;
                last.left = left;
                last.right = right;
                continue;
            }
        }
        m_bands.push_back(next);
    }
}

void OverlayPlanes::blend(const PlanarFrame &frame, QPoint topLeft) const
{
    const QPoint origin = topLeft - QPoint(m_form.oddX, m_form.oddY);
    for (const Band &band : m_bands) {
        if (band.opaqueLeft == band.opaqueRight) {
            blendColumns(frame, origin, band, band.left, band.right);
            continue;
        }
        blendColumns(frame, origin, band, band.left, band.opaqueLeft);
        copyColumns(frame, origin, band, band.opaqueLeft, band.opaqueRight);
        blendColumns(frame, origin, band, band.opaqueRight, band.right);
    }
}

// BlendPlane rounds so that alpha 255 gives exactly the overlay and alpha 0 exactly the frame.
void OverlayPlanes::blendColumns(const PlanarFrame &frame, QPoint origin, const Band &band,
                                 int left, int right) const
{
    if (left == right)
        return;
    // Luma of the padding is not there in a frame with an odd size.
    const QRect luma = partInPlanes()
        & QRect(2 * left, 2 * band.top, 2 * (right - left), 2 * (band.bottom - band.top));
    const int from = luma.y() * m_stride + luma.x();
    std::uint8_t *to
        = frame.planes[0] + (origin.y() + luma.y()) * frame.strides[0] + origin.x() + luma.x();
    libyuv::BlendPlane(m_luma + from, m_stride, to, frame.strides[0], m_alpha + from, m_stride, to,
                       frame.strides[0], luma.width(), luma.height());

    const bool interleaved = m_form.layout == PlanarFrame::Layout::NV12;
    const int bytes = interleaved ? 2 : 1;
    const int chromaFrom = band.top * m_chromaStride + left * bytes;
    for (int plane = 0; plane < (interleaved ? 1 : 2); ++plane) {
        const int stride = frame.strides[plane + 1];
        std::uint8_t *chroma = frame.planes[plane + 1] + (origin.y() / 2 + band.top) * stride
            + (origin.x() / 2 + left) * bytes;
        libyuv::BlendPlane(m_chroma[plane] + chromaFrom, m_chromaStride, chroma, stride,
                           m_chromaAlpha + chromaFrom, m_chromaStride, chroma, stride,
                           (right - left) * bytes, band.bottom - band.top);
    }
}

void OverlayPlanes::copyColumns(const PlanarFrame &frame, QPoint origin, const Band &band, int left,
                                int right) const
{
    const QRect luma = partInPlanes()
        & QRect(2 * left, 2 * band.top, 2 * (right - left), 2 * (band.bottom - band.top));
    libyuv::CopyPlane(m_luma + luma.y() * m_stride + luma.x(), m_stride,
                      frame.planes[0] + (origin.y() + luma.y()) * frame.strides[0] + origin.x()
                          + luma.x(),
                      frame.strides[0], luma.width(), luma.height());

    const bool interleaved = m_form.layout == PlanarFrame::Layout::NV12;
    const int bytes = interleaved ? 2 : 1;
    for (int plane = 0; plane < (interleaved ? 1 : 2); ++plane) {
        const int stride = frame.strides[plane + 1];
        libyuv::CopyPlane(m_chroma[plane] + band.top * m_chromaStride + left * bytes,
                          m_chromaStride,
                          frame.planes[plane + 1] + (origin.y() / 2 + band.top) * stride
                              + (origin.x() / 2 + left) * bytes,
                          stride, (right - left) * bytes, band.bottom - band.top);
    }
}

} // namespace Velmar::Host
