#pragma once

namespace Varnholt {

/// The file in a game's folder by which one host at a time works there. No build can have it.
inline constexpr char c_HostLockName[] = ".varnholt-host.lock";

} // namespace Varnholt
