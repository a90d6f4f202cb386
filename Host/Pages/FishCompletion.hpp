#pragma once

#include "Host/Pages/ProgramModel.hpp"

namespace Varnholt::Host::Pages {

/// A file that completes the program's command lines in fish.
QString FishCompletion(ProgramModel const& p_Model);

} // namespace Varnholt::Host::Pages
