#pragma once

#include <QString>

namespace Varnholt::Launcher {

/// Base address of the default content server, ending in "/": the environment variable
/// VARNHOLT_CONTENT_BASE_URL when it is set and not empty, else the value the module was built
/// with. The environment is read at every call, so that a host may set it before `Init()`.
QString DefaultContentBaseUrl();

} // namespace Varnholt::Launcher
