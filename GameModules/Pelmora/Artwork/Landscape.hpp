#pragma once

#include <QtGui/QImage>

namespace Varnholt::Artwork {

/// The background of the game's page, 1920x1080, opaque: a mountain lake at moonrise. It fades to
/// the colour of the page at the left and bottom edges.
QImage PaintLandscape();

} // namespace Varnholt::Artwork
