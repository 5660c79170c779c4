// SPDX-License-Identifier: Apache-2.0
#include "host/video/piperun/PipeRunRenderer.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <utility>

namespace Velmar::Host {

namespace {

constexpr double Pi = 3.14159265358979323846;

// Texture: columns are the angle, clockwise from the top; rows run along the pipe.
constexpr int AngleBits = 10;
constexpr int AngleCount = 1 << AngleBits;
constexpr int RowBits = 9; ///< rows of a metre at the finest level
constexpr int RowCount = 1 << RowBits;
constexpr int RingBits = 3;
constexpr int ChromaShift = 1; ///< chroma has half as many columns and rows

constexpr int RipplesBits = 8;
constexpr int RipplesSize = 1 << RipplesBits;
constexpr int NoiseCount = 1 << 14;
constexpr int NoiseMargin = 32; ///< noise stays below
constexpr int ToneCount = 512;

constexpr int BlockSize = 16;        ///< [px] between two rays that are really cast
constexpr double SightM = 4.6;       ///< nothing is seen beyond
constexpr double BackSightM = 1.9;   ///< the same behind the camera
constexpr double TexelReachM = 0.13; ///< a row of the coarsest level, which is blended in beyond

constexpr float WaterCentre = 0.5F;      ///< [turns] the bottom of the pipe
constexpr float WaterHalfWidth = 0.055F; ///< [turns]

std::uint32_t hash(std::uint32_t value)
{
    value ^= value >> 16;
    value *= 0x7feb352dU;
    value ^= value >> 15;
    value *= 0x846ca68bU;
    value ^= value >> 16;
    return value;
}

std::uint32_t hash(std::uint32_t a, std::uint32_t b, std::uint32_t c)
{
    return hash(a + 0x9e3779b9U * hash(b + 0x85ebca6bU * hash(c)));
}

/// Neighbouring seeds give unrelated pipes.
std::uint32_t keyOf(quint32 seed)
{
    return hash(seed + 0x51ed270bU);
}

/// 0 to 1.
float random(std::uint32_t a, std::uint32_t b, std::uint32_t c)
{
    return float(hash(a, b, c) >> 8) / float(1 << 24);
}

float smooth(float t)
{
    return t * t * (3.0F - 2.0F * t);
}

/// 0 below @p from, 1 above @p to.
float ramp(float from, float to, float value)
{
    return smooth(std::clamp((value - from) / (to - from), 0.0F, 1.0F));
}

/// Shortest way between two angles [turns], -0.5 to 0.5.
float turnsBetween(float a, float b)
{
    const float d = a - b;
    return d - std::floor(d + 0.5F);
}

/// Smooth noise, -1 to 1, over the whole wall: it closes around the pipe and runs on from metre to
/// metre. Evaluated row by row, because neighbouring texels share nearly everything.
class WallNoise
{
public:
    /// @p around cells in a turn, @p along cells in a metre.
    WallNoise(std::uint32_t seed, int around, int along)
        : m_seed(seed)
        , m_around(around)
        , m_along(along)
        , m_row(std::size_t(around) + 1)
        , m_columns(AngleCount)
    {
        for (int i = 0; i < AngleCount; ++i) {
            const float position = (float(i) + 0.5F) / AngleCount * float(around);
            Column &column = m_columns[std::size_t(i)];
            column.cell = std::uint32_t(position);
            column.t = smooth(position - float(column.cell));
        }
    }

    void setRow(int metre, float share)
    {
        const float position = share * float(m_along);
        const int cell = int(position);
        const float t = smooth(position - float(cell));
        const auto row = std::uint32_t(metre * m_along + cell);
        if (m_pair.empty() || row != m_pairRow) {
            m_pairRow = row;
            m_pair.resize(std::size_t(m_around));
            for (int i = 0; i < m_around; ++i) {
                const auto key = std::uint32_t(i);
                m_pair[std::size_t(i)] = {random(m_seed, row, key), random(m_seed, row + 1, key)};
            }
        }
        for (int i = 0; i < m_around; ++i) {
            const auto &[a, b] = m_pair[std::size_t(i)];
            m_row[std::size_t(i)] = 2.0F * (a + (b - a) * t) - 1.0F;
        }
        m_row.back() = m_row.front();
    }

    float at(float turns) const
    {
        const float position = turns * float(m_around);
        const auto cell = std::size_t(position);
        return between(cell, smooth(position - float(cell)));
    }

