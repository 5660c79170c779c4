// SPDX-License-Identifier: Apache-2.0
#include "host/piperun/PipeCamera.h"

#include "host/piperun/PipeMath.h"
#include "host/piperun/PipeTexture.h"

#include <algorithm>
#include <cmath>

namespace Velmar::Host {

using namespace PipeMath;

namespace {

constexpr double SightM = 4.6;       ///< nothing is seen beyond
constexpr double BackSightM = 1.9;   ///< the same behind the camera
constexpr double TexelReachM = 0.13; ///< a row of the coarsest level, which is blended in beyond

double within(double value, double limit)
{
    return std::isfinite(value) ? std::clamp(value, -limit, limit) : 0.0;
}

} // namespace

PipeCamera::PipeCamera(const PipeView &view, int width, int height, int margin)
    : m_focal(float(focalLength(width, height)))
    , m_centreX(0.5F * float(width))
    , m_centreY(0.5F * float(height))
{
    const double distance = within(view.distanceM, 100000.0);
    // The sway goes by the way, not by the time.
    const double sway
        = 0.0025 * std::sin(5.1 * distance) + 0.0015 * std::sin(13.7 * distance + 1.0);
    const double heave = 0.0015 * std::sin(7.3 * distance + 2.0);
    const double yaw = (within(view.panDeg, 180.0) + 0.5 * std::sin(4.3 * distance)) * Pi / 180.0;
    const double pitch
        = (within(view.tiltDeg, 90.0) + 0.35 * std::sin(6.1 * distance + 0.7)) * Pi / 180.0;

    constexpr double Ring = PipeTexture::RingMetres;
    m_x = float(sway);
    m_y = float(-0.012 + heave);
    m_z = float(distance - Ring * std::floor(distance / Ring));
    const double cy = std::cos(yaw);
    const double sy = std::sin(yaw);
    const double cp = std::cos(pitch);
    const double sp = std::sin(pitch);
    m_forward[0] = float(sy * cp);
    m_forward[1] = float(sp);
    m_forward[2] = float(cy * cp);
    m_right[0] = float(cy);
    m_right[1] = 0.0F;
    m_right[2] = float(-sy);
    m_up[0] = float(-sy * sp);
    m_up[1] = float(cp);
    m_up[2] = float(-cy * sp);

    // What lies behind is in sight only for a camera that turns so far that a corner shows it.
    const double back = double(m_forward[2])
        - double(std::abs(m_right[2]) * (m_centreX + float(margin))
                 + std::abs(m_up[2]) * (m_centreY + float(margin)))
            / double(m_focal);
    const double behind = back > 0.0 ? 0.0 : BackSightM;
    m_firstMetre = int(std::floor(distance - behind - TexelReachM));
    m_lastMetre = int(std::floor(distance + SightM + TexelReachM));
}

double PipeCamera::focalLength(int width, int height)
{
    return 0.5 * std::max(double(width), height * 16.0 / 9.0);
}

PipeCamera::Hit PipeCamera::cast(double x, double y) const
{
    const float sx = (float(x) - m_centreX) / m_focal;
    const float sy = (m_centreY - float(y)) / m_focal;
    const float length = 1.0F / std::sqrt(1.0F + sx * sx + sy * sy);
    float d[3];
    for (int i = 0; i < 3; ++i)
        d[i] = (m_forward[i] + m_right[i] * sx + m_up[i] * sy) * length;

    constexpr auto Radius = float(RadiusM);
    const float a = std::max(d[0] * d[0] + d[1] * d[1], 1e-9F);
    const float b = m_x * d[0] + m_y * d[1];
    const float c = m_x * m_x + m_y * m_y - Radius * Radius;
    const float t = (-b + std::sqrt(b * b - a * c)) / a;
    const float wallX = m_x + t * d[0];
    const float wallY = m_y + t * d[1];
    const float reach = std::abs(t * d[2]);
    const float sight = float(d[2] < 0.0F ? BackSightM : SightM);
    const float depth = std::copysign(std::min(reach, sight), d[2]);
    const float range = std::min(t, 20.0F);

    // The lamps sit around the lens: the beam follows the view, and what it lights falls off with
    // the distance, less than with its square because the exposure and the wall's gloss help.
    const float beam = 0.36F + 0.64F * std::exp(-1.7F * (sx * sx + sy * sy));
    const float falloff = 1.0F / (1.0F + std::pow(range / 0.85F, 1.9F));
    const float end = 1.0F - ramp(0.55F * sight, sight, reach);
    const float light
        = 1.36F * beam * falloff * (0.15F + 0.85F * end) * (reach >= sight ? 0.6F : 1.0F);

    Hit hit;
    const double turns = double(std::atan2(wallX, wallY)) / (2.0 * Pi);
    hit.angle = std::uint32_t(std::int64_t(turns * 4294967296.0));
    hit.depth
        = std::uint32_t(std::int64_t(double(m_z + depth) / PipeTexture::RingMetres * 4294967296.0));
    hit.light = std::int32_t(65536.0F * light);
    hit.axisDistance = m_focal * std::sqrt(a) / std::max(std::abs(d[2]), 0.05F);
    return hit;
}

} // namespace Velmar::Host
