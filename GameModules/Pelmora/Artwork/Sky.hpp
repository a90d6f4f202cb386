#pragma once

#include "GameModules/Pelmora/Artwork/Atmosphere.hpp"
#include "GameModules/Pelmora/Artwork/Canvas.hpp"

namespace Varnholt::Artwork {

/// Fills the canvas with sky and scatters stars, fewer towards the moon and the horizon.
void PaintSky(Canvas& p_Canvas, const Atmosphere& p_Air);

/// Puts the moon into the sky.
void PaintMoon(Canvas& p_Canvas, const Atmosphere& p_Air);

/// Draws thin clouds across the sky, lit by the moon from behind; p_Density 0 to 1.
void PaintClouds(Canvas& p_Canvas, const Atmosphere& p_Air, float p_Density);

} // namespace Varnholt::Artwork
