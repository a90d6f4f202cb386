#pragma once

#include <cstdint>

namespace Varnholt::Artwork {

/// 0 below p_From, 1 above p_To, a smooth step between. p_From may be the larger one.
float SmoothStep(float p_From, float p_To, float p_Value);

/// Gradient noise that depends on nothing but its seed and the place, so that every run paints the
/// same picture.
class Noise {
public:
    explicit Noise(std::uint32_t p_Seed)
        : m_Seed(p_Seed)
    {
    }

    /// A well mixed 32-bit value for a cell of the grid.
    std::uint32_t Hash(int p_X, int p_Y) const;

    /// White noise in 0 to 1 for a cell of the grid.
    float Cell(int p_X, int p_Y) const;

    /// Smooth noise, about -1 to 1, with features of size 1.
    float At(float p_X, float p_Y) const;

    /// Octaves of At(), each at twice the frequency and half the height; about -1 to 1.
    float Fractal(float p_X, float p_Y, int p_Octaves) const;

    /// Octaves folded at zero, which gives sharp crests; 0 to 1, crests at 1.
    float Ridged(float p_X, float p_Y, int p_Octaves) const;

private:
    float Corner(int p_X, int p_Y, float p_DeltaX, float p_DeltaY) const;

    std::uint32_t m_Seed;
};

} // namespace Varnholt::Artwork
