// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/piperun/WallNoise.h"

#include <QtGlobal>

#include <cstdint>

namespace Velmar::Host {

/// The opening of a smaller pipe in the wall.
struct PipeLateral
{
    bool exists = false;
    double distanceM = 0.0;  ///< of its centre
    double clockHours = 0.0; ///< of its centre, 12 on top, seen in driving direction
    double radiusM = 0.0;

    /// The lateral in the pipe between @p metre and the next, if there is one.
    static PipeLateral in(quint32 seed, int metre);
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

/// What one metre of the wall looks like. Everything on it follows from the seed and the place.
class PipeWall
{
public:
    static constexpr float WaterCentre = 0.5F;      ///< [turns] the bottom of the pipe
    static constexpr float WaterHalfWidth = 0.055F; ///< [turns] that the flow covers, about

    /// @p columns places in a turn.
    PipeWall(quint32 seed, int metre, int columns);

    /// From now on the row at @p share of the metre.
    void setRow(float share);
    /// The wall in the middle of a column of that row.
    Texel at(int column) const;

private:
    /// What is wrong with one metre of pipe.
    struct Defects
    {
        Defects(std::uint32_t key, int metre);

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

    int m_metre;
    int m_columns;
    Defects m_here;
    Defects m_next;
    PipeLateral m_lateral;
    WallNoise m_clouds;
    WallNoise m_patches;
    WallNoise m_streaks; ///< dirt that the flow has drawn out
    WallNoise m_pores;
    WallNoise m_edge; ///< sampled at one angle: lines that wander along the pipe
    WallNoise m_fray;

    // of the row
    float m_share = 0.0F;
    float m_waterLeft = 0.0F;  ///< [turns] how far up the flow reaches
    float m_waterRight = 0.0F; ///< [turns]
    float m_wander = 0.0F;     ///< of a crack
};

} // namespace Velmar::Host
