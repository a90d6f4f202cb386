#pragma once

#include "Host/Pages/ProgramModel.hpp"

namespace Varnholt::TestSupport {

/// Every character that formatter or shells take for something else; a command in it would make the
/// file "odd".
QString OddText();
/// A program whose texts are all of that kind: odd-host.
Host::Pages::ProgramModel OddProgram();

} // namespace Varnholt::TestSupport
