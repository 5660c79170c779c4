// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <cstdint>

/// What the parts of the drawn pipe reckon with. Angles of the wall are counted in turns, clockwise
/// from the top, seen in driving direction.
namespace Velmar::Host::PipeMath {

constexpr double Pi = 3.14159265358979323846;
constexpr double RadiusM = 0.15; ///< of the pipe

inline std::uint32_t hash(std::uint32_t value)
{
    value ^= value >> 16;
    value *= 0x7feb352dU;
    value ^= value >> 15;
    value *= 0x846ca68bU;
    value ^= value >> 16;
    return value;
}

inline std::uint32_t hash(std::uint32_t a, std::uint32_t b, std::uint32_t c)
{
    return hash(a + 0x9e3779b9U * hash(b + 0x85ebca6bU * hash(c)));
}

/// What everything random is drawn from. Neighbouring seeds give unrelated pipes.
inline std::uint32_t keyOf(quint32 seed)
{
    return hash(seed + 0x51ed270bU);
}

/// 0 to 1.
inline float random(std::uint32_t a, std::uint32_t b, std::uint32_t c)
{
    return float(hash(a, b, c) >> 8) / float(1 << 24);
}

inline float smooth(float t)
{
    return t * t * (3.0F - 2.0F * t);
}

/// 0 below @p from, 1 above @p to.
inline float ramp(float from, float to, float value)
{
    return smooth(std::clamp((value - from) / (to - from), 0.0F, 1.0F));
}

/// Shortest way between two angles [turns], -0.5 to 0.5.
inline float turnsBetween(float a, float b)
{
    const float d = a - b;
    return d - std::floor(d + 0.5F);
}

inline std::uint8_t toByte(float value)
{
    return std::uint8_t(std::clamp(value, 0.0F, 255.0F));
}

} // namespace Velmar::Host::PipeMath
