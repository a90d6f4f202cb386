#pragma once

#include "Host/Pages/ProgramModel.hpp"

namespace Varnholt::Host::Pages {

/// A page of section 1 in the language of man(7). It bears no date: the same sources make the same
/// page.
QString ManPage(ProgramModel const& p_Model);

} // namespace Varnholt::Host::Pages
