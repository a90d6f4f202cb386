#include "GameModules/MirrorChoice.hpp"

#include "Launcher/Application/ContentServer.hpp"
#include "Launcher/Application/RemoteText.hpp"

#include <cstdlib>

namespace Varnholt::Launcher::MirrorChoice {

QStringList HostsOf(QByteArray const& p_Data)
{
    return RemoteText::Of(p_Data).split(QLatin1Char(' '));
}

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

bool MayServe(QString const& p_BaseUrl, ApplicationManifestFileEntry const& p_Entry,
              QStringList const& p_Hosts)
{
    bool const byMirror = !p_Entry.Has(ApplicationManifestFileEntry::DefaultServerOnly);
    if (byMirror)
        for (QString const& host : p_Hosts)
            if (!host.isEmpty() && p_BaseUrl == BaseUrlOf(host))
                return true;
    bool const byDefault = !byMirror || p_Hosts.isEmpty() || p_Hosts.contains(QString());
    return byDefault && p_BaseUrl == DefaultContentBaseUrl();
}

} // namespace Varnholt::Launcher::MirrorChoice
