#pragma once

#include <QString>

namespace Varnholt::Launcher::Helper::Paths {

/// The path with a "/" at its end.
QString WithSlash(QString p_Path);

/// Where a file lies until it is whole and verified.
QString PartFile(QString const& p_Path);

} // namespace Varnholt::Launcher::Helper::Paths
