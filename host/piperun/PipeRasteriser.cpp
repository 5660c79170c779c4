// SPDX-License-Identifier: Apache-2.0
#include "host/piperun/PipeRasteriser.h"

#include "host/piperun/PipeMath.h"
#include "host/piperun/PipeWall.h"
#include "host/piperun/WallNoise.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace Velmar::Host {

using namespace PipeMath;

namespace {

using Hit = PipeCamera::Hit;

constexpr int RipplesBits = 8;
constexpr int RipplesSize = 1 << RipplesBits;
constexpr int NoiseCount = 1 << 14;
constexpr int NoiseMargin = 32; ///< noise stays below
constexpr int ToneCount = 512;

constexpr int AngleShift = 32 - PipeTexture::AngleBits;
constexpr int RowShift = 32 - PipeTexture::RingBits - PipeTexture::RowBits;
constexpr std::uint32_t HalfColumn = 1U << (AngleShift - 1);
constexpr auto FlowEdge = std::int64_t(double(PipeWall::WaterHalfWidth) * 4294967296.0);

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

/// What holds for all blocks of a frame.
struct Target
{
    const PlanarFrame &frame;
    const PipeCamera &camera;
    const PipeTexture &texture;
    const std::uint8_t *ripples;
    const std::int8_t *noise;
    int chromaStep; ///< [bytes]
    std::uint32_t noiseKey;
    std::uint32_t ripplesA; ///< how far the two layers of ripples have moved
    std::uint32_t ripplesB;
    /// From light on the wall to a byte of the picture.
    std::array<std::uint8_t, ToneCount + 2 * NoiseMargin> tone;

    std::uint8_t shown(int value, std::int8_t grain) const
    {
        return tone[std::size_t(value + grain + NoiseMargin)];
    }
};

/// Reflectance times light at a place, with the mirrored lamps but without noise. A value of its
/// own, which loops copy: what they write could be a part of anything that they only refer to.
struct Sampler
{
    const std::uint8_t *texture; ///< of the level
    std::uint32_t rowMask;
    int rowShift;
    bool flow; ///< the block touches the flow
    const std::uint8_t *ripples;
    std::uint32_t ripplesA;
    std::uint32_t ripplesB;

    int at(std::uint32_t u, std::uint32_t v, std::uint32_t light) const
    {
        constexpr std::uint32_t ColumnMask = PipeTexture::AngleCount - 1;
        const std::uint32_t column = u >> AngleShift;
        const std::uint32_t nextColumn = (column + 1) & ColumnMask;
        const std::uint32_t line = v >> rowShift;
        const std::uint8_t *const a = texture + std::size_t(line) * PipeTexture::AngleCount;
        const std::uint8_t *const b
            = texture + std::size_t((line + 1) & rowMask) * PipeTexture::AngleCount;
        const int fu = int(u >> (AngleShift - 8) & 255);
        const int fv = int(v >> (rowShift - 8) & 255);
        const int p = a[column] * (256 - fu) + a[nextColumn] * fu;
        const int q = b[column] * (256 - fu) + b[nextColumn] * fu;
        int value = (p * (256 - fv) + q * fv) >> 16;
        if (flow)
            value += glint(u, v);
        // The light may come out just below zero, since the slopes are rounded.
        return std::min(value * (std::int32_t(light) >> 8) >> 8, ToneCount - 1);
    }

private:
    /// Where the crests of both layers of ripples meet, the lamps are mirrored.
    int glint(std::uint32_t u, std::uint32_t v) const
    {
        const std::int64_t off = std::abs(between(0x80000000U, u));
        if (off >= FlowEdge)
            return 0;
        constexpr std::uint32_t Mask = RipplesSize - 1;
        const std::uint32_t across = u >> (AngleShift - 2);
        const std::uint32_t along = v >> 19;
        const std::uint32_t first = (along + ripplesA) & Mask;
        const std::uint32_t second = (along * 2 + ripplesB) & Mask;
        const int crest = ripples[first << RipplesBits | (across & Mask)]
            + ripples[second << RipplesBits | ((across + along) & Mask)] - 318;
        return crest > 0 ? std::min(crest * int((FlowEdge - off) >> 20) >> 5, 230) : 0;
    }
};

/// The hits at the corners of a block.
struct Corners
{
    Hit topLeft;
    Hit topRight;
    Hit bottomLeft;
    Hit bottomRight;

