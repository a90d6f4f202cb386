#pragma once

#include "Publisher/Publication/PublishOptions.hpp"

namespace Varnholt::Publisher::OptionChecks {

/// Refuses values that would end up in addresses or text files and break them there, and folders
/// without a name. Looks at no file.
/// \throws Failure with the status of a usage error, naming the option
void Check(PublishOptions const& p_Options);

} // namespace Varnholt::Publisher::OptionChecks
