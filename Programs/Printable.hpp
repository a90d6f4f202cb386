#pragma once

#include <QString>

namespace Varnholt::Programs {

/// The text as a terminal may get it: names of files and servers are others' to choose, and may
/// hold what moves the cursor, hides text or turns its direction. Such a character becomes "\n" or
/// "\u001b". A text without any stays the same, as does what has gone through already; a line of
/// JSON keeps its meaning.
QString Printable(QString const& p_Text);

} // namespace Varnholt::Programs