    /// [px] about, of the corner that is nearest to the vanishing point.
    float axisDistance() const
    {
        return std::min({topLeft.axisDistance, topRight.axisDistance, bottomLeft.axisDistance,
                         bottomRight.axisDistance});
    }

    /// There may be something to glint.
    bool touchesFlow() const
    {
        const auto fromSole
            = [](const Hit &hit) { return std::abs(between(0x80000000U, hit.angle)); };
        return std::min({fromSole(topLeft), fromSole(topRight), fromSole(bottomLeft),
                         fromSole(bottomRight)})
            < FlowEdge + (FlowEdge >> 2);
    }
};

/// A block so small, or so far from the vanishing point, that everything in it is linear.
class Block
{
public:
    Block(const Target &target, int x, int y, int size, const Corners &corners)
        : m_target(target)
        , m_x(x)
        , m_y(y)
        , m_width(std::min(size, target.frame.width - x))
        , m_height(std::min(size, target.frame.height - y))
        , m_angle(corners.topLeft.angle, corners.topRight.angle, corners.bottomLeft.angle,
                  corners.bottomRight.angle, size)
        , m_depth(corners.topLeft.depth, corners.topRight.depth, corners.bottomLeft.depth,
                  corners.bottomRight.depth, size)
        , m_light(std::uint32_t(corners.topLeft.light), std::uint32_t(corners.topRight.light),
                  std::uint32_t(corners.bottomLeft.light), std::uint32_t(corners.bottomRight.light),
                  size)
        , m_dice(hash(target.noiseKey + std::uint32_t(y) * 9176U + std::uint32_t(x)))
    {
        // The level at which a step to the next pixel is about a row of the texture.
        const auto step = std::uint32_t(
            std::max(std::abs(between(corners.topLeft.depth, corners.topRight.depth)),
                     std::abs(between(corners.topLeft.depth, corners.bottomLeft.depth)))
            / size);
        int level = 0;
        while (level + 1 < PipeTexture::Levels && step >> (RowShift + level) > 1)
            ++level;
        const std::uint32_t rows = std::uint32_t(PipeTexture::RowCount) << PipeTexture::RingBits;
        m_sampler = {target.texture.luma(level),
                     (rows >> level) - 1,
                     RowShift + level,
                     corners.touchesFlow(),
                     target.ripples,
                     target.ripplesA,
                     target.ripplesB};

        // Where the wall is so near that texels are larger than pixels.
        const auto angleStep
            = std::max({std::abs(between(corners.topLeft.angle, corners.topRight.angle)),
                        std::abs(between(corners.topLeft.angle, corners.bottomLeft.angle)),
                        std::abs(between(corners.bottomLeft.angle, corners.bottomRight.angle))})
            / size;
        m_isMagnified = !m_sampler.flow && level == 0 && m_width % 2 == 0 && m_height % 2 == 0
            && step <= (1U << RowShift) * 3 / 4 && angleStep <= (1 << AngleShift) * 3 / 4;
    }

    void fill()
    {
        if (m_isMagnified)
            fillMagnified();
        else
            fillEveryPixel();
        fillChroma();
    }

private:
    const std::int8_t *nextNoise()
    {
        m_dice = m_dice * 1664525U + 1013904223U;
        return m_target.noise + (m_dice >> 8) % (NoiseCount - PipeRasteriser::BlockSize);
    }
    std::uint8_t *lineAt(int row) const
    {
        const PlanarFrame &frame = m_target.frame;
        return frame.planes[0] + std::ptrdiff_t(m_y + row) * frame.strides[0] + m_x;
    }

