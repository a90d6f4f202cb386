#include "GameModules/Pelmora/Artwork/Water.hpp"

#include "GameModules/Pelmora/Artwork/Noise.hpp"

#include <algorithm>
#include <cmath>

namespace Varnholt::Artwork {

namespace {

/// Rays per pixel: the smear of ripples too small to be seen one by one.
constexpr int c_Rays = 14;

/// The slope of the water at a place on the lake, seen in perspective: equal steps on the lake draw
/// closer towards the horizon. p_Away is the distance from the vanishing line.
float Ripple(const Noise& p_Noise, float p_Away, float p_Depth)
{
    const float across = p_Away / (22.0F + 0.20F * p_Depth);
    const float along = 34.0F * std::log(p_Depth + 34.0F);
    const float swell = p_Noise.At(0.3F * across, 0.22F * along);
    return 0.85F * p_Noise.Fractal(0.8F * across, along, 3) + 0.30F * swell;
}

Colour Reflection(const Canvas& p_Canvas, const Atmosphere& p_Air, const Noise& p_Noise, int p_X,
                  int p_Y, float p_Slope)
{
    const float depth = (static_cast<float>(p_Y) - p_Air.Horizon) / p_Air.Unit;
    const float smear = 3.0F + 0.22F * depth;
    Colour sum;
    for (int ray = 0; ray < c_Rays; ++ray) {
        const float jitter =
            (static_cast<float>(ray) + p_Noise.Cell(p_X, p_Y * c_Rays + ray)) / c_Rays - 0.5F;
        const float lift = depth + smear * (2.0F * jitter) + (2.0F + 0.16F * depth) * p_Slope;
        const float spread = 2.0F * p_Noise.Cell(p_Y * c_Rays + ray, p_X) - 1.0F;
        const float aside = (1.0F + 0.025F * depth) * (p_Slope + spread);
        sum = sum + p_Canvas.Sample(static_cast<float>(p_X) + aside * p_Air.Unit,
                                    p_Air.Horizon - 1.0F - std::abs(lift) * p_Air.Unit);
    }
    return sum * (1.0F / c_Rays);
}

/// The glitter of the moon, along the line below it, wider towards the viewer.
float MoonPath(const Atmosphere& p_Air, const Noise& p_Noise, float p_X, float p_Depth,
               float p_Slope)
{
    const float away = std::abs(p_X - static_cast<float>(p_Air.Moon.x())) / p_Air.Unit;
    const float width = 30.0F + 0.30F * p_Depth + 30.0F * p_Noise.Fractal(p_Depth / 26.0F, 2.5F, 2);
    const float path = std::exp(-away * away / (width * width));
    return path * SmoothStep(0.22F - 0.28F * path, 0.46F, p_Slope);
}

} // namespace

void PaintWater(Canvas& p_Canvas, const Atmosphere& p_Air, const Colour& p_Deep)
{
    const Noise noise(53U);
    for (int y = static_cast<int>(p_Air.Horizon); y < p_Canvas.Height(); ++y) {
        const float depth = std::max(0.0F, (static_cast<float>(y) - p_Air.Horizon) / p_Air.Unit);
        const float mirror = 0.86F - 0.42F * SmoothStep(0.0F, 300.0F, depth);
        for (int x = 0; x < p_Canvas.Width(); ++x) {
            const float unitX = static_cast<float>(x) / p_Air.Unit;
            const float slope =
                Ripple(noise, unitX - static_cast<float>(p_Air.Moon.x()) / p_Air.Unit, depth);
            const Colour seen = Reflection(p_Canvas, p_Air, noise, x, y, slope);
            const float glitter = MoonPath(p_Air, noise, static_cast<float>(x), depth, slope);
            p_Canvas.At(x, y) = Mix(p_Deep, seen, mirror) +
                                p_Air.Glow * (0.8F * glitter * SmoothStep(-10.0F, 60.0F, depth));
        }
    }
}

} // namespace Varnholt::Artwork
