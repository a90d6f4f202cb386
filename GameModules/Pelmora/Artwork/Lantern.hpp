#pragma once

#include "GameModules/Pelmora/Artwork/Canvas.hpp"

#include <QtCore/QPointF>

namespace Varnholt::Artwork {

/// The light of every flame in the picture.
Colour LampLight();

/// A lamp too far away to show more than its light; p_Radius in pixels.
void PaintLamp(Canvas& p_Canvas, const QPointF& p_Place, qreal p_Radius);

/// A paper lantern on a cord; p_Top is where the cord is tied, lengths in pixels.
void PaintHangingLantern(Canvas& p_Canvas, const QPointF& p_Top, qreal p_Cord, qreal p_Radius);

/// A small light adrift on the water, with its reflection below.
void PaintFloatingLantern(Canvas& p_Canvas, const QPointF& p_Place, qreal p_Radius);

} // namespace Varnholt::Artwork
