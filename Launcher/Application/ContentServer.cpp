#include "Launcher/Application/ContentServer.hpp"

namespace Varnholt::Launcher {

QString DefaultContentBaseUrl()
{
    QString url = qEnvironmentVariable("VARNHOLT_CONTENT_BASE_URL");
    if (url.isEmpty())
        url = QStringLiteral(VARNHOLT_CONTENT_BASE_URL);
    if (!url.endsWith(QLatin1Char('/')))
        url += QLatin1Char('/');
    return url;
}

} // namespace Varnholt::Launcher
