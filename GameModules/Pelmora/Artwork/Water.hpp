#pragma once

#include "GameModules/Pelmora/Artwork/Atmosphere.hpp"
#include "GameModules/Pelmora/Artwork/Canvas.hpp"

namespace Varnholt::Artwork {

/// Turns everything below the horizon into a lake that mirrors what is painted above it, with
/// ripples that grow towards the viewer and the path of the moon on it.
void PaintWater(Canvas& p_Canvas, const Atmosphere& p_Air, const Colour& p_Deep);

} // namespace Varnholt::Artwork
