#pragma once

#include "Publisher/Publication/PublishOptions.hpp"

namespace Varnholt::Publisher::OptionChecks {

/// Refuses values that would end up in addresses or text files and break them there, and folders
/// without a name. Looks at no file.
/// \throws Failure with the status of a usage error, naming the option
void Check(PublishOptions const& p_Options);

/// Refuses what is no list of different servers. \param p_Option what it came by
/// \throws Failure as above
void CheckHosts(QString const& p_Option, QStringList const& p_Hosts);

/// Refuses what is no name or address of a server, with or without a port.
/// \throws Failure as above
void CheckHost(QString const& p_Option, QString const& p_Host);

} // namespace Varnholt::Publisher::OptionChecks
