#include "GameModules/Pelmora/Artwork/Ridge.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Varnholt::Artwork {

namespace {

/// Outline samples per pixel: a cliff is steep, one sample per column would leave it jagged.
constexpr int c_Samples = 6;

float PeakHeight(const Ridge::Peak& p_Peak, float p_X)
{
    const float width = p_X < p_Peak.Centre ? p_Peak.LeftWidth : p_Peak.RightWidth;
    return p_Peak.Height * std::exp(-std::pow(std::abs(p_X - p_Peak.Centre) / width, p_Peak.Power));
}

} // namespace

Ridge::Ridge(Style p_Style, const Atmosphere& p_Air, int p_Width)
    : m_Style(std::move(p_Style))
    , m_Air(p_Air)
    , m_Noise(m_Style.Seed)
{
    AddShoulders();
    const int samples = (p_Width + 1) * c_Samples;
    m_Tops.reserve(static_cast<std::size_t>(samples));
    m_BareTops.reserve(static_cast<std::size_t>(samples));
    for (int sample = 0; sample < samples; ++sample) {
        const float x = static_cast<float>(sample) / (c_Samples * m_Air.Unit);
        const float bare = m_Style.Base - Outline(x);
        m_BareTops.push_back(bare * m_Air.Unit);
        // Nothing grows on the shore line itself.
        const float ground = SmoothStep(4.0F, 34.0F, m_Style.Base - bare);
        m_Tops.push_back((bare - ground * Trees(x)) * m_Air.Unit);
    }
}

void Ridge::AddShoulders()
{
    const std::size_t summits = m_Style.Peaks.size();
    for (std::size_t summit = 0; summit < summits; ++summit) {
        const Peak peak = m_Style.Peaks[summit];
        for (int side = 0; side < 2; ++side) {
            const int cell = 2 * static_cast<int>(summit) + side;
            const float width = side == 0 ? -peak.LeftWidth : peak.RightWidth;
            const float away = 0.55F + 0.6F * m_Noise.Cell(cell, 61);
            const float size = 0.42F + 0.36F * m_Noise.Cell(cell, 62);
            const float slim = std::abs(width) * (0.30F + 0.25F * m_Noise.Cell(cell, 63));
            m_Style.Peaks.push_back(
                {peak.Centre + away * width, size * peak.Height, slim, slim, peak.Power});
        }
    }
}

float Ridge::Outline(float p_X) const
{
    // Bending x rather than y turns the flanks into ledges and overhangs instead of mere bumps.
    const float bent = p_X + 1.3F * m_Style.Roughness * m_Noise.Fractal(p_X / 58.0F, 3.5F, 5);
    float sum = 0.0F;
    for (const Peak& peak : m_Style.Peaks) {
        sum += std::pow(PeakHeight(peak, bent), 5.0F);
    }
    const float height = std::pow(sum, 0.2F);
    const float crags = m_Noise.Ridged(p_X / 110.0F, 7.5F, 3) - 0.5F;
    const float rubble = m_Noise.Fractal(p_X / 30.0F, 19.5F, 6);
    return height +
           m_Style.Roughness * (0.9F * crags + 0.6F * rubble) * SmoothStep(-20.0F, 90.0F, height);
}

float Ridge::Trees(float p_X) const
{
    if (m_Style.TreeHeight <= 0.0F) {
        return 0.0F;
    }
    const float spacing = 0.24F * m_Style.TreeHeight;
    const int cell = static_cast<int>(std::floor(p_X / spacing));
    float height = 0.0F;
    for (int tree = cell - 3; tree <= cell + 3; ++tree) {
        const float centre = (static_cast<float>(tree) + m_Noise.Cell(tree, 1)) * spacing;
        const float grove = SmoothStep(-0.35F, 0.25F, m_Noise.Fractal(centre / 70.0F, 41.5F, 3));
        const float size =
            m_Style.TreeHeight * (0.25F + 0.75F * m_Noise.Cell(tree, 2)) * (0.3F + 0.7F * grove);
        // Boughs hang in tiers, so the outline goes down in steps.
        const float tier = 5.0F * std::abs(p_X - centre) / (0.34F * size + 0.5F);
        const float step = tier - std::floor(tier);
        const float down = (std::floor(tier) + step * step * step) / 5.0F;
        height = std::max(height, size * (1.0F - down));
    }
    return std::max(0.0F, height);
}

float Ridge::TopAt(float p_X) const
{
    const int last = static_cast<int>(m_BareTops.size()) - 1;
    const int sample = std::clamp(static_cast<int>(p_X * c_Samples), 0, last);
    return m_BareTops[static_cast<std::size_t>(sample)];
}

