#pragma once

#include "Host/Pages/ProgramModel.hpp"

namespace Varnholt::Host::Pages {

/// A file that completes the program's command lines in zsh.
QString ZshCompletion(ProgramModel const& p_Model);

} // namespace Varnholt::Host::Pages
