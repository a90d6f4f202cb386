#pragma once

#include "GameModules/Pelmora/Artwork/Atmosphere.hpp"
#include "GameModules/Pelmora/Artwork/Canvas.hpp"

namespace Varnholt::Artwork {

/// What frames the landscape close to the viewer: lights adrift on the lake, a cliff at the right
/// and an old pine on it, hung with lanterns. Places are composed for a canvas of 1920x1080.
void PaintForeground(Canvas& p_Canvas, const Atmosphere& p_Air);

} // namespace Varnholt::Artwork