    /// Every second pixel of every second line is sampled; the rest are means of their neighbours.
    void fillMagnified()
    {
        constexpr int GridSize = PipeRasteriser::BlockSize / 2 + 1;
        int grid[2][GridSize];
        Plane angle = m_angle;
        Plane depth = m_depth;
        Plane light = m_light;
        const Sampler sampler = m_sampler;
        const std::uint32_t halfRow = 1U << (sampler.rowShift - 1);
        const auto sampleLine = [&](int *to) {
            std::uint32_t u = angle.left - HalfColumn;
            std::uint32_t v = depth.left - halfRow;
            std::uint32_t l = light.left;
            for (int i = 0; i <= m_width / 2; ++i) {
                to[i] = sampler.at(u, v, l);
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
        for (int row = 0; row < m_height; row += 2) {
            const int *const above = grid[row / 2 % 2];
            int *const below = grid[1 - row / 2 % 2];
            sampleLine(below);
            std::uint8_t *const upper = lineAt(row);
            std::uint8_t *const lower = lineAt(row + 1);
            const std::int8_t *const upperNoise = nextNoise();
            const std::int8_t *const lowerNoise = nextNoise();
            for (std::ptrdiff_t i = 0; i < m_width / 2; ++i) {
                const int left = above[i] + below[i];
                const int right = above[i + 1] + below[i + 1];
                upper[2 * i] = m_target.shown(above[i], upperNoise[2 * i]);
                upper[2 * i + 1]
                    = m_target.shown((above[i] + above[i + 1]) >> 1, upperNoise[2 * i + 1]);
                lower[2 * i] = m_target.shown(left >> 1, lowerNoise[2 * i]);
                lower[2 * i + 1] = m_target.shown((left + right) >> 2, lowerNoise[2 * i + 1]);
            }
        }
    }

    void fillEveryPixel()
    {
        Plane angle = m_angle;
        Plane depth = m_depth;
        Plane light = m_light;
        const Sampler sampler = m_sampler;
        const std::uint32_t halfRow = 1U << (sampler.rowShift - 1);
        const int width = m_width;
        for (int row = 0; row < m_height; ++row) {
            std::uint32_t u = angle.left - HalfColumn;
            std::uint32_t v = depth.left - halfRow;
            std::uint32_t l = light.left;
            std::uint8_t *const out = lineAt(row);
            const std::int8_t *const noise = nextNoise();
            for (int i = 0; i < width; ++i) {
                out[i] = m_target.shown(sampler.at(u, v, l), noise[i]);
                u += angle.slope;
                v += depth.slope;
                l += light.slope;
            }
            for (Plane *plane : {&angle, &depth, &light})
                plane->nextRow();
        }
    }

    void fillChroma() const
    {
        constexpr int ChromaRowShift = RowShift + PipeTexture::ChromaShift;
        constexpr int ChromaAngleBits = PipeTexture::AngleBits - PipeTexture::ChromaShift;
        const PlanarFrame &frame = m_target.frame;
        const std::uint16_t *const texture = m_target.texture.chroma();
        const int step = m_target.chromaStep;
        Plane angle = m_angle;
        Plane depth = m_depth;
        Plane light = m_light;
        for (int row = 0; row < m_height; row += 2) {
            std::uint32_t u = angle.left;
            std::uint32_t v = depth.left;
            std::uint32_t l = light.left;
            const std::ptrdiff_t line = (m_y + row) / 2;
            std::uint8_t *blue
                = frame.planes[1] + line * frame.strides[1] + std::ptrdiff_t(m_x / 2) * step;
            std::uint8_t *red
                = step == 1 ? frame.planes[2] + line * frame.strides[2] + m_x / 2 : blue + 1;
            for (int i = 0; i < m_width; i += 2) {
                const std::uint16_t both
                    = texture[std::size_t(v >> ChromaRowShift) << ChromaAngleBits
                              | (u >> (AngleShift + PipeTexture::ChromaShift))];
                const int gain = std::clamp(std::int32_t(l), 0, 65536) >> 8;
                *blue = std::uint8_t(128 + ((int(both & 255) - 128) * gain >> 8));
                *red = std::uint8_t(128 + ((int(both >> 8) - 128) * gain >> 8));
                blue += step;
                red += step;
                u += 2 * angle.slope;
                v += 2 * depth.slope;
                l += 2 * light.slope;
            }
            for (Plane *plane : {&angle, &depth, &light}) {
                plane->nextRow();
                plane->nextRow();
            }
        }
    }

    const Target &m_target;
    int m_x;
    int m_y;
    int m_width;
    int m_height;
    Plane m_angle;
    Plane m_depth;
    Plane m_light;
    std::uint32_t m_dice;
    Sampler m_sampler;
    bool m_isMagnified;
};

void fillBlock(const Target &target, int x, int y, int size, const Corners &corners)
{
    if (x >= target.frame.width || y >= target.frame.height)
        return;
    // Towards the vanishing point everything changes faster than a straight line can follow.
    if (size <= 2 || float(size) * 4.0F <= corners.axisDistance()) {
        Block(target, x, y, size, corners).fill();
        return;
    }
    const int half = size / 2;
    const PipeCamera &camera = target.camera;
    const Hit top = camera.cast(x + half, y);
    const Hit left = camera.cast(x, y + half);
    const Hit middle = camera.cast(x + half, y + half);
    const Hit right = camera.cast(x + size, y + half);
    const Hit bottom = camera.cast(x + half, y + size);
    fillBlock(target, x, y, half, {corners.topLeft, top, left, middle});
    fillBlock(target, x + half, y, half, {top, corners.topRight, middle, right});
    fillBlock(target, x, y + half, half, {left, middle, corners.bottomLeft, bottom});
    fillBlock(target, x + half, y + half, half, {middle, right, bottom, corners.bottomRight});
}

} // namespace

PipeRasteriser::PipeRasteriser(quint32 seed)
    : m_key(keyOf(seed))
    , m_ripples(std::size_t(RipplesSize) * RipplesSize)
    , m_noise(NoiseCount)
{
    makeRipples();
    makeNoise();
}

void PipeRasteriser::makeRipples()
{
    WallNoise coarse(m_key + 1, 16, 16, RipplesSize);
    WallNoise fine(m_key + 2, 32, 32, RipplesSize);
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
}

void PipeRasteriser::makeNoise()
{
    // The sum of a few even distributions is near enough to a sensor's.
    for (std::size_t i = 0; i < m_noise.size(); ++i) {
        const std::uint32_t bits = hash(m_key, std::uint32_t(i), 77);
        const int sum = int(bits & 15) + int(bits >> 4 & 15) + int(bits >> 8 & 15)
            + int(bits >> 12 & 15) - 30;
        m_noise[i] = std::int8_t(sum / 4);
    }
}

void PipeRasteriser::draw(const PlanarFrame &frame, const PipeCamera &camera,
                          const PipeTexture &texture, double timeS) const
{
    const double time = std::isfinite(timeS) ? std::clamp(timeS, -1e9, 1e9) : 0.0;
    const auto tick = std::uint32_t(std::int64_t(std::llround(time * 1000.0)));
    Target target {frame,
                   camera,
                   texture,
                   m_ripples.data(),
                   m_noise.data(),
                   frame.layout == PlanarFrame::Layout::NV12 ? 2 : 1,
                   hash(m_key, tick, 7),
                   std::uint32_t(std::int64_t(-time * 90.0)),
                   std::uint32_t(std::int64_t(-time * 240.0)),
                   {}};
    const bool full = frame.range == PlanarFrame::Range::Full;
    for (std::size_t i = 0; i < target.tone.size(); ++i) {
        // Some haze in the pipe, and a soft shoulder instead of a hard white.
        const double value = std::max(0.0, (double(i) - NoiseMargin) / 255.0);
        const double shown = 0.025 + 0.975 * (1.0 - std::exp(-1.45 * std::pow(value, 0.86)));
        target.tone[i] = toByte(float(full ? 255.0 * shown : 16.0 + 219.0 * shown) + 0.5F);
    }

    const int columns = (frame.width + BlockSize - 1) / BlockSize;
    std::vector<Hit> above(std::size_t(columns) + 1);
    std::vector<Hit> below(std::size_t(columns) + 1);
    for (int i = 0; i <= columns; ++i)
        above[std::size_t(i)] = camera.cast(i * BlockSize, 0.0);
    for (int y = 0; y < frame.height; y += BlockSize) {
        for (int i = 0; i <= columns; ++i)
            below[std::size_t(i)] = camera.cast(i * BlockSize, y + BlockSize);
        for (int i = 0; i < columns; ++i) {
            const auto left = std::size_t(i);
            fillBlock(target, i * BlockSize, y, BlockSize,
                      {above[left], above[left + 1], below[left], below[left + 1]});
        }
        above.swap(below);
    }
}

} // namespace Velmar::Host
