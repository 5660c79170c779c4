// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/burn/PlanarFrame.h"
#include "host/display/OverlaySnapshot.h"

#include <QRect>
#include <QSize>

#include <cstdint>
#include <vector>

namespace Velmar::Host {

/// The part of @p item that shows on a picture of @p frame pixels inside @p clip (null:
/// everywhere), in pixels of the picture. Empty where nothing shows.
QRect visibleRect(const OverlayItem &item, const QRect &clip, QSize frame);

/// One overlay picture as planes with alpha, ready to be blended into frames of one kind: luma per
/// pixel, chroma on the frame's grid of 2 x 2 pixels. Preparing costs a conversion, blending next
/// to nothing, and most pictures are blended into many frames.
class OverlayPlanes
{
public:
    /// All that the planes depend on. The same form can be blended at any place of the same parity.
    struct Form
    {
        quint64 revision = 0;    ///< of the item
        QRect part;              ///< of the item's picture that shows [px of the picture]
        int oddX = 0;            ///< 1 when the part starts in the right column of a chroma sample
        int oddY = 0;            ///< 1 when it starts in the lower row of one
        bool frameEndsX = false; ///< the part ends at the frame's right edge
        bool frameEndsY = false; ///< the part ends at the frame's bottom edge
        int opacity = 255;       ///< 0 to 255
        PlanarFrame::Layout layout = PlanarFrame::Layout::I420;
        PlanarFrame::Matrix matrix = PlanarFrame::Matrix::Bt709;
        PlanarFrame::Range range = PlanarFrame::Range::Limited;

        bool operator==(const Form &other) const;
    };

    /// What blending @p item at @p visible into @p frame needs.
    static Form formFor(const OverlayItem &item, const QRect &visible, const PlanarFrame &frame);

    /// Working memory of a conversion; one for all conversions of a thread.
    using Scratch = std::vector<std::uint8_t>;

    /// Converts @p image; of a picture that comes in place of
    /// another one only what differs, which mostly is a digit or two.
    void prepare(const QImage &image, const Form &form, Scratch &scratch);
    const Form &form() const;

    /// Blends the prepared part into @p frame with its top-left corner at @p topLeft, which has the
    /// parity of the form. Every part of it lies inside the frame.
    void blend(const PlanarFrame &frame, QPoint topLeft) const;

private:
    /// Chroma rows that are blended in one go: the smallest box around what is not transparent, and
    /// in it the columns that are opaque from top to bottom and need no blending, only copying.
    /// All numbers count chroma samples; ends are exclusive.
    struct Band
    {
        int top = 0;
        int bottom = 0;
        int left = 0;
        int right = 0;
        int opaqueLeft = 0; ///< equals opaqueRight where nothing is opaque
        int opaqueRight = 0;
    };

    void allocate();
    QRect partInPlanes() const;
    QRect changedRect(const QImage &image, const Form &form, bool opaque) const;
    void convertLuma(const QRect &area);
    void padAlpha();
    void copyPadded(const QRect &area, std::uint8_t *padded, int stride) const;
    void convertChroma(const QRect &area, Scratch &scratch);
    void applyOpacity(const QRect &area);
    void findBands();
    Band bandOfRow(int row) const;
    void blendColumns(const PlanarFrame &frame, QPoint origin, const Band &band, int left,
                      int right) const;
    void copyColumns(const PlanarFrame &frame, QPoint origin, const Band &band, int left,
                     int right) const;

    Form m_form;
    QImage m_image;                     ///< what the planes were made of
    bool m_opaque = false;              ///< the part of it that shows is, before opacity
    QSize m_chromaSize;                 ///< [samples]; the luma planes are twice as wide and high
    int m_stride = 0;                   ///< of the luma planes [bytes]
    int m_chromaStride = 0;             ///< of the chroma planes [bytes]
    std::vector<std::uint8_t> m_memory; ///< of the planes below
    std::uint8_t *m_luma = nullptr;
    std::uint8_t *m_alpha = nullptr;
    std::uint8_t *m_chroma[2] = {nullptr, nullptr}; ///< U and V; for NV12 the first holds both
    std::uint8_t *m_chromaAlpha = nullptr;          ///< for NV12 once for U and once for V
    std::vector<Band> m_bands;
};

} // namespace Velmar::Host
