#pragma once

#include "Host/Window/Style/PagePalette.hpp"

#include <QPalette>

namespace Varnholt::Host {

/// The colours of what opens beside a page, so that it goes with it.
QPalette WindowPalette(PagePalette const& p_Page);

} // namespace Varnholt::Host
