#pragma once

#include <string>
#include <vector>

namespace Varnholt::Gateway::HostList {

/// The base addresses, ending in "/", that a fetched list of mirrors names: names between blanks,
/// each "host", "host:port", perhaps with a path, or such behind "http://" or "https://". Doubles,
/// however written, are named once. \param p_Https for names without a scheme
/// \return false when it is something else: nothing of it can be trusted then
bool Read(std::string const& p_Text, bool p_Https, std::vector<std::string>& p_Addresses);

/// The one way to write an address: a host has no case, and a default port need not be told.
/// \return empty when it names no host
std::string Canonical(std::string const& p_Address);

/// "host:port" of an address, as people are told it.
std::string NameOf(std::string const& p_Address);

} // namespace Varnholt::Gateway::HostList
