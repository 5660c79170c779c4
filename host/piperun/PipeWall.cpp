// SPDX-License-Identifier: Apache-2.0
#include "host/piperun/PipeWall.h"

#include "host/piperun/PipeMath.h"

#include <algorithm>
#include <cmath>

namespace Velmar::Host {

using namespace PipeMath;

namespace {

/// One place on the wall and the noise there.
struct Spot
{
    float turns;
    float along;    ///< [m] from the beginning of its metre
    float joint;    ///< [m] from the nearest joint, which may lie before or behind
    float fromSole; ///< [turns] signed
    float height;   ///< [turns] the same without sign
    float cloud;
    float patch;
    float streak;
    float pore;
    float frayed;
};

Texel bareWall(const Spot &at, float tone)
{
    Texel texel {142.0F + tone + 15.0F * at.cloud + 13.0F * at.patch + 9.0F * at.streak
                     + 13.0F * at.pore + 7.0F * at.frayed,
                 -8.0F - 2.0F * at.cloud, 6.0F + 2.0F * at.patch};
    texel.luma -= 30.0F * ramp(0.62F, 1.05F, -at.pore - 0.25F * at.frayed);
    // Stains where the pattern of patches is strongest.
    texel.mix(0.50F * ramp(0.20F, 0.85F, at.patch + 0.5F * at.cloud + 0.18F * at.frayed),
              84.0F + 12.0F * at.pore, -15.0F, 10.0F);
    return texel;
}

/// Higher water has left a dark, slimy band with a pale line on top.
void paintSole(Texel &texel, const Spot &at)
{
    const float line = 0.135F + 0.012F * at.patch + 0.006F * at.frayed;
    texel.mix(0.55F * (1.0F - ramp(line - 0.05F, line, at.height)), 84.0F + 18.0F * at.streak,
              -17.0F, 5.0F);
    texel.mix(0.35F * ramp(0.010F, 0.002F, std::abs(at.height - line)), 205.0F, -6.0F, 4.0F);
}

/// A shadowed gap between two lit edges.
void paintJoint(Texel &texel, const Spot &at, bool gapes)
{
    const float gap = gapes && turnsBetween(at.turns, 0.15F) > 0.0F ? 0.016F : 0.009F;
    const float distance = std::abs(at.joint + 0.0012F * at.frayed);
    if (distance >= 0.06F)
        return;
    texel.mix(0.30F * ramp(0.06F, 0.03F, distance), 110.0F, -14.0F, 8.0F);
    texel.mix(0.75F * ramp(gap + 0.016F, gap + 0.006F, distance), 222.0F, -5.0F, 4.0F);
    texel.mix(0.94F * ramp(gap + 0.003F, gap - 0.001F, distance), 24.0F, -4.0F, 4.0F);
}

/// Lime that has run out of the joint and down the wall.
void paintLime(Texel &texel, const Spot &at, float turns, float width)
{
    const float across
        = std::abs(turnsBetween(at.turns, turns)) / (width * (1.0F + 0.4F * at.streak));
    const float along
        = std::abs(at.joint) / std::max(0.01F, 0.07F + 0.05F * at.frayed + 0.03F * at.patch);
    const float amount = 1.0F - ramp(0.5F, 1.0F, std::max(across, along));
    texel.mix(0.80F * amount, 226.0F + 14.0F * at.pore, -5.0F, 3.0F);
}

/// Thin dark threads that hang out of the joint.
void paintRoots(Texel &texel, const Spot &at, float turns)
{
    const float across = turnsBetween(at.turns, turns);
    const float length = 0.16F * (1.0F - 120.0F * across * across);
    if (length <= 0.01F)
        return;
    const float thread = std::abs(at.streak + 0.35F * at.frayed);
    const float amount
        = ramp(length, 0.4F * length, std::abs(at.joint)) * ramp(0.30F, 0.10F, thread);
    texel.mix(0.85F * amount, 48.0F + 40.0F * ramp(0.05F, 0.0F, thread), -15.0F, 12.0F);
}

struct Crack
{
    float turns;
    float from; ///< [share of the metre]
    float to;
};

/// A crack wanders along the pipe; @p wander is -1 to 1.
void paintCrack(Texel &texel, const Spot &at, const Crack &crack, float wander)
{
    if (at.along <= crack.from || at.along >= crack.to)
        return;
    const float taper = ramp(crack.from, crack.from + 0.08F, at.along)
        * ramp(crack.to, crack.to - 0.08F, at.along);
    const float centre = crack.turns + 0.030F * wander + 0.004F * at.frayed;
    const float off = std::abs(turnsBetween(at.turns, centre));
    const float width = std::max(1e-6F, 0.0035F * taper);
    texel.mix(0.35F * ramp(5.0F * width, width, off), 96.0F, -12.0F, 8.0F);
    texel.mix(0.90F * ramp(width, 0.4F * width, off), 22.0F, -4.0F, 4.0F);
}

/// A cut edge around a dark bore whose far wall still gets some light. The lateral's centre is at
/// @p centreTurns and @p centreAlong, as a spot counts them.
void paintLateral(Texel &texel, const Spot &at, float centreTurns, float centreAlong, float radius)
{
    const float x = turnsBetween(at.turns, centreTurns) * float(2.0 * Pi * RadiusM);
    const float y = at.along - centreAlong;
    const float r = std::sqrt(x * x + y * y) / radius + 0.02F * at.frayed;
    texel.mix(0.7F * ramp(1.40F, 1.12F, r), 100.0F + 20.0F * at.patch, -14.0F, 9.0F);
    texel.mix(ramp(1.16F, 1.11F, r), 205.0F + 20.0F * at.pore, -7.0F, 6.0F);
    const float far = ramp(0.1F, 1.0F, y / radius) * ramp(0.3F, 0.95F, r);
    texel.mix(ramp(1.04F, 0.98F, r), 10.0F + 95.0F * far + 10.0F * far * at.patch,
              -3.0F - 8.0F * far, 3.0F + 6.0F * far);

    // What drips out of it has stained the wall below.
    const bool sameSide = (at.fromSole > 0.0F) == (centreTurns > 0.5F);
    const float below = at.fromSole > 0.0F ? turnsBetween(centreTurns, at.turns)
                                           : turnsBetween(at.turns, centreTurns);
    if (r > 1.1F && sameSide && below > 0.0F) {
        const float wet = ramp(0.05F, 0.02F, std::abs(y) + 0.012F * at.streak);
        texel.mix(0.5F * wet, 78.0F + 25.0F * at.streak, -18.0F, 10.0F);
    }
}

/// The water reaches up to @p edge [turns] from the middle of the sole.
void paintFlow(Texel &texel, const Spot &at, float edge)
{
    const float wet = ramp(edge + 0.002F, edge - 0.002F, at.height);
    const float bank = ramp(0.008F, 0.001F, std::abs(at.height - edge));
    texel.mix(0.90F * wet, 44.0F + 9.0F * at.cloud + 5.0F * at.streak, -8.0F, 2.0F);
    texel.mix(0.5F * bank, 150.0F, -7.0F, 4.0F);
}

} // namespace

PipeLateral PipeLateral::in(quint32 seed, int metre)
{
    PipeLateral lateral;
    const std::uint32_t key = keyOf(seed);
    // Every fifth to seventh metre, never in the first.
    if (metre < 1 || hash(key, std::uint32_t(metre / 6), 61) % 6 != std::uint32_t(metre % 6))
        return lateral;
    lateral.exists = true;
    lateral.distanceM = metre + 0.40 + 0.2 * double(random(key, std::uint32_t(metre), 62));
    lateral.clockHours = hash(key, std::uint32_t(metre), 63) % 2 == 0 ? 2.0 : 10.0;
    lateral.radiusM = 0.06 + 0.015 * double(random(key, std::uint32_t(metre), 64));
    return lateral;
}

PipeWall::Defects::Defects(std::uint32_t key, int metre)
{
    const auto place = std::uint32_t(metre);
    crack = random(key, place, 11) < 0.30F;
    crackTurns = 0.6F + 0.8F * random(key, place, 12);
    crackFrom = 0.1F + 0.4F * random(key, place, 13);
    crackTo = crackFrom + 0.15F + 0.3F * random(key, place, 14);
    roots = random(key, place, 21) < 0.22F;
    rootsTurns = 0.75F + 0.5F * random(key, place, 22);
    deposit = random(key, place, 31) < 0.5F;
    depositTurns = 0.7F + 0.6F * random(key, place, 32);
    depositWidth = 0.03F + 0.09F * random(key, place, 33);
    offset = random(key, place, 41) < 0.2F;
    tone = 12.0F * (random(key, place, 51) - 0.5F);
}

PipeWall::PipeWall(quint32 seed, int metre, int columns)
    : m_metre(metre)
    , m_columns(columns)
    , m_here(keyOf(seed), metre)
    , m_next(keyOf(seed), metre + 1)
    , m_lateral(PipeLateral::in(seed, metre))
    , m_clouds(keyOf(seed) + 11, 6, 3, columns)
    , m_patches(keyOf(seed) + 12, 20, 14, columns)
    , m_streaks(keyOf(seed) + 13, 96, 4, columns)
    , m_pores(keyOf(seed) + 14, 240, 230, columns)
    , m_edge(keyOf(seed) + 15, 2, 5, columns)
    , m_fray(keyOf(seed) + 16, 64, 48, columns)
{
}

void PipeWall::setRow(float share)
{
    for (WallNoise *noise : {&m_clouds, &m_patches, &m_streaks, &m_pores, &m_edge, &m_fray})
        noise->setRow(m_metre, share);
    m_share = share;
    m_waterLeft = WaterHalfWidth + 0.007F * m_edge.at(0.1F);
    m_waterRight = WaterHalfWidth + 0.007F * m_edge.at(0.6F);
    m_wander = m_edge.at(0.3F);
}

Texel PipeWall::at(int column) const
{
    const bool nearNext = m_share > 0.5F;
    const Defects &atJoint = nearNext ? m_next : m_here;

    Spot spot;
    spot.turns = (float(column) + 0.5F) / float(m_columns);
    spot.along = m_share; // of the metre, and so in metres
    spot.joint = nearNext ? m_share - 1.0F : m_share;
    spot.fromSole = turnsBetween(spot.turns, WaterCentre);
    spot.height = std::abs(spot.fromSole);
    spot.cloud = m_clouds.atColumn(column);
    spot.patch = m_patches.atColumn(column);
    spot.streak = m_streaks.atColumn(column);
    spot.pore = m_pores.atColumn(column);
    spot.frayed = m_fray.atColumn(column);

    Texel texel = bareWall(spot, m_here.tone);
    paintSole(texel, spot);
    paintJoint(texel, spot, atJoint.offset);
    if (atJoint.deposit)
        paintLime(texel, spot, atJoint.depositTurns, atJoint.depositWidth);
    if (atJoint.roots)
        paintRoots(texel, spot, atJoint.rootsTurns);
    if (m_here.crack) {
        paintCrack(texel, spot, {m_here.crackTurns, m_here.crackFrom, m_here.crackTo}, m_wander);
    }
    if (m_lateral.exists) {
        paintLateral(texel, spot, float(m_lateral.clockHours) / 12.0F,
                     float(m_lateral.distanceM - m_metre), float(m_lateral.radiusM));
    }
    paintFlow(texel, spot, spot.fromSole < 0.0F ? m_waterLeft : m_waterRight);
    return texel;
}

} // namespace Velmar::Host
