#include "GameModules/MirrorChoice.hpp"

#include "Launcher/Application/ContentServer.hpp"

#include <cstdlib>

namespace Varnholt::Launcher::MirrorChoice {

QString DrawHost(QStringList const& p_Hosts)
{
    return p_Hosts.isEmpty() ? QString() : p_Hosts[std::rand() % p_Hosts.size()];
}

QString BaseUrlOf(QString const& p_Host)
{
    return QStringLiteral("http://") + p_Host + QLatin1Char('/');
}

QString BaseUrlFor(ApplicationManifestFileEntry const& p_Entry, QStringList const& p_Hosts)
{
    if (p_Entry.Has(ApplicationManifestFileEntry::DefaultServerOnly))
        return DefaultContentBaseUrl();
    QString const host = DrawHost(p_Hosts);
    return host.isEmpty() ? DefaultContentBaseUrl() : BaseUrlOf(host);
}

} // namespace Varnholt::Launcher::MirrorChoice
