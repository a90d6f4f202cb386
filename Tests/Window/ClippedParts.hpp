#pragma once

#include "Host/Window/Style/ScrollColumn.hpp"

#include <QStringList>

namespace Varnholt::TestSupport {

/// In which a part can be scrolled; null when it is in none.
Host::ScrollColumn const* ColumnAround(QWidget const& p_Part);

/// What of a window that is shown cannot be read: a part that is smaller than its text, that lies
/// beyond the window, or that another one hides. What can be scrolled to is no such part.
QStringList ClippedParts(QWidget const& p_Window);

} // namespace Varnholt::TestSupport