    /// In the middle of a column of the texture.
    float atColumn(int column) const
    {
        const Column &place = m_columns[std::size_t(column)];
        return between(place.cell, place.t);
    }

private:
    struct Column
    {
        std::uint32_t cell;
        float t;
    };

    float between(std::size_t cell, float t) const
    {
        return m_row[cell] + (m_row[cell + 1] - m_row[cell]) * t;
    }

    std::uint32_t m_seed;
    int m_around;
    int m_along;
    std::uint32_t m_pairRow = 0;
    std::vector<std::pair<float, float>> m_pair; ///< the two rows of cells around the current one
    std::vector<float> m_row;
    std::vector<Column> m_columns;
};

/// Reflectance 0 to 255 and the two colour differences of one place on the wall.
struct Texel
{
    float luma;
    float blue;
    float red;

    void mix(float share, float toLuma, float toBlue, float toRed)
    {
        luma += (toLuma - luma) * share;
        blue += (toBlue - blue) * share;
        red += (toRed - red) * share;
    }
};

/// What is wrong with one metre of pipe.
struct Defects
{
    Defects(std::uint32_t seed, int metre)
    {
        const auto key = std::uint32_t(metre);
        crack = random(seed, key, 11) < 0.30F;
        crackTurns = 0.6F + 0.8F * random(seed, key, 12);
        crackFrom = 0.1F + 0.4F * random(seed, key, 13);
        crackTo = crackFrom + 0.15F + 0.3F * random(seed, key, 14);
        roots = random(seed, key, 21) < 0.22F;
        rootsTurns = 0.75F + 0.5F * random(seed, key, 22);
        deposit = random(seed, key, 31) < 0.5F;
        depositTurns = 0.7F + 0.6F * random(seed, key, 32);
        depositWidth = 0.03F + 0.09F * random(seed, key, 33);
        offset = random(seed, key, 41) < 0.2F;
        tone = 12.0F * (random(seed, key, 51) - 0.5F);
    }

