#pragma once

#include "Host/Core/Failures/Failure.hpp"

#include <optional>
#include <string>

/// The version file, as the host reads it beside the module.
namespace Varnholt::Host::VersionText {

/// The build that it names, possibly none; nothing when it is no version file.
std::optional<QString> BuildIn(std::string const& p_Content);

/// Why it is of no use; nothing when it names a build. \param p_Build as `BuildIn` has it
std::optional<Failure> FaultOf(std::optional<QString> const& p_Build, QString const& p_Url);

} // namespace Varnholt::Host::VersionText