float Ridge::SlopeAt(float p_X, float p_Reach) const
{
    return (TopAt(p_X + p_Reach) - TopAt(p_X - p_Reach)) / (2.0F * p_Reach);
}

float Ridge::Light(float p_X, float p_Y, float p_Reach) const
{
    const float slope = SlopeAt(p_X, p_Reach * m_Air.Unit);
    const float length = std::hypot(slope, 1.0F);
    return m_Air.Facing(p_X, p_Y, slope / length, -1.0F / length);
}

float Ridge::Coverage(int p_X, int p_Y) const
{
    float sum = 0.0F;
    for (int sample = 0; sample < c_Samples; ++sample) {
        const float top = m_Tops[static_cast<std::size_t>(p_X * c_Samples + sample)];
        sum += std::clamp(static_cast<float>(p_Y) - top + 0.5F, 0.0F, 1.0F);
    }
    return sum / c_Samples;
}

float Ridge::Structure(float p_X, float p_Y) const
{
    const float bend = 13.0F * m_Noise.Fractal(p_X / 34.0F, p_Y / 40.0F, 4);
    const float clefts = m_Noise.Ridged((p_X + bend) / 36.0F, p_Y / 120.0F + 5.5F, 5);
    const float ledges = m_Noise.Ridged((p_X - bend) / 120.0F, (p_Y + bend) / 30.0F, 4);
    return clefts + 0.45F * ledges;
}

Colour Ridge::RockAt(float p_X, float p_Y, float p_Depth, int p_Column) const
{
    const float pixelX = static_cast<float>(p_Column);
    const float pixelY = p_Y * m_Air.Unit;
    const float sideX = m_Air.Moon.x() > pixelX ? 3.0F : -3.0F;
    const float relief = 3.4F * (Structure(p_X, p_Y) - Structure(p_X + sideX, p_Y - 2.0F));
    const float volume = Light(pixelX, pixelY, 16.0F) * std::exp(-p_Depth / 150.0F);
    const float growth = SmoothStep(0.0F, 0.22F, m_Noise.Fractal(p_X / 48.0F, p_Y / 30.0F, 5));
    const float light = m_Style.Relief * std::clamp(relief + 0.55F * volume, -0.65F, 1.5F);
    const float nearness = m_Air.Nearness(pixelX, pixelY);
    const Colour rock = m_Style.Rock * ((1.0F - 0.5F * m_Style.Relief * growth) * (1.0F + light));
    return rock + m_Air.HazeAt(pixelX, pixelY) *
                      (0.22F * std::max(0.0F, light) * (0.25F + nearness) * (1.0F - 0.6F * growth));
}

float Ridge::MistAt(float p_X, float p_Y) const
{
    const float drift = 0.6F * m_Noise.Fractal(p_X / 240.0F, p_Y / 70.0F + 80.0F, 5);
    const float foot = (p_Y - m_Style.Base + m_Style.MistDepth) / m_Style.MistDepth + drift;
    return m_Style.MistShare * SmoothStep(0.0F, 1.15F, foot);
}

Colour Ridge::ToneAt(int p_X, int p_Y, float p_Mist) const
{
    const float pixelX = static_cast<float>(p_X);
    const float pixelY = static_cast<float>(p_Y);
    const float x = pixelX / m_Air.Unit;
    const float y = pixelY / m_Air.Unit;
    const float depth = std::max(0.0F, y - TopAt(pixelX) / m_Air.Unit);
    const Colour haze = m_Air.HazeAt(pixelX, pixelY);
    const float rim = std::max(0.0F, Light(pixelX, pixelY, 4.0F)) * std::exp(-depth / 6.0F);
    const Colour rock = RockAt(x, y, depth, p_X);
    const Colour edged =
        rock + m_Air.WarmHaze * (0.40F * rim * (0.08F + m_Air.Nearness(pixelX, pixelY)));
    return Mix(Mix(edged, haze, m_Style.Distance), haze, p_Mist);
}

void Ridge::Paint(Canvas& p_Canvas) const
{
    for (int x = 0; x < p_Canvas.Width(); ++x) {
        const float* tops = &m_Tops[static_cast<std::size_t>(x * c_Samples)];
        const float highest = *std::min_element(tops, tops + c_Samples);
        for (int y = std::max(0, static_cast<int>(highest) - 1); y < p_Canvas.Height(); ++y) {
            const float mist =
                MistAt(static_cast<float>(x) / m_Air.Unit, static_cast<float>(y) / m_Air.Unit);
            // The foot dissolves: opaque mist would keep the outline of the rock inside it.
            const float cover = Coverage(x, y) * SmoothStep(1.0F, 0.72F, mist);
            if (cover > 0.0F) {
                p_Canvas.Cover(x, y, ToneAt(x, y, mist), cover);
            }
        }
    }
}

} // namespace Varnholt::Artwork
