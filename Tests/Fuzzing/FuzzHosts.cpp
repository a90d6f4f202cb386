// A fetched list of mirrors: the server chosen is one of them or the default, and asked by HTTP.

#include "GameModules/MirrorChoice.hpp"
#include "Launcher/Application/ContentServer.hpp"
#include "Launcher/Application/RemoteText.hpp"
#include "Tests/Fuzzing/FuzzSupport.hpp"

#include <QUrl>

#include <algorithm>

namespace {

using namespace Varnholt;
using Fuzzing::Demand;
using Launcher::ApplicationManifestFileEntry;
namespace MirrorChoice = Launcher::MirrorChoice;

bool IsListed(QString const& p_Server, QStringList const& p_Hosts)
{
    return std::any_of(p_Hosts.begin(), p_Hosts.end(), [&](QString const& p_Host) {
        return !p_Host.isEmpty() && p_Server == QStringLiteral("http://") + p_Host + '/';
    });
}

/// What would be asked of the server.
void ExamineAddress(QString const& p_Server)
{
    QUrl const address(p_Server + QStringLiteral("pelmora_app/file"));
    if (!address.isValid())
        return;
    Demand(address.scheme() == QLatin1String("http"), "a mirror is asked by HTTP");
    QByteArray const line = address.toEncoded(QUrl::FullyEncoded);
    Demand(std::none_of(line.begin(), line.end(), [](char p_Byte) { return p_Byte <= ' '; }),
           "no address breaks its line of the request");
}

void Choose(QStringList const& p_Hosts, qint32 p_Flags)
{
    ApplicationManifestFileEntry entry;
    entry.Flags = p_Flags;
    QString const server = MirrorChoice::BaseUrlFor(entry, p_Hosts);
    bool const byDefault = server == Launcher::DefaultContentBaseUrl();
    Demand(byDefault || IsListed(server, p_Hosts), "the server is one of the list or the default");
    if (entry.Has(ApplicationManifestFileEntry::DefaultServerOnly))
        Demand(byDefault, "an entry of the default server goes to no mirror");
    else if (!p_Hosts.contains(QString()))
        Demand(IsListed(server, p_Hosts), "a mirror serves what may come from one");
    Demand(MirrorChoice::MayServe(server, entry, p_Hosts), "the server chosen may serve");
    ExamineAddress(server);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* p_Data, std::size_t p_Size)
{
    static int const prepared = Fuzzing::Prepare();
    QByteArray const input = Fuzzing::Input(p_Data, p_Size);

    QStringList const hosts = MirrorChoice::HostsOf(input);
    Demand(!hosts.isEmpty(), "a list names at least one host");
    Demand(hosts.join(' ') == Launcher::RemoteText::Of(input), "nothing of the list is lost");
    for (QString const& host : hosts)
        Demand(!host.contains(' '), "a host's name has no blank");
    Demand(hosts.contains(MirrorChoice::DrawHost(hosts)), "the host drawn is one of the list");
    Choose(hosts, 0);
    Choose(hosts, ApplicationManifestFileEntry::DefaultServerOnly);
    Demand(!MirrorChoice::MayServe(QStringLiteral("http:///"), {}, hosts),
           "no server without a name may serve");
    return prepared;
}
