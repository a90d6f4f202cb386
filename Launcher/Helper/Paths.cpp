#include "Launcher/Helper/Paths.hpp"

namespace Varnholt::Launcher::Helper::Paths {

QString WithSlash(QString p_Path)
{
    if (!p_Path.endsWith(QLatin1Char('/')))
        p_Path += QLatin1Char('/');
    return p_Path;
}

QString PartFile(QString const& p_Path)
{
    return p_Path + QLatin1String(".part");
}

} // namespace Varnholt::Launcher::Helper::Paths
