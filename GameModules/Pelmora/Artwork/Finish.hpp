#pragma once

#include "GameModules/Pelmora/Artwork/Canvas.hpp"

namespace Varnholt::Artwork {

/// Lets bright places bleed into their surroundings by about p_Radius pixels, as a lens does.
void AddBloom(Canvas& p_Canvas, int p_Radius, float p_Strength);

/// Bends the brightest values softly down to display white.
void RollOffHighlights(Canvas& p_Canvas);

/// Lets the picture end in the page: fine grain, darker corners, and at the left and bottom edges
/// exactly p_Page, so that text reads well there and no seam shows.
void FadeIntoPage(Canvas& p_Canvas, const Colour& p_Page);

} // namespace Varnholt::Artwork
