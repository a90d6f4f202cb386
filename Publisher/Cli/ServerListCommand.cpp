#include "Publisher/Cli/ServerListCommand.hpp"

#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Publication/OptionChecks.hpp"
#include "Publisher/Publication/ServerLists.hpp"
#include "Publisher/Tree/PublishedTree.hpp"
#include "Publisher/Tree/TreeMark.hpp"

#include <CLI/CLI.hpp>

namespace Varnholt::Publisher {

ServerListCommand::ServerListCommand(CLI::App& p_Program, List p_List)
    : Chosen(p_List)
    , Command(p_List == List::Hosts
                  ? p_Program.add_subcommand("hosts", "Change the servers that hold the content")
                  : p_Program.add_subcommand("realmlist", "Change the login server's address"))
{
    Command->add_option("--output", Output, "Folder of the published tree")->required();
    if (Chosen == List::Hosts) {
        Command->footer(
            "Example:\n"
            "  varnholt-publish hosts --output /srv/www cdn1.example.net,cdn2.example.net\n"
            "\n"
            "All channels and applications of a tree share the list. Clients have it as\n"
            "soon as no cache holds the old one, five minutes with the configurations\n"
            "that come with this program.\n");
        Command->add_option("hosts", Value, "HOST[:PORT],...")->required();
    } else {
        Command->footer("Example:\n"
                        "  varnholt-publish realmlist --output /srv/www logon.example.net\n"
                        "\n"
                        "All channels of an application share the address.\n");
        Command->add_option("address", Value, "Address of the login server")->required();
        Command->add_option("--app-id", AppId, "Application identifier")->capture_default_str();
    }
    Signing.AddTo(*Command);
    Command->add_flag("--json", Json, "One JSON object per line");
}

bool ServerListCommand::IsChosen() const
{
    return Command->parsed();
}

int ServerListCommand::Run() const
{
    QString const output = QString::fromStdString(Output);
    QByteArray const text = Text();
    TreeMark(output).CheckIsTree();
    // Refuses an application that was never published there.
    if (Chosen == List::RealmList)
        PublishedTree(output, QString::fromStdString(AppId));
    QString const path = Path();
    QByteArray const before = ServerLists::Replace(
        output, Chosen == List::Hosts ? QString() : QString::fromStdString(AppId), {path, text},
        Signing.Options());
    if (Json) {
        ConsoleText::PrintJson(
            {{QStringLiteral("type"), QString::fromStdString(Command->get_name())},
             {QStringLiteral("before"), QString::fromUtf8(before)},
             {QStringLiteral("now"), QString::fromUtf8(text)}});
        return 0;
    }
    ConsoleText::PrintLine(
        QStringLiteral("%1: %2 (before: %3)")
            .arg(path, QString::fromUtf8(text),
                 before.isNull() ? QStringLiteral("none") : QString::fromUtf8(before)));
    return 0;
}

QString ServerListCommand::Path() const
{
    QString const output = QString::fromStdString(Output);
    return Chosen == List::Hosts
               ? ServerLists::HostsPath(output)
               : ServerLists::RealmListPath(output, QString::fromStdString(AppId));
}

QByteArray ServerListCommand::Text() const
{
    QString const value = QString::fromStdString(Value);
    if (Chosen == List::RealmList) {
        OptionChecks::CheckHost(QStringLiteral("address"), value);
        return ServerLists::RealmListText(value);
    }
    QStringList const hosts = value.split(QLatin1Char(','));
    OptionChecks::CheckHosts(QStringLiteral("hosts"), hosts);
    return ServerLists::HostsText(hosts);
}

} // namespace Varnholt::Publisher
