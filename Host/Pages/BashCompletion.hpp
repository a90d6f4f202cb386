#pragma once

#include "Host/Pages/ProgramModel.hpp"

namespace Varnholt::Host::Pages {

/// A file that completes the program's command lines in bash.
QString BashCompletion(ProgramModel const& p_Model);

} // namespace Varnholt::Host::Pages
