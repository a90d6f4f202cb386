#pragma once

#include "Host/Window/Style/PagePalette.hpp"

#include <QString>

namespace Varnholt::Host {

/// The style sheet of a page in its colours. Its parts are told by their object names, see there.
QString PageSheet(PagePalette const& p_Palette);

} // namespace Varnholt::Host
