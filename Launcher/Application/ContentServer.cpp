#include "Launcher/Application/ContentServer.hpp"

#include "Launcher/Helper/Paths.hpp"

namespace Varnholt::Launcher {

QString DefaultContentBaseUrl()
{
    QString url = qEnvironmentVariable("VARNHOLT_CONTENT_BASE_URL");
    if (url.isEmpty())
        url = QStringLiteral(VARNHOLT_CONTENT_BASE_URL);
    return Helper::Paths::WithSlash(url);
}

} // namespace Varnholt::Launcher
