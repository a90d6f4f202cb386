#include "Publisher/Publication/ServerLists.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Signatures/TreeSigner.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"

#include <QFile>
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
    if (!isNew && p_Options.DevChannel && (p_Options.Hosts || p_Options.RealmListAddress)) {
        throw Failure(
            QStringLiteral("--dev: the channels share the lists, so %1 would change what live "
                           "players get: use the command \"%2\" for that")
                .arg(p_Options.Hosts ? QStringLiteral("--hosts") : QStringLiteral("--realmlist"),
                     p_Options.Hosts ? QStringLiteral("hosts") : QStringLiteral("realmlist")),
            Failure::c_Usage);
    }
}

QByteArray Replace(QString const& p_Output, QString const& p_AppId, TreeText const& p_List,
                   SigningOptions const& p_Signing)
{
    TreeTransaction tree(p_Output);
    QFile file(p_List.Target);
    QByteArray before;
    if (file.open(QIODevice::ReadOnly))
        before = file.readAll();
    TreeSigner(p_Output, p_AppId, p_Signing).Commit(tree, {p_List});
    return before;
}

} // namespace Varnholt::Publisher::ServerLists
