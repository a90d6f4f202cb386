#include "Publisher/Publication/ServerLists.hpp"

#include "Publisher/Failure.hpp"

#include <QFileInfo>

namespace Varnholt::Publisher::ServerLists {

QString HostsPath(QString const& p_Output)
{
    return p_Output + QStringLiteral("/cdns.info");
}

QByteArray HostsText(QStringList const& p_Hosts)
{
    // One blank between the names and nothing after the last: clients trim nothing.
    return p_Hosts.join(QLatin1Char(' ')).toUtf8();
}

QString RealmListPath(QString const& p_Output, QString const& p_AppId)
{
    return QStringLiteral("%1/%2/realmlist.info").arg(p_Output, p_AppId);
}

QByteArray RealmListText(QString const& p_Address)
{
    // Clients put the whole content into the game's configuration as one line.
    return QStringLiteral("SET realmlist \"%1\"").arg(p_Address).toUtf8();
}

void CheckBuild(PublishOptions const& p_Options)
{
    bool const isNew = !QFileInfo(HostsPath(p_Options.Output)).isFile();
    if (isNew && !p_Options.Hosts && !p_Options.Local) {
        throw Failure(QStringLiteral("%1: has no host list yet: name the servers of its content "
                                     "with --hosts, or this machine, for trials, with --local")
                          .arg(p_Options.Output),
                      Failure::c_Usage);
    }
}

} // namespace Varnholt::Publisher::ServerLists