    bool crack;
    float crackTurns;
    float crackFrom; ///< [share of the metre]
    float crackTo;
    bool roots; ///< grown in through the joint at the beginning
    float rootsTurns;
    bool deposit; ///< lime below the joint at the beginning
    float depositTurns;
    float depositWidth; ///< [turns]
    bool offset;        ///< the joint gapes on one side
    float tone;         ///< pipes of different batches
};

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
void paintJoint(Texel &texel, const Spot &at, const Defects &defects)
{
    const float gap = defects.offset && turnsBetween(at.turns, 0.15F) > 0.0F ? 0.016F : 0.009F;
    const float distance = std::abs(at.joint + 0.0012F * at.frayed);
    if (distance >= 0.06F)
        return;
    texel.mix(0.30F * ramp(0.06F, 0.03F, distance), 110.0F, -14.0F, 8.0F);
    texel.mix(0.75F * ramp(gap + 0.016F, gap + 0.006F, distance), 222.0F, -5.0F, 4.0F);
    texel.mix(0.94F * ramp(gap + 0.003F, gap - 0.001F, distance), 24.0F, -4.0F, 4.0F);
}

/// Lime that has run out of the joint and down the wall.
void paintLime(Texel &texel, const Spot &at, const Defects &defects)
{
    const float across = std::abs(turnsBetween(at.turns, defects.depositTurns))
        / (defects.depositWidth * (1.0F + 0.4F * at.streak));
    const float along
        = std::abs(at.joint) / std::max(0.01F, 0.07F + 0.05F * at.frayed + 0.03F * at.patch);
    const float amount = 1.0F - ramp(0.5F, 1.0F, std::max(across, along));
    texel.mix(0.80F * amount, 226.0F + 14.0F * at.pore, -5.0F, 3.0F);
}

/// Thin dark threads that hang out of the joint.
void paintRoots(Texel &texel, const Spot &at, const Defects &defects)
{
    const float across = turnsBetween(at.turns, defects.rootsTurns);
    const float length = 0.16F * (1.0F - 120.0F * across * across);
    if (length <= 0.01F)
        return;
    const float thread = std::abs(at.streak + 0.35F * at.frayed);
    const float amount
        = ramp(length, 0.4F * length, std::abs(at.joint)) * ramp(0.30F, 0.10F, thread);
    texel.mix(0.85F * amount, 48.0F + 40.0F * ramp(0.05F, 0.0F, thread), -15.0F, 12.0F);
}

/// A crack wanders along the pipe; @p wander is -1 to 1.
void paintCrack(Texel &texel, const Spot &at, const Defects &defects, float wander)
{
    if (at.along <= defects.crackFrom || at.along >= defects.crackTo)
        return;
    const float taper = ramp(defects.crackFrom, defects.crackFrom + 0.08F, at.along)
        * ramp(defects.crackTo, defects.crackTo - 0.08F, at.along);
    const float centre = defects.crackTurns + 0.030F * wander + 0.004F * at.frayed;
    const float off = std::abs(turnsBetween(at.turns, centre));
    const float width = std::max(1e-6F, 0.0035F * taper);
    texel.mix(0.35F * ramp(5.0F * width, width, off), 96.0F, -12.0F, 8.0F);
    texel.mix(0.90F * ramp(width, 0.4F * width, off), 22.0F, -4.0F, 4.0F);
}

/// A cut edge around a dark bore whose far wall still gets some light. The lateral's centre is at
/// @p centreTurns and @p centreAlong, as a spot counts them.
void paintLateral(Texel &texel, const Spot &at, float centreTurns, float centreAlong, float radius)
{
    const float x
        = turnsBetween(at.turns, centreTurns) * float(2.0 * Pi * PipeRunRenderer::PipeRadiusM);
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

std::uint8_t toByte(float value)
{
    return std::uint8_t(std::clamp(value, 0.0F, 255.0F));
}

} // namespace

/// What one ray meets: a place on the wall and the light there. Whole numbers, because they are
/// interpolated for every pixel.
struct PipeRunRenderer::Node
{
    std::uint32_t angle; ///< the full range is one turn
    std::uint32_t depth; ///< the full range is one round of the ring of metres
    std::int32_t light;  ///< 65536: the wall is seen as bright as it is
    float axisDistance;  ///< [px] about, from the vanishing point
};

struct PipeRunRenderer::Camera
{
    float x; ///< [m] off the axis, to the right
    float y; ///< [m] off the axis, upwards
    float z; ///< [m] of the metres' own ring
    float right[3];
    float up[3];
    float forward[3];
    float focal;   ///< [px]
    float centreX; ///< [px]
    float centreY; ///< [px]
};

struct PipeRunRenderer::Target
{
    const PlanarFrame *frame;
    int chromaStep; ///< [bytes]
    std::array<std::uint8_t, ToneCount + 2 * NoiseMargin> tone;
    std::uint32_t noiseKey;
    std::uint32_t ripplesA; ///< how far the two layers of ripples have moved
    std::uint32_t ripplesB;
};

PipeRunRenderer::PipeRunRenderer(quint32 seed)
    : m_seed(seed)
    , m_key(keyOf(seed))
    , m_chroma(std::size_t(AngleCount >> ChromaShift) * (RowCount >> ChromaShift) * RingMetres)
    , m_ripples(std::size_t(RipplesSize) * RipplesSize)
    , m_noise(NoiseCount)
{
    static_assert(RingMetres == 1 << RingBits);
    m_metres.fill(INT_MIN);
    for (int level = 0; level < Levels; ++level) {
        m_luma[std::size_t(level)].resize(std::size_t(AngleCount) * (RowCount >> level)
                                          * RingMetres);
    }

    WallNoise coarse(m_key + 1, 16, 16);
    WallNoise fine(m_key + 2, 32, 32);
    for (int y = 0; y < RipplesSize; ++y) {
        // Mirrored, so that the far edge meets the near one.
        const float share = std::abs(2.0F * float(y) / RipplesSize - 1.0F) * 0.999F;
        coarse.setRow(0, share);
        fine.setRow(0, share);
        for (int x = 0; x < RipplesSize; ++x) {
            const float turns = float(x) / RipplesSize;
            m_ripples[std::size_t(y) * RipplesSize + std::size_t(x)]
                = toByte(128.0F + 75.0F * coarse.at(turns) + 50.0F * fine.at(turns));
        }
    }

    // The sum of a few even distributions is near enough to a sensor's.
    for (std::size_t i = 0; i < m_noise.size(); ++i) {
        const std::uint32_t bits = hash(m_key, std::uint32_t(i), 77);
        const int sum = int(bits & 15) + int(bits >> 4 & 15) + int(bits >> 8 & 15)
            + int(bits >> 12 & 15) - 30;
        m_noise[i] = std::int8_t(sum / 4);
    }
}

double PipeRunRenderer::focalLength(int width, int height)
{
    return 0.5 * std::max(double(width), height * 16.0 / 9.0);
}

PipeRunRenderer::Lateral PipeRunRenderer::lateralIn(quint32 seed, int metre)
{
    Lateral lateral;
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

void PipeRunRenderer::prepareMetres(int first, int last)
{
    Q_ASSERT(last - first < RingMetres);
    for (int metre = first; metre <= last; ++metre) {
        if (m_metres[std::size_t(metre & (RingMetres - 1))] != metre)
            drawMetre(metre);
    }
}

void PipeRunRenderer::drawMetre(int metre)
{
    const int slot = metre & (RingMetres - 1);
    const Defects here(m_key, metre);
    const Defects next(m_key, metre + 1);
    const Lateral lateral = lateralIn(m_seed, metre);

    WallNoise clouds(m_key + 11, 6, 3);
    WallNoise patches(m_key + 12, 20, 14);
    WallNoise streaks(m_key + 13, 96, 4); // dirt that the flow has drawn out
    WallNoise pores(m_key + 14, 240, 230);
    WallNoise edge(m_key + 15, 2, 5); // sampled at one angle: lines that wander along the pipe
    WallNoise fray(m_key + 16, 64, 48);

    std::uint8_t *const luma = m_luma[0].data() + std::size_t(slot) * RowCount * AngleCount;
    std::uint16_t *const chroma = m_chroma.data()
        + std::size_t(slot) * (RowCount >> ChromaShift) * (AngleCount >> ChromaShift);

    for (int row = 0; row < RowCount; ++row) {
        const float share = (float(row) + 0.5F) / RowCount; // of the metre, and so in metres
        for (WallNoise *noise : {&clouds, &patches, &streaks, &pores, &edge, &fray})
            noise->setRow(metre, share);

        const bool nearNext = share > 0.5F;
        const Defects &atJoint = nearNext ? next : here;
        const float waterLeft = WaterHalfWidth + 0.007F * edge.at(0.1F);
        const float waterRight = WaterHalfWidth + 0.007F * edge.at(0.6F);
        const float wander = edge.at(0.3F);

        for (int column = 0; column < AngleCount; ++column) {
            Spot spot;
            spot.turns = (float(column) + 0.5F) / AngleCount;
            spot.along = share;
            spot.joint = nearNext ? share - 1.0F : share;
            spot.fromSole = turnsBetween(spot.turns, WaterCentre);
            spot.height = std::abs(spot.fromSole);
            spot.cloud = clouds.atColumn(column);
            spot.patch = patches.atColumn(column);
            spot.streak = streaks.atColumn(column);
            spot.pore = pores.atColumn(column);
            spot.frayed = fray.atColumn(column);

            Texel texel = bareWall(spot, here.tone);
            paintSole(texel, spot);
            paintJoint(texel, spot, atJoint);
            if (atJoint.deposit)
                paintLime(texel, spot, atJoint);
            if (atJoint.roots)
                paintRoots(texel, spot, atJoint);
            if (here.crack)
                paintCrack(texel, spot, here, wander);
            if (lateral.exists) {
                paintLateral(texel, spot, float(lateral.clockHours) / 12.0F,
                             float(lateral.distanceM - metre), float(lateral.radiusM));
            }
            paintFlow(texel, spot, spot.fromSole < 0.0F ? waterLeft : waterRight);

            luma[std::size_t(row) * AngleCount + std::size_t(column)] = toByte(texel.luma);
            if ((row & 1) == 0 && (column & 1) == 0) {
                const auto blue = std::uint16_t(128 + std::lround(texel.blue));
                const auto red = std::uint16_t(128 + std::lround(texel.red));
                chroma[std::size_t(row >> ChromaShift) * (AngleCount >> ChromaShift)
                       + std::size_t(column >> ChromaShift)]
                    = std::uint16_t(red << 8 | blue);
            }
        }
    }

    shrinkMetre(slot);
    m_metres[std::size_t(slot)] = metre;
}

void PipeRunRenderer::shrinkMetre(int slot)
{
    constexpr std::ptrdiff_t PairBytes = std::ptrdiff_t(2) * AngleCount;
    // Only along the pipe, since that is the direction in which distance squeezes.
    for (int level = 1; level < Levels; ++level) {
        const int rows = RowCount >> level;
        const std::uint8_t *from = m_luma[std::size_t(level) - 1].data()
            + std::size_t(slot) * std::size_t(rows) * 2 * AngleCount;
        std::uint8_t *to = m_luma[std::size_t(level)].data()
            + std::size_t(slot) * std::size_t(rows) * AngleCount;
        for (int row = 0; row < rows; ++row, from += PairBytes, to += AngleCount) {
            for (int column = 0; column < AngleCount; ++column)
                to[column] = std::uint8_t((from[column] + from[column + AngleCount] + 1) / 2);
        }
    }
}

PipeRunRenderer::Node PipeRunRenderer::castRay(const Camera &camera, double x, double y) const
{
    const float sx = (float(x) - camera.centreX) / camera.focal;
    const float sy = (camera.centreY - float(y)) / camera.focal;
    const float length = 1.0F / std::sqrt(1.0F + sx * sx + sy * sy);
    float d[3];
    for (int i = 0; i < 3; ++i)
        d[i] = (camera.forward[i] + camera.right[i] * sx + camera.up[i] * sy) * length;

    constexpr auto Radius = float(PipeRadiusM);
    const float a = std::max(d[0] * d[0] + d[1] * d[1], 1e-9F);
    const float b = camera.x * d[0] + camera.y * d[1];
    const float c = camera.x * camera.x + camera.y * camera.y - Radius * Radius;
    float t = (-b + std::sqrt(b * b - a * c)) / a;
    const float wallX = camera.x + t * d[0];
    const float wallY = camera.y + t * d[1];
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

    Node node;
    const double turns = double(std::atan2(wallX, wallY)) / (2.0 * Pi);
    node.angle = std::uint32_t(std::int64_t(turns * 4294967296.0));
    node.depth = std::uint32_t(std::int64_t(double(camera.z + depth) / RingMetres * 4294967296.0));
    node.light = std::int32_t(65536.0F * light);
    node.axisDistance = camera.focal * std::sqrt(a) / std::max(std::abs(d[2]), 0.05F);
    return node;
}

void PipeRunRenderer::fillBlock(const Camera &camera, const Target &target, int x, int y, int size,
                                const Node &topLeft, const Node &topRight, const Node &bottomLeft,
                                const Node &bottomRight) const
{
    if (x >= target.frame->width || y >= target.frame->height)
        return;
    // Towards the vanishing point everything changes faster than a straight line can follow.
    const float nearest = std::min({topLeft.axisDistance, topRight.axisDistance,
                                    bottomLeft.axisDistance, bottomRight.axisDistance});
    if (size <= 2 || float(size) * 4.0F <= nearest) {
        fillPixels(target, x, y, size, topLeft, topRight, bottomLeft, bottomRight);
        return;
    }
    const int half = size / 2;
    const Node top = castRay(camera, x + half, y);
    const Node left = castRay(camera, x, y + half);
    const Node middle = castRay(camera, x + half, y + half);
    const Node right = castRay(camera, x + size, y + half);
    const Node bottom = castRay(camera, x + half, y + size);
    fillBlock(camera, target, x, y, half, topLeft, top, left, middle);
    fillBlock(camera, target, x + half, y, half, top, topRight, middle, right);
    fillBlock(camera, target, x, y + half, half, left, middle, bottomLeft, bottom);
    fillBlock(camera, target, x + half, y + half, half, middle, right, bottom, bottomRight);
}

namespace {

/// Signed difference on a ring.
std::int64_t between(std::uint32_t from, std::uint32_t to)
{
    return std::int32_t(to - from);
}

/// A quantity of a block: its value at the top left and its slopes, all linear.
struct Plane
{
    // The cross term is kept, so that neighbouring blocks agree along their whole common edge.
    Plane(std::uint32_t topLeft, std::uint32_t topRight, std::uint32_t bottomLeft,
          std::uint32_t bottomRight, int size)
        : left(topLeft)
        , leftStep(std::uint32_t(between(topLeft, bottomLeft) / size))
        , slope(std::uint32_t(between(topLeft, topRight) / size))
        , slopeStep(std::uint32_t((between(bottomLeft, bottomRight) - between(topLeft, topRight))
                                  / (std::int64_t(size) * size)))
    {
    }

    void nextRow()
    {
        left += leftStep;
        slope += slopeStep;
    }

    std::uint32_t left;
    std::uint32_t leftStep;
    std::uint32_t slope;
    std::uint32_t slopeStep;
};

} // namespace

void PipeRunRenderer::fillPixels(const Target &target, int x, int y, int size, const Node &topLeft,
                                 const Node &topRight, const Node &bottomLeft,
                                 const Node &bottomRight) const
{
    const PlanarFrame &frame = *target.frame;
    const int width = std::min(size, frame.width - x);
    const int height = std::min(size, frame.height - y);

    Plane angle(topLeft.angle, topRight.angle, bottomLeft.angle, bottomRight.angle, size);
    Plane depth(topLeft.depth, topRight.depth, bottomLeft.depth, bottomRight.depth, size);
    Plane light(std::uint32_t(topLeft.light), std::uint32_t(topRight.light),
                std::uint32_t(bottomLeft.light), std::uint32_t(bottomRight.light), size);
    const Plane firstAngle = angle;
    const Plane firstDepth = depth;
    const Plane firstLight = light;

    // The level at which a step to the next pixel is about a row of the texture.
    const auto step = std::uint32_t(std::max(std::abs(between(topLeft.depth, topRight.depth)),
                                             std::abs(between(topLeft.depth, bottomLeft.depth)))
                                    / size);
    constexpr int RowShift = 32 - RingBits - RowBits;
    int level = 0;
    while (level + 1 < Levels && step >> (RowShift + level) > 1)
        ++level;

    constexpr int AngleShift = 32 - AngleBits;
    const int rowShift = RowShift + level;
    const std::uint32_t rowMask = (std::uint32_t(RowCount) << RingBits >> level) - 1;
    const std::uint8_t *const texture = m_luma[std::size_t(level)].data();

    // Only where the block touches the flow is there anything to glint.
    const auto fromSole
        = [](const Node &node) { return std::abs(between(0x80000000U, node.angle)); };
    constexpr auto FlowEdge = std::int64_t(double(WaterHalfWidth) * 4294967296.0);
    const bool flow = std::min({fromSole(topLeft), fromSole(topRight), fromSole(bottomLeft),
                                fromSole(bottomRight)})
        < FlowEdge + (FlowEdge >> 2);

    // Reflectance times light, with the mirrored lamps but without noise.
    const auto sample = [&](std::uint32_t u, std::uint32_t v, std::uint32_t l) {
        const std::uint32_t column = u >> AngleShift;
        const std::uint32_t nextColumn = (column + 1) & (AngleCount - 1);
        const std::uint32_t line = v >> rowShift;
        const std::uint8_t *const a = texture + std::size_t(line) * AngleCount;
        const std::uint8_t *const b = texture + std::size_t((line + 1) & rowMask) * AngleCount;
        const int fu = int(u >> (AngleShift - 8) & 255);
        const int fv = int(v >> (rowShift - 8) & 255);
        const int p = a[column] * (256 - fu) + a[nextColumn] * fu;
        const int q = b[column] * (256 - fu) + b[nextColumn] * fu;
        int value = (p * (256 - fv) + q * fv) >> 16;
        if (flow) {
            const std::int64_t off = std::abs(between(0x80000000U, u));
            if (off < FlowEdge) {
                // Where the crests of both layers meet, the lamps are mirrored.
                constexpr std::uint32_t Mask = RipplesSize - 1;
                const std::uint32_t across = u >> (AngleShift - 2);
                const std::uint32_t along = v >> 19;
                const std::uint32_t first = (along + target.ripplesA) & Mask;
                const std::uint32_t second = (along * 2 + target.ripplesB) & Mask;
                const int crest = m_ripples[first << RipplesBits | (across & Mask)]
                    + m_ripples[second << RipplesBits | ((across + along) & Mask)] - 318;
                if (crest > 0)
                    value += std::min(crest * int((FlowEdge - off) >> 20) >> 5, 230);
            }
        }
        // The light may come out just below zero, since the slopes are rounded.
        return std::min(value * (std::int32_t(l) >> 8) >> 8, ToneCount - 1);
    };
    const auto shown = [&target](int value, std::int8_t noise) {
        const int index = value + noise + NoiseMargin;
        return target.tone[std::size_t(index)];
    };

    // Where the wall is so near that texels are larger than pixels, every second pixel of every
    // second line is sampled, and the rest are means of their neighbours.
    const auto angleStep = std::max({std::abs(between(topLeft.angle, topRight.angle)),
                                     std::abs(between(topLeft.angle, bottomLeft.angle)),
                                     std::abs(between(bottomLeft.angle, bottomRight.angle))})
        / size;
    const bool magnified = !flow && level == 0 && width % 2 == 0 && height % 2 == 0
        && step <= (1U << RowShift) * 3 / 4 && angleStep <= (1 << AngleShift) * 3 / 4;

    std::uint32_t dice = hash(target.noiseKey + std::uint32_t(y) * 9176U + std::uint32_t(x));
    const auto nextNoise = [this, &dice] {
        dice = dice * 1664525U + 1013904223U;
        return m_noise.data() + (dice >> 8) % (NoiseCount - BlockSize);
    };
    const auto lineAt = [&frame, x, y](int row) {
        return frame.planes[0] + std::ptrdiff_t(y + row) * frame.strides[0] + x;
    };
    constexpr std::uint32_t HalfColumn = 1U << (AngleShift - 1);
    const std::uint32_t halfRow = 1U << (rowShift - 1);

    if (magnified) {
        constexpr int GridSize = BlockSize / 2 + 1;
        int grid[2][GridSize];
        const auto sampleLine = [&](int *to) {
            std::uint32_t u = angle.left - HalfColumn;
            std::uint32_t v = depth.left - halfRow;
            std::uint32_t l = light.left;
            for (int i = 0; i <= width / 2; ++i) {
                to[i] = sample(u, v, l);
                u += 2 * angle.slope;
                v += 2 * depth.slope;
                l += 2 * light.slope;
            }
            for (Plane *plane : {&angle, &depth, &light}) {
                plane->nextRow();
                plane->nextRow();
            }
        };
        sampleLine(grid[0]);
        for (int row = 0; row < height; row += 2) {
            const int *const above = grid[row / 2 % 2];
            int *const below = grid[1 - row / 2 % 2];
            sampleLine(below);
            std::uint8_t *const upper = lineAt(row);
            std::uint8_t *const lower = lineAt(row + 1);
            const std::int8_t *const upperNoise = nextNoise();
            const std::int8_t *const lowerNoise = nextNoise();
            for (std::ptrdiff_t i = 0; i < width / 2; ++i) {
                const int left = above[i] + below[i];
                const int right = above[i + 1] + below[i + 1];
                upper[2 * i] = shown(above[i], upperNoise[2 * i]);
                upper[2 * i + 1] = shown((above[i] + above[i + 1]) >> 1, upperNoise[2 * i + 1]);
                lower[2 * i] = shown(left >> 1, lowerNoise[2 * i]);
                lower[2 * i + 1] = shown((left + right) >> 2, lowerNoise[2 * i + 1]);
            }
        }
    } else {
        for (int row = 0; row < height; ++row) {
            std::uint32_t u = angle.left - HalfColumn;
            std::uint32_t v = depth.left - halfRow;
            std::uint32_t l = light.left;
            std::uint8_t *const out = lineAt(row);
            const std::int8_t *const noise = nextNoise();
            for (int i = 0; i < width; ++i) {
                out[i] = shown(sample(u, v, l), noise[i]);
                u += angle.slope;
                v += depth.slope;
                l += light.slope;
            }
            for (Plane *plane : {&angle, &depth, &light})
                plane->nextRow();
        }
    }

    angle = firstAngle;
    depth = firstDepth;
    light = firstLight;
    constexpr int ChromaRowShift = RowShift + ChromaShift;
    const int step2 = target.chromaStep;
    for (int row = 0; row < height; row += 2) {
        std::uint32_t u = angle.left;
        std::uint32_t v = depth.left;
        std::uint32_t l = light.left;
        const std::ptrdiff_t line = (y + row) / 2;
        std::uint8_t *blue
            = frame.planes[1] + line * frame.strides[1] + std::ptrdiff_t(x / 2) * step2;
        std::uint8_t *red
            = step2 == 1 ? frame.planes[2] + line * frame.strides[2] + x / 2 : blue + 1;
        for (int i = 0; i < width; i += 2) {
            const std::uint16_t both
                = m_chroma[std::size_t(v >> ChromaRowShift) << (AngleBits - ChromaShift)
                           | (u >> (AngleShift + ChromaShift))];
            const int gain = std::clamp(std::int32_t(l), 0, 65536) >> 8;
            *blue = std::uint8_t(128 + ((int(both & 255) - 128) * gain >> 8));
            *red = std::uint8_t(128 + ((int(both >> 8) - 128) * gain >> 8));
            blue += step2;
            red += step2;
            u += 2 * angle.slope;
            v += 2 * depth.slope;
            l += 2 * light.slope;
        }
        for (int i = 0; i < 2; ++i) {
            angle.nextRow();
            depth.nextRow();
            light.nextRow();
        }
    }
}

void PipeRunRenderer::render(const PlanarFrame &frame, const View &view)
{
    if (frame.width <= 0 || frame.height <= 0)
        return;
    const double distance
        = std::isfinite(view.distanceM) ? std::clamp(view.distanceM, -100000.0, 100000.0) : 0.0;
    const double time = std::isfinite(view.timeS) ? std::clamp(view.timeS, -1e9, 1e9) : 0.0;
    const double pan = std::isfinite(view.panDeg) ? std::clamp(view.panDeg, -180.0, 180.0) : 0.0;
    const double tilt = std::isfinite(view.tiltDeg) ? std::clamp(view.tiltDeg, -90.0, 90.0) : 0.0;

    // The crawler sways as it drives over what lies on the sole: by the way, not by the time.
    const double sway
        = 0.0025 * std::sin(5.1 * distance) + 0.0015 * std::sin(13.7 * distance + 1.0);
    const double heave = 0.0015 * std::sin(7.3 * distance + 2.0);
    const double yaw = (pan + 0.5 * std::sin(4.3 * distance)) * Pi / 180.0;
    const double pitch = (tilt + 0.35 * std::sin(6.1 * distance + 0.7)) * Pi / 180.0;

    Camera camera;
    camera.x = float(sway);
    camera.y = float(-0.012 + heave);
    camera.z = float(distance - 8.0 * std::floor(distance / 8.0));
    const double cy = std::cos(yaw);
    const double sy = std::sin(yaw);
    const double cp = std::cos(pitch);
    const double sp = std::sin(pitch);
    camera.forward[0] = float(sy * cp);
    camera.forward[1] = float(sp);
    camera.forward[2] = float(cy * cp);
    camera.right[0] = float(cy);
    camera.right[1] = 0.0F;
    camera.right[2] = float(-sy);
    camera.up[0] = float(-sy * sp);
    camera.up[1] = float(cp);
    camera.up[2] = float(-cy * sp);
    camera.focal = float(focalLength(frame.width, frame.height));
    camera.centreX = 0.5F * float(frame.width);
    camera.centreY = 0.5F * float(frame.height);

    // What lies behind is drawn only for a camera that turns so far that a corner shows it.
    const double back = double(camera.forward[2])
        - double(std::abs(camera.right[2]) * (camera.centreX + BlockSize)
                 + std::abs(camera.up[2]) * (camera.centreY + BlockSize))
            / double(camera.focal);
    const double behind = back > 0.0 ? 0.0 : BackSightM;
    prepareMetres(int(std::floor(distance - behind - TexelReachM)),
                  int(std::floor(distance + SightM + TexelReachM)));

    Target target;
    target.frame = &frame;
    target.chromaStep = frame.layout == PlanarFrame::Layout::NV12 ? 2 : 1;
    const bool full = frame.range == PlanarFrame::Range::Full;
    for (std::size_t i = 0; i < target.tone.size(); ++i) {
        // Some haze in the pipe, and a soft shoulder instead of a hard white.
        const double value = std::max(0.0, (double(i) - NoiseMargin) / 255.0);
        const double shown = 0.025 + 0.975 * (1.0 - std::exp(-1.45 * std::pow(value, 0.86)));
        target.tone[i] = toByte(float(full ? 255.0 * shown : 16.0 + 219.0 * shown) + 0.5F);
    }
    const auto tick = std::uint32_t(std::int64_t(std::llround(time * 1000.0)));
    target.noiseKey = hash(m_key, tick, 7);
    target.ripplesA = std::uint32_t(std::int64_t(-time * 90.0));
    target.ripplesB = std::uint32_t(std::int64_t(-time * 240.0));

    const int columns = (frame.width + BlockSize - 1) / BlockSize;
    std::vector<Node> above(std::size_t(columns) + 1);
    std::vector<Node> below(std::size_t(columns) + 1);
    for (int i = 0; i <= columns; ++i)
        above[std::size_t(i)] = castRay(camera, i * BlockSize, 0.0);
    for (int y = 0; y < frame.height; y += BlockSize) {
        for (int i = 0; i <= columns; ++i)
            below[std::size_t(i)] = castRay(camera, i * BlockSize, y + BlockSize);
        for (int i = 0; i < columns; ++i) {
            const auto left = std::size_t(i);
            fillBlock(camera, target, i * BlockSize, y, BlockSize, above[left], above[left + 1],
                      below[left], below[left + 1]);
        }
        above.swap(below);
    }
}

} // namespace Velmar::Host
