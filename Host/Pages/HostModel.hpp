#pragma once

#include "Host/Pages/ProgramModel.hpp"

namespace Varnholt::Host::Pages {

/// varnholt-host as its command line parser has it.
ProgramModel HostModel();

} // namespace Varnholt::Host::Pages
