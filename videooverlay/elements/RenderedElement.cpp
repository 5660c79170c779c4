// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/elements/RenderedElement.h"

#include "videooverlay/elements/CVideoOverlayElement.h"

namespace Velmar::VideoOverlay {

RenderedElement::RenderedElement()
    : m_id(-1)
    , m_type(CVideoOverlayElement::Invalid)
    , m_x(0.0)
    , m_y(0.0)
    , m_visible(false)
    , m_repaint(false)
{
}

RenderedElement::RenderedElement(int id, int type, double x, double y, bool visible,
                                 const QImage &image)
    : m_id(id)
    , m_type(type)
    , m_x(x)
    , m_y(y)
    , m_visible(visible)
    , m_repaint(true)
    , m_image(image)
{
}

int RenderedElement::id() const
{
    return m_id;
}

int RenderedElement::type() const
{
    return m_type;
}

double RenderedElement::x() const
{
    return m_x;
}

double RenderedElement::y() const
{
    return m_y;
}

bool RenderedElement::visible() const
{
    return m_visible;
}

bool RenderedElement::repaint() const
{
    return m_repaint;
}

void RenderedElement::repaint(bool repaint)
{
    m_repaint = repaint;
}

QImage RenderedElement::getImage() const
{
    return m_image;
}

} // namespace Velmar::VideoOverlay
