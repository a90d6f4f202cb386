#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Cli/SigningArguments.hpp"
#include "Publisher/Publication/OptionChecks.hpp"
#include "Publisher/Publication/ServerLists.hpp"
#include "Publisher/Tree/BuildCatalog.hpp"
#include "Publisher/Tree/TreeMark.hpp"

#include <CLI/CLI.hpp>

namespace Varnholt::Publisher {

namespace {

/// Changes one of the lists that all channels share.
class ServerListCommand : public Command {
public:
    int Run() const override
    {
        TreeText const list = List();
        TreeMark(Output()).CheckIsTree();
        if (!Application().isEmpty())
            BuildCatalog(Output(), Application()).CheckIsPublished();
        QByteArray const before =
            ServerLists::Replace(Output(), Application(), list, Signing.Options());
        QString const now = QString::fromUtf8(list.Content);
        Tell(QStringLiteral("%1: %2 (before: %3)")
                 .arg(list.Target, now,
                      before.isNull() ? QStringLiteral("none") : QString::fromUtf8(before)),
             {{QStringLiteral("type"), QString::fromStdString(Words.get_name())},
              {QStringLiteral("before"), QString::fromUtf8(before)},
              {QStringLiteral("now"), now}});
        return 0;
    }

protected:
    using Command::Command;

    QString Value() const { return QString::fromStdString(Text); }

    std::string Text;
    SigningArguments Signing;

private:
    /// Empty: the list is of all applications.
    virtual QString Application() const = 0;
    /// \throws Failure for a value that cannot be in it
    virtual TreeText List() const = 0;
};

class HostsCommand : public ServerListCommand {
public:
    explicit HostsCommand(CLI::App& p_Program)
        : ServerListCommand(
              p_Program, "hosts", "Change the servers that hold the content",
              "Example:\n"
              "  varnholt-publish hosts --output /srv/www cdn1.example.net,cdn2.example.net\n"
              "\n"
              "All channels and applications of a tree share the list. Clients have it as\n"
              "soon as no cache holds the old one, five minutes with the configurations\n"
              "that come with this program.\n")
    {
        AddOutput()->required();
        Words.add_option("hosts", Text, "HOST[:PORT],...")->required();
        Signing.AddTo(Words);
        AddJson();
    }

private:
    QString Application() const override { return {}; }
    TreeText List() const override
    {
        QStringList const hosts = Value().split(QLatin1Char(','));
        OptionChecks::CheckHosts(QStringLiteral("hosts"), hosts);
        return {ServerLists::HostsPath(Output()), ServerLists::HostsText(hosts)};
    }
};

class RealmListCommand : public ServerListCommand {
public:
    explicit RealmListCommand(CLI::App& p_Program)
        : ServerListCommand(p_Program, "realmlist", "Change the login server's address",
                            "Example:\n"
                            "  varnholt-publish realmlist --output /srv/www logon.example.net\n"
                            "\n"
                            "All channels of an application share the address.\n")
    {
        AddOutput()->required();
        Words.add_option("address", Text, "Address of the login server")->required();
        AddAppId();
        Signing.AddTo(Words);
        AddJson();
    }

private:
    QString Application() const override { return AppId(); }
    TreeText List() const override
    {
        OptionChecks::CheckHost(QStringLiteral("address"), Value());
        return {ServerLists::RealmListPath(Output(), AppId()), ServerLists::RealmListText(Value())};
    }
};

} // namespace

std::unique_ptr<Command> MakeHostsCommand(CLI::App& p_Program)
{
    return std::make_unique<HostsCommand>(p_Program);
}

std::unique_ptr<Command> MakeRealmListCommand(CLI::App& p_Program)
{
    return std::make_unique<RealmListCommand>(p_Program);
}

} // namespace Varnholt::Publisher
