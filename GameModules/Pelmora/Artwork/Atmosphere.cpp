#include "GameModules/Pelmora/Artwork/Atmosphere.hpp"

#include "GameModules/Pelmora/Artwork/Noise.hpp"

#include <algorithm>
#include <cmath>

namespace Varnholt::Artwork {

namespace {

float DistanceToMoon(const Atmosphere& p_Air, float p_X, float p_Y)
{
    return std::hypot(p_X - static_cast<float>(p_Air.Moon.x()),
                      p_Y - static_cast<float>(p_Air.Moon.y())) /
           p_Air.Unit;
}

Colour Gradient(const std::vector<Atmosphere::SkyStop>& p_Stops, float p_Height)
{
    for (std::size_t stop = 1; stop < p_Stops.size(); ++stop) {
        if (p_Height < p_Stops[stop].Height) {
            const Atmosphere::SkyStop& upper = p_Stops[stop - 1];
            return Mix(upper.Tone, p_Stops[stop].Tone,
                       SmoothStep(upper.Height, p_Stops[stop].Height, p_Height));
        }
    }
    return p_Stops.back().Tone;
}

} // namespace

float Atmosphere::Nearness(float p_X, float p_Y) const
{
    const float distance = DistanceToMoon(*this, p_X, p_Y) / 430.0F;
    return std::exp(-distance * distance);
}

Colour Atmosphere::SkyAt(float p_X, float p_Y) const
{
    const float outside = std::max(0.0F, DistanceToMoon(*this, p_X, p_Y) - MoonRadius / Unit);
    const float glow = 0.34F * std::exp(-outside / 22.0F) + 0.24F * std::exp(-outside / 95.0F);
    const float aside = (p_X - static_cast<float>(Moon.x())) / (620.0F * Unit);
    const float dusk = 0.55F * std::exp(-aside * aside) * SmoothStep(0.45F, 1.0F, p_Y / Horizon);
    return Mix(Gradient(Sky, p_Y / Horizon), WarmHaze, dusk) + Glow * glow +
           Aura * std::exp(-outside / 330.0F);
}

Colour Atmosphere::HazeAt(float p_X, float p_Y) const
{
    // Haze lies low: it gathers light towards the horizon and leaves the summits dark.
    const float gathered = 0.36F + 0.64F * SmoothStep(0.38F, 1.0F, p_Y / Horizon);
    const float aside = (p_X - static_cast<float>(Moon.x())) / (460.0F * Unit);
    const float warmth = 0.92F * std::exp(-aside * aside);
    // Blue and amber alone would meet in grey.
    return Mix(Mix(CoolHaze, DuskHaze, warmth), Mix(DuskHaze, WarmHaze, warmth), warmth) * gathered;
}

float Atmosphere::Facing(float p_X, float p_Y, float p_NormalX, float p_NormalY) const
{
    const float towardsX = static_cast<float>(Moon.x()) - p_X;
    const float towardsY = static_cast<float>(Moon.y()) - p_Y;
    const float length = std::max(1.0F, std::hypot(towardsX, towardsY));
    return (p_NormalX * towardsX + p_NormalY * towardsY) / length;
}

} // namespace Varnholt::Artwork
