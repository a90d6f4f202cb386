#pragma once

#include <QColor>
#include <QIcon>

namespace Varnholt::Host {

enum class Glyph { Pause, Resume, More, Close };

/// A sign on a button. The program brings its own: there may be no icon theme.
QIcon GlyphIcon(Glyph p_Glyph, QColor const& p_Color);

} // namespace Varnholt::Host
