#pragma once

#include "GameModules/Pelmora/Artwork/Colour.hpp"

#include <QtCore/QPointF>

#include <vector>

namespace Varnholt::Artwork {

/// The air and the light of a scene. Everything that is painted asks it for the colours of sky and
/// haze at a place, so that there is one light source and one depth to the picture.
struct Atmosphere {
    /// A colour of the sky at a height, 0 at the top, 1 at the horizon.
    struct SkyStop {
        float Height;
        Colour Tone;
    };

    /// Pixels per unit of the scene; a scene is composed for 1080 units of height.
    float Unit = 1.0F;
    /// The centre of the moon and its radius, pixels.
    QPointF Moon;
    float MoonRadius = 0.0F;
    /// The line where land ends, pixels from the top.
    float Horizon = 0.0F;
    /// At least one stop, by ascending height.
    std::vector<SkyStop> Sky;
    /// Haze far from the moon, on the way to it and close to it.
    Colour CoolHaze;
    Colour DuskHaze;
    Colour WarmHaze;
    /// The light that the moon spreads in the air: close around it, and far out.
    Colour Glow;
    Colour Aura;
    Colour MoonTone;

    /// How close a place is to the moon: 1 in front of it, 0 far away.
    float Nearness(float p_X, float p_Y) const;
    /// The sky without moon, stars and clouds.
    Colour SkyAt(float p_X, float p_Y) const;
    /// What distance turns every colour into.
    Colour HazeAt(float p_X, float p_Y) const;
    /// The share of light, -1 to 1, on a surface that faces along the given direction (length 1).
    float Facing(float p_X, float p_Y, float p_NormalX, float p_NormalY) const;
};

} // namespace Varnholt::Artwork
