// SPDX-License-Identifier: Apache-2.0
#include "host/piperun/PipeRunRenderer.h"

namespace Velmar::Host {

PipeRunRenderer::PipeRunRenderer(quint32 seed)
    : m_texture(seed)
    , m_rasteriser(seed)
{
}

double PipeRunRenderer::focalLength(int width, int height)
{
    return PipeCamera::focalLength(width, height);
}

PipeRunRenderer::Lateral PipeRunRenderer::lateralIn(quint32 seed, int metre)
{
    return PipeLateral::in(seed, metre);
}

void PipeRunRenderer::render(const PlanarFrame &frame, const View &view)
{
    if (frame.width <= 0 || frame.height <= 0)
        return;
    const PipeCamera camera(view, frame.width, frame.height, PipeRasteriser::BlockSize);
    m_texture.prepare(camera.firstMetre(), camera.lastMetre());
    m_rasteriser.draw(frame, camera, m_texture, view.timeS);
}

} // namespace Velmar::Host
