#pragma once

#include <QtGui/QImage>

namespace Varnholt::Artwork {

/// How the emblem looks in a list of games: at rest, or chosen and lit.
enum class EmblemState { Resting, Active };

/// The game's round emblem on a transparent ground: a moon behind a peak and a pine, inside a ring
/// drawn with one stroke of the brush. p_Size is the side in pixels, at least 16.
QImage PaintEmblem(EmblemState p_State, int p_Size);

} // namespace Varnholt::Artwork
