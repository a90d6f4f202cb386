#include "GameModules/Pelmora/Artwork/Noise.hpp"

#include <algorithm>
#include <cmath>

namespace Varnholt::Artwork {

namespace {

/// The offset between octaves keeps their grids from lining up at the origin.
constexpr float c_OctaveShift = 37.31F;

float Fade(float p_Value)
{
    return p_Value * p_Value * p_Value * (p_Value * (p_Value * 6.0F - 15.0F) + 10.0F);
}

float Lerp(float p_A, float p_B, float p_Share)
{
    return p_A + (p_B - p_A) * p_Share;
}

} // namespace

float SmoothStep(float p_From, float p_To, float p_Value)
{
    const float share = std::clamp((p_Value - p_From) / (p_To - p_From), 0.0F, 1.0F);
    return share * share * (3.0F - 2.0F * share);
}

std::uint32_t Noise::Hash(int p_X, int p_Y) const
{
    std::uint32_t value = static_cast<std::uint32_t>(p_X) * 0x9E3779B1U;
    value ^= static_cast<std::uint32_t>(p_Y) * 0x85EBCA77U + m_Seed * 0xC2B2AE3DU;
    value = (value ^ (value >> 15)) * 0x2C1B3C6DU;
    value = (value ^ (value >> 12)) * 0x297A2D39U;
    return value ^ (value >> 15);
}

float Noise::Cell(int p_X, int p_Y) const
{
    return static_cast<float>(Hash(p_X, p_Y) >> 8) / 16777216.0F;
}

float Noise::Corner(int p_X, int p_Y, float p_DeltaX, float p_DeltaY) const
{
    constexpr float c_Diagonal = 0.70710678F;
    switch (Hash(p_X, p_Y) & 7U) {
    case 0:
        return p_DeltaX;
    case 1:
        return -p_DeltaX;
    case 2:
        return p_DeltaY;
    case 3:
        return -p_DeltaY;
    case 4:
        return c_Diagonal * (p_DeltaX + p_DeltaY);
    case 5:
        return c_Diagonal * (p_DeltaX - p_DeltaY);
    case 6:
        return c_Diagonal * (p_DeltaY - p_DeltaX);
    default:
        return -c_Diagonal * (p_DeltaX + p_DeltaY);
    }
}

float Noise::At(float p_X, float p_Y) const
{
    const float floorX = std::floor(p_X);
    const float floorY = std::floor(p_Y);
    const int cellX = static_cast<int>(floorX);
    const int cellY = static_cast<int>(floorY);
    const float deltaX = p_X - floorX;
    const float deltaY = p_Y - floorY;
    const float shareX = Fade(deltaX);
    const float upper = Lerp(Corner(cellX, cellY, deltaX, deltaY),
                             Corner(cellX + 1, cellY, deltaX - 1.0F, deltaY), shareX);
    const float lower = Lerp(Corner(cellX, cellY + 1, deltaX, deltaY - 1.0F),
                             Corner(cellX + 1, cellY + 1, deltaX - 1.0F, deltaY - 1.0F), shareX);
    return 1.6F * Lerp(upper, lower, Fade(deltaY));
}

float Noise::Fractal(float p_X, float p_Y, int p_Octaves) const
{
    float sum = 0.0F;
    float height = 0.5F;
    for (int octave = 0; octave < p_Octaves; ++octave) {
        sum += height * At(p_X, p_Y);
        height *= 0.5F;
        p_X = p_X * 2.0F + c_OctaveShift;
        p_Y = p_Y * 2.0F - c_OctaveShift;
    }
    return sum;
}

float Noise::Ridged(float p_X, float p_Y, int p_Octaves) const
{
    float sum = 0.0F;
    float height = 0.5F;
    for (int octave = 0; octave < p_Octaves; ++octave) {
        const float crest = 1.0F - std::min(1.0F, std::abs(At(p_X, p_Y)));
        sum += height * crest * crest;
        height *= 0.5F;
        p_X = p_X * 2.0F + c_OctaveShift;
        p_Y = p_Y * 2.0F - c_OctaveShift;
    }
    return sum;
}

} // namespace Varnholt::Artwork
