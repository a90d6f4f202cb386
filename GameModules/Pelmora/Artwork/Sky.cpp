#include "GameModules/Pelmora/Artwork/Sky.hpp"

#include "GameModules/Pelmora/Artwork/Noise.hpp"

#include <algorithm>
#include <cmath>

namespace Varnholt::Artwork {

namespace {

/// One star per cell of this size at most, in units.
constexpr float c_StarCell = 15.0F;

void PaintStar(Canvas& p_Canvas, const Atmosphere& p_Air, const Noise& p_Noise, int p_Column,
               int p_Row)
{
    const float cell = c_StarCell * p_Air.Unit;
    const float x = (static_cast<float>(p_Column) + p_Noise.Cell(p_Column, p_Row + 1000)) * cell;
    const float y = (static_cast<float>(p_Row) + p_Noise.Cell(p_Column + 1000, p_Row)) * cell;
    const float magnitude = p_Noise.Cell(p_Column, p_Row);
    const float clear =
        (1.0F - 0.9F * p_Air.Nearness(x, y)) * SmoothStep(0.72F, 0.15F, y / p_Air.Horizon);
    const float bright = std::pow(magnitude, 9.0F) * clear;
    if (bright < 0.02F) {
        return;
    }
    const float warmth = p_Noise.Cell(p_Column + 500, p_Row + 500);
    const Colour tone = Mix(Colour::FromHex(0xbcd4ff), Colour::FromHex(0xffe6c8), warmth);
    p_Canvas.AddGlow(x, y, 1.9F * p_Air.Unit, tone * (1.1F * bright));
    p_Canvas.AddGlow(x, y, 7.0F * p_Air.Unit * bright, tone * (0.35F * bright));
}

/// The share of light that the moon's darker plains leave, 0 to 1.
float MoonRelief(const Noise& p_Noise, float p_X, float p_Y)
{
    const float plains = p_Noise.Fractal(p_X * 1.5F + 3.1F, p_Y * 1.5F - 1.7F, 5);
    const float craters = p_Noise.Fractal(p_X * 7.0F, p_Y * 7.0F, 3);
    return 1.0F - 0.30F * SmoothStep(-0.30F, 0.42F, plains) - 0.10F * craters;
}

} // namespace

void PaintSky(Canvas& p_Canvas, const Atmosphere& p_Air)
{
    for (int y = 0; y < p_Canvas.Height(); ++y) {
        for (int x = 0; x < p_Canvas.Width(); ++x) {
            p_Canvas.At(x, y) = p_Air.SkyAt(static_cast<float>(x), static_cast<float>(y));
        }
    }
    const Noise noise(11U);
    const int columns = static_cast<int>(p_Canvas.Width() / (c_StarCell * p_Air.Unit));
    const int rows = static_cast<int>(p_Air.Horizon / (c_StarCell * p_Air.Unit));
    for (int row = 0; row <= rows; ++row) {
        for (int column = 0; column <= columns; ++column) {
            PaintStar(p_Canvas, p_Air, noise, column, row);
        }
    }
}

void PaintMoon(Canvas& p_Canvas, const Atmosphere& p_Air)
{
    const Noise noise(23U);
    const float centreX = static_cast<float>(p_Air.Moon.x());
    const float centreY = static_cast<float>(p_Air.Moon.y());
    const int reach = static_cast<int>(p_Air.MoonRadius) + 2;
    for (int y = static_cast<int>(centreY) - reach; y <= static_cast<int>(centreY) + reach; ++y) {
        for (int x = static_cast<int>(centreX) - reach; x <= static_cast<int>(centreX) + reach;
             ++x) {
            const float deltaX = (static_cast<float>(x) - centreX) / p_Air.MoonRadius;
            const float deltaY = (static_cast<float>(y) - centreY) / p_Air.MoonRadius;
            const float distance = std::hypot(deltaX, deltaY);
            const float cover = std::clamp(
                (1.0F - distance) * p_Air.MoonRadius / (1.4F * p_Air.Unit) + 0.5F, 0.0F, 1.0F);
            if (cover <= 0.0F || x < 0 || y < 0 || x >= p_Canvas.Width() ||
                y >= p_Canvas.Height()) {
                continue;
            }
            const float limb = 1.0F - 0.26F * distance * distance * distance;
            p_Canvas.Cover(x, y, p_Air.MoonTone * (limb * MoonRelief(noise, deltaX, deltaY)),
                           cover);
        }
    }
}

void PaintClouds(Canvas& p_Canvas, const Atmosphere& p_Air, float p_Density)
{
    const Noise noise(37U);
    for (int y = 0; y < static_cast<int>(p_Air.Horizon); ++y) {
        const float height = static_cast<float>(y) / p_Air.Horizon;
        const float band = SmoothStep(0.02F, 0.30F, height) * SmoothStep(1.0F, 0.62F, height);
        for (int x = 0; x < p_Canvas.Width(); ++x) {
            const float unitX = static_cast<float>(x) / p_Air.Unit;
            const float unitY = static_cast<float>(y) / p_Air.Unit;
            const float bend = 60.0F * noise.Fractal(unitX / 520.0F, unitY / 300.0F + 9.0F, 3);
            const float streak = noise.Fractal((unitX + bend) / 460.0F, (unitY + bend) / 74.0F, 6);
            const float density = p_Density * band * SmoothStep(0.02F, 0.55F, streak);
            const float nearness = p_Air.Nearness(static_cast<float>(x), static_cast<float>(y));
            const Colour shade = p_Air.SkyAt(static_cast<float>(x), static_cast<float>(y));
            const Colour lit = Mix(p_Air.CoolHaze * 0.8F, p_Air.WarmHaze * 1.3F, nearness);
            p_Canvas.Cover(x, y, Mix(shade * 0.7F, lit, 0.25F + 0.6F * nearness), density);
        }
    }
}

} // namespace Varnholt::Artwork
